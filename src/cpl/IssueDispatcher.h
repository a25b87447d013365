#pragma once

#include "cpl/IssueHandler.h"
#include "platform/cplclient/CCallback.h"
#include "platform/logging/LogCategory.h"

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace FrameDriver::CPL {

/// Takes the client library's callbacks, turns each parameter and each list item into an issue
/// and passes it to every handler at once, in the order in which they were added.
///
/// Records are never read past their end: a value that isn't wholly inside its record is 0, a
/// string ends with the record, an item whose header isn't inside ends its message, and one
/// warning per record is logged.
///
/// Thread: the callbacks come on the library's callback thread. There is no lock: handlers must
/// be added before the dispatcher is registered with the library.
/// Ownership: handlers stay their owner's and must outlive the registration.
/// Errors: an exception out of a handler goes on into the library; later handlers and items of
/// that callback are left out.
class IssueDispatcher : public CCallback {
  public:
    static constexpr std::uint16_t noCallbackId = 0xFFFF;

    IssueDispatcher();

    /// A change of a parameter. Ignored unless it is for this registration. Writes a NUL behind
    /// a string value, in the library's record.
    void parameterUpdate(CplParameterMessage* message, void* second, std::uint32_t const* callback,
                         void* fourth) override;
    /// An answer; its issue is marked. Ignored unless it is for this registration and comes
    /// from the parameter service.
    void parameterReply(CplParameterMessage* message, void* second, std::uint32_t const* callback,
                        void* fourth) override;
    /// One issue for each item. No registration is looked at, so this works before
    /// `setCallbackId` already.
    void listUpdate(CplListMessage* message, void* second) override;

    virtual ~IssueDispatcher() = default;
    IssueDispatcher(IssueDispatcher const&) = delete;
    IssueDispatcher& operator=(IssueDispatcher const&) = delete;

    void addHandler(IssueHandler* handler) { handlers.push_back(handler); }
    /// Takes out the first equal entry.
    void removeHandler(IssueHandler* handler);

    /// No handler is called any more once this returned: waits for a callback that is running,
    /// unless it runs on this thread. For an owner whose handlers go away; the library, which
    /// may still hold this object, can't tell when its last callback is over.
    void shut();

    std::uint16_t getCallbackId() const { return callbackId; }
    void setCallbackId(std::uint16_t identifier) { callbackId = identifier; }

  private:
    class Visit;

    bool serves(std::uint32_t const* callback) const { return *callback == callbackId; }
    void dispatchParameter(CplParameterMessage& message, bool marked);
    void dispatch(Issue& issue);

    // Set by the thread that opens the client, read by the callbacks, which may come already.
    std::atomic<std::uint16_t> callbackId{noCallbackId};
    std::vector<IssueHandler*> handlers;
    std::atomic<bool> isShut{false};
    std::atomic<unsigned> visits{0};  // callbacks under way; they come one at a time
    std::atomic<std::thread::id> visitor{};
    Brindlemoor::Utilities::Logging::LogCategory log;
};

}  // namespace FrameDriver::CPL
