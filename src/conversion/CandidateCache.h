#pragma once

#include "conversion/ConversionPlan.h"

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace FrameDriver::Conversion {

/// The candidate lists of the last walks, newest first, in storage that is reused. A list that
/// enters pushes the oldest out; one that answers doesn't move. Empty lists take a place too.
class CandidateCache {
  public:
    /// The entries live in the tree, which outlives the lists.
    using List = std::vector<ConversionPlan const*>;

    /// The number of lists never changes an answer of a single text, but which texts of a burst
    /// are answered alike depends on it.
    static constexpr std::size_t capacity = 5;

    /// How many lists there are.
    std::size_t size() const { return filled; }
    /// `age` 0 is the newest.
    List const& operator[](std::size_t age) const { return lists[(newest + age) % places]; }

    /// An empty list to be filled. It enters with `insert`; until then the cache is unchanged.
    List& spare() {
        auto& list = lists[sparePlace()];
        list.clear();
        return list;
    }
    List const& insert() {
        newest = sparePlace();
        filled = filled < capacity ? filled + 1 : capacity;
        return lists[newest];
    }

  private:
    static constexpr std::size_t places = capacity + 1;  // one is the spare
    std::size_t sparePlace() const { return (newest + places - 1) % places; }

    std::array<List, places> lists;
    std::size_t newest = 0;
    std::size_t filled = 0;
};

}  // namespace FrameDriver::Conversion
