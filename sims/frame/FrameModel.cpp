#include "sims/frame/FrameModel.h"

#include <algorithm>
#include <utility>

namespace FrameSim {
namespace {

template <typename Map, typename Key>
typename Map::mapped_type const* findIn(Map const& map, Key key) {
    auto const at = map.find(key);
    return at == map.end() ? nullptr : &at->second;
}

auto placeOf(std::vector<ListItem>& items, std::uint32_t itemId) {
    return std::lower_bound(
        items.begin(), items.end(), itemId,
        [](ListItem const& item, std::uint32_t id) { return item.itemId < id; });
}

/// Makes the item ahead of `place` point to what follows it now. What has changed is added to
/// `changed`.
void linkPrevious(std::vector<ListItem>& items, std::vector<ListItem>::iterator place,
                  std::vector<ListItem>& changed) {
    if (place == items.begin()) {
        return;
    }
    std::uint32_t const next = place == items.end() ? 0 : place->itemId;
    ListItem& previous = *std::prev(place);
    if (previous.nextItemId != next) {
        previous.nextItemId = next;
        changed.push_back(previous);
        changed.back().status = itemModified;
    }
}

void appendIfWanted(std::vector<Line>& lines, Line line, std::string_view part) {
    if (part.empty() || line.text().find(part) != std::string::npos) {
        lines.push_back(std::move(line));
    }
}

}  // namespace

bool List::holds(std::uint32_t itemId) const {
    auto const at =
        std::lower_bound(items.begin(), items.end(), itemId,
                         [](ListItem const& item, std::uint32_t id) { return item.itemId < id; });
    return at != items.end() && at->itemId == itemId;
}

bool FrameModel::add(ParameterKey key, Parameter parameter) {
    return parameters.emplace(key, std::move(parameter)).second;
}

bool FrameModel::add(EventKey key, Event event) {
    return events.emplace(key, std::move(event)).second;
}

bool FrameModel::add(ListKey key, List list) {
    auto& items = list.items;
    std::sort(items.begin(), items.end(),
              [](ListItem const& a, ListItem const& b) { return a.itemId < b.itemId; });
    for (std::size_t i = 0; i < items.size(); ++i) {
        items[i].nextItemId = i + 1 < items.size() ? items[i + 1].itemId : 0;
    }
    return lists.emplace(key, std::move(list)).second;
}

Parameter const* FrameModel::find(ParameterKey key) const { return findIn(parameters, key); }

Event const* FrameModel::find(EventKey key) const { return findIn(events, key); }

List const* FrameModel::find(ListKey key) const { return findIn(lists, key); }

bool FrameModel::assign(ParameterKey key, Value value) {
    auto const at = parameters.find(key);
    if (at == parameters.end() || at->second.value.type != value.type ||
        at->second.value.form() != value.form()) {
        return false;
    }
    Parameter& parameter = at->second;
    value = clamped(std::move(value), parameter.range);
    if (!(parameter.value == value)) {
        parameter.value = value;
        changes.emplace_back(ParameterChange{key, std::move(value)});
    }
    return true;
}

std::int64_t FrameModel::integer(ParameterKey key, std::int64_t otherwise) const {
    auto const* parameter = find(key);
    switch (parameter ? parameter->value.form() : ValueForm::none) {
    case ValueForm::integer:
        return parameter->value.integer();
    case ValueForm::boolean:
        return parameter->value.boolean() ? 1 : 0;
    default:
        return otherwise;
    }
}

void FrameModel::assignInteger(ParameterKey key, std::int64_t number) {
    if (auto const* parameter = find(key)) {
        DataType const type = parameter->value.type;
        assign(key, type == DataType::Bool ? Value::ofBool(number != 0)
                                           : Value::ofInteger(type, number));
    }
}

bool FrameModel::putItem(ListKey key, ListItem item) {
    auto const at = lists.find(key);
    if (at == lists.end()) {
        return false;
    }
    auto& items = at->second.items;
    auto place = placeOf(items, item.itemId);
    bool const there = place != items.end() && place->itemId == item.itemId;
    item.status = itemPresent;
    if (there) {
        item.nextItemId = place->nextItemId;
        if (*place == item) {
            return true;
        }
        *place = item;
        item.status = itemModified;
        noteItems(key, {std::move(item)});
        return true;
    }
    item.nextItemId = place == items.end() ? 0 : place->itemId;
    place = items.insert(place, item);
    std::vector<ListItem> changed;
    linkPrevious(items, place, changed);
    changed.push_back(std::move(item));
    noteItems(key, std::move(changed));
    return true;
}

bool FrameModel::removeItem(ListKey key, std::uint32_t itemId) {
    auto const at = lists.find(key);
    if (at == lists.end()) {
        return false;
    }
    auto& items = at->second.items;
    auto place = placeOf(items, itemId);
    if (place == items.end() || place->itemId != itemId) {
        return false;
    }
    place = items.erase(place);
    std::vector<ListItem> changed;
    linkPrevious(items, place, changed);
    ListItem gone;
    gone.itemId = itemId;
    gone.status = itemDeleted;
    gone.empty = true;
    changed.push_back(std::move(gone));
    noteItems(key, std::move(changed));
    return true;
}

std::vector<Change> FrameModel::takeChanges() { return std::exchange(changes, {}); }

std::vector<Line> FrameModel::dump(std::string_view part) const {
    std::vector<Line> lines;
    for (auto const& [key, parameter] : parameters) {
        appendIfWanted(lines, shownParameter(key, parameter.value), part);
    }
    for (auto const& [key, list] : lists) {
        for (auto const& item : list.items) {
            appendIfWanted(lines, shownListItem(key, item), part);
        }
    }
    return lines;
}

void FrameModel::noteItems(ListKey key, std::vector<ListItem> items) {
    changes.emplace_back(ListChange{key, std::move(items)});
}

Line shownParameter(ParameterKey key, Value const& value) {
    Line line{.what = "parameter"};
    line.number("pid", key.pid).device(key.did).value(value);
    return line;
}

Line shownListItem(ListKey key, ListItem const& item) {
    Line line{.what = "item"};
    line.number("lid", key.lid).number("number", key.number).device(key.did);
    addItem(line, key.lid, item);
    return line;
}

void addItem(Line& line, std::int32_t lid, ListItem const& item) {
    line.number("itemId", item.itemId).number("nextItemId", item.nextItemId);
    line.number("status", item.status);
    auto const* layout = findListLayout(lid);
    if (!layout || item.empty) {
        return;
    }
    for (std::size_t i = 0; i < item.fields.size() && i < layout->size(); ++i) {
        line.add((*layout)[i].name, lineContent(item.fields[i]));
    }
}

}  // namespace FrameSim
