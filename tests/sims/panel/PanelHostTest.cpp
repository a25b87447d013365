#include "sims/panel/PanelHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using namespace PanelSim;
using testing::HasSubstr;

/// A directory of the test's own; the working directory is put back at the end.
class PanelHostTest : public testing::Test {
  protected:
    PanelHostTest() : before(std::filesystem::current_path()) {
        std::string name = (std::filesystem::temp_directory_path() / "panel-XXXXXX").string();
        directory = mkdtemp(name.data());
    }
    ~PanelHostTest() override {
        std::filesystem::current_path(before);
        std::filesystem::remove_all(directory);
    }

    std::filesystem::path before;
    std::string directory;
};

FIDParameterList list(std::initializer_list<FIDParameter> parameters) {
    FIDParameterList result;
    for (auto const& parameter : parameters) {
        result.add(parameter);
    }
    return result;
}

std::string reasonFor(std::string const& module) {
    try {
        PanelHost const host({module, "", 0, ""});
    } catch (PanelHostError const& error) {
        return error.what();
    }
    return "no error";
}

TEST_F(PanelHostTest, KeepsTheOrderThatDriversRelyOn) {
    PanelHost host({FAKE_MODULE, directory, 3, "127.0.0.7"});
    host.start();
    EXPECT_EQ(host.record().sid("CALLS"),
              "onLoad;configure 3 [] 127.0.0.7 [];setStateSink;setFunctionSink;load;");
}

TEST_F(PanelHostTest, RunsTheDriverInTheInstallation) {
    PanelHost host({FAKE_MODULE, directory, 0, ""});
    host.start();
    EXPECT_EQ(host.record().sid("CWD"), std::filesystem::canonical(directory).string());
}

TEST_F(PanelHostTest, StopsTheDriverOnceAndThenUnloadsTheModule) {
    std::string const log = directory + "/calls";
    {
        PanelHost host({FAKE_MODULE, directory, 0, ""});
        host.start();
        host.raise("LOG.TO", list({{"FILE", log}}));
        host.stop();
    }
    std::ifstream in(log);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "unload;onUnload;delete;");
}

TEST_F(PanelHostTest, DoesNotStopADriverThatNeverRan) {
    std::string const log = directory + "/calls";
    {
        PanelHost host({FAKE_MODULE, directory, 0, ""});
        host.raise("LOG.TO", list({{"FILE", log}}));
    }
    std::ifstream in(log);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "onUnload;delete;");
}

TEST_F(PanelHostTest, DeliversAFIDAndHearsOneBack) {
    PanelHost host({FAKE_MODULE, directory, 0, ""});
    host.start();
    host.raise("BACK", list({{"A", "1"}, {"B", "\222"}}));
    EXPECT_EQ(shown(host.record().history().back()), "FID BACK A=1 B=\222");
}

TEST_F(PanelHostTest, TheRecordOutlivesTheHost) {
    PanelRecord* record = nullptr;
    {
        PanelHost host({FAKE_MODULE, directory, 0, ""});
        host.start();
        record = &host.record();
    }
    record->setState("LATE", "1");
    EXPECT_EQ(record->sid("LATE"), "1");
}

TEST_F(PanelHostTest, SaysWhyAModuleCannotBeUsed) {
    EXPECT_THAT(reasonFor("/nowhere/x.so"), HasSubstr("cannot load the module '/nowhere/x.so': "));
    EXPECT_THAT(reasonFor("nowhere.so"), HasSubstr("cannot load the module 'nowhere.so': "));
    EXPECT_EQ(reasonFor(MODULE_WITHOUT_ENTRY),
              "'" MODULE_WITHOUT_ENTRY "' is no module: it has no onCreateModule");
    EXPECT_EQ(reasonFor(MODULE_EMPTY), "'" MODULE_EMPTY "' created no module");
    EXPECT_EQ(reasonFor(MODULE_WITHOUT_FUNCTIONS),
              "'" MODULE_WITHOUT_FUNCTIONS "' has no interface 1100");
}

TEST_F(PanelHostTest, SaysWhyAnInstallationCannotBeUsed) {
    PanelHost host({FAKE_MODULE, directory + "/none", 0, ""});
    try {
        host.start();
        FAIL() << "no error";
    } catch (PanelHostError const& error) {
        EXPECT_EQ(error.what(), "cannot go to the installation '" + directory +
                                    "/none': No such file or directory");
    }
}

}  // namespace
