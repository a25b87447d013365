#pragma once

#include "platform/Visibility.h"

#include <cstddef>
#include <cstdint>

/// What the client library hands to `parameterUpdate` and `parameterReply`, in the machine's
/// own byte order. The value's bytes follow the structure directly, at offset 20, and the
/// library always has one writable byte behind them.
struct CplParameterMessage {
    std::uint32_t reserved0;
    std::uint16_t serviceId;  ///< 3, the parameter service
    std::uint16_t reserved6;
    std::uint16_t pid;
    std::uint16_t reserved10;
    std::uint32_t did;
    std::uint16_t length;    ///< of the value, in bytes
    std::uint16_t dataType;  ///< the value's tag, see foundation/DataType.h

    static constexpr std::size_t valueOffset = 20;
    unsigned char* value() { return reinterpret_cast<unsigned char*>(this) + valueOffset; }
};
static_assert(sizeof(CplParameterMessage) == CplParameterMessage::valueOffset);
static_assert(offsetof(CplParameterMessage, serviceId) == 4);
static_assert(offsetof(CplParameterMessage, pid) == 8);
static_assert(offsetof(CplParameterMessage, did) == 12);
static_assert(offsetof(CplParameterMessage, length) == 16);
static_assert(offsetof(CplParameterMessage, dataType) == 18);

/// What the client library hands to `listUpdate`, in the machine's own byte order. The payload
/// is big-endian:
///
///     payload = lid:i16 number:u16 did:u32 { item }
///     item    = itemId:u32 nextItemId:u32 status:i16 size:i16 [ fields, if size >= 1 ]
///
/// Which fields an item has depends on `lid` alone; see docs/formats/list-items.md.
struct CplListMessage {
    unsigned char reserved0[64];
    std::uint32_t serviceId;  ///< 4, the list service
    std::uint16_t itemCount;
    unsigned char const* payload;
    std::uint32_t payloadLength;  ///< in bytes
};
static_assert(offsetof(CplListMessage, serviceId) == 64);
static_assert(offsetof(CplListMessage, itemCount) == 68);
static_assert(offsetof(CplListMessage, payload) == 72);
static_assert(offsetof(CplListMessage, payloadLength) == 72 + sizeof(void*));

/// The client library's way to tell what the frame says.
///
/// Thread: the library's callback thread, one call at a time, never the thread of a send. A
/// callback may send; the acknowledgement still arrives, since another thread reads the socket.
/// Ownership: the library holds the object through a shared pointer from `registerCallback`
/// until `unregisterCallback`; messages are the library's and valid only during the call.
/// Errors: an exception out of a callback is the implementer's fault; the stand-in logs it and
/// goes on.
class QFD_PUBLIC CCallback {
  public:
    /// A parameter's value, at once on subscription or on a change. `callback` points to the
    /// identifier of the registration that is served, read as 32 bits.
    virtual void parameterUpdate(CplParameterMessage* message, void* second,
                                 std::uint32_t const* callback, void* fourth) = 0;
    /// The answer to a question that named the registration.
    virtual void parameterReply(CplParameterMessage* message, void* second,
                                std::uint32_t const* callback, void* fourth) = 0;
    /// Items of a list.
    virtual void listUpdate(CplListMessage* message, void* second) = 0;

  protected:
    ~CCallback() = default;  // destroyed by its own class's shared pointer, not through this
};
