#include "Decorating.h"
#include "foundation/Exceptions.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

State const rate25{{"VIDEO.FRAMERATE", "25"}};
State const rate30{{"VIDEO.FRAMERATE", "30"}};
State const rate50{{"VIDEO.FRAMERATE", "50"}};

TEST(FramesToTimecode, CountsThirtyFramesASecondUnlessTheOptionSaysTwentyFive) {
    expectRows("format:frames_to_timecode", {{"26", "00:00:00:26"},
                                             {"30", "00:00:01:00"},
                                             {"107999", "00:59:59:29"},
                                             {"108000", "01:00:00:00"},
                                             {"abc", "00:00:00:00"},
                                             {"", "00:00:00:00"}});
    expectRows("format:frames_to_timecode,50HZ",
               {{"26", "00:00:01:01"}, {"24", "00:00:00:24"}, {"90000", "01:00:00:00"}});
    expectRows("format:frames_to_timecode,50hz", {{"26", "00:00:00:26"}});
}

TEST(FramesToTimecode, DoesNotReadTheStore) {
    expectRows("format:frames_to_timecode", rate25, {{"26", "00:00:00:26"}});
}

TEST(FramesToTimecode, HoursDoNotWrap) {
    expectRows("format:frames_to_timecode",
               {{"2592000", "24:00:00:00"}, {"10800000", "100:00:00:00"}});
}

// The seconds of long times are those of a 32-bit float.
TEST(FramesToTimecode, LongTimesAreAsInexactAsAFloat) {
    expectRows("format:frames_to_timecode", {{"2147483647", "19884:06:32:07"}});
}

TEST(FramesToTimecode, ANegativeNumberShowsItsSignInTheFrameField) {
    expectRows("format:frames_to_timecode",
               {{"-1", "00:00:00:-1"}, {"-29", "00:00:00:-29"}, {"-30", "1193046:28:15:00"}});
}

TEST(FramesToTimecode, DropFrameLeavesOutTwoNumbersAMinute) {
    expectRows("format:frames_to_timecode,DROPFRAME", {{"0", "00:00:00;00"},
                                                       {"1799", "00:00:59;29"},
                                                       {"1800", "00:01:00;02"},
                                                       {"3597", "00:01:59;29"},
                                                       {"3598", "00:02:00;02"},
                                                       {"17981", "00:09:59;29"},
                                                       {"107891", "00:59:59;29"},
                                                       {"107892", "01:00:00;00"},
                                                       {"10789200", "100:00:00;00"},
                                                       {"-1", "00:00:00;-1"},
                                                       {"abc", "00:00:00;00"}});
}

// The test for ten minutes is strict. Displays expect the jump.
TEST(FramesToTimecode, DropFrameIsTwoHighAtExactlyTenMinutes) {
    expectRows("format:frames_to_timecode,DROPFRAME", {{"17982", "00:10:00;02"},
                                                       {"17983", "00:10:00;01"},
                                                       {"35964", "00:20:00;02"},
                                                       {"35965", "00:20:00;01"}});
}

TEST(FieldsToTimecode, TellsTheFieldByTheSeparator) {
    expectRows(
        "format:fields_to_timecode", rate50,
        {{"50", "00:00:01.00"}, {"51", "00:00:01:00"}, {"52", "00:00:01.01"}, {"", "00:00:00.00"}});
}

TEST(FieldsToTimecode, CountsFramesForAProgressiveStandard) {
    expectRows("format:fields_to_timecode", rate25, {{"50", "00:00:02.00"}, {"51", "00:00:02:01"}});
    expectRows("format:fields_to_timecode", {{"VIDEO.FRAMERATE", "25"}, {"VIDEO.SCANTYPE", "0"}},
               {{"51", "00:00:02:01"}});
    expectRows("format:fields_to_timecode", {{"VIDEO.FRAMERATE", "25"}, {"VIDEO.SCANTYPE", "abc"}},
               {{"51", "00:00:02:01"}});
}

TEST(FieldsToTimecode, CountsFieldsForAnyOtherScanType) {
    expectRows("format:fields_to_timecode", {{"VIDEO.FRAMERATE", "25"}, {"VIDEO.SCANTYPE", "1"}},
               {{"51", "00:00:01:00"}});
}

TEST(FieldsToTimecode, AnUnreadableRateIsThirtyFramesOfTwoFields) {
    expectRows("format:fields_to_timecode", {{"VIDEO.FRAMERATE", "PAL"}},
               {{"61", "00:00:01:00"}, {"62", "00:00:01.01"}});
    expectRows("format:fields_to_timecode", rate30, {{"61", "00:00:02:01"}});
    expectRows("format:fields_to_timecode", {{"VIDEO.FRAMERATE", "31"}}, {{"61", "00:00:01:00"}});
}

TEST(FieldsToTimecode, ANegativeOddNumberCountsAsEven) {
    expectRows("format:fields_to_timecode", rate25,
               {{"-1", "00:00:00.-1"}, {"-51", "1193046:28:14.-1"}});
}

TEST(FieldsToTimecode, HasNoDropFrameOption) {
    expectRows("format:fields_to_timecode,DROPFRAME", rate30, {{"1800", "00:01:00.00"}});
}

TEST(FieldsToTimecode, WithoutARateIsInvalid) {
    expectRows("format:fields_to_timecode", {{"50", "INV"}, {"abc", "INV"}});
}

TEST(TimecodeToFrames, AddsUpTheFields) {
    expectRows("format:timecode_to_frames", rate25,
               {{"00:00:01:05", "30"},
                {"01:02:03:04", "93079"},
                {"1:2:3:4:5", "93079"},
                {"0:0:0:32767", "32767"},
                {" 0: 0: 1x: 5y", "30"}});
    expectRows("format:timecode_to_frames,50HZ", rate30, {{"00:00:01:05", "35"}});
}

TEST(TimecodeToFrames, DropFrameDoesNotCountWhatIsLeftOut) {
    expectRows("format:timecode_to_frames,DROPFRAME", rate30,
               {{"00:01:00:02", "1800"},
                {"00:00:59:29", "1799"},
                {"00:10:00:00", "17982"},
                {"01:00:00:00", "107892"}});
    expectRows("format:timecode_to_frames,DROPFRAME", rate25, {{"01:01:00:00", "91390"}});
}

// Fields are read by a reader that widens 16 bits with their sign.
TEST(TimecodeToFrames, ANegativeFieldWraps) {
    expectRows("format:timecode_to_frames", rate25,
               {{"-1:0:0:0", "4294877296"}, {"0:0:0:-1", "4294967295"}});
}

TEST(TimecodeToFrames, AMissingSeparatorReadsTheTextFromItsStart) {
    expectRows("format:timecode_to_frames", rate25,
               {{"1:2:3", "93076"}, {"1:2", "93027"}, {"5", "457630"}});
}

std::string failure(std::string_view word, std::string_view value, State const& state) {
    try {
        return "no failure but " + decorate(word, value, state);
    } catch (ErrorManagement::Exception::IllegalArgumentException const& exception) {
        return exception.getMessage();
    }
}

TEST(TimecodeToFrames, ABadFieldThrows) {
    for (auto const* word : {"format:timecode_to_frames", "format:timecode_to_fields"}) {
        for (auto const* value : {"", "abc", "INVALID", ":::", "0:0:0:", "x:0:0:0", "0:x:0:0",
                                  "0:0:x:0", "32768:0:0:0", "0:0:0:32768", "\xB0:0:0:0"}) {
            SCOPED_TRACE(value);
            EXPECT_EQ(failure(word, value, rate25),
                      "Unable to convert a string value into an UInt32.");
        }
    }
}

TEST(TimecodeToFrames, WithoutARateIsInvalidWhateverTheText) {
    expectRows("format:timecode_to_frames", {{"00:00:01:05", "INV"}, {"abc", "INV"}});
    expectRows("format:timecode_to_fields", {{"00:00:01:05", "INV"}, {"abc", "INV"}});
}

TEST(TimecodeToFields, IsTwiceTheFrames) {
    expectRows("format:timecode_to_fields", rate25, {{"00:00:01:05", "60"}, {"5", "915260"}});
    expectRows("format:timecode_to_fields,DROPFRAME", rate30, {{"00:01:00:02", "3604"}});
}

}  // namespace
}  // namespace FrameDriver::Template
