#pragma once

#include "cpl/Message.h"
#include "platform/cplclient/CPLTypes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace FrameDriver::CPL {

/// Sends an event to the frame, with data bytes as they go onto the link: the most significant
/// byte of a value first.
///
///     log line = "SendEvent Message (eid=" n ", did=" hex ", " { label n } ")"
///
/// Labels show the registers of the events 64, 65 and 85; a register that lies behind the
/// event's data shows its label alone.
class SendEventMessage : public Message {
  public:
    /// Without data: a capacity of 0.
    SendEventMessage(EIDType event, std::uint32_t device);
    SendEventMessage(SendEventMessage const&) = delete;
    SendEventMessage& operator=(SendEventMessage const&) = delete;

    /// Drops the data and makes room for `size` bytes, all 0.
    void reserve(std::uint16_t size);

    /// These append. False once the room is used up; of a value that fits in part, the leading
    /// bytes stay behind.
    bool addByte(std::uint8_t value);
    bool addUInt16(std::uint16_t value);
    bool addInt16(std::int16_t value);
    bool addUInt32(std::uint32_t value);
    bool addFloat(float value);

    std::string toString() const override;

    EIDType getEid() const { return eid; }
    std::uint32_t getDid() const { return did; }
    /// The first byte; stays the message's, until `reserve`.
    std::uint8_t* getData() const { return buffer.get(); }
    /// The room reserved, written or not: that many bytes go to the frame.
    std::uint16_t getSize() const { return capacity; }

  private:
    /// Gives a buffer back the way it was obtained.
    using Release = void (*)(std::uint8_t*);

    bool readRegister(std::size_t offset, std::uint32_t& value) const;

    EIDType eid;
    std::uint32_t did;
    std::unique_ptr<std::uint8_t, Release> buffer;
    std::uint8_t* cursor;
    std::uint16_t capacity = 0;
    std::uint16_t used = 0;
};

}  // namespace FrameDriver::CPL
