#include "tests/support/AllocationCount.h"

#if QFD_COUNTS_ALLOCATIONS

#include "conversion/CPLMarshaller.h"
#include "conversion/FIDMarshaller.h"
#include "conversion/TemplateConversionCollection.h"
#include "cpl/Issue.h"
#include "foundation/DataType.h"
#include "template/ContextStore.h"
#include "template/TemplateParser.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

// What the road of a FID may allocate in a conversion: the list of results and each result.

namespace FrameDriver::Conversion {
namespace {

using Template::TemplateParser;

TEST(Allocations, AConversionAllocatesItsResultsAndTheirList) {
    TemplateConversionCollection collection;
    Template::ContextStore context;
    std::vector<std::string> texts;
    for (int i = 0; i < 50; ++i) {
        auto const name = std::string("FID: id=NAME").append(std::to_string(i));
        collection.add({TemplateParser::parse(name + ", data=[VALUE={@x}, SOURCE={@y}\x92"),
                        {TemplateParser::parse("Set Message: a result that is long {@x} {@y}")}});
        texts.push_back(name + ", data=[VALUE=1234, SOURCE=KNOB\x92");
    }
    texts.push_back("FID: id=NONE, data=[\x92");
    // Each text comes when its list has left the cache, and once more when it is kept.
    for (int round = 0; round < 3; ++round) {
        for (auto const& text : texts) {
            for (int again = 0; again < 2; ++again) {
                auto const before = Testing::allocations;
                auto const results = collection.convert(text, &context);
                auto const made = Testing::allocations - before;
                if (round > 0) {
                    EXPECT_EQ(made, results.empty() ? 0U : 2U) << text;
                }
            }
        }
    }
}

// The texts that are looked up are written in one piece.

TEST(Allocations, AFIDsTextIsOnePiece) {
    FIDMarshaller const marshaller;
    FIDParameterList parameters;
    parameters.add("VAL", "1234");
    parameters.add("SOURCE", "KNOB");
    std::string text;
    EXPECT_EQ(
        Testing::allocationsOf([&] { text = marshaller.marshal("ME1.KEY1.CLIP.INC", parameters); }),
        1U);
    EXPECT_EQ(text, "FID: id=ME1.KEY1.CLIP.INC, data=[VAL=1234, SOURCE=KNOB\x92");
}

TEST(Allocations, AnIssuesTextIsOnePiece) {
    CPLMarshaller const marshaller;
    CPL::ParameterIssue const issue(10, 0x24000000, CPL::UInt16, new std::uint16_t(5), 0);
    std::string text;
    EXPECT_EQ(Testing::allocationsOf([&] { text = marshaller.marshal(&issue); }), 1U);
    EXPECT_TRUE(text.starts_with("Parameter Issue: pid=10, did=[EncodingType=24, ")) << text;
}

}  // namespace
}  // namespace FrameDriver::Conversion

#endif
