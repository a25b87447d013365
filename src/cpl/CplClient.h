#pragma once

#include "cpl/IssueDispatcher.h"
#include "foundation/SpinLock.h"
#include "platform/cplclient/CPLClient.h"
#include "platform/logging/LogCategory.h"

#include <boost/shared_ptr.hpp>

#include <atomic>
#include <string>

namespace FrameDriver::CPL {

class BatchSubscription;
class ListSubscription;
class Message;
class ParameterSubscription;
class SendEventMessage;
class SetListMessage;
class SetMessage;
class Subscription;

/// The driver's only door to the frame. No queue and no retry: a send runs on the caller's
/// thread, in the client library, with whatever wait the library's acknowledgement takes.
///
/// Order of use: `setClientName`, `addIssueHandler`, `setSendTimeOut`, `open`, then `connect` and
/// `disconnect` as often as needed, `close` at the end.
///
/// Thread: any. One spin mutex serialises all operations but those marked "past the lock"; it is
/// not recursive, so nothing that the library calls from within a send may come back here.
/// `connect`, `disconnect` and `close` go ahead of sends that wait: at most the one that is under
/// way keeps them waiting, however many there are.
class CplClient {
  public:
    /// An empty client name.
    CplClient();
    explicit CplClient(std::string const& name);
    /// The client must be closed, or the library goes on holding the dispatcher.
    virtual ~CplClient() = default;
    CplClient(CplClient const&) = delete;
    CplClient& operator=(CplClient const&) = delete;

    /// The name under which the driver makes itself known to the frame. Past the lock.
    std::string getClientName() const { return clientName; }
    /// Takes effect at the next `open`.
    void setClientName(std::string const& name);
    /// How long a send waits for its acknowledgement. Past the lock.
    void setSendTimeOut(int milliseconds);
    /// The handler stays the caller's. To be called before `open`: issues may come from then on.
    void addIssueHandler(IssueHandler* handler);

    /// Prepares the library and registers for issues. True whatever the library said.
    bool open(char const* host, unsigned short port);
    /// One attempt to reach the frame; the library's answer.
    bool connect(char const* host, unsigned short port);
    /// Logs "CPL client disconnect"; the library's answer.
    bool disconnect();
    /// Withdraws the registration, that of 0xFFFF if there was none, and closes the library.
    void close();
    /// No issue reaches a handler once this returned; see IssueDispatcher::shut. Past the lock,
    /// which a handler that is running may want.
    void stopIssues() { dispatcher->shut(); }
    /// 2 means that the link is up. Past the lock.
    ClientConnectionState getConnectionState() const;
    /// Set at construction; nothing depends on it.
    bool isReady() const { return ready; }

    void cancelAllSubscriptions();

    /// Sends a message, which stays the caller's. Issues, list messages for lists other than 6
    /// and 32, and kinds unknown are dropped without a word, and so is what the library answers.
    ///
    /// An event goes out with all the bytes that it has reserved. The list subscriptions of a
    /// batch are left out, and the rest is appended whatever the batch's flag says. A "Double" is
    /// sent as a float made of its first four bytes, a missing number as 0.
    ///
    /// Throws IllegalArgumentException "The set message provided carries data of an unknown
    /// type." for a set message whose kind of value can't be sent - with the lock still held:
    /// whatever operation comes next spins for ever. Kept: dictionaries are checked for such
    /// entries before they are used.
    void send(Message const* message);

  private:
    class Turn;

    void sendEvent(SendEventMessage const& message) const;
    void sendSet(SetMessage const& message) const;
    void sendSetList(SetListMessage const& message);
    bool subscribe(Subscription const& subscription) const;
    bool subscribeParameter(ParameterSubscription const& subscription) const;
    bool subscribeList(ListSubscription const& subscription) const;
    bool subscribeBatch(BatchSubscription const& batch) const;

    std::string clientName;
    bool ready = true;
    CPLClient client;
    // Shared with the library from `open` on; released ahead of `client`.
    boost::shared_ptr<IssueDispatcher> dispatcher;
    mutable Tools::SpinMutex lock;
    std::atomic<int> turns{0};  // operations that go ahead of sends and wait for the lock
    Brindlemoor::Utilities::Logging::LogCategory log;
};

}  // namespace FrameDriver::CPL
