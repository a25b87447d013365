#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

TEST(FormatDecorator, FloatAsIntegerShowsTheBits) {
    expectRows("format:float_as_integer", {{"1.0", "1065353216"},
                                           {"-1", "-1082130432"},
                                           {"0", "0"},
                                           {"-0", "-2147483648"},
                                           {"abc", "0"},
                                           {"", "0"}});
}

TEST(FormatDecorator, PercentShowsOneDecimal) {
    expectRows("format:percent",
               {{"12.34", "12.3%"}, {"12.35x", "12.4%"}, {"-0.04", "-0.0%"}, {"1.5.5", "1.5%"}});
}

TEST(FormatDecorator, PercentWithoutAPointReadsNoNumber) {
    expectRows("format:percent",
               {{"12", "12.0%"}, {"abc", "abc.0%"}, {"", ".0%"}, {"1e3", "1e3.0%"}});
}

TEST(FormatDecorator, PercentWithAPointAndNoNumberIsZero) {
    expectRows("format:percent", {{"abc.", "0.0%"}, {".", "0.0%"}});
}

TEST(FormatDecorator, DegreeEndsInTheSingleByteDegreeSign) {
    expectRows("format:degree", {{"90", "90.0\xB0"}, {"12.34", "12.3\xB0"}, {"", ".0\xB0"}});
}

TEST(FormatDecorator, ScreenUnitShowsThreeDecimals) {
    expectRows("format:screenunit", {{"1", "1.000"},
                                     {"0.0005", "0.001"},
                                     {"-1.2345", "-1.235"},
                                     {"1e6", "1000000.000"},
                                     {"abc", "0.000"},
                                     {"", "0.000"}});
}

TEST(FormatDecorator, AnyOtherKindPassesTheValue) {
    for (auto const* word : {"format:nothing", "format:", "format", "format:Percent",
                             "format:percent ", "format:percentage", "format: percent"}) {
        expectRows(word, {{"1.234", "1.234"}, {"", ""}});
        EXPECT_EQ(printed(word), "format:none");
    }
}

TEST(FormatDecorator, TheKindEndsAtTheFirstComma) {
    expectRows("format:percent,whatever", {{"1", "1.0%"}});
    expectRows("formatted as:percent", {{"1", "1.0%"}});
}

struct PrintedRow {
    std::string_view word;
    std::string_view text;
};

TEST(FormatDecorator, PrintsItsKind) {
    for (auto const& [word, text] : std::vector<PrintedRow>{
             {"format:float_as_integer", "format:float_as_integer"},
             {"format:percent", "format:percent"},
             {"format:degree", "format:degree"},
             {"format:screenunit", "format:screenunit"},
             {"format:seconds_to_ememledbar,me=ME1", "format:seconds_to_ememledbar"},
             {"format:seconds_to_frames", "format:seconds_to_frames"},
             {"format:seconds_to_timecode,SS:FF:*", "format:seconds_to_timecode:SS:FF:*"},
             {"format:frames_to_seconds", "format:frames_to_seconds"},
             {"format:frames_to_timecode,50HZ", "format:frames_to_timecode"},
             {"format:fields_to_timecode", "format:fields_to_timecode"},
             {"format:timecode_to_frames,DROPFRAME", "format:timecode_to_frames"},
             {"format:timecode_to_fields", "format:timecode_to_fields"},
             {"format:timecode_to_seconds,SS.FF", "format:timecode_to_seconds:SS.FF"}}) {
        EXPECT_EQ(printed(word), text);
    }
}

// The two words run together; dumps of templates have always shown it so.
TEST(FormatDecorator, AutotransPrintsAFixedOddName) {
    EXPECT_EQ(printed("format:seconds_to_autotrans"), "format:seconds_to_autotransnone");
}

TEST(FormatDecorator, WithoutACommaTheOptionIsTheWholeWord) {
    EXPECT_EQ(printed("format:seconds_to_timecode"),
              "format:seconds_to_timecode:format:seconds_to_timecode");
    EXPECT_EQ(decorate("format:seconds_to_timecode", "1", {{"VIDEO.FRAMERATE", "25"}}), "INV");
    EXPECT_EQ(decorate("format:frames_to_timecode", "26"), "00:00:00:26");
}

}  // namespace
}  // namespace FrameDriver::Template
