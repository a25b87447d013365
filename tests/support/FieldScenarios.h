#pragma once

#include "tests/support/VirtualField.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace FrameDriver::Testing {

/// One story of a panel's clock and a frame's.
struct FieldScenario {
    char const* name;
    double rate = 59.94;  ///< fields a second
    TimeSim::TimeDelays delays = {};
    double panelDrift = 0;  ///< parts per million
    double frameDrift = 0;
    std::function<void(VirtualField&)> script = {};  ///< faults, and events of virtual time
    std::chrono::seconds length{60};
    std::size_t settings = 1;  ///< how often the clock gets set
    char const* reason = "";   ///< why it never gets set, if so
};

struct FieldOutcome {
    std::vector<VirtualField::Setting> settings;
    double last = 0;  ///< the error at the end, microseconds
};

std::vector<FieldScenario> const& fieldScenarios();
/// The same seed gives the same outcome.
FieldOutcome play(FieldScenario const& scenario, std::uint64_t seed);

/// How far the clock may be off, in microseconds: half of the greatest difference between the
/// two ways, and the microsecond that a field offset is cut to.
double boundOf(FieldScenario const& scenario);
/// What the arithmetic in whole microseconds adds to that at the most, and what the two clocks
/// drift apart during a round trip.
double slackOf(FieldScenario const& scenario);

}  // namespace FrameDriver::Testing
