#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

TEST(SequenceCompleteDecorator, IsTrueIfTheLastStepLeadsToItself) {
    expectRows("isSequenceComplete", {{"1->2/2->2", "true"},
                                      {"1->2/2->3", "false"},
                                      {"2->2/1->2", "false"},
                                      {"IN->OUT/OUT->OUT", "true"},
                                      {"1->1", "true"},
                                      {"1->01", "false"}});
}

TEST(SequenceCompleteDecorator, AStepOfFewerThanTwoPartsIsNotComplete) {
    expectRows("isSequenceComplete", {{"", "false"},
                                      {"/", "false"},
                                      {"///", "false"},
                                      {"2", "false"},
                                      {"2->", "false"},
                                      {"->", "false"},
                                      {"2->2/1", "false"},
                                      {"INVALID", "false"}});
}

TEST(SequenceCompleteDecorator, EmptyPiecesDoNotCount) {
    expectRows("isSequenceComplete",
               {{"1->2/2->2/", "true"}, {"/2->2", "true"}, {"->2->2", "true"}});
}

TEST(SequenceCompleteDecorator, CutsAtSingleCharactersAndLooksAtTwoParts) {
    expectRows("isSequenceComplete", {{"2-2", "true"}, {"2>2", "true"}, {"2->2->3", "true"}});
}

}  // namespace
}  // namespace FrameDriver::Template
