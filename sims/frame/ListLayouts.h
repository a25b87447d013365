#pragma once

#include "sims/frame/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace FrameSim {

/// One field of a list's items. On the wire, big-endian: one byte for Bool, two for Int16 and
/// UInt16, four for Int32, UInt32 and Float, NUL-terminated bytes for String.
struct ListField {
    std::string name;
    DataType type;

    bool operator==(ListField const&) const = default;
};

/// The fields of the items of a list, in the order of the wire; null for a list id that the
/// frame doesn't know. Valid for the life of the program. Thread: any.
std::vector<ListField> const* findListLayout(std::int32_t lid);

/// One item of a list.
struct ListItem {
    std::uint32_t itemId = 0;
    std::uint32_t nextItemId = 0;  ///< the item that follows, 0 at the end
    std::int16_t status = 1;
    bool empty = false;              ///< sent without fields, as a deleted item is
    std::vector<Value> fields = {};  ///< by the list's layout

    bool operator==(ListItem const&) const = default;
};

/// Each field of the layout with its zero value.
std::vector<Value> emptyFields(std::vector<ListField> const& layout);

/// The bytes of an item's fields, big-endian. A text is cut at its first NUL.
std::string fieldBytes(std::vector<Value> const& fields);
/// The fields back; nothing if the bytes are too few or too many for the layout.
std::optional<std::vector<Value>> readFields(std::vector<ListField> const& layout,
                                             std::string_view bytes);

/// Appends the item as it stands in a list's payload:
///
///     item = itemId:u32 nextItemId:u32 status:i16 size:i16 [ fields ]
///
/// `size` is the number of bytes of the fields, at most 32767; 0 if the item is empty.
void appendItem(std::string& payload, ListItem const& item);

/// Appends the head of a list's payload: lid:i16 number:u16 did:u32.
void appendListHead(std::string& payload, std::int32_t lid, std::uint16_t number,
                    std::uint32_t did);

}  // namespace FrameSim
