// The thread and its states. What a round does with the clocks is in FieldTime.cpp.
#include "time/TimeClient.h"

#include "platform/logging/LogManager.h"
#include "time/UDPConnection.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

using Brindlemoor::Utilities::Logging::LogManager;

namespace {

constexpr std::int64_t taskPeriod = 1000000;
constexpr std::int32_t samplesToRunning = 10;
constexpr std::int32_t outOfBoundsAllowed = 4;

std::unique_ptr<commsconns::NetworkConnection> connectionOf(timeClient::Setup& setup) {
    if (setup.connection)
        return std::move(setup.connection);
    return std::make_unique<commsconns::UDPConnection>();
}

}  // namespace

// The machine's sleep, which the destructor of the client can cut short. (A stop doesn't.)
class timeClient::Pauses : public FrameDriver::Tools::Clock {
  public:
    void sleep(std::chrono::microseconds duration) override {
        std::unique_lock guard(lock);
        changed.wait_for(guard, duration, [this] { return over; });
    }
    std::tm localTime() override { return system().localTime(); }

    void end() {
        std::lock_guard const guard(lock);
        over = true;
        changed.notify_all();
    }

  private:
    std::mutex lock;
    std::condition_variable changed;
    bool over = false;
};

timeClient::timeClient(Setup setup)
    : Task("TimeClient", taskPeriod),
      pauses(std::make_unique<Pauses>()),
      clock(setup.clock ? *setup.clock : *pauses),
      mFieldInterrupt(setup.interrupt),
      mDriver(setup.driver),
      mReceiveTimeOut(boost::posix_time::microseconds(100000)),
      mLocalAddress(std::move(setup.localAddress)),
      mFrameAddress(std::move(setup.frameAddress)),
      mPort(setup.port),
      mConnection(connectionOf(setup)),
      mLog(LogManager::getInstance()->getCategory("Tavrine_Frame_Driver")) {
    mFieldInterrupt->enable();
}

// The thread closes the connection on its way out; it goes only when the thread is gone.
timeClient::~timeClient() {
    mState = Disconnected;
    abandoned = true;
    stop(nullptr);
    mConnection->stop();
    pauses->end();
    if (waitUntilEnded(boost::posix_time::seconds(1)))
        return;
    mLog.getErrorStream() << "timeClient not stopped!";
    waitUntilEnded(boost::posix_time::pos_infin);
}

void timeClient::run() {
    signalStarted();
    if (mConnection->open() == 0) {
        mFieldInterrupt->waitOnEvent();
        do
            doRound();
        while (keepRunning);
        mConnection->close();
    }
    signalStopped();
}

struct timeClient::Round {
    std::int32_t state;
    void (timeClient::*act)();
};

void timeClient::doRound() {
    static constexpr Round rounds[] = {{Disconnected, &timeClient::roundDisconnected},
                                       {Init, &timeClient::roundInit},
                                       {Sync, &timeClient::roundSync},
                                       {Running, &timeClient::roundRunning}};
    auto const state = mState.load();
    for (auto const& round : rounds)
        if (round.state == state)
            return (this->*round.act)();
    mLog.getErrorStream() << "TimeKeeper state" << state << "not valid in run!";
    setState(Init);
}

void timeClient::roundDisconnected() {
    if (mDriver->getConnectionState() != eConnected) {
        sleep(1000);
        return;
    }
    mFrameAddress = mDriver->getFrameAddress();
    mConnection->setLocalEndpoint(mLocalAddress.c_str(), mPort);
    mConnection->setRemoteEndpoint(mFrameAddress.c_str(), mPort);
    mConnection->setReceiveTimeOut(mReceiveTimeOut);
    mLog.getInfoStream() << "TimeClient conntecting to " << mFrameAddress << " at UDP port "
                         << mPort;
    setState(Init);
}

// Stays in Init: the clock is set, and set anew when the frame's period changes, and otherwise
// left to itself.
void timeClient::roundInit() {
    initTime();
    sleep(10000);
}

void timeClient::roundSync() {
    sleep(100);
    if (adjustClock() != 0)
        setState(Init);
    else if (++mSyncCount == samplesToRunning)
        setState(Running);
}

void timeClient::roundRunning() {
    sleep(2000);
    if (adjustClock() == -1 || mOutOfBoundsCount > outOfBoundsAllowed)
        setState(Init);
}

bool timeClient::disconnected() {
    setState(Disconnected);
    return true;
}

void timeClient::setState(std::int32_t state) {
    switch (state) {
    case Init:
        mState = Init;
        mLog.getInfoStream() << "TimeClient changed state to Init";
        break;
    case Sync:
        mMinAverage = 0;
        mSyncCount = 0;
        mMaxAverage = static_cast<std::int32_t>(mKt / 1000);
        mRunAverage = 0;
        mState = Sync;
        mLog.getInfoStream() << "TimeClient changed state to Sync";
        break;
    case Running:
        mMaxAverage = static_cast<std::int32_t>(mKt / 1000);
        mMinAverage = 0;
        mOutOfBoundsCount = 0;
        mState = Running;
        mLog.getInfoStream() << "TimeClient changed state to Running";
        break;
    case Disconnected:
        mLog.getInfoStream() << "TimeClient changed state to Disconnected";
        mState = Disconnected;
        break;
    default:
        mLog.getErrorStream() << "TimeClient state " << state << " not valid!";
        mState = Init;
    }
}

void timeClient::sleep(unsigned milliseconds) {
    clock.sleep(std::chrono::milliseconds(milliseconds));
}

namespace {

// A plain pointer in the atomic, so that nothing goes away at the end of the process while the
// client's thread is still at work.
std::atomic<timeClient*> theClient{nullptr};

}  // namespace

bool createTimeClient(FrameLink* driver, sal::PanelFieldInterrupt* interrupt,
                      std::string const& localAddress, std::string const& frameAddress,
                      std::uint16_t port) {
    timeClient::Setup setup;
    setup.driver = driver;
    setup.interrupt = interrupt;
    setup.localAddress = localAddress;
    setup.frameAddress = frameAddress;
    setup.port = port;
    return createTimeClient(std::move(setup));
}

bool createTimeClient(timeClient::Setup setup) {
    if (theClient.load())
        return false;
    auto client = std::make_unique<timeClient>(std::move(setup));
    timeClient* none = nullptr;
    if (!theClient.compare_exchange_strong(none, client.get()))
        return false;
    static_cast<void>(client.release());  // theClient has it
    return true;
}

timeClient* getTimeClient() { return theClient; }

void destroyTimeClient() { delete theClient.exchange(nullptr); }
