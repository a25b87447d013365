#include "StreamPeers.h"
#include "StreamText.h"

#include <array>
#include <bit>
#include <cstdint>
#include <iomanip>
#include <vector>

// For the sample state alone: 50 Hz interlaced, "TIME", no forced duration.

namespace FrameDriver::Template::Bench {
namespace {

using Text = std::string const&;

std::int32_t framesPerSecond(PlainState& state) {
    auto const rate = read<std::int32_t>(state["VIDEO.FRAMERATE"]);
    return rate == 25 || rate == 50 ? 25 : 30;
}

std::string floatAsInteger(Text value, PlainState&) {
    return print(std::bit_cast<std::int32_t>(read<float>(value)));
}

std::string percent(Text value, PlainState&) {
    return value.find('.') == std::string::npos
               ? value + ".0%"
               : print(std::fixed, std::setprecision(1), read<float>(value), '%');
}

std::string degree(Text value, PlainState&) {
    return value.find('.') == std::string::npos
               ? value + ".0\xB0"
               : print(std::fixed, std::setprecision(1), read<float>(value), '\xB0');
}

std::string screenUnit(Text value, PlainState&) {
    return print(std::fixed, std::setprecision(3), read<float>(value));
}

std::string ledBar(Text value, PlainState& state) {
    auto const duration = read<float>(state["EMEM.ME1.LATEST.EFFDUR"]);
    return print(read<float>(value) / duration * 4095.0F);
}

std::string secondsToFrames(Text value, PlainState& state) {
    float const frames = read<float>(value) * static_cast<float>(framesPerSecond(state));
    return print(static_cast<std::int64_t>(double{frames} + 0.5));
}

std::string secondsToTimecode(Text value, PlainState& state) {
    auto const seconds = read<float>(value);
    auto const whole = static_cast<std::int32_t>(seconds);
    float const exact =
        (seconds - static_cast<float>(whole)) * static_cast<float>(framesPerSecond(state));
    auto const frame = static_cast<std::int32_t>(double{exact} + 0.01);
    bool const over = double{exact - static_cast<float>(frame)} > 0.4;
    return print(std::setfill('0'), std::setw(2), whole, ':', std::setw(2), frame, ':',
                 over ? '*' : ' ');
}

std::string secondsToAutotrans(Text value, PlainState& state) {
    auto const seconds = read<float>(value);
    auto const whole = static_cast<std::int32_t>(seconds);
    float const exact =
        (seconds - static_cast<float>(whole)) * static_cast<float>(framesPerSecond(state));
    return print(whole, '.', std::setfill('0'), std::setw(2),
                 static_cast<std::int32_t>(double{exact} + 0.01));
}

std::string framesToSeconds(Text value, PlainState& state) {
    std::istringstream stream(value);
    std::string seconds;
    std::string frames;
    std::getline(stream, seconds, '.');
    std::getline(stream, frames, '.');
    return print(read<float>(frames) / static_cast<float>(framesPerSecond(state)) +
                 read<float>(seconds));
}

std::string timecode(std::int32_t seconds, char separator, std::int32_t frames) {
    return print(std::setfill('0'), std::setw(2), seconds / 3600, ':', std::setw(2),
                 seconds % 3600 / 60, ':', std::setw(2), seconds % 60, separator, std::setw(2),
                 frames);
}

std::string framesToTimecode(Text value, PlainState&) {
    auto const frames = read<std::int32_t>(value);
    return timecode(frames / 30, ':', frames % 30);
}

std::string fieldsToTimecode(Text value, PlainState& state) {
    auto const fields = read<std::int32_t>(value);
    auto const fps = framesPerSecond(state);
    auto const perFrame = read<std::int32_t>(state["VIDEO.SCANTYPE"]) != 0 ? 2 : 1;
    return timecode(fields / (fps * perFrame), fields % 2 == 1 ? ':' : '.',
                    fields / perFrame % fps);
}

std::uint32_t countFrames(Text value, PlainState& state) {
    std::istringstream stream(value);
    std::vector<std::uint32_t> fields;
    for (std::string field; std::getline(stream, field, ':');)
        fields.push_back(static_cast<std::uint32_t>(read<std::int16_t>(field)));
    auto const fps = static_cast<std::uint32_t>(framesPerSecond(state));
    return ((fields[0] * 60 + fields[1]) * 60 + fields[2]) * fps + fields[3];
}

std::string timecodeToFrames(Text value, PlainState& state) {
    return print(countFrames(value, state));
}

std::string timecodeToFields(Text value, PlainState& state) {
    return print(2 * countFrames(value, state));
}

constexpr auto peers = std::to_array<StreamPeer>({
    {"format:float_as_integer", "1.5", floatAsInteger},
    {"format:percent", "12.34", percent},
    {"format:degree", "12.34", degree},
    {"format:screenunit", "1.2345", screenUnit},
    {"format:seconds_to_ememledbar,me=ME1", "1.5", ledBar},
    {"format:seconds_to_frames", "1.5", secondsToFrames},
    {"format:seconds_to_timecode,SS:FF:*", "1.5", secondsToTimecode},
    {"format:seconds_to_autotrans", "1.5", secondsToAutotrans},
    {"format:frames_to_seconds", "1.05", framesToSeconds},
    {"format:timecode_to_seconds", "1.05", framesToSeconds},
    {"format:frames_to_timecode", "123456", framesToTimecode},
    {"format:fields_to_timecode", "123457", fieldsToTimecode},
    {"format:timecode_to_frames", "01:02:03:04", timecodeToFrames},
    {"format:timecode_to_fields", "01:02:03:04", timecodeToFields},
});

}  // namespace

std::span<StreamPeer const> timePeers() { return peers; }

}  // namespace FrameDriver::Template::Bench
