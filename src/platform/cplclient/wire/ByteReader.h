#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace cplwire {

/// Takes big-endian fields off the front of a text. Never reads past its end: what is missing
/// reads as 0 or empty, and `good` is false from then on.
class ByteReader {
  public:
    explicit ByteReader(std::string_view source) : rest(source) {}

    bool good() const { return ok; }
    /// Good, and nothing left.
    bool done() const { return ok && rest.empty(); }
    std::size_t left() const { return rest.size(); }

    std::uint8_t u8() {
        auto const field = bytes(1);
        return field.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(field[0]);
    }
    std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }
    std::uint32_t u32() { return number(4); }
    std::int32_t i32() { return static_cast<std::int32_t>(u32()); }
    float f32() { return std::bit_cast<float>(u32()); }
    std::string_view sized16() { return bytes(u16()); }
    /// The bytes up to a NUL, which is taken too.
    std::string_view terminated() {
        auto const end = rest.find('\0');
        auto const text = bytes(end == std::string_view::npos ? rest.size() + 1 : end);
        bytes(1);
        return text;
    }
    std::string_view bytes(std::size_t count) {
        if (!ok || count > rest.size()) {
            ok = false;
            rest = {};
            return {};
        }
        auto const taken = rest.substr(0, count);
        rest.remove_prefix(count);
        return taken;
    }

  private:
    std::uint32_t number(std::size_t width) {
        std::uint32_t value = 0;
        for (char const byte : bytes(width))
            value = (value << 8U) | static_cast<std::uint8_t>(byte);
        return value;
    }

    std::string_view rest;
    bool ok = true;
};

}  // namespace cplwire
