#pragma once

#include "sims/frame/Line.h"
#include "sims/frame/ListLayouts.h"
#include "sims/frame/Value.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <variant>
#include <vector>

namespace FrameSim {

struct ParameterKey {
    std::int32_t pid;
    std::uint32_t did;

    bool operator==(ParameterKey const&) const = default;
    bool operator<(ParameterKey const& other) const {
        return std::tie(pid, did) < std::tie(other.pid, other.did);
    }
};

struct EventKey {
    std::int32_t eid;
    std::uint32_t did;

    bool operator==(EventKey const&) const = default;
    bool operator<(EventKey const& other) const {
        return std::tie(eid, did) < std::tie(other.eid, other.did);
    }
};

struct ListKey {
    std::int32_t lid;
    std::uint16_t number;
    std::uint32_t did;

    bool operator==(ListKey const&) const = default;
    bool operator<(ListKey const& other) const {
        return std::tie(lid, number, did) < std::tie(other.lid, other.number, other.did);
    }
};

struct Parameter {
    std::string name;
    Value value;
    Value start;  ///< what it held at first, and what "default" brings back
    Range range;  ///< never wider than the type
    bool readOnly = false;
};

struct Event {
    std::string name;
    std::size_t dataSize = 0;  ///< in bytes; an event with more or less is refused
};

struct List {
    std::string name;
    bool writable = false;
    std::vector<ListItem> items;  ///< in order of their itemId

    bool holds(std::uint32_t itemId) const;
};

/// A panel can't make a list longer.
inline constexpr std::size_t mostListItems = 10000;

/// What has become of the frame's state, for those who subscribed to it.
struct ParameterChange {
    ParameterKey key;
    Value value;
};
struct ListChange {
    ListKey key;
    std::vector<ListItem> items;  ///< the items that are new, other than before, or gone
};
using Change = std::variant<ParameterChange, ListChange>;

/// What a list's item says of itself in `status`.
enum ItemStatus : std::int16_t { itemPresent = 1, itemModified = 2, itemDeleted = 3 };

/// The state of a frame: its parameters, the events it takes, and its lists. Notes each change.
///
/// Thread: one at a time; `Frame` guards it.
class FrameModel {
  public:
    std::string name;
    std::string behaviour;  ///< which behaviour drives the state, "switcher" or "none"

    /// Each is false if the key is there already, and changes nothing then.
    bool add(ParameterKey key, Parameter parameter);
    bool add(EventKey key, Event event);
    bool add(ListKey key, List list);

    /// Null if there is none.
    Parameter const* find(ParameterKey key) const;
    Event const* find(EventKey key) const;
    List const* find(ListKey key) const;

    std::map<ParameterKey, Parameter> const& allParameters() const { return parameters; }
    std::map<EventKey, Event> const& allEvents() const { return events; }
    std::map<ListKey, List> const& allLists() const { return lists; }

    /// Gives a parameter another value, clamped to its range, whether it is read only or not.
    /// A change is noted if the value is another than before. False if there is no such
    /// parameter or the value is of another type.
    bool assign(ParameterKey key, Value value);

    /// The value of an integer or Bool parameter; `otherwise` if there is none.
    std::int64_t integer(ParameterKey key, std::int64_t otherwise = 0) const;
    bool isOn(ParameterKey key) const { return integer(key) != 0; }
    /// Assigns a number to a parameter of the integer form, or whether it is 0 to a Bool.
    void assignInteger(ParameterKey key, std::int64_t number);

    /// Puts an item into a list in the place of its itemId, in place of one that has it, and
    /// links its neighbours. Notes a neighbour whose link has changed, then the item. False if
    /// there is no such list.
    bool putItem(ListKey key, ListItem item);
    /// Takes an item out. Notes the item as an empty one with `itemDeleted`, and the neighbour
    /// whose link has changed ahead of it. False if there is no such list or item.
    bool removeItem(ListKey key, std::uint32_t itemId);

    bool hasChanges() const { return !changes.empty(); }
    /// The changes since the last call, in order.
    std::vector<Change> takeChanges();

    /// The whole state, one line each, in the order of the keys; only lines whose text contains
    /// `part`. Two frames in the same state give the same text.
    ///
    ///     line = "parameter pid=" N " did=" H " type=" NAME " value=" VALUE
    ///          | "item lid=" N " number=" N " did=" H " itemId=" N " nextItemId=" N
    ///            " status=" N { " " NAME "=" VALUE }
    std::vector<Line> dump(std::string_view part = {}) const;

  private:
    void noteItems(ListKey key, std::vector<ListItem> items);

    std::map<ParameterKey, Parameter> parameters;
    std::map<EventKey, Event> events;
    std::map<ListKey, List> lists;
    std::vector<Change> changes;
};

/// A parameter and an item as `FrameModel::dump` shows them.
Line shownParameter(ParameterKey key, Value const& value);
Line shownListItem(ListKey key, ListItem const& item);

/// Adds an item to a line: its three numbers, and the fields by the names of the list's layout.
void addItem(Line& line, std::int32_t lid, ListItem const& item);

}  // namespace FrameSim
