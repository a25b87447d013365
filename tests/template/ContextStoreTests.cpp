#include "template/ContextStore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

namespace FrameDriver::Template {
namespace {

TEST(ContextStore, AbsentKeyIsNotContainedAndGivesTheEmptyText) {
    ContextStore store;
    EXPECT_FALSE(store.contains("VIDEO.FRAMERATE"));
    EXPECT_EQ(store.get("VIDEO.FRAMERATE"), "");
    EXPECT_FALSE(store.contains("VIDEO.FRAMERATE")) << "asking doesn't create it";
}

TEST(ContextStore, SetCreatesAndOverwrites) {
    ContextStore store;
    store.set("VIDEO.FRAMERATE", "25");
    EXPECT_TRUE(store.contains("VIDEO.FRAMERATE"));
    EXPECT_EQ(store.get("VIDEO.FRAMERATE"), "25");
    store.set("VIDEO.FRAMERATE", "a longer text than fits into a short string");
    EXPECT_EQ(store.get("VIDEO.FRAMERATE"), "a longer text than fits into a short string");
    store.set("VIDEO.FRAMERATE", "");
    EXPECT_TRUE(store.contains("VIDEO.FRAMERATE"));
    EXPECT_EQ(store.get("VIDEO.FRAMERATE"), "");
}

TEST(ContextStore, KeysAndTextsAreBytes) {
    ContextStore store;
    std::string const key("A\0B\x92", 4), text("\0\xff", 2);
    store.set(key, text);
    EXPECT_EQ(store.get(key), text);
    EXPECT_FALSE(store.contains("A"));
    EXPECT_FALSE(store.contains("a"));
}

TEST(ContextStore, GetGivesACopy) {
    ContextStore store;
    store.set("KEY", "before");
    auto copy = store.get("KEY");
    store.set("KEY", "after");
    EXPECT_EQ(copy, "before");
    copy = "changed";
    EXPECT_EQ(store.get("KEY"), "after");
}

// Each call is whole: a reader sees one text or the other, never a mixture.
TEST(ContextStore, CallsOfSeveralThreadsAreWhole) {
    ContextStore store;
    std::string const first(40, 'a'), second(50, 'b');
    store.set("KEY", first);
    std::atomic<bool> stop = false;
    std::thread writer([&] {
        while (!stop) {
            store.set("KEY", second);
            store.set("OTHER" + second, first);
            store.set("KEY", first);
        }
    });
    int mixtures = 0;
    for (int round = 0; round < 5000; ++round) {
        auto const text = store.get("KEY");
        mixtures += text != first && text != second;
        mixtures += !store.contains("KEY");
    }
    stop = true;
    writer.join();
    EXPECT_EQ(mixtures, 0);
}

}  // namespace
}  // namespace FrameDriver::Template
