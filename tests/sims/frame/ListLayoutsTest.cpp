#include "sims/frame/ListLayouts.h"

#include <gtest/gtest.h>

namespace FrameSim {
namespace {

TEST(ListLayout, KnowsEachListOfTheFrame) {
    struct Row {
        std::int32_t lid;
        std::size_t fields;
        std::string last;
    };
    Row const rows[] = {
        {1, 1, "Name"},
        {2, 4, "Resource Name"},
        {5, 3, "Logical DID"},
        {6, 2, "Clip Name"},
        {10, 2, "Second UInt32"},
        {12, 11, "DPM Name"},
        {15, 1, "Source Alias Id"},
        {16, 22, "Camera Source Name"},
        {19, 5, "Router Source Name"},
        {23, 4, "Register Comment"},
        {24, 3, "Source Color"},
        {32, 15, "Suite ID"},
        {35, 4, "Comment"},
        {39, 3, "Name"},
        {40, 2, "Source Alias Id"},
        {47, 6, "Context"},
        {51, 44, "Key 8 KeyWipesCount"},
        {54, 13, "Key 8"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.lid);
        auto const* layout = findListLayout(row.lid);
        ASSERT_NE(layout, nullptr);
        EXPECT_EQ(layout->size(), row.fields);
        EXPECT_EQ(layout->back().name, row.last);
    }
    EXPECT_EQ(findListLayout(0), nullptr);
    EXPECT_EQ(findListLayout(7), nullptr);
}

TEST(ListLayout, TheWidthOfANameBelongsToItsList) {
    EXPECT_EQ(findListLayout(2)->at(2), (ListField{"Device Id", DataType::UInt32}));
    EXPECT_EQ(findListLayout(19)->at(1), (ListField{"Device Id", DataType::UInt16}));
}

TEST(ListPayload, IsBigEndianWithTextsThatEndInNul) {
    ListItem item;
    item.itemId = 0x01020304;
    item.nextItemId = 5;
    item.status = -2;
    item.fields = {Value::ofInteger(DataType::UInt32, 25), Value::ofText("ab")};
    std::string payload;
    appendListHead(payload, 6, 1, 0x3e000000);
    appendItem(payload, item);
    EXPECT_EQ(payload, std::string("\0\6\0\1\x3e\0\0\0"
                                   "\1\2\3\4\0\0\0\5\xff\xfe\0\7"
                                   "\0\0\0\x19"
                                   "ab\0",
                                   27));
}

TEST(ListPayload, ADeletedItemHasASizeOfZeroAndNoFields) {
    ListItem item{.itemId = 1, .nextItemId = 0, .status = 3, .empty = true};
    item.fields = {Value::ofText("not sent")};
    std::string payload;
    appendItem(payload, item);
    EXPECT_EQ(payload, std::string("\0\0\0\1\0\0\0\0\0\3\0\0", 12));
}

TEST(ListPayload, ATextIsCutAtItsFirstNul) {
    EXPECT_EQ(fieldBytes({Value::ofText(std::string("a\0b", 3))}), std::string("a\0", 2));
}

TEST(ListFields, AreReadBackByTheLayout) {
    for (std::int32_t const lid : {1, 6, 16, 32, 51, 54}) {
        SCOPED_TRACE(lid);
        auto const& layout = *findListLayout(lid);
        auto fields = emptyFields(layout);
        if (fields.back().form() == ValueForm::text) {
            fields.back() = Value::ofText("end\x92");
        }
        auto const bytes = fieldBytes(fields);
        EXPECT_EQ(readFields(layout, bytes), fields);
        EXPECT_EQ(readFields(layout, bytes + "x"), std::nullopt);
        EXPECT_EQ(readFields(layout, std::string_view(bytes).substr(0, bytes.size() - 1)),
                  std::nullopt);
        EXPECT_EQ(readFields(layout, {}), std::nullopt);
    }
}

}  // namespace
}  // namespace FrameSim
