#include "conversion/DIDMarshaller.h"

#include "conversion/ClosingByte.h"
#include "conversion/TextForm.h"

#include <cstddef>

namespace FrameDriver::Conversion {

std::string DIDMarshaller::marshal(Value const& value) const {
    return writeFID("DFID: ", value.first, *value.second);
}

DIDMarshaller::Value DIDMarshaller::unmarshal(std::string_view text) const {
    auto parameters =
        readParameters(text, [&](std::size_t start) { return text.find(closingByte, start); });
    return {std::string(readName(text)), parameters.release()};
}

}  // namespace FrameDriver::Conversion
