#include "tests/support/FieldScenarios.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>

using namespace FrameDriver::Testing;

namespace {

constexpr std::uint64_t seeds = 20;

bool isLong(FieldScenario const& scenario) { return scenario.length > std::chrono::hours(1); }

}  // namespace

TEST(FieldScenarios, EachSettingIsRightButForHalfTheAsymmetryAndTheMicrosecondsCutOff) {
    for (auto const& scenario : fieldScenarios())
        for (std::uint64_t seed = 1; seed <= (isLong(scenario) ? 1 : seeds); ++seed) {
            SCOPED_TRACE(scenario.name + std::string(", seed ") + std::to_string(seed));
            auto const outcome = play(scenario, seed);
            EXPECT_EQ(outcome.settings.size(), scenario.settings);
            for (auto const& setting : outcome.settings) {
                EXPECT_LE(std::abs(setting.error), boundOf(scenario) + slackOf(scenario));
                EXPECT_TRUE(setting.inStep);
            }
        }
}

TEST(FieldScenarios, TheSameSeedGivesTheSameStory) {
    for (auto const& scenario : fieldScenarios()) {
        if (isLong(scenario))
            continue;
        SCOPED_TRACE(scenario.name);
        auto const first = play(scenario, 7);
        auto const again = play(scenario, 7);
        EXPECT_EQ(first.last, again.last);
        ASSERT_EQ(first.settings.size(), again.settings.size());
        for (std::size_t i = 0; i < first.settings.size(); ++i)
            EXPECT_EQ(first.settings[i].error, again.settings[i].error);
    }
}

TEST(FieldScenarios, WithoutFaultsTheErrorAtTheEndIsTheDriftSinceTheSetting) {
    for (double const drift : {-100.0, 0.0, 100.0}) {
        FieldScenario scenario{"drift"};
        scenario.panelDrift = drift;
        auto const outcome = play(scenario, 3);
        ASSERT_EQ(outcome.settings.size(), 1U);
        auto const& setting = outcome.settings.front();
        auto const since = std::chrono::duration<double>(scenario.length - setting.when).count();
        EXPECT_NEAR(outcome.last, setting.error + since * drift, 0.01);
    }
}
