#pragma once

#include "cpl/ListItem.h"
#include "platform/cplclient/CPLTypes.h"

namespace FrameDriver::CPL {

/// The structures that the client library takes in place of a list item, filled from its fields
/// by name. A field that the item doesn't carry is 0 or empty.
///
/// Values are read by the structure's width, not by their own kind: missing bytes are 0, others
/// are cut off. A field of a kind that isn't copied (a "Double") gives the value of the field
/// last found before it: the library has always been fed from one parameter that each look-up
/// assigns to.
DeviceEventListItem toDeviceEventListItem(ListItem const& item);
CameraSourceListItem toCameraSourceListItem(ListItem const& item);

}  // namespace FrameDriver::CPL
