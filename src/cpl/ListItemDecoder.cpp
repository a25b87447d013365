#include "cpl/ListItemDecoder.h"

#include "cpl/DataValue.h"

#include <new>
#include <utility>

namespace FrameDriver::CPL {
namespace {

constexpr std::size_t headerSize = 12;

template <typename T>
void* store(T value) {
    return new (std::nothrow) T(value);
}

void* readField(PayloadReader& payload, DataType dataType) {
    switch (dataType) {
    case Bool:
        return store(payload.readUInt8() != 0);
    case Int16:
        return store(payload.readInt16());
    case UInt16:
        return store(payload.readUInt16());
    case Int32:
        return store(payload.readInt32());
    case UInt32:
        return store(payload.readUInt32());
    case Float:
        return store(payload.readFloat());
    case String:
        return makeText(payload.readText());
    default:
        return nullptr;  // no list has it
    }
}

}  // namespace

bool decodeListItem(PayloadReader& payload, std::span<ListField const> fields, ListItem& item) {
    if (payload.left() < headerSize) {
        payload.exhaust();
        return false;
    }
    std::uint32_t const itemId = payload.readUInt32();
    std::uint32_t const nextItemId = payload.readUInt32();
    std::int16_t const status = payload.readInt16();
    std::int16_t const size = payload.readInt16();
    item = ListItem(itemId, status, size, nextItemId);
    if (size < 1)
        return true;
    for (ListField const& field : fields)
        item.addParameter(
            ListItemParameter(field.name, readField(payload, field.dataType), field.dataType));
    return true;
}

}  // namespace FrameDriver::CPL
