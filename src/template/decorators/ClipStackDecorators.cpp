#include "template/decorators/ClipStackDecorators.h"

#include "foundation/NumberText.h"
#include "foundation/TextSearch.h"
#include "template/decorators/ClipStack.h"
#include "template/decorators/StateKey.h"

#include <algorithm>
#include <string_view>

namespace FrameDriver::Template {
namespace {

/// A clip found by its number, without building the whole stack.
struct SelectedClip {
    ClipStackEntry entry;  // all 0 and empty if there is none
    bool isLast = false;
};

// The number counts from 1, and 0 means the first as well.
SelectedClip selectClip(std::string_view stack, std::uint32_t number) {
    SelectedClip clip;
    std::uint32_t const wanted = std::max(number, 1U);
    Tools::Pieces pieces(stack, ">");
    std::string_view piece;
    for (std::uint32_t count = 1; pieces.next(piece); ++count) {
        if (count == wanted) {
            clip.entry = ClipStackEntry::parse(piece);
            clip.isLast = !pieces.next(piece);
            break;
        }
    }
    return clip;
}

std::string shownName(SelectedClip const& clip) {
    if (clip.isLast)
        return {};
    std::string_view const name = clip.entry.clipName;
    return std::string(name.substr(name.find('/') + 1));
}

std::string decimal(std::int32_t number) {
    std::string text;
    Tools::appendInt32(text, number);
    return text;
}

}  // namespace

std::string ClipStackBuilderDecorator::decorate(std::string const& value,
                                                ContextStore* context) const {
    std::string_view const text = value;
    auto const mark = text.find('>');
    StateKey const key("DEVICE", text.substr(0, mark), ".CLIP_STACK");
    auto const entry = ClipStackEntry::parse(text.substr(mark + 1));
    if (!context->contains(key))
        context->set(key, "");

    std::string const stored = context->get(key);
    ClipStack stack(stored);
    switch (operation) {
    case Operation::none:
        break;
    case Operation::insert:
        stack.insert(entry);
        break;
    case Operation::modify:
        stack.modify(entry);
        break;
    case Operation::remove:
        stack.remove(entry);
        break;
    }
    std::string result;
    result.reserve(stored.size() + value.size());
    stack.appendTo(result);
    return result;
}

std::string ClipStackElementDecorator::decorate(std::string const& value,
                                                ContextStore* context) const {
    StateKey key("DEVICE", value, ".CLIP_STACK");
    if (!context->contains(key))
        return {};
    std::string const stack = context->get(key);
    key.append(".LOADED.INDEX");
    std::uint32_t loadedIndex = 0;
    Tools::readUInt32(context->get(key), loadedIndex);
    // A negative sum wraps to a number that no stack reaches.
    auto const clip = selectClip(stack, loadedIndex + static_cast<std::uint32_t>(position));
    switch (field) {
    case Field::itemId:
        return decimal(clip.entry.itemId);
    case Field::clipName:
        return shownName(clip);
    case Field::nextItemId:
        break;
    }
    return decimal(clip.entry.nextItemId);
}

std::string MachineClipLengthDecorator::decorate(std::string const& value,
                                                 ContextStore* context) const {
    auto const in =
        static_cast<std::uint32_t>(numberAt(*context, StateKey("MACHINE", value, ".MARKIN")));
    auto const out =
        static_cast<std::uint32_t>(numberAt(*context, StateKey("MACHINE", value, ".MARKOUT")));
    return decimal(std::max(static_cast<std::int32_t>(out - in), 0));
}

}  // namespace FrameDriver::Template
