#include "foundation/Deadline.h"

#include <chrono>

Signal::Deadline deadlineIn(boost::posix_time::time_duration const& duration) {
    using std::chrono::microseconds;
    using std::chrono::system_clock;
    auto const now = system_clock::now();
    if (duration.is_pos_infinity())
        return std::nullopt;
    if (duration.is_special() || duration.is_negative())
        return now;
    microseconds const wanted(duration.total_microseconds());
    auto const longest = std::chrono::floor<microseconds>(system_clock::time_point::max() - now);
    if (wanted > longest)
        return std::nullopt;
    return now + wanted;
}
