// Files that are missing or broken: the driver says so, line for line, and runs with the rest.

#include "Studio.h"

#include <ostream>
#include <string>
#include <vector>

namespace FrameDriver::Testing {
namespace {

enum class Harm { missing, broken };

/// What is left when a file can't be read.
enum class Left {
    defaults,    ///< the settings that the driver has by itself
    connection,  ///< no dictionary at all
    others       ///< all but the buttons of the M/E buses
};

struct Row {
    char const* name;
    char const* file;  ///< in Configuration
    Harm harm;
    Left left;
};
void PrintTo(Row const& row, std::ostream* out) {
    *out << row.file << (row.harm == Harm::missing ? " is missing" : " is broken");
}

std::string complaint(Row const& row, std::string const& directory) {
    std::string const path = directory + "/Configuration/" + row.file;
    std::string const start =
        "error: A fatal error occurred while parsing the xml file. The problem was found in ";
    return row.harm == Harm::missing
               ? start + " on line number 0 in column 0. unable to open primary document entity '" +
                     path + "'"
               : start + path +
                     " on line number 3 in column 1. input ended before all started tags were "
                     "ended; last tag started is 'broken'";
}

class SpoiledStudio : public Studio {
  protected:
    /// Without those of the time client, to which no frame talks here.
    std::vector<std::string> errors() const {
        auto lines = log.lines();
        std::erase_if(lines, [](auto const& line) {
            return !line.starts_with("error: ") || line.find("TimeClient") != line.npos ||
                   line.starts_with("error: Packet read not successful");
        });
        return lines;
    }
};

class Files : public SpoiledStudio, public testing::WithParamInterface<Row> {
  protected:
    void spoil(Row const& row) const {
        auto const name = std::string("Configuration/") + row.file;
        if (row.harm == Harm::missing)
            installation.remove(name);
        else
            installation.write(name, "<?xml version=\"1.0\"?>\n<broken>\n");
    }
    void expectDefaults() {
        EXPECT_TRUE(shows("CONNECTED_MF", "127.0.0.1"));
        auto const written = installation.read("Configuration/Settings.xml");
        EXPECT_NE(written.find("<value>./Configuration/SimulatorManifest.xml</value>"),
                  written.npos);
    }
    void expectConnection() {
        EXPECT_TRUE(shows("CONNECTED_MF", frameAddress.text()));
        EXPECT_TRUE(log.waitFor("info: Frame connection complete.", 1, patience));
        raise("ME1.PST.SRC5");
        EXPECT_EQ(frame->record().count("< set"), 0U);
    }
    void expectOthers() {
        EXPECT_TRUE(shows("FRAME.CONNECTED", "ON"));
        raise("ME1.PST.SRC5");
        raise("TAKE.MODE", {{"VAL", "AUTO"}});
        EXPECT_TRUE(shows("TAKE.MODE", "AUTO"));
        raise("ME1.KEY1.TOGGLE");
        EXPECT_TRUE(shows("ME1.KEY1.ON", "ON"));
        EXPECT_NE(panel->record().sid("ME1.PST.SRC5"), "ON");
    }
};

TEST_P(Files, ThatCannotBeReadIsNamedAndTheRestWorks) {
    auto const& row = GetParam();
    spoil(row);
    frame->start();
    startPanel();
    EXPECT_TRUE(shows("LOADED", ""));
    switch (row.left) {
    case Left::defaults:
        expectDefaults();
        break;
    case Left::connection:
        expectConnection();
        break;
    case Left::others:
        expectOthers();
        break;
    }
    std::vector<std::string> lines{complaint(row, installation.path())};
    if (row.left == Left::defaults)
        lines.push_back("error: Driver failed to load Settings.xml file, loading default values");
    EXPECT_EQ(errors(), lines);
    panel->stop();
    EXPECT_TRUE(log.has("info: Driver deinitialize complete."));
}

constexpr Row rows[] = {
    {"NoSettings", "Settings.xml", Harm::missing, Left::defaults},
    {"BrokenSettings", "Settings.xml", Harm::broken, Left::defaults},
    {"NoManifest", "SimulatorManifest.xml", Harm::missing, Left::connection},
    {"BrokenManifest", "SimulatorManifest.xml", Harm::broken, Left::connection},
    {"NoFIDDictionary", "Crosspoints/ToFrame.xml", Harm::missing, Left::others},
    {"BrokenFIDDictionary", "Crosspoints/ToFrame.xml", Harm::broken, Left::others},
    {"NoIssueDictionary", "Crosspoints/ToPanel.xml", Harm::missing, Left::others},
    {"BrokenIssueDictionary", "Crosspoints/ToPanel.xml", Harm::broken, Left::others},
    {"NoFIDList", "Crosspoints/Fids.xml", Harm::missing, Left::others},
    {"BrokenFIDList", "Crosspoints/Fids.xml", Harm::broken, Left::others},
    {"NoSubscriptions", "Crosspoints/Subscriptions.xml", Harm::missing, Left::others},
    {"BrokenSubscriptions", "Crosspoints/Subscriptions.xml", Harm::broken, Left::others},
};

INSTANTIATE_TEST_SUITE_P(Installation, Files, testing::ValuesIn(rows),
                         [](auto const& run) { return std::string(run.param.name); });

using SeveralFiles = SpoiledStudio;

TEST_F(SeveralFiles, ThatCannotBeReadLeaveARunningDriver) {
    installation.write("Configuration/Crosspoints/ToPanel.xml", "<dictionary>");
    installation.write("Configuration/Keyers/Subscriptions.xml", "<subscriptionList>");
    installation.write("Configuration/Keyers/Fids.xml", "");
    installation.remove("Configuration/Clips/ToFrame.xml");
    frame->start();
    startPanel();
    EXPECT_TRUE(shows("FRAME.CONNECTED", "ON"));
    EXPECT_TRUE(log.has("info: Initialization complete."));
    EXPECT_EQ(errors().size(), 4U);
    raise("ME1.PST.SRC5");
    EXPECT_TRUE(frameTells("< set pid=10 did=24000100 flag=0 type=UInt16 value=5"));
}

}  // namespace
}  // namespace FrameDriver::Testing
