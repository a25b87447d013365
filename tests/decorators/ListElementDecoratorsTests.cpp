#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

TEST(LogicalSourceListExtractorDecorator, ListsTheInputsOfASource) {
    expectRows("logicalSourceListExtractor",
               {{"LOGICAL.INPUT12.PHYSICAL.SOURCE", "7"},
                {"LOGICAL.INPUT1.PHYSICAL.SOURCE", "7"},
                {"LOGICAL.INPUT250.PHYSICAL.SOURCE", "7"},
                {"LOGICAL.INPUT3.PHYSICAL.SOURCE", ""},
                {"LOGICAL.INPUT4.PHYSICAL.SOURCE", "07"}},
               {{"7", "1 12 250 "}, {"07", "4 "}, {"8", ""}, {"", "3 "}});
}

TEST(LogicalSourceListExtractorDecorator, LooksAtInputsOneToTwoHundredAndFifty) {
    expectRows("logicalSourceListExtractor",
               {{"LOGICAL.INPUT0.PHYSICAL.SOURCE", "7"},
                {"LOGICAL.INPUT251.PHYSICAL.SOURCE", "7"},
                {"LOGICAL.INPUT.PHYSICAL.SOURCE", "7"}},
               {{"7", ""}, {"", ""}});
}

TEST(NextElementExtractorDecorator, GivesTheTextAheadOfTheFirstSpace) {
    expectRows("nextElementExtractor", {{"12 14 ", "12"},
                                        {"12 ", "12"},
                                        {" 12 ", ""},
                                        {"12", ""},
                                        {"", ""},
                                        {"12\t14", ""},
                                        {"a\xA0"
                                         "b c",
                                         "a\xA0"
                                         "b"}});
}

TEST(NextElementRemoverDecorator, GivesTheTextBehindTheFirstSpace) {
    expectRows(
        "nextElementRemover",
        {{"12 14 ", "14 "}, {"12 ", ""}, {" 12 ", "12 "}, {"12", ""}, {"", ""}, {"a  b", " b"}});
}

}  // namespace
}  // namespace FrameDriver::Template
