#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

constexpr std::string_view directionKey = "ME1.PRIMARY.TRANSI.FADERDIRECTION";
constexpr std::string_view lockKey = "ME1.PRIMARY.TRANSI.FADERDIRECTION.LOCK";
constexpr std::string_view selector = "directionSelector=1,bank=0,emem=false";
constexpr std::string_view leverArm = "leverarm=1,bank=0,emem=false";

TEST(DirectionDecorator, DecidesOnTheFirstMovementAndHoldsIt) {
    ContextStore store;
    fill(store, {{lockKey, "OFF"}});
    EXPECT_EQ(decorate(selector, "100", store), "UP");
    EXPECT_EQ(store.get(directionKey), "UP");
    EXPECT_EQ(store.get(lockKey), "ON");
    EXPECT_EQ(decorate(selector, "4000", store), "UP");
    EXPECT_EQ(store.get(directionKey), "UP");
}

TEST(DirectionDecorator, DecidesByTheMiddleOfTheRange) {
    expectRows(selector, {{lockKey, "OFF"}},
               {{"2046", "UP"},
                {"2048", "DOWN"},
                {"4095", "DOWN"},
                {"-1", "UP"},
                {"abc", "UP"},
                {"", "UP"},
                {"2047", ""},
                {"2047.9", ""}});
}

TEST(DirectionDecorator, InTheMiddleNothingChanges) {
    ContextStore store;
    fill(store, {{lockKey, "OFF"}, {directionKey, "DOWN"}});
    EXPECT_EQ(decorate(selector, "2047", store), "DOWN");
    EXPECT_EQ(store.get(lockKey), "OFF");
}

TEST(DirectionDecorator, WithoutALockNothingIsDecided) {
    ContextStore store;
    EXPECT_EQ(decorate(selector, "100", store), "");
    EXPECT_FALSE(store.contains(directionKey));
    EXPECT_FALSE(store.contains(lockKey));
    for (auto const* lock : {"ON", "off", ""}) {
        State const state{{lockKey, lock}, {directionKey, "SIDEWAYS"}};
        EXPECT_EQ(decorate(selector, "100", state), "SIDEWAYS");
    }
}

struct KeyRow {
    std::string_view arguments;
    std::string_view key;
};

std::vector<KeyRow> const& keyRows() {
    static std::vector<KeyRow> const rows{{"=2,bank=0,emem=false", "ME2.PRIMARY."},
                                          {"=2,bank=1,emem=false", "ME2.SECONDARY."},
                                          {"=2,bank=-7,emem=false", "ME2.SECONDARY."},
                                          {"=-1,bank=0,emem=false", "ME-1.PRIMARY."},
                                          {"=-1,bank=1,emem=true", "EMEM.MASTER."},
                                          {"=3,bank=0,emem=true", "EMEM.ME3.PRIMARY."},
                                          {"=3,bank=1,emem=true", "EMEM.ME3.SECONDARY."},
                                          {"=3,bank=1,emem=TRUE", "ME3.SECONDARY."},
                                          {"=3,bank=1,emem=true ", "ME3.SECONDARY."}};
    return rows;
}

TEST(DirectionDecorator, BuildsItsKeysFromMeBankAndEmem) {
    for (auto const& [arguments, prefix] : keyRows()) {
        SCOPED_TRACE(arguments);
        std::string const key = std::string(prefix) + "TRANSI.FADERDIRECTION";
        std::string const lock = key + ".LOCK";
        ContextStore store;
        fill(store, {{lock, "OFF"}});
        EXPECT_EQ(decorate("directionSelector" + std::string(arguments), "0", store), "UP");
        EXPECT_EQ(store.get(key), "UP");
        EXPECT_EQ(store.get(lock), "ON");
    }
}

TEST(LeverArmDecorator, BuildsItsKeyFromMeBankAndEmem) {
    for (auto const& [arguments, prefix] : keyRows()) {
        SCOPED_TRACE(arguments);
        std::string const key = std::string(prefix) + "TRANSI.FADERDIRECTION";
        EXPECT_EQ(decorate("leverarm" + std::string(arguments), "4095", {{key, "DOWN"}}), "0");
    }
}

TEST(LeverArmDecorator, UpIsTheFractionOfTheRange) {
    expectRows(leverArm, {{directionKey, "UP"}},
               {{"0", "0"},
                {"4095", "1"},
                {"2047.5", "0.5"},
                {"1", "0.0002442"},
                {"1365", "0.333333"},
                {"8190", "2"},
                {"abc", "0"},
                {"", "0"}});
}

TEST(LeverArmDecorator, DownCountsFromTheOtherEnd) {
    expectRows(leverArm, {{directionKey, "DOWN"}},
               {{"4095", "0"},
                {"0", "1"},
                {"1365", "0.666667"},
                {"4094", "0.0002442"},
                {"abc", "1"},
                {"", "1"}});
}

TEST(LeverArmDecorator, AnyOtherDirectionCountsAsUp) {
    expectRows(leverArm, {}, {{"4095", "1"}, {"0", "0"}, {"1365", "0.333333"}});
    expectRows(leverArm, {{directionKey, "down"}}, {{"4095", "1"}, {"0", "0"}});
}

}  // namespace
}  // namespace FrameDriver::Template
