#include "template/decorators/ClipStack.h"

#include "foundation/NumberText.h"
#include "foundation/TextSearch.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace FrameDriver::Template {

ClipStackEntry ClipStackEntry::parse(std::string_view text) {
    std::string_view itemId;
    std::string_view clipName;
    std::string_view nextItemId;
    Tools::Pieces parts(text, ":");
    parts.next(itemId);
    parts.next(clipName);
    parts.next(nextItemId);
    return {Tools::int32Or(itemId, 0), clipName, Tools::int32Or(nextItemId, 0)};
}

ClipStack::ClipStack(std::string_view text) {
    auto const marks = static_cast<std::size_t>(std::ranges::count(text, '>'));
    entries.reserve(marks / 2 + 1);
    std::string_view piece;
    for (Tools::Pieces pieces(text, ">"); pieces.next(piece);)
        entries.push_back(ClipStackEntry::parse(piece));
}

void ClipStack::insert(ClipStackEntry const& entry) {
    if (entry.nextItemId == 0) {
        if (!entries.empty() && entries.back().nextItemId != entry.itemId)
            entries.clear();
        entries.push_back(entry);
        return;
    }
    auto const place = std::ranges::find_if(entries, [&](ClipStackEntry const& other) {
        return other.itemId == entry.itemId || other.itemId == entry.nextItemId;
    });
    if (place != entries.end() && place->itemId == entry.itemId)
        return;
    if (place != entries.end() && place != entries.begin())
        std::prev(place)->nextItemId = entry.itemId;
    entries.insert(place, entry);
}

void ClipStack::modify(ClipStackEntry const& entry) {
    for (auto& other : entries) {
        if (other.itemId == entry.itemId)
            other.clipName = entry.clipName;
    }
}

void ClipStack::remove(ClipStackEntry const& entry) {
    auto const found = std::ranges::find(entries, entry.itemId, &ClipStackEntry::itemId);
    if (found == entries.end())
        return;
    auto const next = entries.erase(found);
    if (next != entries.begin())
        std::prev(next)->nextItemId = next != entries.end() ? next->itemId : 0;
}

void ClipStack::appendTo(std::string& out) const {
    for (auto const& entry : entries) {
        Tools::appendInt32(out, entry.itemId);
        out.append("::").append(entry.clipName).append("::");
        Tools::appendInt32(out, entry.nextItemId);
        out.append(">>");
    }
}

}  // namespace FrameDriver::Template
