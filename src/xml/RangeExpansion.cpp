#include "xml/RangeExpansion.h"

#include "foundation/Exceptions.h"
#include "foundation/TextSearch.h"
#include "foundation/ValueConversions.h"
#include "xml/RangeMarks.h"

#include <cstdint>
#include <string_view>
#include <utility>

// Each range of a text is replaced by each of its numbers in turn, and the text that results is
// expanded again from its start, so the first range varies slowest.

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::IllegalArgumentException;
using Tools::cut;

constexpr std::size_t none = std::string_view::npos;

struct Brackets {
    char open;
    char close;
};

/// One text on its way to becoming many.
struct Expansion {
    Brackets brackets;
    std::list<std::string> texts{};
    RangeBudget budget{};
};

void expandAny(Expansion& expansion, std::string const& text, std::size_t position);

// Without its closing mark a range's suffix would be the whole text with the range in it, and
// the expansion would never end.
void begin(Expansion& expansion, RangeMarks const& range, std::uint64_t numbers) {
    if (!range.isClosed())
        throw IllegalArgumentException("A range has no closing bracket.");
    expansion.budget.take(numbers);
}

void expandWith(Expansion& expansion, std::string_view text, RangeMarks const& range,
                std::string_view number) {
    std::string next(text.substr(0, range.open));
    next += number;
    next += cut(text, range.close + 1);
    expandAny(expansion, next, 0);
}

void expandHex(Expansion& expansion, std::string const& text, std::size_t position) {
    std::size_t const open = text.find(expansion.brackets.open, position);
    if (open == none)
        return expansion.texts.push_back(text);
    RangeMarks const range(text, open, expansion.brackets.close);
    std::size_t const skip = text.compare(open + 1, 2, "0x") == 0 ? 3 : 1;
    std::string_view const lowerText = range.lower(text, skip);
    std::uint64_t const lower = Tools::hexStringToUInt32(lowerText);
    std::uint64_t const upper = Tools::hexStringToUInt32(range.upper(text, skip));
    if (lower > upper)
        return;
    begin(expansion, range, upper - lower + 1);
    for (std::uint64_t value = lower; value <= upper; ++value) {
        std::string digits = Tools::uint32ToHexString(static_cast<std::uint32_t>(value));
        if (digits.size() < lowerText.size())
            digits.insert(0, lowerText.size() - digits.size(), '0');
        expandWith(expansion, text, range, digits);
    }
}

void expandDecimal(Expansion& expansion, std::string const& text, std::size_t position) {
    std::size_t const open = text.find(expansion.brackets.open, position);
    if (open == none)
        return expansion.texts.push_back(text);
    RangeMarks const range(text, open, expansion.brackets.close);
    std::int64_t const lower = Tools::stringToInt32(range.lower(text, 1));
    std::int64_t const upper = Tools::stringToInt32(range.upper(text, 1));
    if (lower > upper)
        return;
    begin(expansion, range, static_cast<std::uint64_t>(upper - lower) + 1);
    for (std::int64_t value = lower; value <= upper; ++value)
        expandWith(expansion, text, range, Tools::int32ToString(static_cast<std::int32_t>(value)));
}

void expandAny(Expansion& expansion, std::string const& text, std::size_t position) {
    std::size_t const open = text.find(expansion.brackets.open, position);
    if (open == none)
        return expansion.texts.push_back(text);
    bool const hex = text.size() > open + 2 && text[open + 2] == 'x';
    (hex ? expandHex : expandDecimal)(expansion, text, position);
}

std::list<std::string> expandBy(void (*expand)(Expansion&, std::string const&, std::size_t),
                                std::string const& text, Brackets brackets, std::size_t position) {
    Expansion expansion{brackets};
    expand(expansion, text, position);
    return std::move(expansion.texts);
}

}  // namespace

std::list<std::string> expandRange(std::string const& text, char open, char close,
                                   std::size_t position) {
    return expandBy(expandAny, text, {open, close}, position);
}

std::list<std::string> expandHexRange(std::string const& text, char open, char close,
                                      std::size_t position) {
    return expandBy(expandHex, text, {open, close}, position);
}

std::list<std::string> expandDecimalRange(std::string const& text, char open, char close,
                                          std::size_t position) {
    return expandBy(expandDecimal, text, {open, close}, position);
}

}  // namespace FrameDriver::XML
