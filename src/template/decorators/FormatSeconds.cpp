#include "template/decorators/FormatSeconds.h"

#include "foundation/NumberText.h"
#include "template/decorators/FormatRate.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace FrameDriver::Template::Format {
namespace {

constexpr float ledBarRange = 4095.0F;

std::string floatText(float number) {
    std::string text;
    Tools::appendFloat(text, number);
    return text;
}

std::string framesText(float seconds, float fps) {
    std::string text;
    Tools::appendInt64(text, Tools::truncateToInt64(double{seconds * fps} + 0.5));
    return text;
}

/// The part of a time behind its whole seconds, in frames.
struct FramePart {
    std::int64_t frame;
    bool isOver;  // more than four tenths over the frame
};

FramePart framePart(float seconds, float whole, float fps) {
    float const exact = (seconds - whole) * fps;
    // A frame that float arithmetic left a little short still counts.
    std::int64_t const frame = Tools::truncateToInt64(double{exact} + 0.01);
    float const rest = exact - static_cast<float>(frame);
    return {frame, double{rest} > 0.4};
}

void appendSecondsAndFrames(std::string& out, std::int64_t whole, FramePart const& part) {
    appendTwoDigits(out, whole);
    out += ':';
    appendTwoDigits(out, part.frame);
    out += ':';
    out += part.isOver ? '*' : ' ';
}

// Unsigned: a negative time keeps the low 32 bits of its whole seconds.
std::uint32_t wholeSeconds(float seconds) {
    return static_cast<std::uint32_t>(Tools::truncateToInt64(double{seconds}));
}

std::string secondsWithSource(float seconds, float fps, ContextStore const& store) {
    std::uint32_t const whole = wholeSeconds(seconds);
    std::string text;
    appendSecondsAndFrames(text, whole, framePart(seconds, static_cast<float>(whole), fps));
    text += holds(store, "EMEM.MASTER.FORCEDDURATION", "ON") ? " F" : " N";
    return text;
}

std::string signedSeconds(float seconds, float fps) {
    std::string text;
    if (seconds < 0.0F) {
        text += '-';
        seconds = -seconds;
    }
    std::int64_t const whole = Tools::truncateToInt64(double{seconds});
    appendSecondsAndFrames(text, whole, framePart(seconds, static_cast<float>(whole), fps));
    return text;
}

std::string autotransTime(float seconds, float fps) {
    std::uint32_t const whole = wholeSeconds(seconds);
    std::string text;
    Tools::appendUInt32(text, whole);
    text += '.';
    appendTwoDigits(text, framePart(seconds, static_cast<float>(whole), fps).frame);
    return text;
}

/// The parts between the dots, empty ones included; of more than three only the count is kept.
struct DottedParts {
    std::array<std::string_view, 3> part{};
    std::size_t count = 0;

    explicit DottedParts(std::string_view text) {
        std::size_t start = 0;
        do {
            auto const dot = text.find('.', start);
            if (count < part.size())
                part[count] = text.substr(start, dot - start);
            ++count;
            start = dot + 1;
        } while (start != 0);  // npos + 1
    }
};

// Always from the left, in 32-bit float: displays show this sum and no better one.
float sumOfParts(DottedParts const& parts, float fps) {
    bool const framesOnly = parts.count == 1;
    float const seconds = framesOnly ? 0.0F : Tools::floatOr(parts.part[0], 0.0F);
    float const frames = Tools::floatOr(parts.part[framesOnly ? 0 : 1], 0.0F);
    float const field = parts.count == 3 ? Tools::floatOr(parts.part[2], 0.0F) : 0.0F;
    return frames / fps + seconds + field * 0.5F / fps;
}

}  // namespace

std::string secondsToFrames(std::string const& value, std::string const&,
                            ContextStore const* store) {
    VideoRate rate;
    if (!readRate(*store, rate))
        return noStandard;
    return framesText(Tools::floatOr(value, 0.0F), static_cast<float>(rate.framesPerSecond));
}

std::string secondsToTimecode(std::string const& value, std::string const& option,
                              ContextStore const* store) {
    VideoRate rate;
    if (!readRate(*store, rate))
        return noStandard;
    float const seconds = Tools::floatOr(value, 0.0F);
    auto const fps = static_cast<float>(rate.framesPerSecond);
    if (option == "SS:FF:*N/F")
        return secondsWithSource(seconds, fps, *store);
    if (option == "SS:FF:*")
        return signedSeconds(seconds, fps);
    return noStandard;
}

std::string secondsToAutotrans(std::string const& value, std::string const& option,
                               ContextStore const* store) {
    std::string const display = store->get("SETTINGS.AUTO.TRANSRATE.DISPLAY");
    if (display == "FRAMES")
        return secondsToFrames(value, option, store);
    VideoRate rate;
    if (display != "TIME" || !readRate(*store, rate))
        return {};
    return autotransTime(Tools::floatOr(value, 0.0F), static_cast<float>(rate.framesPerSecond));
}

std::string secondsToLedBar(std::string const& value, std::string const& option,
                            ContextStore const* store) {
    // An absent duration reads as no number, which is 0.
    float const duration =
        Tools::floatOr(store->get(StateKey("EMEM.", option, ".LATEST.EFFDUR")), 0.0F);
    if (duration == 0.0F)
        return "0";
    if (duration == 1.0F)
        return "4095";
    return floatText(Tools::floatOr(value, 0.0F) / duration * ledBarRange);
}

std::string framesToSeconds(std::string const& value, std::string const&,
                            ContextStore const* store) {
    VideoRate rate;
    if (!readRate(*store, rate))
        return noStandard;
    std::string_view text = value;
    bool const negative = text.starts_with('-');
    if (negative)
        text.remove_prefix(1);
    float const seconds = sumOfParts(DottedParts(text), static_cast<float>(rate.framesPerSecond));
    return floatText(negative ? seconds * -1.0F : seconds);
}

}  // namespace FrameDriver::Template::Format
