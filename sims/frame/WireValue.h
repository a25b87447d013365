#pragma once

#include "sims/frame/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace FrameSim {

/// A value's bytes as they travel in a set and in an update, big-endian: one for Bool, two for
/// Int16, UInt16 and State, four for Int32, UInt32 and the real forms, a text as it is. Empty
/// for no value.
std::string valueBytes(Value const& value);

/// The value back. Nothing if the type is unknown or the length is another than the type's.
std::optional<Value> valueFromBytes(std::int32_t type, std::string_view bytes);

/// How many bytes an integer type takes, 2 or 4.
std::size_t integerWidth(DataType type);

}  // namespace FrameSim
