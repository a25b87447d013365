#pragma once

#include "foundation/Signal.h"

#include <boost/date_time/posix_time/posix_time_types.hpp>

/// The universal time plus `duration`; none for positive infinity, and for durations that reach
/// beyond what the clock can tell. A duration that is no duration has passed already.
Signal::Deadline deadlineIn(boost::posix_time::time_duration const& duration);
