#include "sims/frame/Faults.h"

namespace FrameSim {

std::vector<Line> Holding::lines() const {
    std::vector<Line> all;
    for (auto const& [key, value] : parameters) {
        all.push_back(shownParameter(key, value));
    }
    for (auto const& [key, items] : lists) {
        for (auto const& item : items) {
            all.push_back(shownListItem(key, item));
        }
    }
    return all;
}

}  // namespace FrameSim
