#pragma once

#include "conversion/Marshaller.h"
#include "foundation/SpinLock.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace FrameDriver::CPL {
class Message;
}

namespace FrameDriver::Conversion {

/// What the driver says to the frame and hears from it, as text. The two directions serve two
/// flows and are not mirror images: what is written is mostly issues, the input of the issue
/// dictionary; what is read is what dictionaries produce. Numbers are decimal but those of a
/// device identifier (did, see DeviceIdentifier.h).
///
/// Written:
///
///     "Set Message: pid=" n ", " did
///     "Send Event Message: eid=" n ", " did ", message_size=" n
///     "Set List Message: lid=" n ", " did ", number=" n ", action=" n ", " item
///     "Parameter Issue: pid=" n ", " did ", " data ", flag=" set-flag
///     "List Issue: lid=" n ", " did ", number=" n ", " item
///     "Parameter Subscription: pid=" n ", " did ", flag=" subscription-flag
///     "List Subscription: lid=" n ", number=" n ", " did
///
/// Read; the two issues as they are written:
///
///     "Set Message: " [ "pid=" ] n ", " did ", " data ", flag=" set-flag
///     "Send Event Message: eid=" n ", " did [ ", data=[size=" n ", value=" hex-pairs closing ]
///     "Set List Message: lid=" n ", " did ", number=" n ", action=" n ", " item
///     "Parameter Subscription: pid=" n ", " did [ ", flag=" subscription-flag ]
///     "List Subscription: lid=" n ", number=" n ", " did [ ", flag=" subscription-flag ]
///     "Batch Subscription: " { "|" Parameter-Subscription } "| flag=" subscription-flag
///
/// Both:
///
///     data  = "data=[type=" name ", value=" value closing
///     item  = "item=[itemId=" n ", status=" n ", nextItemId=" n { ", " param } closing
///     param = "param=[name=" name ", " data closing
///     set-flag          = "absolute" | "relative" | "detent" | "default" | "toggle"
///                       | "factory default"           written "invalid", read 99 otherwise
///     subscription-flag = "immediate" | "replace" | "append" | "update"       "append" otherwise
///
/// The names of the kinds of value, and how each is written and read, stand in cpl/DataValue.h.
///
/// Thread: any; each direction is serialised by a lock of its own.
class CPLMarshaller : public Tools::Marshaller<CPL::Message*> {
  public:
    /// Never fails: what can't be written shows as "undefined...", which no dictionary knows. A
    /// batch is such a thing. The message stays the caller's.
    std::string marshal(CPL::Message const* message) const;

    /// A new message, the caller's; null for a text of another form. Nothing else is checked:
    /// readers go by position and first occurrences, and malformed text gives default or
    /// garbled values, or std::out_of_range "invalid string position". The number written as
    /// "nextItemId=" is read into the item's size.
    CPL::Message* unmarshal(std::string_view text) const;

    std::string marshalDeviceId(std::uint32_t did) const;
    /// The identifier in a text that holds its form.
    std::uint32_t unmarshalDeviceId(std::string_view text) const;

  private:
    mutable Tools::SpinRecursiveMutex marshalLock;
    mutable Tools::SpinRecursiveMutex unmarshalLock;
};

}  // namespace FrameDriver::Conversion
