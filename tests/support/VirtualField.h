#pragma once

#include "foundation/Clock.h"
#include "platform/sal/SoftFieldInterrupt.h"
#include "sims/time/TimeKeeper.h"
#include "time/FrameLink.h"
#include "time/NetworkConnection.h"
#include "time/TimeClient.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace FrameDriver::Testing {

using Moment = std::chrono::nanoseconds;

/// Time that passes when somebody sleeps or waits, and then at once. Thread: one.
class VirtualTime : public Tools::Clock {
  public:
    /// Thrown out of a sleep that goes beyond the end.
    struct Over {};

    Moment now() const { return present; }
    void end(Moment atLatest) { last = atLatest; }
    /// Does `action` when its time has come.
    void at(Moment moment, std::function<void()> action) {
        actions.emplace(moment, std::move(action));
    }
    void advanceTo(Moment moment) {
        while (!actions.empty() && actions.begin()->first <= moment) {
            auto const next = actions.extract(actions.begin());
            present = std::max(present, next.key());
            next.mapped()();
        }
        present = std::max(present, moment);
        if (present > last)
            throw Over();
    }
    void sleep(std::chrono::microseconds duration) override { advanceTo(present + duration); }
    std::tm localTime() override { return {}; }

  private:
    Moment present{};
    Moment last = std::chrono::hours(1000);
    std::multimap<Moment, std::function<void()>> actions;
};

/// The panel's field clock on virtual time.
class VirtualInterrupt : public sal::SoftFieldInterrupt {
  public:
    VirtualInterrupt(VirtualTime& virtualTime, sal::FieldClock clock)
        : SoftFieldInterrupt(clock), time(virtualTime) {}

    bool enable() override { return true; }
    void waitOnEvent() override {
        Moment next{};
        operate([&](sal::FieldClock& clock, Moment now) { next = clock.nextBoundary(now); });
        time.advanceTo(next);
    }
    bool setClock(TimeStampType const& stamp, unsigned wait) override {
        auto const result = SoftFieldInterrupt::setClock(stamp, wait);
        if (onSet)
            onSet();
        return result;
    }

    std::function<void()> onSet;

  private:
    Moment moment() override { return time.now(); }

    VirtualTime& time;
};

/// A network with a TimeKeeper at its other end.
class VirtualConnection : public commsconns::NetworkConnection {
  public:
    VirtualConnection(VirtualTime& virtualTime, TimeSim::TimeKeeper& timeKeeper)
        : NetworkConnection(false), time(virtualTime), keeper(timeKeeper) {}

    std::int32_t open() override { return 0; }
    void close() override {}
    void stop() override {}
    bool isReadable() override {
        return !arriving.empty() && arriving.begin()->first <= time.now();
    }
    bool isOpen() override { return true; }
    std::int32_t read(char* buffer, std::size_t const& capacity, std::size_t& bytesRead) override {
        auto const until = time.now() + std::chrono::microseconds(timeOut.total_microseconds());
        bytesRead = 0;
        if (arriving.empty() || arriving.begin()->first > until) {
            time.advanceTo(until);
            return 0;
        }
        auto const datagram = arriving.extract(arriving.begin());
        time.advanceTo(std::max(time.now(), datagram.key()));
        bytesRead = datagram.mapped().copy(buffer, capacity);
        return 1;
    }
    std::int32_t write(char const* buffer, std::size_t const& length,
                       std::size_t& bytesWritten) override {
        for (auto& reply : keeper.answer(std::string_view(buffer, length), time.now()).replies)
            arriving.emplace(reply.due, std::move(reply.bytes));
        bytesWritten = length;
        return 1;
    }
    void setLocalEndpoint(Address const&, std::uint16_t) override {}
    void setLocalEndpoint(char const*, unsigned short const&) override {}
    std::string getLocalAddress() override { return {}; }
    void setLocalPort(unsigned short const&) override {}
    std::uint16_t getLocalPort() override { return 0; }
    void setRemoteEndpoint(Address const&, std::uint16_t) override {}
    void setRemoteEndpoint(char const*, unsigned short const&) override {}
    std::string getRemoteAddress() override { return {}; }
    void setRemotePort(unsigned short const&) override {}
    std::uint16_t getRemotePort() override { return 0; }
    TimeDuration getReceiveTimeOut() override { return timeOut; }
    void setReceiveTimeOut(TimeDuration const& wanted) override { timeOut = wanted; }
    TimeDuration getSendTimeOut() override { return {}; }
    void setSendTimeOut(TimeDuration const&) override {}
    std::int32_t read(unsigned char*, std::size_t const&, std::size_t&) override { return -4; }
    std::int32_t write(unsigned char const*, std::size_t const&, std::size_t&) override {
        return -4;
    }

  private:
    VirtualTime& time;
    TimeSim::TimeKeeper& keeper;
    TimeDuration timeOut;
    std::multimap<Moment, std::string> arriving;
};

/// What a field clock shows, to the nanosecond: its stamps are cut to microseconds, so the
/// moment is sought at which the stamp goes on.
template <typename FieldClock>
std::int64_t exactReading(FieldClock const& clock, Moment now) {
    auto const shown = [&](std::int64_t later) {
        auto const stamp = clock.at(now + Moment(later));
        return static_cast<std::int64_t>(stamp.fieldTime + std::uint64_t{stamp.fieldOffset} * 1000);
    };
    std::int64_t same = 0;
    std::int64_t later = 2000;
    while (later - same > 1) {
        auto const middle = (same + later) / 2;
        (shown(middle) == shown(0) ? same : later) = middle;
    }
    return shown(later) - later;
}

/// A panel with its time client and a frame with its TimeKeeper, on one virtual time. All is
/// decided by the seed. Hours take seconds.
class VirtualField : public FrameLink {
  public:
    /// A time at which the panel's clock was set.
    struct Setting {
        Moment when{};
        double error = 0;     ///< microseconds by which the panel is ahead right after it
        bool inStep = false;  ///< whether the panel's boundaries are boundaries of the frame
    };

    explicit VirtualField(TimeSim::FieldClock const& frame = TimeSim::FieldClock(
                              Moment(16683333), Moment(0), std::chrono::hours(1)),
                          std::uint64_t seed = 1)
        : keeper(frame, seed), interrupt(time, sal::FieldClock(Moment(-123456), 777)) {
        timeClient::Setup setup;
        setup.driver = this;
        setup.interrupt = &interrupt;
        setup.connection = std::make_unique<VirtualConnection>(time, keeper);
        setup.clock = &time;
        client = std::make_unique<timeClient>(std::move(setup));
        interrupt.onSet = [this] { settings.push_back({time.now(), error(), inStep()}); };
    }

    ClientConnectionState getConnectionState() const override {
        return linked ? eConnected : eNotConnected;
    }
    std::string getFrameAddress() const override { return "frame"; }

    /// Lets the client run for so long; to be called once. A client that waits for a dead frame
    /// is cut off a minute later.
    void run(Moment length) {
        time.at(length, [this] {
            finalError = error();
            client->stop(nullptr);
        });
        time.end(length + std::chrono::minutes(1));
        try {
            client->run();
        } catch (VirtualTime::Over const&) {
            cutOff = true;
        }
    }

    /// Microseconds by which the panel's clock is ahead of the frame's.
    double error() {
        std::int64_t panel = 0;
        interrupt.operate(
            [&](sal::FieldClock& clock, Moment now) { panel = exactReading(clock, now); });
        return static_cast<double>(panel - exactReading(keeper.clock(), time.now())) / 1000.0;
    }

    VirtualTime time;
    TimeSim::TimeKeeper keeper;
    VirtualInterrupt interrupt;
    std::unique_ptr<timeClient> client;
    std::vector<Setting> settings;
    double finalError = 0;
    bool cutOff = false;
    bool linked = true;

  private:
    bool inStep() {
        TimeStampType panel;
        interrupt.getNow(panel);
        auto const apart =
            static_cast<std::int64_t>(panel.fieldTime - keeper.clock().at(time.now()).fieldTime);
        return apart % keeper.clock().period().count() == 0;
    }
};

}  // namespace FrameDriver::Testing
