// What the road of a FID may allocate in a conversion: the list of results and each result. Not
// under a sanitizer, which has an allocator of its own.

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define QFD_SANITIZED
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QFD_SANITIZED
#endif
#ifndef QFD_SANITIZED

#include "conversion/TemplateConversionCollection.h"
#include "template/ContextStore.h"
#include "template/TemplateParser.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>
#include <vector>

namespace {
thread_local std::size_t allocations = 0;
}

[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    if (void* const memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

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
                auto const before = allocations;
                auto const results = collection.convert(text, &context);
                auto const made = allocations - before;
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
