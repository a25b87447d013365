#include "tests/support/engine/DictionaryGenerator.h"

#include "template/ContextString.h"
#include "template/PlainString.h"
#include "template/TemplateParser.h"
#include "template/Variable.h"

#include <algorithm>
#include <utility>

namespace FrameDriver::Conversion {

namespace {

using Template::SegmentPtr;
using Template::TemplateParser;
using Template::TemplateString;

constexpr char closing = '\222';

constexpr char const* components[] = {"PANEL", "ME1", "ME2", "KEY1", "KEY", "KEYER", "CUT",
                                      "AUTO",  "A",   "A.B", "XPT",  "INC", "ON"};
constexpr char const* variableNames[] = {"a", "b", "c", "value", ""};
// As they stand in a dictionary. The last prints as a literal of the generator does.
constexpr char const* variables[] = {
    "{@a|increment}", "{@b|width=4,pad=0}",  "{@a|enum:1=>one,2=>two,$default=>none}",
    "{$context:KEY}", "{$context:KEY.{@a}}", "{$context:NONE|increment}"};
constexpr char const* spelledVariables[] = {"{@a}", "{@b}", "{$context:KEY}", "{@a|increment}"};

std::vector<SegmentPtr> copyOf(TemplateString const& source) {
    std::vector<SegmentPtr> pieces;
    for (auto const* segment : source.getSegments()) {
        if (segment)
            pieces.emplace_back(segment->clone());
    }
    return pieces;
}

}  // namespace

std::string DictionaryGenerator::word() {
    switch (shape) {
    case Shape::fids:
        return oneIn(3) ? pick(components) : std::to_string(below(20));
    case Shape::issues:
        return std::to_string(below(oneIn(2) ? 10 : 300));
    case Shape::letters: {
        std::string text(1 + below(3), 'a');
        for (auto& letter : text)
            letter = static_cast<char>('a' + below(2));
        return text;
    }
    case Shape::prefixes:
        return std::string(1 + below(12), 'x') + (oneIn(2) ? "." : "");
    case Shape::bytes:
        break;
    }
    std::string text(1 + below(4), ' ');
    for (auto& byte : text)
        byte = static_cast<char>(below(256));
    return text;
}

std::string DictionaryGenerator::dottedName() {
    std::string name = pick(components);
    for (auto more = below(4); more > 0; --more)
        name.append(".").append(pick(components));
    return name;
}

// The literals of one shape often have their beginning in common.
std::string DictionaryGenerator::literal(bool first) {
    if (oneIn(40))
        return pick(spelledVariables);
    if (oneIn(80))
        return "";
    if (shape == Shape::fids) {
        if (first)
            return std::string("FID: id=") + dottedName() + ", data=[" +
                   (oneIn(2) ? pick(components) : "");
        return oneIn(3) ? std::string(1, closing) : ", " + std::string(pick(components)) + "=";
    }
    if (shape == Shape::issues) {
        if (first)
            return (oneIn(5) ? "Event: pid=" : "Parameter Issue: pid=") + word() + ", did=[" +
                   word() + closing + (oneIn(2) ? ", value=" : "");
        return oneIn(3) ? std::string(1, closing) : std::string(", item=") + word();
    }
    return word();
}

// Now and then the null entry that the parser leaves for a "$" word without a meaning.
SegmentPtr DictionaryGenerator::variable() {
    if (oneIn(60))
        return nullptr;
    if (!oneIn(5))
        return std::make_unique<Template::Variable>(pick(variableNames));
    auto const parsed = TemplateParser::parse(pick(variables));
    return SegmentPtr(parsed.getSegments().front()->clone());
}

TemplateString DictionaryGenerator::makeFrom() {
    if (!entries.empty() && oneIn(3))
        return varied(pick(entries).from);
    Pieces pieces;
    auto const size = oneIn(30) ? below(30) : below(7);
    for (std::size_t i = 0; i < size; ++i) {
        if (below(5) < 3)
            pieces.push_back(std::make_unique<Template::PlainString>(literal(i == 0)));
        else
            pieces.push_back(variable());
    }
    return TemplateString::of(std::move(pieces));
}

// The same, or with the end gone, longer or different.
TemplateString DictionaryGenerator::varied(TemplateString const& other) {
    auto pieces = copyOf(other);
    if (!pieces.empty() && !oneIn(4))
        pieces.pop_back();
    for (auto more = below(3); more > 0; --more)
        pieces.push_back(oneIn(2) ? variable()
                                  : std::make_unique<Template::PlainString>(literal(false)));
    return TemplateString::of(std::move(pieces));
}

TemplateString DictionaryGenerator::makeTo() {
    Pieces pieces;
    for (auto size = below(5); size > 0; --size) {
        if (oneIn(2))
            pieces.push_back(variable());
        else
            pieces.push_back(std::make_unique<Template::PlainString>(
                std::string("<").append(word()).append(">")));
    }
    return TemplateString::of(std::move(pieces));
}

std::vector<DictionaryGenerator::Entry> const&
DictionaryGenerator::makeDictionary(Shape newShape, std::size_t size) {
    shape = newShape;
    entries.clear();
    lastText.clear();
    while (entries.size() < size) {
        Entry entry{makeFrom(), {}};
        // Numbered, so that no two entries give the same results.
        Pieces number;
        number.push_back(
            std::make_unique<Template::PlainString>(std::to_string(entries.size()) + ":"));
        auto const rest = makeTo();
        for (auto& piece : copyOf(rest))
            number.push_back(std::move(piece));
        if (!oneIn(20))
            entry.to.push_back(TemplateString::of(std::move(number)));
        while (oneIn(4))
            entry.to.push_back(makeTo());
        entries.push_back(std::move(entry));
    }
    return entries;
}

// A text that the template matches, mostly.
std::string DictionaryGenerator::instance(TemplateString const& from) {
    std::string text;
    for (auto const* segment : from.getSegments()) {
        if (!segment)
            continue;
        if (!segment->isVariable())
            text += segment->toString();
        else if (!oneIn(4))
            text += word();
    }
    return text;
}

std::string DictionaryGenerator::spoilt(std::string text) {
    auto const place = below(text.size() + 1);
    switch (below(8)) {
    case 0:
        return text.substr(0, place);
    case 1:
        return text.substr(place);
    case 2:
        return word() + text;
    case 3:
        return text + word();
    case 4:
        return text.insert(place, word());
    case 5:
        return text + instance(pick(entries).from);
    case 6:
        return text.erase(place, 1);
    default:
        return text.insert(place, text);
    }
}

std::string DictionaryGenerator::makeText() {
    if (oneIn(50))
        return {};
    if (entries.empty() || oneIn(50))
        return word() + word();
    if (lastText.empty() || oneIn(3))
        lastText = instance(pick(entries).from);
    else if (oneIn(5))
        lastText = spoilt(lastText.substr(0, 400));
    return oneIn(4) ? spoilt(lastText) : lastText;
}

}  // namespace FrameDriver::Conversion
