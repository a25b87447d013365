#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

struct SplitRow {
    State state;
    std::string_view result;
};

TEST(SplitKeyDecorator, ComparesFillAndCutOfTheSelectedSide) {
    Entry const frontFill{"K1.FRONT.FILL.SOURCE", "7"};
    Entry const frontCut{"K1.FRONT.CUT.SOURCE", "7"};
    Entry const backFill{"K1.BACK.FILL.SOURCE", "7"};
    Entry const backCut{"K1.BACK.CUT.SOURCE", "8"};
    for (auto const& [state, result] : std::vector<SplitRow>{
             {{frontFill, frontCut}, "OFF"},
             {{frontFill, {"K1.FRONT.CUT.SOURCE", "8"}}, "ON"},
             {{frontFill, {"K1.FRONT.CUT.SOURCE", ""}}, "ON"},
             {{frontFill}, "OFF"},
             {{frontCut}, "OFF"},
             {{}, "OFF"},
             {{frontFill, frontCut, backFill, backCut}, "OFF"},
             {{frontFill, frontCut, backFill, backCut, {"K1.BACK.SELECTED", "TRUE"}}, "ON"},
             {{frontFill, frontCut, backFill, backCut, {"K1.BACK.SELECTED", "true"}}, "OFF"},
             {{frontFill, frontCut, {"K1.BACK.SELECTED", "TRUE"}}, "OFF"}}) {
        EXPECT_EQ(decorate("isSplit", "K1", state), result);
    }
}

TEST(SplitKeyDecorator, AnEmptyPrefixIsAPrefix) {
    expectRows("isSplit", {{".FRONT.FILL.SOURCE", "1"}, {".FRONT.CUT.SOURCE", "2"}},
               {{"", "ON"}, {"K1", "OFF"}});
}

}  // namespace
}  // namespace FrameDriver::Template
