#include "tests/support/AllocationCount.h"

#if QFD_COUNTS_ALLOCATIONS

#include "conversion/TemplateConversionCollection.h"
#include "template/ContextStore.h"
#include "template/TemplateParser.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace FrameDriver::Conversion

#endif
