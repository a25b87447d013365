#include "driver/LineExpander.h"

#include "foundation/NumberText.h"
#include "foundation/TextSearch.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

// Reading replaces each group by a mark, from the inside out: "{n}" for a choice, whose values are
// kept, "<n>" for a reference. Expanding resolves the first choice mark of the first text that has
// one, and puts the copies at the end. What is complete is never touched again, so one walk over
// the list does it.

namespace {

constexpr std::size_t none = std::string::npos;

// More choices than groups, by this many, on the way to one text come only of a value that holds
// its own group, which would never end.
constexpr std::size_t mostRepeats = 256;

void refuse(bool tooMuch) {
    if (tooMuch)
        throw std::bad_alloc();
}

/// A mark's place in a text, brackets included.
struct Mark {
    std::size_t start;
    std::size_t length;
    std::int32_t index;
};

using FrameDriver::Tools::readLeadingInt;

std::optional<Mark> findMark(std::string const& text, char open, char close, std::size_t from) {
    auto const start = text.find(open, from);
    auto const end = start == none ? none : text.find(close, start);
    if (end == none)
        return std::nullopt;
    return Mark{start, end + 1 - start,
                readLeadingInt(std::string_view(text).substr(start + 1, end - start - 1))};
}

std::string_view withoutSpaces(std::string_view text) {
    auto const start = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(start, text.find_last_not_of(' ') + 1 - start);
}

void addElement(std::string_view element, std::vector<std::string>& values) {
    auto const dash = element.find('-');
    if (dash == none) {
        values.emplace_back(withoutSpaces(element));
        return;
    }
    std::int64_t const first = readLeadingInt(element.substr(0, dash));
    std::int64_t const last = readLeadingInt(element.substr(dash + 1));
    refuse(last - first > static_cast<std::int64_t>(LineExpander::mostTexts));
    for (auto value = first; value <= last; ++value)
        values.push_back(std::to_string(value));
}

/// The values between ":" and "]".
std::vector<std::string> readValues(std::string_view list) {
    std::vector<std::string> values;
    for (auto comma = list.find(','); comma != none; comma = list.find(',')) {
        addElement(list.substr(0, comma), values);
        list.remove_prefix(comma + 1);
    }
    addElement(list, values);
    return values;
}

/// The value as it stands at a reference: its own choices were made where it stood first.
std::string demoted(std::string value) {
    std::ranges::replace(value, '{', '<');
    std::ranges::replace(value, '}', '>');
    return value;
}

void replaceReferences(std::string& text, std::int32_t index, std::string const& value) {
    std::vector<Mark> references;
    for (auto mark = findMark(text, '<', '>', 0); mark;
         mark = findMark(text, '<', '>', mark->start + mark->length)) {
        if (mark->index == index)
            references.push_back(*mark);
    }
    auto const replacement = demoted(value);
    for (auto const& mark : references) {
        if (mark.start > text.size())
            FrameDriver::Tools::throwInvalidPosition();
        text.replace(mark.start, mark.length, replacement);
    }
}

ExpandedLine choose(ExpandedLine const& from, Mark const& mark, std::string const& value) {
    ExpandedLine copy = from;
    copy.text.replace(mark.start, mark.length, value);
    replaceReferences(copy.text, mark.index, value);
    copy.choices.push_back({mark.index, {value}});
    return copy;
}

}  // namespace

LineExpander::LineExpander(std::string text) : line(std::move(text)) {
    for (;;) {
        auto const close = line.find(']');
        auto const open = close == none ? none : line.rfind('[', close);
        if (open == none)
            return;
        auto const group = std::string_view(line).substr(open + 1, close - open - 1);
        auto const colon = group.find(':');
        auto const index = readLeadingInt(group.substr(0, colon));
        auto values =
            colon == none ? std::vector<std::string>{} : readValues(group.substr(colon + 1));
        bool const isChoice = !values.empty();
        if (isChoice)
            groups.push_back({index, std::move(values)});
        line.replace(open, close + 1 - open,
                     (isChoice ? "{" : "<") + std::to_string(index) + (isChoice ? "}" : ">"));
    }
}

// A choice of a group that doesn't exist takes its text with it.
std::list<ExpandedLine> LineExpander::expand(std::size_t most) const {
    std::list<ExpandedLine> lines;
    lines.push_back({line, {}});
    std::size_t made = 0;
    for (auto entry = lines.begin(); entry != lines.end();) {
        auto const mark = findMark(entry->text, '{', '}', 0);
        if (!mark) {
            ++entry;
            continue;
        }
        auto const group = std::ranges::find(groups, mark->index, &ChoiceGroup::index);
        if (group != groups.end()) {
            refuse((made += group->values.size()) > most);
            refuse(entry->choices.size() == groups.size() + mostRepeats);
            for (auto const& value : group->values)
                lines.push_back(choose(*entry, *mark, value));
        }
        entry = lines.erase(entry);
    }
    return lines;
}
