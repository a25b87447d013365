#include "conversion/FIDMarshaller.h"

#include "conversion/ClosingByte.h"
#include "conversion/TextForm.h"

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <mutex>

namespace FrameDriver::Conversion {

namespace {

// -1 for a place that wasn't found.
std::int64_t printable(std::size_t place) { return static_cast<std::int64_t>(place); }

void reportMalformed(std::string_view text, std::size_t end, std::size_t other) {
    std::string line = "fidMessageString=";
    line.append(text).append("  end=").append(std::to_string(printable(end)));
    line.append(" other=").append(std::to_string(printable(other))).append("\n");
    std::cout << line << std::flush;
}

}  // namespace

std::string FIDMarshaller::marshal(std::string_view name,
                                   FIDParameterList const& parameters) const {
    std::lock_guard const guard(marshalLock);
    return writeFID("FID: ", name, parameters);
}

FIDMarshaller::Value FIDMarshaller::unmarshal(std::string_view text, bool& malformed) const {
    std::lock_guard const guard(unmarshalLock);
    malformed = false;
    auto const endOfLast = [&](std::size_t start) {
        auto const other = text.find(closingByte, start);
        auto const end = text.rfind(closingByte);
        if (other != end) {
            malformed = true;
            reportMalformed(text, end, other);
        }
        return end;
    };
    auto parameters = readParameters(text, endOfLast);
    return {std::string(readName(text)), parameters.release()};
}

}  // namespace FrameDriver::Conversion
