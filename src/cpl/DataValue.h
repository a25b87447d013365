#pragma once

#include "foundation/DataType.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Data values: a value travels as a tag and an untyped pointer to one separately allocated
/// object. What a tag means at each place that touches values stands in one table.
///
/// A pointer that an object is to own comes from `new` of the type held, or from `copyValue`; a
/// string is NUL-terminated bytes from `malloc`. Thread: any, no state.
namespace FrameDriver::CPL {

enum class Form : std::uint8_t {
    nothing,
    int16,
    int32,
    uint16,
    uint32,
    boolean,  ///< one byte, true unless 0
    float32,
    float64,
    text,       ///< NUL-terminated bytes
    int32Low16  ///< read as 32 bits, kept to the low 16
};

struct DataTypeRow {
    std::string_view name;  ///< in text forms; empty: the kind has none
    Form held;              ///< what the pointer points at
    bool owned;             ///< released with its owner, and copied deeply
    Form logged;            ///< how the log shows it
    Form written;           ///< how text forms show it
    Form read;              ///< how it is read from text forms
    Form sent;              ///< the CPLClient::set that takes it
};

/// The row of a tag; for a tag that isn't in the table a row without name and forms.
DataTypeRow const& dataTypeRow(std::int32_t tag);
/// The tag of a name in text forms; `NoValue` for any other text.
std::int32_t dataTypeOf(std::string_view name);

/// How many bytes a form takes; 0 for text and nothing.
std::size_t sizeOf(Form form);
/// How many bytes the object has that `data` points at; a string's with its NUL.
std::size_t sizeOfValue(void const* data, std::int32_t tag);

/// A deep copy, the caller's; null for null, for kinds that are not owned, and without memory.
void* copyValue(void const* data, std::int32_t tag);
/// Gives a value back the way it was obtained; does nothing for kinds that are not owned.
void releaseValue(void* data, std::int32_t tag);
/// NUL-terminated bytes from `malloc`, the caller's.
char* makeText(std::string_view text);

/// The value in a text's form: decimal numbers, floats with six significant digits, "true" or
/// "false". Nothing for null and for `nothing`.
void appendValue(std::string& out, void const* data, Form form);
/// As the log shows it.
void appendLogValue(std::string& out, void const* data, std::int32_t tag);

/// A new value, the caller's, from its text form; unreadable numbers are 0, only "true" is true.
/// Null for kinds that can't be read.
void* readValue(std::string_view text, Form form);

}  // namespace FrameDriver::CPL
