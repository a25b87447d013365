#pragma once

#include "foundation/SpinLock.h"

#include <cstddef>
#include <iterator>
#include <map>
#include <memory>
#include <string>

namespace FrameDriver::Tools {

/// The driver's name and value pairs, ordered by the bytes of the name. Names are compared
/// exactly, with case.
///
/// Thread: any number of readers and writers at a time. The pairs stand in a set that never
/// changes once it is in place: a reader takes hold of the present set and reads that, and
/// `set` and assignment put another one in its place. So every reader sees one whole set or
/// the other. What is locked is the taking hold alone, a few instructions without a call.
class Settings {
  public:
    using Map = std::map<std::string, std::string>;

    /// Walks the set that was in place at `begin`, whatever happens to the settings meanwhile.
    /// All iterators behind the last pair are equal.
    class Iterator {
      public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Map::value_type;
        using difference_type = std::ptrdiff_t;
        using pointer = value_type const*;
        using reference = value_type const&;

        Iterator() = default;
        explicit Iterator(std::shared_ptr<Map const> walked)
            : pairs(std::move(walked)), position(pairs->begin()) {}

        reference operator*() const { return *position; }
        pointer operator->() const { return &*position; }
        Iterator& operator++() {
            ++position;
            return *this;
        }
        Iterator operator++(int) {
            Iterator const before = *this;
            ++position;
            return before;
        }
        bool operator==(Iterator const& other) const {
            return atEnd() || other.atEnd() ? atEnd() == other.atEnd() : position == other.position;
        }

      private:
        bool atEnd() const { return !pairs || position == pairs->end(); }

        std::shared_ptr<Map const> pairs;
        Map::const_iterator position;
    };

    Settings();
    explicit Settings(Map pairs);
    Settings(Settings const& other);
    Settings& operator=(Settings const& other);
    ~Settings() = default;

    bool contains(std::string const& name) const;
    /// A copy of the value, or the empty string for an unknown name, which isn't added.
    std::string get(std::string const& name) const;
    /// Inserts, or replaces the value of an existing name.
    void set(std::string const& name, std::string const& value);

    /// Iteration in name order.
    Iterator begin() const { return Iterator(snapshot()); }
    Iterator end() const { return {}; }

    /// The present set; it stays as it is.
    std::shared_ptr<Map const> snapshot() const;

  private:
    /// Puts `next` in the place of `expected`; false if that isn't in place any more.
    bool replace(std::shared_ptr<Map const> const& expected, std::shared_ptr<Map const> next);

    mutable SpinMutex lock;             // guards the pointer, not the set
    std::shared_ptr<Map const> values;  // never null
};

}  // namespace FrameDriver::Tools
