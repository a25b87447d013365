#include "conversion/SearchedText.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace FrameDriver::Conversion {
namespace {

TEST(SearchedText, FindsWhatAPlainSearchFinds) {
    std::mt19937 random(1);
    SearchedText searched;
    for (int i = 0; i < 20'000; ++i) {
        // All sizes around the steps of the search, with few different bytes.
        std::string text(random() % 200, ' ');
        for (auto& byte : text)
            byte = "ab\x92\0"[random() % 4];
        std::string literal(random() % 6, ' ');
        for (auto& byte : literal)
            byte = "ab\x92\0"[random() % 4];
        if (random() % 4 == 0 && !text.empty())
            literal = text.substr(random() % text.size(), random() % 100);
        auto const position = random() % (text.size() + 3);
        searched.assign(text);
        ASSERT_EQ(searched.view(), text);
        ASSERT_EQ(searched.find(literal, position), text.find(literal, position))
            << ::testing::PrintToString(text) << " " << ::testing::PrintToString(literal) << " "
            << position;
    }
}

TEST(SearchedText, AnOlderAndLongerTextLeavesNoTrace) {
    SearchedText searched("0123456789abc");
    searched.assign("0123");
    EXPECT_EQ(searched.find("4", 0), std::string::npos);
    EXPECT_EQ(searched.find("34", 0), std::string::npos);
    EXPECT_EQ(searched.find("3", 0), 3U);
    searched.assign("");
    EXPECT_EQ(searched.find("0", 0), std::string::npos);
    EXPECT_EQ(searched.find("", 0), 0U);
    EXPECT_EQ(searched.find("", 1), std::string::npos);
}

TEST(SearchedText, NothingIsFoundInNoText) {
    SearchedText const searched;
    EXPECT_EQ(searched.view(), "");
    EXPECT_EQ(searched.find("a", 0), std::string::npos);
    EXPECT_EQ(searched.find("", 0), 0U);
}

}  // namespace
}  // namespace FrameDriver::Conversion
