#include "template/TemplateString.h"

#include "foundation/TextSearch.h"
#include "template/Variable.h"

#include <utility>

namespace FrameDriver::Template {

namespace {

// What a variable's text is likely to need in a result: names and numbers of the panel are short.
constexpr std::size_t likelyTextSize = 12;

std::size_t sizeHintOf(std::vector<SegmentPtr> const& segments) {
    std::size_t size = 0;
    for (auto const& segment : segments) {
        if (segment)
            size += segment->isVariable() ? likelyTextSize : segment->length();
    }
    return size;
}

// The last that isn't null, or null.
Segment const* lastOf(std::vector<SegmentPtr> const& segments) {
    for (auto entry = segments.rbegin(); entry != segments.rend(); ++entry) {
        if (*entry)
            return entry->get();
    }
    return nullptr;
}

// The next behind `index` that isn't null, or null.
Segment const* nextOf(std::vector<SegmentPtr> const& segments, std::size_t index) {
    while (++index < segments.size()) {
        if (segments[index])
            return segments[index].get();
    }
    return nullptr;
}

// How far a variable reaches that starts at `position`. The segment behind it is sought from the
// start of the text, not from the position; whatever that leaves without a length is empty.
std::size_t captureLength(std::string_view text, std::size_t position, Segment const* next) {
    if (!next)
        return std::string_view::npos;
    auto const end = next->find(text, 0);
    return end == Segment::notFound || end < position ? 0 : end - position;
}

// A name that is there already keeps its text.
void insert(VariableMap& variables, std::string_view name, std::string_view capture) {
    auto const place = variables.lower_bound(name);
    if (place == variables.end() || place->first != name)
        variables.emplace_hint(place, name, capture);
}

}  // namespace

TemplateString::TemplateString(std::vector<Segment*> const& pieces)
    : segments(pieces.begin(), pieces.end()), sizeHint(sizeHintOf(segments)) {}

TemplateString TemplateString::of(std::vector<SegmentPtr> pieces) {
    TemplateString result;
    result.segments = std::move(pieces);
    result.sizeHint = sizeHintOf(result.segments);
    return result;
}

TemplateString::TemplateString(TemplateString const& other) : sizeHint(other.sizeHint) {
    segments.reserve(other.segments.size());
    for (auto const& segment : other.segments) {
        if (segment)
            segments.emplace_back(segment->clone());
    }
}

TemplateString& TemplateString::operator=(TemplateString const& other) {
    if (this != &other)
        *this = TemplateString(other);
    return *this;
}

std::string TemplateString::evaluate(VariableMap const& variables, ContextStore* context) const {
    std::string text;
    text.reserve(sizeHint);
    appendTo(text, variables, context);
    return text;
}

void TemplateString::appendTo(std::string& out, VariableMap const& variables,
                              ContextStore* context) const {
    for (auto const& segment : segments) {
        if (segment)
            segment->appendTo(out, variables, context);
    }
}

bool TemplateString::matches(std::string_view text) const {
    std::size_t position = 0;
    bool found = true;
    for (auto const& segment : segments) {
        if (!segment)
            continue;
        auto const offset = segment->find(text, position);
        if (offset == Segment::notFound) {
            found = false;
            break;
        }
        position = offset + segment->length();
    }
    auto const* last = lastOf(segments);
    if (!last || last->isVariable())
        return found;
    return text.size() <= position;  // whether or not all was found
}

VariableMap TemplateString::extractVariables(std::string_view text) const {
    VariableMap variables;
    std::size_t position = 0;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        auto const* segment = segments[i].get();
        if (!segment)
            continue;
        if (!segment->isVariable()) {
            position += segment->length();
            continue;
        }
        auto const& variable = static_cast<Variable const&>(*segment);
        auto const length = captureLength(text, position, nextOf(segments, i));
        auto const capture = Tools::cut(text, position, length);
        insert(variables, variable.nameText(), capture);
        position += capture.size();
    }
    return variables;
}

std::string TemplateString::toString() const {
    std::string text;
    for (auto const& segment : segments) {
        if (segment)
            text += segment->toString();
    }
    return text;
}

std::vector<Segment*> TemplateString::getSegments() const {
    std::vector<Segment*> pieces;
    pieces.reserve(segments.size());
    for (auto const& segment : segments)
        pieces.push_back(segment.get());
    return pieces;
}

}  // namespace FrameDriver::Template
