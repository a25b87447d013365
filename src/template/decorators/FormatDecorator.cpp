#include "template/decorators/FormatDecorator.h"

#include "foundation/NumberText.h"
#include "foundation/TextSearch.h"
#include "template/decorators/FormatSeconds.h"
#include "template/decorators/FormatTimecode.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <utility>

namespace FrameDriver::Template {
namespace {

using Render = std::string (*)(std::string const& value, std::string const& option,
                               ContextStore const* store);

std::string unchanged(std::string const& value, std::string const&, ContextStore const*) {
    return value;
}

/// The bits of the float, as the frame carries them.
std::string floatAsInteger(std::string const& value, std::string const&, ContextStore const*) {
    std::string text;
    Tools::appendInt32(text, std::bit_cast<std::int32_t>(Tools::floatOr(value, 0.0F)));
    return text;
}

/// One decimal and a unit. Text without a point isn't read at all and so keeps what it is: "abc"
/// becomes "abc.0" and the unit.
std::string withUnit(std::string const& value, char unit) {
    std::string text;
    if (value.find('.') == std::string::npos)
        text.append(value).append(".0");
    else
        Tools::appendFixed(text, Tools::floatOr(value, 0.0F), 1);
    text += unit;
    return text;
}

std::string percent(std::string const& value, std::string const&, ContextStore const*) {
    return withUnit(value, '%');
}

// The degree sign of Latin-1, a single byte.
std::string degree(std::string const& value, std::string const&, ContextStore const*) {
    return withUnit(value, '\xB0');
}

std::string screenUnit(std::string const& value, std::string const&, ContextStore const*) {
    std::string text;
    Tools::appendFixed(text, Tools::floatOr(value, 0.0F), 3);
    return text;
}

enum class Option {
    none,          // not kept
    behindComma,   // everything behind the first "," of the word
    behindEquals,  // of that, everything behind its first "="
};

struct KindRow {
    std::string_view word;  // compared as a whole
    Option option;
    std::string_view printed;
    bool printsOption;
    Render render;
};

// In the order of FormatDecorator::Kind. A row without a word stands for all words that have no
// row. The last printed text is odd and kept: template dumps are compared with older ones.
constexpr std::array<KindRow, 15> kinds{{
    {"float_as_integer", Option::none, "float_as_integer", false, floatAsInteger},
    {"", Option::none, "none", false, unchanged},
    {"percent", Option::none, "percent", false, percent},
    {"degree", Option::none, "degree", false, degree},
    {"screenunit", Option::none, "screenunit", false, screenUnit},
    {"seconds_to_ememledbar", Option::behindEquals, "seconds_to_ememledbar", false,
     Format::secondsToLedBar},
    {"seconds_to_frames", Option::none, "seconds_to_frames", false, Format::secondsToFrames},
    {"seconds_to_timecode", Option::behindComma, "seconds_to_timecode:", true,
     Format::secondsToTimecode},
    {"frames_to_seconds", Option::none, "frames_to_seconds", false, Format::framesToSeconds},
    {"frames_to_timecode", Option::behindComma, "frames_to_timecode", false,
     Format::framesToTimecode},
    {"fields_to_timecode", Option::none, "fields_to_timecode", false, Format::fieldsToTimecode},
    {"timecode_to_frames", Option::behindComma, "timecode_to_frames", false,
     Format::timecodeToFrames},
    {"timecode_to_fields", Option::none, "timecode_to_fields", false, Format::timecodeToFields},
    // Prints its option and does nothing with it.
    {"timecode_to_seconds", Option::behindComma, "timecode_to_seconds:", true,
     Format::framesToSeconds},
    {"seconds_to_autotrans", Option::none, "seconds_to_autotransnone", false,
     Format::secondsToAutotrans},
}};

constexpr KindRow const& rowOf(FormatDecorator::Kind kind) {
    return kinds[static_cast<std::size_t>(kind)];
}

FormatDecorator::Kind kindOf(std::string_view word) {
    auto const row = std::ranges::find(kinds, word, &KindRow::word);
    return row == kinds.end() ? FormatDecorator::Kind::none
                              : static_cast<FormatDecorator::Kind>(row - kinds.begin());
}

// Without a comma the whole word is the option: it fits none that a kind knows.
std::string_view optionOf(Option rule, std::string_view word) {
    if (rule == Option::none)
        return {};
    auto const option = Tools::cut(word, word.find(',') + 1);
    return rule == Option::behindComma ? option : Tools::cut(option, option.find('=') + 1);
}

}  // namespace

FormatDecorator::FormatDecorator(Kind formatKind, std::string kindOption)
    : kind(formatKind), option(std::move(kindOption)) {}

std::unique_ptr<FormatDecorator> FormatDecorator::fromWord(std::string_view word) {
    auto const start = word.find(':') + 1;
    auto const kind = kindOf(Tools::cut(word, start, word.find(',') - start));
    return std::make_unique<FormatDecorator>(kind, std::string(optionOf(rowOf(kind).option, word)));
}

std::string FormatDecorator::decorate(std::string const& value, ContextStore* context) const {
    return rowOf(kind).render(value, option, context);
}

std::string FormatDecorator::toString() const {
    auto const& row = rowOf(kind);
    std::string text = "format:";
    text.append(row.printed);
    if (row.printsOption)
        text.append(option);
    return text;
}

}  // namespace FrameDriver::Template
