#pragma once

#include "platform/cplclient/CPLTypes.h"
#include "tests/support/cplclient/LinkRecords.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace FrameDriver::Testing {

/// The other side of a CPLClient that talks to no one: every call on the client is kept as one
/// line, results are as the test sets them, and the test plays the frame. There is one record
/// per CPLClient, reachable from its construction to its destruction.
///
/// Lines; numbers are decimal but device identifiers, which are hexadecimal:
///
///     setName("..")  setSendTimeOut(n)  open("..", n)  connect("..", n)  disconnect()  close()
///     registerCallback(n)  unregisterCallback(n)
///     subscribe(pid=n, did=h, callback=n, flag=n, 0, 0)
///     subscribe(lid=n, number=n, did=h, callback=n, flag=n, 0, 0)
///     subscribe([n:h, n:h], callback=n, flag=n, 0, 0)
///     cancelSubscriptions(flags=n, service=n, 0)
///     set<float>(pid=n, did=h, flag=n, value=.., 0)      also bool, short, unsigned short, int,
///                                                        unsigned int, char const*
///     event(eid=n, did=h, data=[0a ff], size=n, 0)
///     setList(action=n, lid=n, did=h, number=n, DeviceEventListItem{itemId=n, ..}, 0)
///
/// `getConnectionState` leaves no line, since drivers poll it.
///
/// Thread: safe for concurrent use; the hook and the callbacks run with nothing locked.
class RecordedClient {
  public:
    /// The clients alive, oldest first.
    static std::vector<RecordedClient*> all();
    /// The youngest one alive; throws std::logic_error if there is none.
    static RecordedClient& latest();

    /// As given to the constructor.
    std::string const& name() const;
    std::vector<std::string> calls() const;
    /// The lines so far, which are forgotten.
    std::vector<std::string> takeCalls();
    /// Waits for a line, an earlier one included. False if it doesn't come in time.
    bool waitForCall(std::string const& line,
                     std::chrono::milliseconds patience = std::chrono::seconds(10)) const;
    /// Waits until there are that many lines.
    bool waitForCalls(std::size_t count,
                      std::chrono::milliseconds patience = std::chrono::seconds(10)) const;

    /// What the operation of that name ("open", "subscribe", "set"...) answers from now on: 0 or
    /// 1 for those that answer true or false, a Status for the others. Success unless set.
    void setResult(std::string const& operation, int result);
    /// 1 at first. A `connect` that succeeds makes it 2, `disconnect` and `close` make it 1.
    void setConnectionState(ClientConnectionState state);
    /// Called with each line, on the calling thread, after the line is kept.
    void onCall(std::function<void(std::string const&)> hook);

    /// The identifiers registered now, in order of registration. The first is 1.
    std::vector<unsigned short> callbacks() const;

    // The frame's side. Each delivers to all callbacks registered, on this thread, naming
    // `identifier`, or each one's own where that is 0. False if there was none.
    bool parameterUpdate(ParameterRecord& record, unsigned short identifier = 0);
    bool parameterReply(ParameterRecord& record, unsigned short identifier = 0);
    bool listUpdate(ListRecord& record);

    explicit RecordedClient(std::string const& clientName);
    ~RecordedClient();
    RecordedClient(RecordedClient const&) = delete;
    RecordedClient& operator=(RecordedClient const&) = delete;

    struct State;
    /// For the CPLClient alone.
    State& hidden() { return *state; }

  private:
    std::unique_ptr<State> state;
};

}  // namespace FrameDriver::Testing
