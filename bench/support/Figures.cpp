#include "bench/support/Figures.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace bench {

double quantile(Figures const& figures, double part, double step) {
    if (figures.empty())
        return 0;
    auto sorted = figures;
    auto const rank = part * static_cast<double>(sorted.size() - 1);
    auto const place = sorted.begin() + static_cast<std::ptrdiff_t>(rank);
    std::nth_element(sorted.begin(), place, sorted.end());
    auto const value = *place;
    if (step == 0)
        return value;
    auto const low = value - step / 2;
    auto const high = value + step / 2;
    double below = 0;
    double within = 0;
    for (auto const figure : sorted) {
        below += figure < low ? 1 : 0;
        within += figure >= low && figure < high ? 1 : 0;
    }
    return low + step * (rank + 0.5 - below) / within;
}

double mean(Figures const& figures) {
    if (figures.empty())
        return 0;
    return std::accumulate(figures.begin(), figures.end(), 0.0) /
           static_cast<double>(figures.size());
}

}  // namespace bench
