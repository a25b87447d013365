#include "tests/support/AllocationCount.h"

#if QFD_COUNTS_ALLOCATIONS

#include "template/ContextStore.h"
#include "template/DecoratorTable.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Decorators run for every FID and every issue: they must not allocate beyond the text that they
// return, and nothing at all where that text fits into a string object.

namespace FrameDriver::Template {
namespace {

std::unique_ptr<SegmentDecorator> make(std::string_view word) {
    for (auto const& row : decoratorTable()) {
        if (word.starts_with(row.keyword))
            return row.make(word);
    }
    return nullptr;
}

struct Row {
    std::string_view word;
    std::string_view value;
    std::string_view result;
};

class DecoratorAllocations : public testing::Test {
  protected:
    DecoratorAllocations() {
        store.set("VIDEO.FRAMERATE", "50");
        store.set("VIDEO.SCANTYPE", "1");
        store.set("SETTINGS.AUTO.TRANSRATE.DISPLAY", "TIME");
        store.set("EMEM.E.LATEST.EFFDUR", "2");
        store.set("KEY", "1");
        store.set("ROUTER.R.NEXTID", "3");
        store.set("R1.NAME", "CAM");
        store.set("ME1.PRIMARY.TRANSI.FADERDIRECTION", "UP");
        store.set("ME1.PRIMARY.TRANSI.FADERDIRECTION.LOCK", "OFF");
        store.set("DEVICE1.CLIP_STACK", "7::a::0>>");
        store.set("DEVICE2.CLIP_STACK", "");
        store.set("LOGICAL.INPUT9.PHYSICAL.SOURCE", "7");
    }

    void expectAllocations(std::size_t expected, std::vector<Row> const& rows) {
        for (auto const& [word, value, result] : rows) {
            SCOPED_TRACE(word);
            auto const decorator = make(word);
            std::string const input(value);
            std::size_t const before = Testing::allocations;
            std::string const output = decorator->decorate(input, &store);
            std::size_t const counted = Testing::allocations - before;
            EXPECT_EQ(output, result);
            EXPECT_EQ(counted, expected);
        }
    }

    ContextStore store;
};

TEST_F(DecoratorAllocations, AShortResultTakesNone) {
    expectAllocations(0, {{"enum:1=>ON,0=>OFF", "1", "ON"},
                          {"backgroundEnumToName", "0", "BGDA"},
                          {"backgroundNameToEnum", "A", "0"},
                          {"logicalMachineNumber", "65535", "NONE"},
                          {"increment", "7", "8"},
                          {"decrement", "7", "6"},
                          {"scale:0.5", "3", "1.5"},
                          {"round", "2.5", "3"},
                          {"hexToDecimal", "ff", "255"},
                          {"stringToHex", "AB", "4142"},
                          {"decimalToHex", "-1", "ffffffff"},
                          {"decimalUnsignedToHex", "255", "ff"},
                          {"transitionElementCombiner", "ME1.PRIMARY", "0"},
                          {"priorityCombiner=NEXT", "ME1.PRIMARY", "0"},
                          {"priorityExtractor=1", "0", "12345678"},
                          {"bitmask=1,set=ON,clear=OFF", "1", "ON"},
                          {"leverarm=1,bank=0,emem=false", "2047.5", "0.5"},
                          {"directionSelector=1,bank=0,emem=false", "1", "UP"},
                          {"width=6,padding= ", "7", "     7"},
                          {"aggregate=KEY,min=0,max=10", "1", "2"},
                          {"isSplit", "ME1.KEY1", "OFF"},
                          {"mappingCorrector=48", "49", "51"},
                          {"routerIdLookUp=R", "CAM", "1"},
                          {"isEmpty", "", "true"},
                          {"isEqualTo:KEY", "1", "true"},
                          {"currentClipLength", "1", "0"},
                          {"isSequenceComplete", "1->2/2->2", "true"},
                          {"clipstackElement=1,field=itemId", "1", "7"},
                          {"logicalSourceListExtractor", "7", "9 "},
                          {"nextElementExtractor", "12 14 ", "12"},
                          {"nextElementRemover", "12 14 ", "14 "}});
}

TEST_F(DecoratorAllocations, AShortDisplayTakesNone) {
    expectAllocations(0, {{"format:float_as_integer", "1.0", "1065353216"},
                          {"format:percent", "12.34", "12.3%"},
                          {"format:degree", "90", "90.0\xB0"},
                          {"format:screenunit", "1", "1.000"},
                          {"format:seconds_to_ememledbar,me=E", "1", "2047.5"},
                          {"format:seconds_to_frames", "1.5", "38"},
                          {"format:seconds_to_timecode,SS:FF:*N/F", "1.5", "01:12:* N"},
                          {"format:seconds_to_timecode,SS:FF:*", "-1.5", "-01:12:*"},
                          {"format:seconds_to_autotrans", "1.5", "1.12"},
                          {"format:frames_to_seconds", "1.05", "1.2"},
                          {"format:frames_to_timecode", "26", "00:00:00:26"},
                          {"format:fields_to_timecode", "51", "00:00:01:00"},
                          {"format:timecode_to_frames", "00:00:01:05", "30"},
                          {"format:timecode_to_fields", "00:00:01:05", "60"}});
}

// One for the entries; the text itself fits.
TEST_F(DecoratorAllocations, AClipStackChangeTakesOneForTheEntries) {
    expectAllocations(1, {{"clipstackBuilder=none,offset=0", "1>", "7::a::0>>"},
                          {"clipstackBuilder=insert,offset=0", "2>7::b::0", "7::b::0>>"}});
}

TEST_F(DecoratorAllocations, ALongResultTakesOne) {
    expectAllocations(1, {{"increment", "no number at all here", "no number at all here"},
                          {"width=20,padding=0", "7", "00000000000000000007"},
                          {"stringToHex", "ABCDEFGHI", "414243444546474849"},
                          {"nextElementRemover", "1 22 333 4444 55555 ", "22 333 4444 55555 "}});
}

}  // namespace
}  // namespace FrameDriver::Template

#endif
