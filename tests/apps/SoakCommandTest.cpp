// The soak as its users run it; a whole one is part of the full check, not of the tests.

#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

TEST(SoakCommand, ARunHoldsAndTellsItsFigures) {
    ProgramRunner const runner;
    auto const run = runner.run(
        {"soak", "--dir", INSTALLATION, "--minutes", "0.25", "--growth", "2000", "--json"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("\"differences\":0,\"held\":true}"));
    EXPECT_THAT(run.out, testing::Not(HasSubstr("\"FIDs raised by the monkey\":0,")));
}

TEST(SoakCommand, AnInstallationThatIsNotThereIsBadUsage) {
    auto const run = ProgramRunner().run({"soak", "--dir", "/nowhere/at/all"});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.err, "qfd soak: '/nowhere/at/all' is no installation: it has no "
                       "Configuration/Settings.xml\n");
}

TEST(SoakCommand, RefusesWhatIsTooShortToSayAnything) {
    EXPECT_EQ(ProgramRunner().run({"soak", "--dir", INSTALLATION, "--minutes", "0"}).code, 2);
}

}  // namespace
