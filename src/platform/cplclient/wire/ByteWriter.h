#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

namespace cplwire {

/// Appends big-endian fields to a buffer, which stays the caller's.
class ByteWriter {
  public:
    explicit ByteWriter(std::string& target) : out(target) {}

    void u8(std::uint8_t value) { out.push_back(static_cast<char>(value)); }
    void u16(std::uint16_t value) {
        u8(static_cast<std::uint8_t>(value >> 8U));
        u8(static_cast<std::uint8_t>(value));
    }
    void u32(std::uint32_t value) {
        u16(static_cast<std::uint16_t>(value >> 16U));
        u16(static_cast<std::uint16_t>(value));
    }
    void i32(std::int32_t value) { u32(static_cast<std::uint32_t>(value)); }
    void f32(float value) { u32(std::bit_cast<std::uint32_t>(value)); }
    void bytes(std::string_view value) { out.append(value); }
    /// A length of 16 bits, then that many bytes. What doesn't fit is the caller's fault.
    void sized16(std::string_view value) {
        u16(static_cast<std::uint16_t>(value.size()));
        bytes(value);
    }
    /// The bytes up to the first NUL of `value`, then a NUL.
    void terminated(std::string_view value) {
        bytes(value.substr(0, value.find('\0')));
        u8(0);
    }

  private:
    std::string& out;
};

}  // namespace cplwire
