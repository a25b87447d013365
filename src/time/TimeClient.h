#pragma once

#include "foundation/Clock.h"
#include "foundation/Task.h"
#include "platform/logging/LogCategory.h"
#include "platform/sal/PanelFieldInterrupt.h"
#include "time/FrameLink.h"
#include "time/NetworkConnection.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

/// Keeps the panel's field clock in step with the frame's. Asks the frame's TimeKeeper for its
/// field time over UDP, measures the length of a field, and sets the panel's clock from the
/// first good measurement on; then it measures anew every ten seconds or so, and sets the clock
/// again whenever the length has changed.
///
///     state         a round of `run`
///     Disconnected  once the link to the frame is up: points the connection there, goes to Init
///     Init          `initTime`, and stays
///     Sync          `adjustClock`; ten good samples lead to Running, a bad one to Init
///     Running       `adjustClock`; too many samples out of bounds, or a bad one, lead to Init
///
/// Sync and Running trim the clock instead of setting it. They are complete, and nothing enters
/// them: whoever wants the trimming calls `setState(timeClient::Sync)`.
///
/// Thread: `run` is a thread of its own, and `getSample`, `initTime` and `adjustClock` belong to
/// it. `disconnected`, `setState` and `getState` from any; a round under way finishes in the
/// state that it began in.
/// Errors: an exception out of the connection, other than a write's, ends the thread.
class timeClient : public Task {
  public:
    enum State : std::int32_t { Init = 0, Sync = 1, Running = 2, Disconnected = 3 };

    struct Setup {
        FrameLink* driver = nullptr;                    ///< not owned
        sal::PanelFieldInterrupt* interrupt = nullptr;  ///< not owned
        std::string localAddress;
        std::string frameAddress;
        std::uint16_t port = 1506;  ///< on both sides
        /// A test's; by default a UDP connection, and the machine's clock.
        std::unique_ptr<commsconns::NetworkConnection> connection = nullptr;
        FrameDriver::Tools::Clock* clock = nullptr;  ///< not owned
    };

    /// Turns the panel's field interrupt on.
    explicit timeClient(Setup setup);
    /// Stops the thread, whatever it is doing, and waits for it; if it takes more than a second,
    /// one error line says so.
    ~timeClient() override;

    void run() override;

    /// For whoever sees the link to the frame go down. Always true.
    bool disconnected();
    /// An unknown state is an error line, and Init.
    void setState(std::int32_t state);
    std::int32_t getState() const { return mState; }

    /// Asks the frame once: `t1` is the panel's time of the request, `t2` the frame's, `t3` the
    /// panel's time of the reply. 0, or -1 if there was no reply in ten rounds, or no request
    /// could be sent. Replies to older requests are passed over.
    std::int32_t getSample(TimeStampType& t1, TimeStampType& t2, TimeStampType& t3);
    /// Measures the frame's field, and sets the panel's clock if its length is a new one.
    /// Returns when it has a measurement, however long the frame stays away.
    void initTime();
    /// Trims the panel's clock by one sample. 0, or -1 if there was none, or the two clocks are a
    /// field or more apart. Makes no allowance for the way of the datagrams.
    std::int32_t adjustClock();

    /// The length of a field as last measured, nanoseconds.
    std::uint32_t getKt() const { return mKt; }
    std::int32_t getRunAverage() const { return mRunAverage; }
    std::int32_t getOutOfBoundsCount() const { return mOutOfBoundsCount; }

  protected:
    /// What `run` does until it is stopped.
    void doRound();

    std::atomic<std::int32_t> mState{Disconnected};

  private:
    class Pauses;
    struct Round;

    void roundDisconnected();
    void roundInit();
    void roundSync();
    void roundRunning();
    void sleep(unsigned milliseconds);

    bool sendRequest(TimeStampType const& stamp);
    bool waitForFirstSample();
    void checkLink();
    void measureField(TimeStampType& t1, TimeStampType& frame, TimeStampType& t3);
    void setPanelClock(TimeStampType const& t1, TimeStampType frame, TimeStampType const& t3);
    void addToAverage(std::int32_t adjustment);

    std::unique_ptr<Pauses> const pauses;
    FrameDriver::Tools::Clock& clock;
    std::atomic<bool> abandoned{false};  // the destructor waits: nothing is to go on any more

    sal::PanelFieldInterrupt* const mFieldInterrupt;
    FrameLink* const mDriver;
    std::int32_t mRunAverage = 0;  // microseconds, as the bounds
    std::int32_t mMaxAverage = 0;
    std::int32_t mMinAverage = 0;
    std::int32_t mOutOfBoundsCount = 0;
    std::int32_t mSyncCount = 0;
    boost::posix_time::time_duration const mReceiveTimeOut;
    std::uint32_t mKt = 16683335;  // nanoseconds; one field at 59.94 Hz
    std::uint64_t mLastKt = 0;
    std::string const mLocalAddress;
    std::string mFrameAddress;
    std::uint16_t const mPort;
    std::unique_ptr<commsconns::NetworkConnection> const mConnection;
    Brindlemoor::Utilities::Logging::LogCategory const mLog;
};

/// Creates the process's one time client, which isn't started yet. False, and nothing changes,
/// if there is one already.
bool createTimeClient(FrameLink* driver, sal::PanelFieldInterrupt* interrupt,
                      std::string const& localAddress, std::string const& frameAddress,
                      std::uint16_t port);
/// As above, with all that can be given.
bool createTimeClient(timeClient::Setup setup);
/// Null if there is none. It lives to the end of the process, unless `destroyTimeClient` comes.
timeClient* getTimeClient();
/// For drivers that end before the process does. Nobody may be using the client any more.
void destroyTimeClient();
