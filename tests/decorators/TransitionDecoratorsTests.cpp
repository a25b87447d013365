#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

constexpr std::string_view word = "transitionElementCombiner";

TEST(TransitionElementCombinerDecorator, SumsTheArmedElements) {
    expectRows(word,
               {{"ME1.PRIMARY.TRANSI.BGD.NEXT", "ON"}, {"ME1.PRIMARY.TRANSI.KEY1.NEXT", "ON"}},
               {{"ME1.PRIMARY", "3"}, {"ME1.SECONDARY", "0"}, {"", "0"}});
}

TEST(TransitionElementCombinerDecorator, HasABitForEachElement) {
    for (auto const& [element, bit] : std::vector<Row>{{"BGD", "1"},
                                                       {"KEY1", "2"},
                                                       {"KEY2", "4"},
                                                       {"KEY3", "8"},
                                                       {"KEY4", "16"},
                                                       {"KEYPRIOR", "32"},
                                                       {"KEY5", "128"},
                                                       {"KEY6", "256"},
                                                       {"KEY7", "512"},
                                                       {"KEY8", "1024"},
                                                       {"KEY0", "0"},
                                                       {"KEY9", "0"}}) {
        std::string const key = "P.TRANSI." + std::string(element) + ".NEXT";
        SCOPED_TRACE(key);
        EXPECT_EQ(decorate(word, "P", {{key, "ON"}}), bit);
    }
}

TEST(TransitionElementCombinerDecorator, CountsExactlyTheTextOn) {
    for (auto const* text : {"on", "OFF", "ON ", ""})
        EXPECT_EQ(decorate(word, "P", {{"P.TRANSI.KEY1.NEXT", text}}), "0");
}

TEST(TransitionElementCombinerDecorator, WithNothingArmedIsZero) {
    expectRows(word, {{"P", "0"}, {"", "0"}});
}

}  // namespace
}  // namespace FrameDriver::Template
