// What the road of a FID may allocate: its results and nothing else. Not under a sanitizer, which
// has an allocator of its own.

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define QFD_SANITIZED
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QFD_SANITIZED
#endif
#ifndef QFD_SANITIZED

#include "template/ContextStore.h"
#include "template/TemplateParser.h"
#include "template/TemplateString.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

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

namespace FrameDriver::Template {
namespace {

template <class Call>
std::size_t allocationsOf(Call call) {
    auto const before = allocations;
    call();
    return allocations - before;
}

class Allocations : public ::testing::Test {
  protected:
    Allocations() {
        store.set("A STATE KEY THAT IS NO SHORT STRING 12", "1080i");
        evaluated.reserve(1000);
    }

    TemplateString const pattern =
        TemplateParser::parse("FID: PANEL.MEMORY.RECALL[NUMBER={@number}\x92[BANK={@bank}\x92");
    TemplateString const output =
        TemplateParser::parse("Set Message: {@number} {@absent} {$context:A STATE KEY THAT IS NO "
                              "SHORT STRING {@number}}");
    std::string const text = "FID: PANEL.MEMORY.RECALL[NUMBER=12\x92[BANK=3\x92";
    ContextStore store;
    std::string evaluated;
};

TEST_F(Allocations, MatchingAllocatesNothing) {
    bool matched = false;
    EXPECT_EQ(allocationsOf([&] { matched = pattern.matches(text); }), 0u);
    EXPECT_TRUE(matched);
    EXPECT_EQ(allocationsOf([&] { matched = pattern.matches("FID: OTHER"); }), 0u);
    EXPECT_FALSE(matched);
}

TEST_F(Allocations, CapturingAllocatesTheEntriesOfTheMap) {
    EXPECT_EQ(allocationsOf([&] { EXPECT_EQ(pattern.extractVariables(text).size(), 2u); }), 2u);
}

TEST_F(Allocations, AppendingAllocatesNothingWhereThereIsRoom) {
    auto const variables = pattern.extractVariables(text);
    EXPECT_EQ(allocationsOf([&] { output.appendTo(evaluated, variables, &store); }), 0u);
    EXPECT_EQ(evaluated, "Set Message: 12 {@absent} 1080i");
}

TEST_F(Allocations, EvaluationAllocatesItsResultOnce) {
    auto const variables = pattern.extractVariables(text);
    auto const filled = TemplateParser::parse(
        "SID: A STATE OF THE PANEL={@number} AND ANOTHER STATE OF IT={@bank} IN ALL");
    EXPECT_EQ(allocationsOf([&] { filled.evaluate(variables, &store); }), 1u);
}

}  // namespace
}  // namespace FrameDriver::Template

#endif
