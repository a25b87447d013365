#pragma once

#include <vector>

/// Figures of many runs of one thing, and what is said of them.
namespace bench {

using Figures = std::vector<double>;

/// The value below which `part` of the figures lie; 0 if there are none. A clock that ticks in
/// steps of `step` reads a length of 63 as 60 most times and as 70 the others: the figures within
/// one step are taken as spread over it, or the quotient of two small figures would jump.
double quantile(Figures const& figures, double part, double step = 0);

double mean(Figures const& figures);

}  // namespace bench
