#include "foundation/TextSearch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace FrameDriver::Tools {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr auto npos = std::string_view::npos;

TEST(TextSearch, CutReachesToTheEndForAWrappedLength) {
    struct Row {
        std::string_view text;
        std::size_t start, length;
        std::string_view expected;
    };
    constexpr Row rows[] = {
        {"abc", 0, 2, "ab"}, {"abc", 1, npos, "bc"},
        {"abc", 1, 9, "bc"}, {"abc", 3, 1, ""},
        {"", 0, npos, ""},   {"abc", 1, static_cast<std::size_t>(0) - 5, "bc"},
        {"abc", 0, 0, ""},   {"abc", npos + 1, npos, "abc"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(cut(row.text, row.start, row.length), row.expected) << row.start;
}

TEST(TextSearch, CutBehindTheEndThrowsTheTextThatLogsKnow) {
    for (auto const start : {std::size_t{4}, npos}) {
        try {
            cut("abc", start);
            ADD_FAILURE() << "no exception for " << start;
        } catch (std::out_of_range const& exception) {
            EXPECT_STREQ(exception.what(), "invalid string position");
        }
    }
}

TEST(TextSearch, FindAnyOfGivesTheFirstMemberAtOrBehindThePosition) {
    EXPECT_EQ(findAnyOf("a=b>c", "=>"), 1u);
    EXPECT_EQ(findAnyOf("a=b>c", "=>", 1), 1u);
    EXPECT_EQ(findAnyOf("a=b>c", "=>", 2), 3u);
    EXPECT_EQ(findAnyOf("a=b>c", "=>", 4), npos);
    EXPECT_EQ(findAnyOf("a=b>c", "", 0), npos);
    EXPECT_EQ(findAnyOf("", "=>", 9), npos);
}

TEST(TextSearch, SplitCutsAtEveryMemberAndDropsEmptyPieces) {
    EXPECT_THAT(split("a,b,c", ","), ElementsAre("a", "b", "c"));
    EXPECT_THAT(split(",,a,,b,,", ","), ElementsAre("a", "b"));
    EXPECT_THAT(split("k=>v", "=>"), ElementsAre("k", "v"));
    EXPECT_THAT(split("a>b=c", "=>"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(split("abc", ","), ElementsAre("abc"));
    EXPECT_THAT(split(" a , b ", ","), ElementsAre(" a ", " b "));
    EXPECT_THAT(split("a\x92"
                      "b",
                      "\x92"),
                ElementsAre("a", "b"));
    EXPECT_THAT(split("abc", ""), ElementsAre("abc"));
    EXPECT_THAT(split("", ","), IsEmpty());
    EXPECT_THAT(split(",,,", ","), IsEmpty());
}

TEST(TextSearch, PiecesTellWhatTheyHaveNotLookedAt) {
    Pieces pieces("a,,b,c", ",");
    std::string_view piece;
    ASSERT_TRUE(pieces.next(piece));
    EXPECT_EQ(piece, "a");
    EXPECT_EQ(pieces.remainder(), ",b,c");
    ASSERT_TRUE(pieces.next(piece));
    EXPECT_EQ(piece, "b");
    EXPECT_EQ(pieces.remainder(), "c");
    ASSERT_TRUE(pieces.next(piece));
    EXPECT_FALSE(pieces.next(piece));
    EXPECT_EQ(piece, "c") << "left alone behind the last";
}

}  // namespace
}  // namespace FrameDriver::Tools
