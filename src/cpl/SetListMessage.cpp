#include "cpl/SetListMessage.h"

#include "cpl/LogText.h"

namespace FrameDriver::CPL {

std::string SetListMessage::toString() const {
    std::string out = "List Issue (";
    appendSigned(out, "lid=", lid);
    appendHex(out, ", did=", did);
    appendUnsigned(out, ", number=", number);
    appendUnsigned(out, ", action=", static_cast<std::uint16_t>(action));
    out += ", item=";
    item.appendText(out);
    return out;
}

}  // namespace FrameDriver::CPL
