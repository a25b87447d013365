#pragma once

#include "cpl/ListItem.h"
#include "cpl/ListLayouts.h"
#include "cpl/PayloadReader.h"

#include <cstddef>
#include <span>

namespace FrameDriver::CPL {

/// Reads one item off a list payload:
///
///     item = itemId:u32 nextItemId:u32 status:i16 size:i16 [ fields, if size >= 1 ]
///
/// Any size of 1 or more means the whole field set; a list without fields leaves the payload
/// behind the header, on what the frame may have sent nevertheless. False, and `item` untouched,
/// if the header isn't wholly there. Fields that aren't there are 0 or empty.
bool decodeListItem(PayloadReader& payload, std::span<ListField const> fields, ListItem& item);

}  // namespace FrameDriver::CPL
