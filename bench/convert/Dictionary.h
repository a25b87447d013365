#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Made-up dictionaries and the texts to convert with them.
namespace bench {

/// Literals with a variable in each gap: the first and the last may be empty.
using Literals = std::vector<std::string>;

struct Entry {
    Literals from;
    Literals to;      ///< its gaps show the variables in the same order
    std::string key;  ///< what tells the entry from others in a plain hash table
};

enum class Shape {
    fids,        ///< dotted names, none to three variables
    issues,      ///< a long common beginning
    adversarial  ///< alike in all but the last literal
};
inline constexpr Shape allShapes[] = {Shape::fids, Shape::issues, Shape::adversarial};
std::string_view nameOf(Shape shape);

/// The part of a text that is the key of its entry: a hash table's whole work.
std::string_view keyOf(Shape shape, std::string_view text);

/// `size` entries; one in twenty has a general companion, and those stand last.
std::vector<Entry> makeDictionary(Shape shape, std::size_t size, std::uint64_t seed);

/// Texts in one block of memory: nine in ten match one entry, one in twenty several, one in
/// twenty none. Some entries are asked for far more often than others, and an entry comes in
/// bursts.
class Stream {
  public:
    Stream(Shape shape, std::vector<Entry> const& entries, std::size_t size, std::uint64_t seed);

    std::vector<std::string_view> const& texts() const { return views; }

  private:
    std::string block;
    std::vector<std::string_view> views;
};

}  // namespace bench
