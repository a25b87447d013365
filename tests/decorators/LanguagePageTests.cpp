#include "LanguagePage.h"
#include "template/DecoratorTable.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

// The page for dictionary authors is run through the driver, so that no example on it lies.

namespace FrameDriver::Template {
namespace {

LanguagePage const& page() {
    static LanguagePage const thePage(QFD_LANGUAGE_PAGE);
    return thePage;
}

TEST(LanguagePage, EveryExampleHolds) {
    ASSERT_GT(page().examples().size(), 0U);
    for (auto const& example : page().examples())
        EXPECT_EQ(run(example), "") << "the example that begins in line " << example.front().number;
}

/// How many worked examples the page has for words that begin so.
int countExamples(std::string_view word) {
    int count = 0;
    for (auto const& example : page().examples())
        count += countResults(example, word);
    return count;
}

TEST(LanguagePage, EveryDecoratorHasTwoExamples) {
    for (auto const& row : decoratorTable())
        EXPECT_GE(countExamples(row.keyword), 2) << row.keyword;
}

TEST(LanguagePage, EveryFormatKindHasTwoExamples) {
    for (auto const* kind :
         {"float_as_integer", "percent", "degree", "screenunit", "seconds_to_ememledbar",
          "seconds_to_frames", "seconds_to_timecode", "frames_to_seconds", "frames_to_timecode",
          "fields_to_timecode", "timecode_to_frames", "timecode_to_fields", "timecode_to_seconds",
          "seconds_to_autotrans"})
        EXPECT_GE(countExamples(std::string("format:") + kind), 2) << kind;
}

TEST(LanguagePage, NamesEveryFormAndPrintedText) {
    for (auto const& row : decoratorTable()) {
        EXPECT_NE(page().text().find('`' + std::string(row.form) + '`'), std::string::npos)
            << row.form;
        EXPECT_NE(page().text().find('`' + std::string(row.printed) + '`'), std::string::npos)
            << row.printed;
    }
}

// --- The reader of the page --------------------------------------------------------------

TEST(LanguagePageReader, ReadsLabelsAndTexts) {
    auto const line = parseExampleLine(R"(context "A \"B\"\\" = "\x92\n\xb0C")", 7);
    EXPECT_EQ(line.number, 7);
    EXPECT_EQ(line.label, "context");
    EXPECT_EQ(line.text, R"(A "B"\)");
    EXPECT_EQ(line.second, "\x92\n\xB0"
                           "C");
}

Example exampleOf(std::initializer_list<std::string_view> lines) {
    Example example;
    int number = 0;
    for (auto const line : lines)
        example.push_back(parseExampleLine(line, ++number));
    return example;
}

TEST(LanguagePageReader, AWrongExampleIsFound) {
    EXPECT_EQ(run(exampleOf({R"(word "increment")", R"(value "7")", R"(gives "8")"})), "");
    EXPECT_EQ(run(exampleOf({R"(word "increment")", R"(value "7")", R"(gives "9")"})),
              "line 3: gives \"8\"");
    EXPECT_EQ(run(exampleOf({R"(from "a{@x}")", R"(text "ab")", R"(captures "x" = "c")"})),
              "line 3: captures \"b\"");
    EXPECT_EQ(run(exampleOf({R"(from "a{@x}c")", R"(text "ab")", R"(matches "yes")"})),
              "line 3: matches \"no\"");
    EXPECT_EQ(run(exampleOf({R"(word "directionSelector=1,bank=0,emem=false")", R"(value "1")",
                             R"(stores "K" = "UP")"})),
              "line 3: stores nothing");
    EXPECT_EQ(
        run(exampleOf({R"(word "format:timecode_to_frames")", R"(context "VIDEO.FRAMERATE" = "25")",
                       R"(value "x")", R"(fails "no")"})),
        "line 4: fails \"Unable to convert a string value into an UInt32.\"");
    EXPECT_EQ(run(exampleOf({R"(word "increment")", R"(value "x")", R"(fails "no")"})),
              "line 3: does not fail");
    EXPECT_EQ(run(exampleOf({R"(nonsense "x")"})), "line 1: unknown label nonsense");
}

TEST(LanguagePageReader, CountsTheResultsOfAWord) {
    auto const example = exampleOf({R"(word "increment|scale:2")", R"(value "7")", R"(gives "16")",
                                    R"(value "8")", R"(gives "18")"});
    EXPECT_EQ(countResults(example, "increment"), 2);
    EXPECT_EQ(countResults(example, "scale"), 0);
}

}  // namespace
}  // namespace FrameDriver::Template
