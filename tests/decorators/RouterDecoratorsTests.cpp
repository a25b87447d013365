#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

// The count's key begins with "ROUTER.", the names' keys don't.
TEST(RouterIdLookUpDecorator, ListsAllIdentifiersOfAName) {
    State const state{{"ROUTER.R", ""},      {"ROUTER.R.NEXTID", "12"},   {"R0.NAME", "CAM 1"},
                      {"R2.NAME", "CAM 2"},  {"R11.NAME", "CAM 1"},       {"R12.NAME", "CAM 1"},
                      {"R-1.NAME", "CAM 1"}, {"ROUTER.R3.NAME", "CAM 1"}, {"R4.NAME", ""}};
    expectRows(
        "routerIdLookUp=R", state,
        {{"CAM 1", "011"}, {"CAM 2", "2"}, {"CAM 3", ""}, {"cam 1", ""}, {"*", ""}, {"", ""}});
}

TEST(RouterIdLookUpDecorator, WithoutACountFindsNothing) {
    for (auto const* count : {"0", "-1", "abc", ""}) {
        expectRows("routerIdLookUp=R", {{"ROUTER.R.NEXTID", count}, {"R0.NAME", "CAM"}},
                   {{"CAM", ""}});
    }
    expectRows("routerIdLookUp=R", {{"R0.NAME", "CAM"}}, {{"CAM", ""}});
}

TEST(RouterIdLookUpDecorator, AStarOrNothingIsNoName) {
    expectRows("routerIdLookUp=R", {{"ROUTER.R.NEXTID", "2"}, {"R0.NAME", "*"}, {"R1.NAME", ""}},
               {{"*", ""}, {"", ""}, {"**", ""}});
}

TEST(MappingCorrectorDecorator, RenumbersIntoBlocksOfFifty) {
    expectRows("mappingCorrector=48", {{"1", "1"},
                                       {"48", "48"},
                                       {"49", "51"},
                                       {"97", "101"},
                                       {"0", "0"},
                                       {"-47", "-49"},
                                       {"49x", "51"},
                                       {"abc", "0"},
                                       {"", "0"}});
    expectRows("mappingCorrector=50", {{"1000", "1000"}});
    expectRows("mappingCorrector=100", {{"101", "51"}});
}

TEST(MappingCorrectorDecorator, ASizeOfZeroGivesTheValue) {
    expectRows("mappingCorrector=0", {{"49", "49"}, {"abc", "abc"}, {"", ""}});
}

TEST(MappingCorrectorDecorator, WrapsPastThirtyTwoBits) {
    expectRows("mappingCorrector=-1", {{"-2147483648", "51"}, {"-2147483647", "1"}});
    expectRows("mappingCorrector=1", {{"2147483647", "-99"}});
}

}  // namespace
}  // namespace FrameDriver::Template
