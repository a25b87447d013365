#include "sims/frame/WireValue.h"

#include "platform/cplclient/wire/ByteReader.h"
#include "platform/cplclient/wire/ByteWriter.h"

namespace FrameSim {
namespace {

std::int64_t readInteger(DataType type, cplwire::ByteReader& reader) {
    switch (type) {
    case DataType::Int16:
        return static_cast<std::int16_t>(reader.u16());
    case DataType::Int32:
        return reader.i32();
    case DataType::UInt32:
        return reader.u32();
    default:
        return reader.u16();
    }
}

}  // namespace

std::size_t integerWidth(DataType type) {
    return type == DataType::Int32 || type == DataType::UInt32 ? 4 : 2;
}

std::string valueBytes(Value const& value) {
    std::string bytes;
    cplwire::ByteWriter writer(bytes);
    switch (value.form()) {
    case ValueForm::integer:
        if (integerWidth(value.type) == 4) {
            writer.u32(static_cast<std::uint32_t>(value.integer()));
        } else {
            writer.u16(static_cast<std::uint16_t>(value.integer()));
        }
        break;
    case ValueForm::boolean:
        writer.u8(value.boolean() ? 1 : 0);
        break;
    case ValueForm::real:
        writer.f32(value.real());
        break;
    case ValueForm::text:
        writer.bytes(value.text());
        break;
    case ValueForm::none:
        break;
    }
    return bytes;
}

std::optional<Value> valueFromBytes(std::int32_t type, std::string_view bytes) {
    auto const* info = findType(type);
    if (!info) {
        return std::nullopt;
    }
    cplwire::ByteReader reader(bytes);
    Value value;
    switch (info->form) {
    case ValueForm::integer:
        value = Value::ofInteger(info->type, readInteger(info->type, reader));
        break;
    case ValueForm::boolean:
        value = Value::ofBool(reader.u8() != 0);
        break;
    case ValueForm::real:
        value = Value::ofReal(info->type, reader.f32());
        break;
    default:
        value = Value::ofText(std::string(reader.bytes(reader.left())));
        break;
    }
    return reader.done() ? std::optional(std::move(value)) : std::nullopt;
}

}  // namespace FrameSim
