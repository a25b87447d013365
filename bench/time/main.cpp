// How far the panel's field boundaries are from the frame's, once the time client has set the
// panel's clock.
//
//     bench_time [seconds]      over loopback, by the machine's clock (default: 5)
//     bench_time --scenarios    the stories on virtual time, 200 seeds each
//
// Over loopback the frame's period goes up and down by a nanosecond, so that the client sets the
// clock again and again; both clocks go by the machine's steady clock, and are read at the same
// moment. A bare UDP request and reply, with a thread at the other end, takes turns with it.

#include "platform/logging/LogManager.h"
#include "platform/sal/SoftFieldInterrupt.h"
#include "sims/time/TimeService.h"
#include "tests/support/FieldScenarios.h"
#include "time/TimeClient.h"
#include "time/UDPConnection.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace bench {
namespace {

using namespace FrameDriver::Testing;
using boost::asio::ip::udp;
using Figures = std::vector<double>;

double quantile(Figures figures, double part) {
    if (figures.empty())
        return 0;
    auto const place = static_cast<long>(part * static_cast<double>(figures.size() - 1));
    std::nth_element(figures.begin(), figures.begin() + place, figures.end());
    return figures[static_cast<std::size_t>(place)];
}

/// A request of 28 bytes, and a thread that sends it back.
class BareExchange {
  public:
    BareExchange() : echo([this] { answer(); }) {}
    ~BareExchange() {
        ending = true;
        there();
        echo.join();
    }
    BareExchange(BareExchange const&) = delete;
    BareExchange& operator=(BareExchange const&) = delete;

    /// Microseconds there and back.
    double exchange() {
        auto const begin = std::chrono::steady_clock::now();
        there();
        udp::endpoint sender;
        panel.receive_from(boost::asio::buffer(bytes), sender);
        return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin)
            .count();
    }

  private:
    void there() { panel.send_to(boost::asio::buffer(bytes), frame.local_endpoint()); }
    void answer() {
        std::array<char, 28> datagram{};
        while (!ending) {
            udp::endpoint sender;
            frame.receive_from(boost::asio::buffer(datagram), sender);
            frame.send_to(boost::asio::buffer(datagram), sender);
        }
    }

    static udp::endpoint loopback() { return {boost::asio::ip::address_v4::loopback(), 0}; }

    boost::asio::io_context service;
    udp::socket panel{service, loopback()};
    udp::socket frame{service, loopback()};
    std::array<char, 28> bytes{};
    std::atomic<bool> ending{false};
    std::thread echo;
};

class AlwaysLinked : public FrameLink {
  public:
    ClientConnectionState getConnectionState() const override { return eConnected; }
    std::string getFrameAddress() const override { return "127.0.0.1"; }
};

/// The client without its thread: the measurement is the thread.
class OwnRounds : public timeClient {
  public:
    using timeClient::doRound;
    using timeClient::timeClient;
};

class Loopback {
  public:
    Loopback() : service(options()) {
        service.start();
        timeClient::Setup setup;
        setup.driver = &link;
        setup.interrupt = &interrupt;
        setup.localAddress = "127.0.0.1";
        setup.port = service.port();
        auto udpConnection = std::make_unique<commsconns::UDPConnection>();
        udpConnection->open();
        setup.connection = std::move(udpConnection);
        client = std::make_unique<OwnRounds>(std::move(setup));
        client->doRound();
    }

    /// The clock is set; the errors of the field boundaries some moments later.
    void round(Figures& errors) {
        service.operate([this](TimeSim::TimeKeeper& keeper, TimeSim::Moment now) {
            up = !up;
            keeper.clock().setPeriod(now, Moment(up ? 16683334 : 16683333));
        });
        client->initTime();
        for (int i = 0; i < 5; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(i));
            errors.push_back(error());
        }
    }

  private:
    static TimeSim::TimeServiceOptions options() {
        TimeSim::TimeServiceOptions wanted;
        wanted.telling = TimeSim::Telling::none;
        return wanted;
    }
    double error() {
        TimeSim::FieldClock frame;
        sal::FieldClock panel;
        service.operate(
            [&](TimeSim::TimeKeeper& keeper, TimeSim::Moment) { frame = keeper.clock(); });
        interrupt.operate([&](sal::FieldClock& clock, Moment) { panel = clock; });
        auto const now = TimeSim::steadyNow();
        return static_cast<double>(exactReading(panel, now) - exactReading(frame, now)) / 1000.0;
    }

    TimeSim::TimeService service;
    sal::MachineFieldInterrupt interrupt;
    AlwaysLinked link;
    std::unique_ptr<OwnRounds> client;
    bool up = false;
};

void print(char const* what, Figures const& figures) {
    std::printf("| %s | %zu | %.1f | %.1f | %.1f |\n", what, figures.size(), quantile(figures, 0.5),
                quantile(figures, 0.99), quantile(figures, 1));
}

void measure(std::chrono::seconds length) {
    Loopback loopback;
    BareExchange bare;
    Figures errors, signedErrors, trips, halves;
    auto const end = std::chrono::steady_clock::now() + length;
    while (std::chrono::steady_clock::now() < end) {
        trips.push_back(bare.exchange());
        halves.push_back(trips.back() / 2);
        loopback.round(signedErrors);
    }
    for (auto const error : signedErrors)
        errors.push_back(std::abs(error));
    std::printf("| Microseconds | figures | median | p99 | worst |\n|---|---|---|---|---|\n");
    print("bare UDP: there and back", trips);
    print("bare UDP: half of that", halves);
    print("panel's field boundary off the frame's", errors);
}

struct Summary {
    Figures errors;
    Figures firsts;
    std::size_t out = 0;  // errors above the bound
    double last = 0;
};

Summary playAll(FieldScenario const& scenario) {
    Summary summary;
    auto const seeds = scenario.length > std::chrono::hours(1) ? 1U : 200U;
    for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
        auto const outcome = play(scenario, seed);
        for (auto const& setting : outcome.settings) {
            summary.errors.push_back(std::abs(setting.error));
            summary.out += std::abs(setting.error) > boundOf(scenario);
        }
        if (!outcome.settings.empty())
            summary.firsts.push_back(
                std::chrono::duration<double>(outcome.settings.front().when).count());
        if (seed == 1)
            summary.last = outcome.last;
    }
    return summary;
}

char const* reasonOf(FieldScenario const& scenario, Summary const& summary) {
    if (summary.errors.empty())
        return scenario.reason;
    auto const beyond = quantile(summary.errors, 1) - boundOf(scenario);
    if (beyond <= 0)
        return "";
    if (beyond > slackOf(scenario))
        return "(c)";
    return scenario.panelDrift != 0 || scenario.frameDrift != 0 ? "(a, b)" : "(a)";
}

void printScenarios() {
    std::printf(
        "| Scenario | first set after, s | median | worst | bound | above | why | at the end "
        "|\n|---|---|---|---|---|---|---|---|\n");
    for (auto const& scenario : fieldScenarios()) {
        auto const summary = playAll(scenario);
        if (summary.errors.empty()) {
            std::printf("| %s | never | | | %.1f | | %s | |\n", scenario.name, boundOf(scenario),
                        scenario.reason);
            continue;
        }
        std::printf("| %s | %.2f | %.2f | %.2f | %.1f | %zu of %zu | %s | %.1f |\n", scenario.name,
                    quantile(summary.firsts, 0.5), quantile(summary.errors, 0.5),
                    quantile(summary.errors, 1), boundOf(scenario), summary.out,
                    summary.errors.size(), reasonOf(scenario, summary), summary.last);
    }
}

}  // namespace
}  // namespace bench

int main(int count, char** arguments) {
    using namespace Brindlemoor::Utilities::Logging;
    LogManager::getInstance()->setDefaultLevel(LogLevel::Off);
    if (count > 1 && std::strcmp(arguments[1], "--scenarios") == 0)
        bench::printScenarios();
    else
        bench::measure(std::chrono::seconds(count > 1 ? std::max(std::atoi(arguments[1]), 1) : 5));
}
