#include "conversion/CPLMarshaller.h"

#include "conversion/CPLMarshallerReader.h"
#include "conversion/CPLMarshallerWriter.h"
#include "conversion/DeviceIdentifier.h"
#include "cpl/Message.h"

#include <mutex>

namespace FrameDriver::Conversion {

std::string CPLMarshaller::marshal(CPL::Message const* message) const {
    // Holds most issues in one piece; those of long lists grow it.
    constexpr std::size_t usualLength = 256;
    std::lock_guard const guard(marshalLock);
    std::string out;
    out.reserve(usualLength);
    writeMessage(out, *message);
    return out;
}

CPL::Message* CPLMarshaller::unmarshal(std::string_view text) const {
    std::lock_guard const guard(unmarshalLock);
    return readMessage(text).release();
}

std::string CPLMarshaller::marshalDeviceId(std::uint32_t did) const {
    std::string out;
    appendDeviceId(out, did);
    return out;
}

std::uint32_t CPLMarshaller::unmarshalDeviceId(std::string_view text) const {
    return readDeviceId(text);
}

}  // namespace FrameDriver::Conversion
