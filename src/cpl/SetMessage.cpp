#include "cpl/SetMessage.h"

#include "cpl/DataValue.h"
#include "cpl/LogText.h"

namespace FrameDriver::CPL {

SetMessage::SetMessage(PIDType parameter, std::uint32_t device, eCpl2SetType setType)
    : Message(eSetMessage), pid(parameter), did(device), flag(setType) {}

SetMessage::~SetMessage() { releaseValue(data, dataType); }

std::string SetMessage::toString() const {
    std::string out = "Set Message (";
    appendUnsigned(out, "pid = ", static_cast<std::uint32_t>(pid));
    appendHex(out, ", did = 0x", did);
    out += ", val = ";
    appendLogValue(out, data, dataType);
    appendSigned(out, ", flag = ", flag);
    out += ')';
    return out;
}

}  // namespace FrameDriver::CPL
