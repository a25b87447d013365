#pragma once

#include "sims/time/TimeMeter.h"

#include <string>

namespace qfd {

/// A picture of a measurement, as SVG: round trip, offset and field period over time, one above
/// the other. Of each stretch of time the bar reaches from the lowest to the highest value, and
/// the line goes through the mean; a red mark at the bottom is a request that wasn't answered.
std::string timePlot(std::string const& title, std::string const& subtitle,
                     TimeSim::TimeHistory const& history);

}  // namespace qfd
