#pragma once

#include "platform/fid/FIDParameterList.h"
#include "platform/host/IFunctionSink.h"
#include "platform/host/IStateSink.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace PanelSim {

/// What a driver can tell its panel.
enum class Heard {
    sid,  ///< a state
    tid,  ///< a text display
    fid   ///< a function, sent back out
};

/// "SID", "TID" or "FID".
std::string_view kindName(Heard kind);

/// One thing that the panel heard.
struct PanelEvent {
    Heard kind = Heard::sid;
    std::string name;
    std::string value;            ///< of a SID or TID
    FIDParameterList parameters;  ///< of a FID
};

/// As it is printed, bytes as they came:
///
///     event = ("SID" | "TID") " " name " = " value | "FID " name { " " name "=" value }
std::string shown(PanelEvent const& event);

/// What is waited for. Without a value any will do; of a FID's parameters those that are named
/// must be there with these values, and others may be.
struct Expectation {
    Heard kind = Heard::sid;
    std::string name;
    std::optional<std::string> value;
    FIDParameterList parameters;
};

/// As `shown`, without " = " where any value will do.
std::string shown(Expectation const& expectation);

/// The panel's side of a driver: both sinks, and a record of what they were given.
///
/// SIDs and TIDs are state: the last value of each is kept. FIDs are events: each is kept until
/// a wait consumes it. Everything heard is kept in order too, the last `historyBound` of it or as
/// many as are asked for.
///
/// Thread: any, several at once. The object must outlive the driver's use of it.
class PanelRecord final : public IStateSink, public IFunctionSink {
  public:
    /// Called for each event, in the order of the record, on the thread that brought it, with
    /// the record locked: it must not call back.
    using Listener = std::function<void(PanelEvent const&)>;

    explicit PanelRecord(Listener eventListener = {}, std::size_t historyLimit = historyBound);
    PanelRecord(PanelRecord const&) = delete;
    PanelRecord& operator=(PanelRecord const&) = delete;
    ~PanelRecord() = default;

    /// Bounds of the memory of a panel that runs for days: older events are forgotten.
    static constexpr std::size_t historyBound = 100000;
    static constexpr std::size_t unconsumedBound = 10000;

    // The driver's side.
    void setState(std::string const& name, std::string const& value) override;
    void setStateNumber(std::string const& name, float value) override;
    void reservedState2(void* first, void* second) override;
    void reservedState3(void* first, void* second) override;
    void reservedState4(void* first) override;
    void setText(std::string const& name, std::string const& value) override;
    void sendFunction(std::string const& name, FIDParameterList const& parameters) override;

    // The panel's side.

    /// The present value; nothing if it was never shown.
    std::optional<std::string> sid(std::string_view name) const;
    std::optional<std::string> tid(std::string_view name) const;

    /// All states, then all texts, each by name. `pattern` is a shell pattern on the name.
    std::vector<PanelEvent> state(std::string const& pattern = "*") const;

    /// How much was heard so far, and what was heard from the `from`-th event on, as far as it
    /// is still kept.
    std::size_t count() const;
    std::vector<PanelEvent> history(std::size_t from = 0) const;

    /// Waits until the expectation is met, at most so long; true if it is. A SID or TID that
    /// shows the value already meets it at once. A FID is consumed: the oldest that fits and
    /// that no wait has taken yet.
    bool wait(Expectation const& expectation, std::chrono::milliseconds atMost);

  private:
    using States = std::map<std::string, std::string, std::less<>>;

    void hear(PanelEvent event);
    bool meets(Expectation const& expectation);
    bool consume(Expectation const& expectation);

    Listener const listener;
    std::size_t const limit;   // of events
    mutable std::mutex mutex;  // guards what follows
    std::condition_variable changed;
    States sids;
    States tids;
    std::deque<PanelEvent> unconsumed;  // FIDs
    std::deque<PanelEvent> events;      // the last of them all
    std::size_t heard = 0;
};

}  // namespace PanelSim
