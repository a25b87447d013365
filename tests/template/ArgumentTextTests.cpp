#include "template/ArgumentText.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

TEST(ArgumentText, BehindTheFirstColonOrTheWholeWord) {
    EXPECT_EQ(behindColon("scale:0.5"), "0.5");
    EXPECT_EQ(behindColon("isEqualTo:A:B"), "A:B");
    EXPECT_EQ(behindColon("scale:"), "");
    EXPECT_EQ(behindColon("scale=0.5"), "scale=0.5");
}

TEST(ArgumentText, BehindTheFirstEqualsOrTheWholeWord) {
    EXPECT_EQ(behindEquals("routerIdLookUp=ROUTER.1"), "ROUTER.1");
    EXPECT_EQ(behindEquals("priorityCombiner=A=B"), "A=B");
    EXPECT_EQ(behindEquals("priorityCombiner="), "");
    EXPECT_EQ(behindEquals("priorityCombiner:A"), "priorityCombiner:A");
}

struct Row {
    std::string_view word, first, second, third;
};

// As "bitmask" is cut.
TEST(ArgumentText, ThreeFieldsUpToTheirCommas) {
    constexpr Row rows[] = {
        {"bitmask=80,set=ON,clear=OFF", "80", "ON", "OFF"},
        {"bitmask=80,=ON,=OFF", "80", "ON", "OFF"},
        {"bitmask anything=80,a=,b=", "80", "", ""},
        {"bitmask=80,a=ON,b=O,F=F", "80", "ON", "O,F=F"},
        // No further "=": the search wraps to the start of the word.
        {"bitmask=80", "80", "bitmask=80", "bitmask=80"},
        {"bitmask=80,a=ON", "80", "ON", "bitmask=80,a=ON"},
        {"bitmask", "bitmask", "bitmask", "bitmask"},
        {"bitmask=80,ON,OFF", "80", "bitmask=80,ON,OFF", "bitmask=80,ON,OFF"},
        // A comma ahead of the first "=" ends no field, but the search goes on from it.
        {"bitmask,=80,a=ON", "80,a=ON", "80", "ON"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.word);
        ArgumentFields fields(row.word);
        EXPECT_EQ(fields.firstToFirstComma(), row.first);
        EXPECT_EQ(fields.nextToComma(), row.second);
        EXPECT_EQ(fields.nextToEnd(), row.third);
    }
}

// As "leverarm" is cut: the second field is a number, which ends by itself.
TEST(ArgumentText, FieldsThatRunToTheEnd) {
    constexpr Row rows[] = {
        {"leverarm=1,bank=2,emem=true", "1", "2,emem=true", "true"},
        {"leverarm=1,bank=2=true", "1", "2=true", "true"},
        {"leverarm=1,bank=2", "1", "2", "leverarm=1,bank=2"},
        {"leverarm=1", "1", "leverarm=1", "1"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.word);
        ArgumentFields fields(row.word);
        EXPECT_EQ(fields.firstToFirstComma(), row.first);
        EXPECT_EQ(fields.nextToEnd(), row.second);
        EXPECT_EQ(fields.nextToEnd(), row.third);
    }
}

// As "clipstackElement" is cut.
TEST(ArgumentText, FirstFieldUpToTheCommaBehindItsEquals) {
    constexpr Row rows[] = {
        {"clipstackElement=0,field=itemId", "0", "itemId", ""},
        {"clipstackElement,=0,field=itemId", "0", "itemId", ""},
        {"clipstackElement=0", "0", "clipstackElement=0", ""},
        {"clipstackElement", "clipstackElement", "clipstackElement", ""},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.word);
        ArgumentFields fields(row.word);
        EXPECT_EQ(fields.nextToComma(), row.first);
        EXPECT_EQ(fields.nextToEnd(), row.second);
    }
}

// "width=5" pads with "w": the first character of a padding that isn't there.
TEST(ArgumentText, PaddingThatIsMissingIsTheWholeWord) {
    ArgumentFields fields("width=5");
    EXPECT_EQ(fields.firstToFirstComma(), "5");
    EXPECT_EQ(fields.nextToEnd(), "width=5");
    ArgumentFields empty("width=4,padding=");
    EXPECT_EQ(empty.firstToFirstComma(), "4");
    EXPECT_EQ(empty.nextToEnd(), "");
}

}  // namespace
}  // namespace FrameDriver::Template
