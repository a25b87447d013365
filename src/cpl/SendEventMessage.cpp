#include "cpl/SendEventMessage.h"

#include "cpl/LogText.h"

#include <bit>
#include <cstdlib>
#include <string_view>

namespace FrameDriver::CPL {
namespace {

/// Events whose data the log can read, and where: 16 bits each, big-endian.
struct EventRegister {
    std::int32_t eid;
    std::size_t offset;
    std::string_view label;
};
constexpr EventRegister registers[] = {
    {64, 0, " , REG = "},
    {65, 4, " , REG = "},
    {85, 0, " , SOURCEREG = "},
    {85, 2, " , TARGETREG = "},
};

void releaseObject(std::uint8_t* buffer) { delete buffer; }
void releaseMemory(std::uint8_t* buffer) { std::free(buffer); }

}  // namespace

SendEventMessage::SendEventMessage(EIDType event, std::uint32_t device)
    : Message(eSendEventMessage),
      eid(event),
      did(device),
      buffer(new std::uint8_t(0), releaseObject),
      cursor(buffer.get()) {}

void SendEventMessage::reserve(std::uint16_t size) {
    // Cleared, because all that is reserved goes to the frame, written or not.
    buffer = {static_cast<std::uint8_t*>(std::calloc(1, size)), releaseMemory};
    cursor = buffer.get();
    capacity = buffer ? size : 0;
    used = 0;
}

bool SendEventMessage::addByte(std::uint8_t value) {
    if (capacity - used < 1)
        return false;
    *cursor++ = value;
    ++used;
    return true;
}

bool SendEventMessage::addUInt16(std::uint16_t value) {
    return addByte(static_cast<std::uint8_t>(value >> 8)) &&
           addByte(static_cast<std::uint8_t>(value));
}

bool SendEventMessage::addInt16(std::int16_t value) {
    return addUInt16(static_cast<std::uint16_t>(value));
}

bool SendEventMessage::addUInt32(std::uint32_t value) {
    return addUInt16(static_cast<std::uint16_t>(value >> 16)) &&
           addUInt16(static_cast<std::uint16_t>(value));
}

bool SendEventMessage::addFloat(float value) {
    return addUInt32(std::bit_cast<std::uint32_t>(value));
}

bool SendEventMessage::readRegister(std::size_t offset, std::uint32_t& value) const {
    if (offset + 2 > capacity)
        return false;
    std::uint8_t const* const bytes = buffer.get() + offset;
    value = static_cast<std::uint32_t>(bytes[0] << 8 | bytes[1]);
    return true;
}

std::string SendEventMessage::toString() const {
    std::string out = "SendEvent Message (";
    appendSigned(out, "eid=", eid);
    appendHex(out, ", did=", did);
    out += ", ";
    for (EventRegister const& known : registers) {
        if (known.eid != eid)
            continue;
        out += known.label;
        std::uint32_t value = 0;
        if (readRegister(known.offset, value))
            Tools::appendUInt32(out, value);
    }
    out += ')';
    return out;
}

}  // namespace FrameDriver::CPL
