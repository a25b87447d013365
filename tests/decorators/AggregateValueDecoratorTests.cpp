#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

TEST(AggregateValueDecorator, AddsWithinBounds) {
    expectRows("aggregate=A.KEY,min=0,max=10", {{"A.KEY", "9"}},
               {{"5", "10"},
                {"-20", "0"},
                {"-9", "0"},
                {"1", "10"},
                {"-1", "8"},
                {"0", "9"},
                {"abc", "9"},
                {"", "9"},
                {"-3x", "6"}});
}

TEST(AggregateValueDecorator, AStoredTextThatIsNoNumberIsZero) {
    for (auto const* stored : {"", "abc", "99999999999"})
        expectRows("aggregate=A.KEY,min=-5,max=10", {{"A.KEY", stored}},
                   {{"3", "3"}, {"-9", "-5"}});
}

TEST(AggregateValueDecorator, TheUpperBoundWinsWhereTheyCross) {
    expectRows("aggregate=A.KEY,min=10,max=5", {{"A.KEY", "0"}},
               {{"0", "5"}, {"7", "5"}, {"20", "5"}});
}

TEST(AggregateValueDecorator, WithoutTheKeyIsInvalid) {
    expectRows("aggregate=A.KEY,min=0,max=10", {{"5", "INV"}, {"abc", "INV"}});
}

TEST(AggregateValueDecorator, DoesNotChangeTheStore) {
    ContextStore store;
    fill(store, {{"A.KEY", "1"}});
    EXPECT_EQ(decorate("aggregate=A.KEY,min=0,max=10", "5", store), "6");
    EXPECT_EQ(store.get("A.KEY"), "1");
}

TEST(AggregateValueDecorator, WrapsPastThirtyTwoBits) {
    expectRows("aggregate=A.KEY,min=-2147483648,max=2147483647", {{"A.KEY", "2147483647"}},
               {{"1", "-2147483648"}});
}

}  // namespace
}  // namespace FrameDriver::Template
