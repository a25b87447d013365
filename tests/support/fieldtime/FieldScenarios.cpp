#include "tests/support/FieldScenarios.h"

#include <cmath>
#include <string>
#include <utility>

namespace FrameDriver::Testing {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;
using TimeSim::TimeDelays;
using TimeSim::TimeFault;
Moment periodOf(double rate) {
    return *TimeSim::fieldPeriod(rate == 59.94 ? "59.94" : std::to_string(rate));
}

using Script = std::function<void(VirtualField&)>;

TimeDelays ways(int request, int reply, int jitter = 0) {
    return {microseconds(request), microseconds(reply), microseconds(jitter)};
}

Script chance(TimeFault fault, double percent) {
    return [=](VirtualField& field) { field.keeper.faults().setChance(fault, percent); };
}

Script rates(std::vector<std::pair<int, double>> changes) {
    return [=](VirtualField& field) {
        for (auto const& [second, rate] : changes)
            field.time.at(seconds(second), [&field, period = periodOf(rate)] {
                field.keeper.clock().setPeriod(field.time.now(), period);
            });
    };
}

/// The frame is away from one second to another; its field time service alone, or its link too.
Script away(int from, int to, bool link) {
    return [=](VirtualField& field) {
        auto const turn = [&field, link](bool on) {
            field.keeper.setPresent(on);
            field.linked = on || !link;
            if (link && !on)
                field.client->disconnected();
        };
        field.time.at(seconds(from), [=] { turn(false); });
        field.time.at(seconds(to), [=] { turn(true); });
    };
}

/// Off and on again: the clock begins anew, with fields of another rate.
void rebooted(VirtualField& field) {
    away(20, 25, true)(field);
    field.time.at(seconds(25), [&field] {
        field.keeper.clock().restart(field.time.now(), seconds(5));
        field.keeper.clock().setPeriod(field.time.now(), periodOf(50));
    });
}

/// The same, at the same rate.
void restarted(VirtualField& field) {
    away(20, 25, true)(field);
    field.time.at(seconds(25),
                  [&field] { field.keeper.clock().restart(field.time.now(), seconds(5)); });
}

void everything(VirtualField& field) {
    auto& faults = field.keeper.faults();
    faults.setChance(TimeFault::lost, 10);
    faults.setChance(TimeFault::stale, 5);
    faults.setChance(TimeFault::held, 5);
    faults.setChance(TimeFault::doubled, 5);
    faults.setChance(TimeFault::wrongEcho, 5);
    faults.setChance(TimeFault::cut, 5);
    faults.setChance(TimeFault::stretched, 5);
}

constexpr char const* tooLong =
    "two samples are further apart than two fields: no period is ever measured";

}  // namespace

std::vector<FieldScenario> const& fieldScenarios() {
    static std::vector<FieldScenario> const table{
        {"no delay, 50 Hz", 50},
        {"no delay, 59.94 Hz", 59.94},
        {"no delay, 60 Hz", 60},
        {"0.1 ms each way", 59.94, ways(100, 100)},
        {"0.5 ms each way", 59.94, ways(500, 500)},
        {"1 ms each way, 50 Hz", 50, ways(1000, 1000)},
        {"2 ms each way, 60 Hz", 60, ways(2000, 2000)},
        {"5 ms each way", 59.94, ways(5000, 5000)},
        {"10 ms each way", 59.94, ways(10000, 10000)},
        {"14 ms each way", 59.94, ways(14000, 14000), 0, 0, {}, seconds(120)},
        {"20 ms there, none back", 59.94, ways(20000, 0)},
        {"none there, 20 ms back", 59.94, ways(0, 20000)},
        {"20 ms each way", 59.94, ways(20000, 20000), 0, 0, {}, seconds(60), 0, tooLong},
        {"0.2 ms there, 1 ms back", 59.94, ways(200, 1000)},
        {"3 ms there, 0.5 ms back", 60, ways(3000, 500)},
        {"1 ms there, 8 ms back, 50 Hz", 50, ways(1000, 8000)},
        {"jitter of 0.5 ms", 59.94, ways(100, 100, 500)},
        {"jitter of 5 ms", 59.94, ways(1000, 1000, 5000)},
        {"jitter of 10 ms, 50 Hz", 50, ways(0, 0, 10000)},
        {"a tenth lost", 59.94, ways(200, 200), 0, 0, chance(TimeFault::lost, 10)},
        {"a quarter lost", 60, ways(200, 200), 0, 0, chance(TimeFault::lost, 25)},
        {"half lost", 59.94, ways(200, 200), 0, 0, chance(TimeFault::lost, 50)},
        {"half lost, 5 ms each way, 50 Hz", 50, ways(5000, 5000), 0, 0,
         chance(TimeFault::lost, 50)},
        {"half of them stale", 59.94, ways(300, 300), 0, 0, chance(TimeFault::stale, 50)},
        {"half overtaken", 59.94, ways(300, 300), 0, 0, chance(TimeFault::held, 50)},
        {"half doubled", 59.94, ways(300, 300), 0, 0, chance(TimeFault::doubled, 50)},
        {"half with a wrong echo", 59.94, ways(300, 300), 0, 0, chance(TimeFault::wrongEcho, 50)},
        {"half cut short", 59.94, ways(300, 300), 0, 0, chance(TimeFault::cut, 50)},
        {"half too long", 59.94, ways(300, 300), 0, 0, chance(TimeFault::stretched, 50)},
        {"a tenth lost, and a twentieth of each other fault", 59.94, ways(300, 400, 200), 0, 0,
         everything},
        {"panel 10 ppm fast", 59.94, ways(200, 200), 10},
        {"panel 50 ppm slow", 50, ways(200, 200), -50},
        {"panel 100 ppm fast", 60, ways(200, 200), 100},
        {"panel 100 ppm fast, 10 ms each way", 59.94, ways(10000, 10000), 100},
        {"frame 100 ppm fast", 59.94, ways(200, 200), 0, 100},
        {"panel 100 ppm slow, frame 100 ppm fast, 5 ms each way", 50, ways(5000, 5000), -100, 100},
        {"50 to 59.94 Hz", 50, ways(200, 200), 0, 0, rates({{20, 59.94}}), seconds(60), 2},
        {"59.94 to 60 Hz", 59.94, ways(200, 200), 0, 0, rates({{20, 60}}), seconds(60), 2},
        {"50, 59.94, 60 and 50 Hz", 50, ways(200, 200), 0, 0,
         rates({{20, 59.94}, {40, 60}, {60, 50}}), seconds(90), 4},
        {"50 to 60 Hz with a quarter lost and 50 ppm", 50, ways(500, 500), 50, 0,
         [](VirtualField& field) {
             rates({{20, 60}})(field);
             chance(TimeFault::lost, 25)(field);
         },
         seconds(90), 2},
        {"field time away for 20 s", 59.94, ways(200, 200), 0, 0, away(15, 35, false)},
        {"frame away for 20 s", 59.94, ways(200, 200), 0, 0, away(15, 35, true)},
        {"frame away at the start", 59.94, ways(200, 200), 0, 0, away(0, 30, true)},
        {"frame restarted, now at 50 Hz", 59.94, ways(200, 200), 0, 0, rebooted, seconds(60), 2},
        {"frame restarted at the same rate", 59.94, ways(200, 200), 0, 0, restarted},
        {"ten hours", 59.94, ways(200, 200), 0, 0, {}, std::chrono::hours(10)},
        {"ten hours, panel 1 ppm fast", 59.94, ways(200, 200), 1, 0, {}, std::chrono::hours(10)},
    };
    return table;
}

double boundOf(FieldScenario const& scenario) {
    auto const apart =
        std::chrono::abs(scenario.delays.request - scenario.delays.reply) + scenario.delays.jitter;
    return static_cast<double>(apart.count()) / 2000.0 + 1.0;
}

double slackOf(FieldScenario const& scenario) {
    auto const trip = scenario.delays.request + scenario.delays.reply + 2 * scenario.delays.jitter;
    auto const drift = std::abs(scenario.panelDrift) + std::abs(scenario.frameDrift);
    return 1.0 + static_cast<double>(trip.count()) / 1000.0 * drift / 1e6;
}

FieldOutcome play(FieldScenario const& scenario, std::uint64_t seed) {
    VirtualField field(TimeSim::FieldClock(periodOf(scenario.rate), Moment(0),
                                           std::chrono::hours(1) + Moment(seed * 1234567)),
                       seed);
    field.keeper.faults().setDelays(scenario.delays);
    field.keeper.clock().setDrift(Moment(0), scenario.frameDrift);
    field.interrupt.operate([&](sal::FieldClock& clock, Moment now) {
        clock.setDrift(now, scenario.panelDrift);
        clock.shift(now, Moment(seed * 7654321 % 16683333));
    });
    if (scenario.script)
        scenario.script(field);
    field.run(scenario.length);
    FieldOutcome outcome;
    outcome.settings = field.settings;
    outcome.last = field.finalError;
    return outcome;
}

}  // namespace FrameDriver::Testing
