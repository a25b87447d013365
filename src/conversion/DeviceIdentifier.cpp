#include "conversion/DeviceIdentifier.h"

#include "conversion/CPLMarshallerText.h"
#include "conversion/ClosingByte.h"
#include "conversion/DeviceIdentifierTable.h"
#include "foundation/NumberText.h"
#include "foundation/TextSearch.h"

#include <array>

namespace FrameDriver::Conversion {
namespace {

constexpr auto nowhere = std::string_view::npos;
constexpr int typeShift = 24;

using Values = std::array<std::int32_t, DeviceIdEncoding::maximumFields>;

bool isShown(DeviceIdEncoding const& encoding, DeviceIdField const& field, std::uint32_t did) {
    DeviceIdField const& first = encoding.slots.front();
    return field.quirk != FieldQuirk::ifFirstIs3 || (did >> first.low & first.mask()) == 3;
}

std::uint32_t shownValue(DeviceIdField const& field, std::uint32_t did) {
    return field.quirk == FieldQuirk::alwaysZero ? 0 : did >> field.low & field.mask();
}

std::int32_t hexNumber(std::string_view text) {
    std::int32_t number = 0;
    Tools::readHexInt32(text, number);
    return number;
}

/// The number behind the second "=": the first one belongs to "did".
std::int32_t readType(std::string_view text) {
    std::size_t const start = text.find('=', text.find('=') + 1) + 1;
    return hexNumber(Tools::cut(text, start, text.find(',', start) - start));
}

/// Later fields of a name overwrite earlier ones, and unknown names are passed over.
Values readByName(std::string_view text, std::span<DeviceIdField const> fields) {
    std::size_t const start = text.find('[') + 1;
    Tools::Pieces pieces(Tools::cut(text, start, text.find(closingByte) - start), ",");
    Values values{};
    for (std::string_view piece; pieces.next(piece);) {
        Tools::Pieces parts(piece, "=");
        std::string_view name;
        std::string_view value;
        if (parts.next(name))
            parts.next(value);
        for (std::size_t i = 0; i < fields.size(); ++i)
            if (fields[i].nameRead() == trim(name))
                values[i] = hexNumber(trim(value));
    }
    return values;
}

/// The names are not looked at. Once an "=" is missing, the rest is 0.
Values readByPosition(std::string_view text, std::size_t count) {
    Values values{};
    std::size_t position = text.find(',');
    for (std::size_t i = 0; i < count && position != nowhere; ++i) {
        position = text.find('=', position + 1);
        if (position != nowhere)
            values[i] = hexNumber(text.substr(position + 1));
    }
    return values;
}

Values readFields(std::string_view text, DeviceIdEncoding const& encoding) {
    switch (encoding.fieldsRead) {
    case FieldsRead::byName:
        return readByName(text, encoding.fields());
    case FieldsRead::byPosition:
        return readByPosition(text, encoding.fields().size());
    default:
        return {};
    }
}

/// What a value adds to the identifier, before it is shifted.
std::uint32_t keptValue(DeviceIdField const& field, std::int32_t value, std::int32_t first) {
    auto const bits = static_cast<std::uint32_t>(value);
    switch (field.quirk) {
    case FieldQuirk::none:
        break;
    case FieldQuirk::ifFirstIs3:
        return first == 3 ? bits : 0;
    case FieldQuirk::alwaysZero:
    case FieldQuirk::ignoredOnRead:
        return 0;
    case FieldQuirk::masked:
        return bits & field.mask();
    case FieldQuirk::low8:
        return bits & 0xFF;
    case FieldQuirk::low16:
        return bits & 0xFFFF;
    case FieldQuirk::signed16:
        return static_cast<std::uint32_t>(static_cast<std::int16_t>(value));
    }
    return bits;
}

}  // namespace

void appendDeviceId(std::string& out, std::uint32_t did) {
    std::uint32_t const type = did >> typeShift;
    DeviceIdEncoding const* const encoding = deviceIdEncoding(static_cast<std::int32_t>(type));
    if (encoding == nullptr) {
        out += "undefined device id encoding type (";
        Tools::appendHex32(out, type);
        out += ')';
        return;
    }
    out += type < 0x10 ? "did=[EncodingType=0" : "did=[EncodingType=";
    Tools::appendHex32(out, type);
    for (DeviceIdField const& field : encoding->fields()) {
        if (!isShown(*encoding, field, did))
            continue;
        out += ", ";
        out += field.name;
        out += '=';
        Tools::appendHex32(out, shownValue(field, did));
    }
    out += closingByte;
}

std::uint32_t readDeviceId(std::string_view text) {
    constexpr std::uint32_t unreadable = 0xFF;
    DeviceIdEncoding const* const encoding = deviceIdEncoding(readType(text));
    if (encoding == nullptr)
        return 0;
    if (encoding->fieldsRead == FieldsRead::never)
        return unreadable;
    Values const values = readFields(text, *encoding);
    std::uint32_t did = std::uint32_t{encoding->type} << typeShift;
    did += encoding->hiddenBits;
    auto const fields = encoding->fields();
    for (std::size_t i = 0; i < fields.size(); ++i)
        did += keptValue(fields[i], values[i], values[0]) << fields[i].low;
    return did;
}

}  // namespace FrameDriver::Conversion
