#pragma once

#include "platform/cplclient/CCallback.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

/// Records as the client library hands them to a callback, built by hand.
namespace FrameDriver::Testing {

/// A parameter message in memory of its own, of exactly the length that the library grants: the
/// value and one writable byte behind it, which starts as '#'.
class ParameterRecord {
  public:
    ParameterRecord(std::uint16_t pid, std::uint32_t did, std::uint16_t dataType,
                    std::string_view value)
        : words((CplParameterMessage::valueOffset + value.size() + 1 + 7) / 8) {
        CplParameterMessage& record = *message();
        record.serviceId = 3;
        record.pid = pid;
        record.did = did;
        record.length = static_cast<std::uint16_t>(value.size());
        record.dataType = dataType;
        std::memcpy(record.value(), value.data(), value.size());
        record.value()[value.size()] = '#';
    }

    /// A number in the machine's own order.
    template <typename T>
    static ParameterRecord of(std::uint16_t pid, std::uint32_t did, std::uint16_t dataType,
                              T number) {
        char bytes[sizeof number];
        std::memcpy(bytes, &number, sizeof number);
        return {pid, did, dataType, std::string_view(bytes, sizeof number)};
    }

    CplParameterMessage* message() { return reinterpret_cast<CplParameterMessage*>(words.data()); }
    char byteBehindValue() { return static_cast<char>(message()->value()[message()->length]); }

  private:
    std::vector<std::uint64_t> words;  // for the alignment
};

/// A list message with its big-endian payload, written field by field:
///
///     ListRecord(6, 1, 0x08000213).item(7, 0, 1, 1).u32(100).text("clip")
class ListRecord {
  public:
    ListRecord(std::int16_t lid, std::uint16_t number, std::uint32_t did) {
        u16(static_cast<std::uint16_t>(lid)).u16(number).u32(did);
        record.serviceId = 4;
    }

    /// An item's header; counts the item.
    ListRecord& item(std::uint32_t itemId, std::uint32_t nextItemId, std::int16_t status,
                     std::int16_t size) {
        ++record.itemCount;
        return u32(itemId)
            .u32(nextItemId)
            .u16(static_cast<std::uint16_t>(status))
            .u16(static_cast<std::uint16_t>(size));
    }
    ListRecord& u8(std::uint8_t value) { return bigEndian(value, 1); }
    ListRecord& u16(std::uint16_t value) { return bigEndian(value, 2); }
    ListRecord& i16(std::int16_t value) { return u16(static_cast<std::uint16_t>(value)); }
    ListRecord& u32(std::uint32_t value) { return bigEndian(value, 4); }
    ListRecord& f32(float value) {
        std::uint32_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        return u32(bits);
    }
    ListRecord& text(std::string_view value) {
        bytes.insert(bytes.end(), value.begin(), value.end());
        return u8(0);
    }
    /// Cuts the payload short.
    ListRecord& truncate(std::size_t length) {
        bytes.resize(length);
        return *this;
    }

    std::size_t length() const { return bytes.size(); }
    /// Points into this object, whose payload has no byte to spare. Fields that a test wants to
    /// be odd are set in what this returns.
    CplListMessage* message() {
        bytes.shrink_to_fit();
        record.payload = bytes.data();
        record.payloadLength = static_cast<std::uint32_t>(bytes.size());
        return &record;
    }

  private:
    ListRecord& bigEndian(std::uint32_t value, int width) {
        for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
            bytes.push_back(static_cast<unsigned char>(value >> shift));
        return *this;
    }

    std::vector<unsigned char> bytes;
    CplListMessage record{};
};

}  // namespace FrameDriver::Testing
