#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace FrameDriver::CPL {

/// Walks through big-endian bytes that stay the caller's, and never past their end: a number
/// that isn't wholly there is 0 and uses up what is left, a string without its NUL ends with the
/// bytes. Either makes `ranShort` true.
class PayloadReader {
  public:
    PayloadReader(unsigned char const* bytes, std::size_t length)
        : position(bytes), end(bytes + length) {}

    std::uint8_t readUInt8() { return readNumber<std::uint8_t>(); }
    std::uint16_t readUInt16() { return readNumber<std::uint16_t>(); }
    std::int16_t readInt16() { return static_cast<std::int16_t>(readUInt16()); }
    std::uint32_t readUInt32() { return readNumber<std::uint32_t>(); }
    std::int32_t readInt32() { return static_cast<std::int32_t>(readUInt32()); }
    std::uint64_t readUInt64() { return readNumber<std::uint64_t>(); }
    float readFloat() { return std::bit_cast<float>(readUInt32()); }
    double readDouble() { return std::bit_cast<double>(readUInt64()); }

    /// The bytes up to the NUL, which is passed over. A view of the payload.
    std::string_view readText() {
        std::string_view const rest(reinterpret_cast<char const*>(position), left());
        std::size_t const length = rest.find('\0');
        if (length == std::string_view::npos) {
            exhaust();
            return rest;
        }
        position += length + 1;
        return rest.substr(0, length);
    }

    std::size_t left() const { return static_cast<std::size_t>(end - position); }
    bool ranShort() const { return fellShort; }
    /// For a caller that sees itself that the bytes don't suffice.
    void exhaust() {
        position = end;
        fellShort = true;
    }

  private:
    template <typename T>
    T readNumber() {
        if (left() < sizeof(T)) {
            exhaust();
            return 0;
        }
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i)
            value = value << 8 | *position++;
        return static_cast<T>(value);
    }

    unsigned char const* position;
    unsigned char const* end;
    bool fellShort = false;
};

}  // namespace FrameDriver::CPL
