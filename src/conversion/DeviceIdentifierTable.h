#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace FrameDriver::Conversion {

/// Where a field's writing and reading part from the plain scheme, which is: written as the
/// masked bits, read as a signed 32-bit number that isn't masked.
enum class FieldQuirk : std::uint8_t {
    none,
    ifFirstIs3,     ///< counts only if the encoding's first field is 3
    alwaysZero,     ///< written as 0, ignored when read; there are no bits for it
    ignoredOnRead,  ///< written, and ignored when read
    masked,         ///< masked to its bits when read
    low8,           ///< kept to its low 8 bits when read
    low16,          ///< kept to its low 16 bits when read
    signed16        ///< taken as a signed 16-bit number when read
};

struct DeviceIdField {
    std::string_view name;
    std::uint8_t low;  ///< its bits, both inclusive; bit 0 is the least significant
    std::uint8_t high;
    FieldQuirk quirk = FieldQuirk::none;
    /// The name that the reader looks for, if it isn't `name`.
    std::string_view otherName = {};

    std::uint32_t mask() const { return (std::uint32_t{2} << (high - low)) - 1; }
    std::string_view nameRead() const { return otherName.empty() ? name : otherName; }
};

/// How the reader finds the fields in a text.
enum class FieldsRead : std::uint8_t {
    byName,
    byPosition,
    none,  ///< it doesn't: only the type counts
    never  ///< the encoding can't be read at all
};

struct DeviceIdEncoding {
    static constexpr std::size_t maximumFields = 5;

    std::uint8_t type;
    FieldsRead fieldsRead;
    std::array<DeviceIdField, maximumFields> slots;  ///< unused ones have no name
    /// Set in every identifier that is read, and never shown.
    std::uint32_t hiddenBits = 0;

    std::span<DeviceIdField const> fields() const;
};

/// All encodings, in order of their type.
std::span<DeviceIdEncoding const> deviceIdEncodings();
/// Null for a type without an encoding; takes any number.
DeviceIdEncoding const* deviceIdEncoding(std::int32_t type);

}  // namespace FrameDriver::Conversion
