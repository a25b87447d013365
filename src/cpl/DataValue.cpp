#include "cpl/DataValue.h"

#include "foundation/NumberText.h"

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>

namespace FrameDriver::CPL {
namespace {

using enum Form;

// Two rows are odd and stay so, since dictionaries and frames rely on them. A "Double" read from
// text has eight bytes, but texts and the link take its first four as a float, the log doesn't
// show it, and no one owns it. A "State" is kept without a sign and shown and sent with one.
// clang-format off
constexpr DataTypeRow rows[] = {
    // tag    name          held     owned  logged   written  read        sent
    /*  0 */ {"Int16",      int16,   true,  int16,   int16,   int16,      int16},
    /*  1 */ {"Int32",      int32,   true,  int32,   int32,   int32,      int32},
    /*  2 */ {"UInt16",     uint16,  true,  uint16,  uint16,  uint16,     uint16},
    /*  3 */ {"UInt32",     uint32,  true,  uint32,  uint32,  uint32,     uint32},
    /*  4 */ {"Bool",       boolean, true,  boolean, boolean, boolean,    boolean},
    /*  5 */ {"Float",      float32, true,  float32, float32, float32,    float32},
    /*  6 */ {"",           nothing, false, nothing, nothing, nothing,    nothing},
    /*  7 */ {"String",     text,    true,  text,    text,    text,       text},
    /*  8 */ {"Double",     float64, false, nothing, float32, float64,    float32},
    /*  9 */ {"",           nothing, false, nothing, nothing, nothing,    nothing},
    /* 10 */ {"",           nothing, false, nothing, nothing, nothing,    nothing},
    /* 11 */ {"Clock",      float32, true,  float32, float32, float32,    float32},
    /* 12 */ {"Degree",     float32, true,  float32, float32, float32,    float32},
    /* 13 */ {"",           nothing, false, nothing, nothing, nothing,    nothing},
    /* 14 */ {"Percent",    float32, true,  float32, float32, float32,    float32},
    /* 15 */ {"Revolution", float32, true,  float32, float32, float32,    float32},
    /* 16 */ {"ScreenUnit", float32, true,  float32, float32, float32,    float32},
    /* 17 */ {"SPercent",   float32, true,  float32, float32, float32,    float32},
    /* 18 */ {"State",      uint16,  true,  int16,   int16,   int32Low16, int16},
};
// clang-format on
constexpr DataTypeRow noRow{"", nothing, false, nothing, nothing, nothing, nothing};

template <typename T>
T load(void const* data) {
    T value;
    std::memcpy(&value, data, sizeof value);
    return value;
}

template <typename T>
void* store(T value) {
    return new (std::nothrow) T(value);
}

/// The number at the start of the text, 0 if there is none.
template <typename T>
T numberIn(std::string_view text, bool (*read)(std::string_view, T&)) {
    T value{};
    read(text, value);
    return value;
}

}  // namespace

DataTypeRow const& dataTypeRow(std::int32_t tag) {
    auto const index = static_cast<std::uint32_t>(tag);
    return index < std::size(rows) ? rows[index] : noRow;
}

std::int32_t dataTypeOf(std::string_view name) {
    for (std::size_t tag = 0; tag < std::size(rows); ++tag)
        if (!name.empty() && rows[tag].name == name)
            return static_cast<std::int32_t>(tag);
    return NoValue;
}

std::size_t sizeOf(Form form) {
    switch (form) {
    case boolean:
        return 1;
    case int16:
    case uint16:
    case int32Low16:
        return 2;
    case int32:
    case uint32:
    case float32:
        return 4;
    case float64:
        return 8;
    case text:
    case nothing:
        break;
    }
    return 0;
}

std::size_t sizeOfValue(void const* data, std::int32_t tag) {
    Form const held = dataTypeRow(tag).held;
    if (data == nullptr)
        return 0;
    return held == text ? std::strlen(static_cast<char const*>(data)) + 1 : sizeOf(held);
}

void* copyValue(void const* data, std::int32_t tag) {
    DataTypeRow const& row = dataTypeRow(tag);
    if (data == nullptr || !row.owned)
        return nullptr;
    if (row.held == text)
        return makeText(static_cast<char const*>(data));
    std::size_t const size = sizeOf(row.held);
    void* const copy = ::operator new(size, std::nothrow);
    if (copy != nullptr)
        std::memcpy(copy, data, size);
    return copy;
}

void releaseValue(void* data, std::int32_t tag) {
    DataTypeRow const& row = dataTypeRow(tag);
    if (!row.owned)
        return;
    if (row.held == text)
        std::free(data);
    else
        ::operator delete(data);
}

char* makeText(std::string_view bytes) {
    auto* const copy = static_cast<char*>(std::malloc(bytes.size() + 1));
    if (copy == nullptr)
        return nullptr;
    bytes.copy(copy, bytes.size());
    copy[bytes.size()] = '\0';
    return copy;
}

void appendValue(std::string& out, void const* data, Form form) {
    if (data == nullptr)
        return;
    switch (form) {
    case int16:
    case int32Low16:
        return Tools::appendInt32(out, load<std::int16_t>(data));
    case int32:
        return Tools::appendInt32(out, load<std::int32_t>(data));
    case uint16:
        return Tools::appendUInt32(out, load<std::uint16_t>(data));
    case uint32:
        return Tools::appendUInt32(out, load<std::uint32_t>(data));
    case boolean:
        out += load<std::uint8_t>(data) != 0 ? "true" : "false";
        return;
    case float32:
        return Tools::appendFloat(out, load<float>(data));
    case text:
        out += static_cast<char const*>(data);
        return;
    case float64:
    case nothing:
        return;
    }
}

void appendLogValue(std::string& out, void const* data, std::int32_t tag) {
    appendValue(out, data, dataTypeRow(tag).logged);
}

void* readValue(std::string_view bytes, Form form) {
    switch (form) {
    case int16:
        return store(numberIn(bytes, Tools::readInt16));
    case int32:
        return store(numberIn(bytes, Tools::readInt32));
    case uint16:
        return store(numberIn(bytes, Tools::readUInt16));
    case uint32:
        return store(numberIn(bytes, Tools::readUInt32));
    case boolean:
        return store(bytes == "true");
    case float32:
        return store(numberIn(bytes, Tools::readFloat));
    case float64:
        return store(numberIn(bytes, Tools::readDouble));
    case text:
        return makeText(bytes);
    case int32Low16:
        return store(static_cast<std::uint16_t>(numberIn(bytes, Tools::readInt32)));
    case nothing:
        break;
    }
    return nullptr;
}

}  // namespace FrameDriver::CPL
