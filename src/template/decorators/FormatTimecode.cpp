#include "template/decorators/FormatTimecode.h"

#include "foundation/NumberText.h"
#include "foundation/TextSearch.h"
#include "foundation/ValueConversions.h"
#include "template/decorators/FormatRate.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace FrameDriver::Template::Format {
namespace {

// Frame numbers that drop-frame counting leaves out: two each minute but every tenth.
constexpr std::int32_t dropRate = 30;
constexpr std::int32_t framesPerDropMinute = dropRate * 60;
constexpr std::int32_t droppedPerHour = 108;
constexpr std::int32_t framesPerTenMinutes = 17982;

std::string timecodeText(std::int64_t hours, std::int64_t minutes, std::int64_t seconds,
                         char separator, std::int64_t frames) {
    std::string text;
    appendTwoDigits(text, hours);
    text += ':';
    appendTwoDigits(text, minutes);
    text += ':';
    appendTwoDigits(text, seconds);
    text += separator;
    appendTwoDigits(text, frames);
    return text;
}

std::string timecodeText(std::uint32_t seconds, char separator, std::int32_t frameField) {
    return timecodeText(seconds / 3600, seconds % 3600 / 60, seconds % 60, separator, frameField);
}

// In 32-bit float, as displays expect it of long times. A negative count keeps the low 32 bits.
std::uint32_t wholeSeconds(std::int32_t count, std::int32_t perSecond) {
    float const seconds = static_cast<float>(count) / static_cast<float>(perSecond);
    return static_cast<std::uint32_t>(Tools::truncateToInt64(double{seconds}));
}

std::string dropFrameTimecode(std::int32_t frames) {
    constexpr std::int32_t perHour = dropRate * 3600 - droppedPerHour;
    std::int32_t const hours = frames / perHour;
    std::int32_t rest = frames % perHour;
    std::int32_t minutes = 0;
    // The frame at exactly ten minutes isn't above the bound and so goes minute by minute, which
    // makes it two frames high: "00:10:00;02" ahead of "00:10:00;01". Displays show it so.
    if (rest > framesPerTenMinutes) {
        std::int32_t const tens = (rest - framesPerTenMinutes - 1) / framesPerTenMinutes + 1;
        rest -= tens * framesPerTenMinutes;
        minutes = tens * 10;
    }
    for (; rest >= framesPerDropMinute; ++minutes)
        rest -= framesPerDropMinute - 2;
    return timecodeText(hours, minutes, rest / dropRate, ';', rest % dropRate);
}

struct TimecodeFields {
    std::uint32_t hours;
    std::uint32_t minutes;
    std::uint32_t seconds;
    std::uint32_t frames;
};

/// The text from `start` to the next ":"; `start` moves behind that ":", or to the start of the
/// text if there is none.
std::uint32_t fieldToColon(std::string_view text, std::size_t& start) {
    auto const colon = text.find(':', start);
    auto const field = Tools::cut(text, start, colon - start);
    start = colon + 1;
    return Tools::stringToUInt32(field);
}

TimecodeFields parseTimecode(std::string_view text) {
    std::size_t start = 0;
    TimecodeFields fields{};
    fields.hours = fieldToColon(text, start);
    fields.minutes = fieldToColon(text, start);
    fields.seconds = fieldToColon(text, start);
    fields.frames = Tools::stringToUInt32(Tools::cut(text, start));
    return fields;
}

// All unsigned: a field may be negative in the text, and sums then wrap.
std::uint32_t countFrames(TimecodeFields const& fields, std::uint32_t fps) {
    return fields.hours * fps * 3600 + fields.minutes * fps * 60 + fields.seconds * fps +
           fields.frames;
}

std::uint32_t countDropFrames(TimecodeFields const& fields, std::uint32_t fps) {
    std::uint32_t const perHour = fps * 3600 - droppedPerHour;
    std::uint32_t const halfMinutes = (fps * 30 - 1) * fields.minutes + fields.minutes / 10;
    return perHour * fields.hours + halfMinutes * 2 + fields.seconds * fps + fields.frames;
}

std::string decimal(std::uint32_t number) {
    std::string text;
    Tools::appendUInt32(text, number);
    return text;
}

}  // namespace

std::string framesToTimecode(std::string const& value, std::string const& option,
                             ContextStore const*) {
    std::int32_t const frames = Tools::int32Or(value, 0);
    if (option == "DROPFRAME")
        return dropFrameTimecode(frames);
    std::int32_t const fps = option == "50HZ" ? 25 : 30;
    return timecodeText(wholeSeconds(frames, fps), ':', frames % fps);
}

std::string fieldsToTimecode(std::string const& value, std::string const&,
                             ContextStore const* store) {
    VideoRate rate;
    if (!readRate(*store, rate))
        return noStandard;
    std::int32_t const fields = Tools::int32Or(value, 0);
    std::int32_t const scan = numberAt(*store, "VIDEO.SCANTYPE");
    std::int32_t const fps = rate.framesPerSecond;
    std::int32_t const perFrame = scan != 0 || rate.number > 30 ? 2 : 1;
    // Only a positive odd number leaves 1.
    char const separator = fields % 2 == 1 ? ':' : '.';
    return timecodeText(wholeSeconds(fields, fps * perFrame), separator, fields / perFrame % fps);
}

std::string timecodeToFrames(std::string const& value, std::string const& option,
                             ContextStore const* store) {
    VideoRate rate;
    if (!readRate(*store, rate))
        return noStandard;
    auto const fps = static_cast<std::uint32_t>(rate.framesPerSecond);
    auto const fields = parseTimecode(value);
    return decimal(option == "DROPFRAME" ? countDropFrames(fields, fps) : countFrames(fields, fps));
}

std::string timecodeToFields(std::string const& value, std::string const&,
                             ContextStore const* store) {
    VideoRate rate;
    if (!readRate(*store, rate))
        return noStandard;
    auto const fps = static_cast<std::uint32_t>(rate.framesPerSecond);
    return decimal(2 * countFrames(parseTimecode(value), fps));
}

}  // namespace FrameDriver::Template::Format
