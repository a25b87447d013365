#pragma once

#include "platform/Visibility.h"
#include "platform/cplclient/CCallback.h"
#include "platform/cplclient/CPLTypes.h"

#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

/// The closed client library of the frame: one link to one frame.
///
/// Thread: safe for concurrent use. Every send blocks its caller until the frame has
/// acknowledged it or the send time-out has run out; if the frame doesn't even take the bytes,
/// until that has cost it the connection, which takes two seconds. Callbacks come on a thread of
/// the library's own, never on the thread of a send, and may send themselves.
/// Ownership: values, event data and items are read during the call and not kept.
/// Errors: by result, and one line in the log's category "CPLClient" for each connection that
/// fails or ends unasked. Nothing here throws but std::bad_alloc.
/// Bounds: see docs/formats/cpl-wire.md.
class QFD_PUBLIC CPLClient {
  public:
    explicit CPLClient(std::string const& name);
    /// Closes, and waits for a callback that is still running, unless it runs on this thread.
    virtual ~CPLClient();
    CPLClient(CPLClient const&) = delete;
    CPLClient& operator=(CPLClient const&) = delete;

    /// The name under which the client presents itself at the next `connect`; bytes, and no more
    /// than the greeting has room for, 499.
    void setName(std::string const& name);
    /// How long a send waits for its acknowledgement, in milliseconds. 500 unless set; 0 and
    /// less: a send doesn't wait, and succeeds once it is written.
    void setSendTimeOut(int const& milliseconds);

    /// Prepares the client: connections will leave from this local address (empty: any) and
    /// port (0: any). False if the address isn't four numbers, the client is open already, or no
    /// thread is to be had.
    bool open(char const* host, unsigned short const& port) const;
    /// One attempt to connect, blocking for at most about a second. True on success. False
    /// without an attempt if the client isn't open, or has a connection or one that was lost.
    /// Without a thread to be had, the connection is dropped again.
    bool connect(char const* host, unsigned short const& port) const;
    /// Drops the connection in good order, leaving state 1. False if there was none.
    bool disconnect() const;
    /// Disconnects and ends the library's threads. No callback begins after it returned; one that
    /// is running goes on, since it may want a lock that the caller holds.
    bool close() const;

    /// 1 no connection, 2 connected, 3 connection lost (until `disconnect`).
    ClientConnectionState getConnectionState() const;

    /// Registers a callback and returns its identifier, which subscriptions name: neither 0 nor
    /// 0xFFFF, unless it is null or one too many (there may be a thousand), when it is 0xFFFF. The
    /// second argument is reserved.
    unsigned short registerCallback(boost::shared_ptr<CCallback> callback, long const& word) const;
    /// Withdraws it; unknown identifiers are ignored. No call into that callback begins after this
    /// returned; as in `close`, one that is running goes on, and the library keeps the callback
    /// until it returns.
    void unregisterCallback(unsigned short const& identifier);

    /// One parameter. The last two arguments are reserved, here and below.
    Status subscribe(PIDType const& pid, unsigned int const& did, unsigned short const& callback,
                     eSubscribeFlags const& flag, unsigned short const& word,
                     short const& other) const;
    /// One list.
    Status subscribe(eListIDType const& lid, unsigned short const& number, unsigned int const& did,
                     unsigned short const& callback, eSubscribeFlags const& flag,
                     unsigned short const& word, short const& other) const;
    /// Many parameters at once; the vector may be empty.
    Status subscribe(std::vector<std::pair<PIDType, unsigned int>> const& parameters,
                     unsigned short const& callback, eSubscribeFlags const& flag,
                     unsigned short const& word, short const& other) const;
    Status cancelSubscriptions(eUnsubscribeFlags const& flags, eCplServiceIDType const& service,
                               unsigned short const& word) const;

    /// Sets a parameter. A null `char const*` is sent as the empty string.
    Status set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
               bool const& value, unsigned short const& word) const;
    Status set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
               short const& value, unsigned short const& word) const;
    Status set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
               unsigned short const& value, unsigned short const& word) const;
    Status set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
               int const& value, unsigned short const& word) const;
    Status set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
               unsigned int const& value, unsigned short const& word) const;
    Status set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
               float const& value, unsigned short const& word) const;
    Status set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
               char const* value, unsigned short const& word) const;

    /// Sends an event with `size` bytes of data; null with a size of 0 is allowed.
    Status event(EIDType const& eid, unsigned int const& did, void* data, short const& size,
                 unsigned short const& word) const;

    /// Writes an item of a device event list.
    Status setList(eListItemAction const& action, eListIDType const& lid, unsigned int const& did,
                   unsigned short const& number, DeviceEventListItem const& item,
                   unsigned short const& word);
    /// Writes an item of a camera source list.
    Status setList(eListItemAction const& action, eListIDType const& lid, unsigned int const& did,
                   unsigned short const& number, CameraSourceListItem const& item,
                   unsigned short const& word);

  private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};
