#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

State const rate25{{"VIDEO.FRAMERATE", "25"}};
State const rate30{{"VIDEO.FRAMERATE", "30"}};

TEST(VideoRate, MapsTheRateNumberToFramesPerSecond) {
    for (auto const& [number, frames] : std::vector<Row>{{"24", "24"},
                                                         {"48", "24"},
                                                         {"25", "25"},
                                                         {"50", "25"},
                                                         {"30", "30"},
                                                         {"60", "30"},
                                                         {"59.94", "30"},
                                                         {"0", "30"},
                                                         {"-25", "30"},
                                                         {"PAL", "30"},
                                                         {"", "30"},
                                                         {"25p", "25"},
                                                         {"99999999999", "30"}}) {
        SCOPED_TRACE(number);
        EXPECT_EQ(decorate("format:seconds_to_frames", "1", {{"VIDEO.FRAMERATE", number}}), frames);
    }
}

TEST(SecondsToFrames, AddsAHalfAndTruncates) {
    expectRows("format:seconds_to_frames", rate25,
               {{"1.5", "38"},
                {"-1.5", "-37"},
                {"-0.01", "0"},
                {"0", "0"},
                {"1e9", "24999999488"},
                {"abc", "0"},
                {"", "0"}});
}

TEST(SecondsToFrames, WithoutARateIsInvalid) {
    expectRows("format:seconds_to_frames", {{"1.5", "INV"}, {"abc", "INV"}});
}

TEST(SecondsToTimecode, WithSourceShowsMarkAndSource) {
    expectRows("format:seconds_to_timecode,SS:FF:*N/F", rate25,
               {{"1.5", "01:12:* N"},
                {"2", "02:00:  N"},
                {"100", "100:00:  N"},
                {"0.96", "00:24:  N"},
                {"abc", "00:00:  N"},
                {"", "00:00:  N"}});
}

// 0.04 s is a frame, but (12.04 - 12) x 25 is a little less in float; a hundredth is added.
TEST(SecondsToTimecode, AFrameThatFloatLeavesALittleShortCounts) {
    expectRows("format:seconds_to_timecode,SS:FF:*N/F", rate25, {{"12.04", "12:01:  N"}});
    expectRows("format:seconds_to_timecode,SS:FF:*", rate25,
               {{"0.0395", "00:00:*"}, {"0.0396", "00:01: "}});
}

// 0.016 s is 0.4 frames in float, which is a little more than 0.4 in double.
TEST(SecondsToTimecode, TheMarkNeedsMoreThanFourTenthsOfAFrame) {
    expectRows("format:seconds_to_timecode,SS:FF:*", rate25,
               {{"0.0159", "00:00: "}, {"0.016", "00:00:*"}});
}

TEST(SecondsToTimecode, TheSourceTellsAForcedDuration) {
    for (auto const& [text, result] : std::vector<Row>{
             {"ON", "01:12:* F"}, {"on", "01:12:* N"}, {"OFF", "01:12:* N"}, {"", "01:12:* N"}}) {
        State state = rate25;
        state.push_back({"EMEM.MASTER.FORCEDDURATION", text});
        EXPECT_EQ(decorate("format:seconds_to_timecode,SS:FF:*N/F", "1.5", state), result);
    }
}

// What an unsigned number of seconds makes of it.
TEST(SecondsToTimecode, WithSourceANegativeTimeIsNoTime) {
    expectRows("format:seconds_to_timecode,SS:FF:*N/F", rate25,
               {{"-0.5", "00:-12:  N"}, {"-1.5", "4294967295:-107374182399:  N"}});
}

TEST(SecondsToTimecode, WithoutSourceANegativeTimeHasASign) {
    expectRows("format:seconds_to_timecode,SS:FF:*", rate30,
               {{"-1.5", "-01:15: "},
                {"1.25", "01:07:*"},
                {"-0.5", "-00:15: "},
                {"-0", "00:00: "},
                {"0", "00:00: "},
                {"abc", "00:00: "},
                {"3000000000", "3000000000:00: "}});
}

TEST(SecondsToTimecode, AnyOtherOptionIsInvalid) {
    expectRows("format:seconds_to_timecode,SS:FF", rate25, {{"1.5", "INV"}});
    expectRows("format:seconds_to_timecode,", rate25, {{"1.5", "INV"}});
    expectRows("format:seconds_to_timecode", rate25, {{"1.5", "INV"}});
}

TEST(SecondsToTimecode, WithoutARateIsInvalid) {
    expectRows("format:seconds_to_timecode,SS:FF:*", {{"1.5", "INV"}});
    expectRows("format:seconds_to_timecode,SS:FF:*N/F", {{"1.5", "INV"}});
}

struct DisplayRow {
    State state;
    std::string_view result;
};

TEST(SecondsToAutotrans, FollowsTheDisplaySetting) {
    constexpr std::string_view display = "SETTINGS.AUTO.TRANSRATE.DISPLAY";
    Entry const rate{"VIDEO.FRAMERATE", "25"};
    for (auto const& [state, result] : std::vector<DisplayRow>{{{{display, "FRAMES"}, rate}, "38"},
                                                               {{{display, "FRAMES"}}, "INV"},
                                                               {{{display, "TIME"}, rate}, "1.12"},
                                                               {{{display, "TIME"}}, ""},
                                                               {{{display, "time"}, rate}, ""},
                                                               {{{display, ""}, rate}, ""},
                                                               {{rate}, ""},
                                                               {{}, ""}}) {
        SCOPED_TRACE(result);
        EXPECT_EQ(decorate("format:seconds_to_autotrans", "1.5", state), result);
    }
}

TEST(SecondsToAutotrans, PadsTheFramesAndNotTheSeconds) {
    expectRows("format:seconds_to_autotrans",
               {{"SETTINGS.AUTO.TRANSRATE.DISPLAY", "TIME"}, {"VIDEO.FRAMERATE", "25"}},
               {{"2", "2.00"}, {"12.04", "12.01"}, {"abc", "0.00"}, {"", "0.00"}});
}

TEST(SecondsToLedBar, ScalesAgainstTheDuration) {
    expectRows("format:seconds_to_ememledbar,me=ME1", {{"EMEM.ME1.LATEST.EFFDUR", "2"}},
               {{"1", "2047.5"}, {"3", "6142.5"}, {"-1", "-2047.5"}, {"abc", "0"}, {"", "0"}});
    expectRows("format:seconds_to_ememledbar,me=ME1", {{"EMEM.ME1.LATEST.EFFDUR", "3"}},
               {{"1", "1365"}});
}

// Panels rely on the full bar.
TEST(SecondsToLedBar, ADurationOfExactlyOneIsAFullBar) {
    expectRows("format:seconds_to_ememledbar,me=ME1", {{"EMEM.ME1.LATEST.EFFDUR", "1"}},
               {{"0", "4095"}, {"0.5", "4095"}, {"abc", "4095"}, {"", "4095"}});
    expectRows("format:seconds_to_ememledbar,me=ME1", {{"EMEM.ME1.LATEST.EFFDUR", "1.0s"}},
               {{"0", "4095"}});
}

TEST(SecondsToLedBar, WithoutADurationIsZero) {
    for (auto const* duration : {"0", "-0", "abc", ""}) {
        expectRows("format:seconds_to_ememledbar,me=ME1", {{"EMEM.ME1.LATEST.EFFDUR", duration}},
                   {{"1", "0"}});
    }
    expectRows("format:seconds_to_ememledbar,me=ME1", {{"1", "0"}});
}

TEST(SecondsToLedBar, TheOptionStandsBehindTheFirstEqualsOfItsPart) {
    expectRows("format:seconds_to_ememledbar,a=b=c", {{"EMEM.b=c.LATEST.EFFDUR", "2"}},
               {{"1", "2047.5"}});
    expectRows("format:seconds_to_ememledbar,ME1", {{"EMEM.ME1.LATEST.EFFDUR", "2"}},
               {{"1", "2047.5"}});
}

TEST(FramesToSeconds, ReadsSecondsAndFrames) {
    for (auto const* word : {"format:frames_to_seconds", "format:timecode_to_seconds",
                             "format:timecode_to_seconds,any"}) {
        expectRows(word, rate25,
                   {{"1.05", "1.2"},
                    {"75", "3"},
                    {"-1.05", "-1.2"},
                    {"1.", "1"},
                    {".05", "0.2"},
                    {"0", "0"},
                    {"12x.5y", "12.2"},
                    {"abc", "0"},
                    {"", "0"},
                    {".", "0"},
                    {"1000000", "40000"}});
    }
}

TEST(FramesToSeconds, AThirdPartIsTheFieldAndAFourthTakesItBack) {
    expectRows("format:frames_to_seconds", rate25,
               {{"1.05.1", "1.22"}, {"1.05.", "1.2"}, {"1.05.1.9", "1.2"}, {"1.05.1.", "1.2"}});
}

TEST(FramesToSeconds, TheSignIsTakenOffOnce) {
    expectRows("format:frames_to_seconds", rate25, {{"--1", "0.04"}, {"-", "-0"}, {"-abc", "-0"}});
}

TEST(FramesToSeconds, WithoutARateIsInvalid) {
    expectRows("format:frames_to_seconds", {{"75", "INV"}});
    expectRows("format:timecode_to_seconds", {{"75", "INV"}});
}

}  // namespace
}  // namespace FrameDriver::Template
