#include "conversion/DictionaryRange.h"

#include "foundation/Exceptions.h"
#include "foundation/TextSearch.h"
#include "foundation/ValueConversions.h"
#include "xml/RangeMarks.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::IllegalArgumentException;
using Tools::cut;

constexpr std::size_t none = std::string_view::npos;

class Expansion {
  public:
    void expand(std::string text, std::size_t start) {
        std::size_t const open = text.find('(', start);
        if (open == none)
            texts.push_back(std::move(text));
        else if (open + 2 < text.size() && text[open + 2] == 'x')
            expandHex(text, RangeMarks(text, open, ')'));
        else
            expandDecimal(text, RangeMarks(text, open, ')'));
    }

    std::vector<std::string> texts;

  private:
    void expandDecimal(std::string_view text, RangeMarks const& range) {
        auto const lower = static_cast<std::uint32_t>(Tools::stringToInt32(range.lower(text, 1)));
        auto const upper = static_cast<std::uint32_t>(Tools::stringToInt32(range.upper(text, 1)));
        count(lower, upper);
        for (std::uint64_t value = lower; value <= upper; ++value)
            replace(text, range, Tools::uint32ToString(static_cast<std::uint32_t>(value)),
                    range.dash);
    }

    void expandHex(std::string_view text, RangeMarks const& range) {
        std::size_t const skip = text.substr(range.open + 1, 2) == "0x" ? 3 : 1;
        std::string_view const lowerText = range.lower(text, skip);
        std::uint32_t const lower = Tools::hexStringToUInt32(lowerText);
        std::uint32_t const upper = Tools::hexStringToUInt32(range.upper(text, skip));
        count(lower, upper);
        for (std::uint64_t value = lower; value <= upper; ++value) {
            std::string digits = Tools::uint32ToHexString(static_cast<std::uint32_t>(value));
            std::size_t const missing = lowerText.size() - digits.size();  // may wrap
            if (digits.size() < lowerText.size())
                digits.insert(0, missing, '0');
            replace(text, range, digits, missing);
        }
    }

    void count(std::uint32_t lower, std::uint32_t upper) {
        if (lower <= upper)
            budget.take(std::uint64_t{upper} - lower + 1);
    }

    // Without its closing mark a range's suffix is the whole text with the range in it. Where the
    // next search overlooks that, the text stands; otherwise this would never end.
    void replace(std::string_view text, RangeMarks const& range, std::string_view number,
                 std::size_t start) {
        std::string next(text.substr(0, range.open));
        next += number;
        next += cut(text, range.close + 1);
        if (!range.isClosed() && next.find('(', start) != none)
            throw IllegalArgumentException("A range has no closing bracket.");
        expand(std::move(next), start);
    }

    RangeBudget budget;
};

}  // namespace

std::vector<std::string> expandForm(std::string text) {
    Expansion expansion;
    expansion.expand(std::move(text), 0);
    return std::move(expansion.texts);
}

}  // namespace FrameDriver::XML
