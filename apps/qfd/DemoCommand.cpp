#include "DemoCommand.h"

#include "ChildProcess.h"
#include "DemoStage.h"
#include "Output.h"
#include "TimeLine.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

namespace qfd {
namespace {

using std::chrono::milliseconds;

struct Options {
    std::string directory;
    bool interactive = false;
};

std::string thisProgram() { return std::filesystem::read_symlink("/proc/self/exe").string(); }

/// The two processes, and what they say.
class Players {
  public:
    explicit Players(Options const& options) : stage(options.directory) {}

    bool startFrame() {
        frame.emplace(
            std::vector<std::string>{thisProgram(), "frame", "--bind", stage.frameAddress()},
            [this](std::string_view line) { timeLine.add("frame", line); });
        return timeLine.await({{"frame", "listening address="}}, milliseconds(5000));
    }
    void startPanel() {
        panel.emplace(std::vector<std::string>{thisProgram(), "panel", "--dir", stage.directory(),
                                               "--address", stage.panelAddress(), "--log", "off"},
                      [this](std::string_view line) { timeLine.add("panel", line); });
    }
    void killFrame() { frame.reset(); }
    void raise(std::string const& fid) { panel->send(fid); }
    void operate(std::string const& command) { frame->send(command); }
    int endPanel() { return panel->finish(); }

    TimeLine timeLine;

  private:
    DemoStage stage;
    std::optional<ChildProcess> frame;
    std::optional<ChildProcess> panel;
};

struct Step {
    char const* title;
    char const* who;
    char const* what;  ///< a FID for the panel, a console command for the operator
    std::vector<Expected> expected;
};

std::vector<Step> show() {
    return {
        {"Select source 5 on the preset bus",
         "panel",
         "ME1.PST.SRC5",
         {{"frame", "< set pid=10 did=24000100 flag=0 type=UInt16 value=5"},
          {"panel", "SID ME1.PST.SRC5 = ON"},
          {"panel", "TID ME1.PST.NAME = Camera 5"}}},
        {"Cut",
         "panel",
         "ME1.CUT",
         {{"frame", "< event eid=40 did=03000000"},
          {"panel", "SID ME1.PGM.SRC5 = ON"},
          {"panel", "SID TALLY.SRC5 = ON"}}},
        {"Key 1 on",
         "panel",
         "ME1.KEY1.TOGGLE",
         {{"frame", "< set pid=20 did=08000000 flag=8"}, {"panel", "SID ME1.KEY1.ON = ON"}}},
        {"A transition rate of 75 fields, shown as time code",
         "panel",
         "ME1.RATE.SET VAL=75",
         {{"frame", "< set pid=31 did=03000000 flag=0 type=UInt16 value=75"},
          {"panel", "TID ME1.RATE = 00:00:01:12"}}},
        {"The lever a good part of its way, shown as a fraction",
         "panel",
         "ME1.LEVER VAL=1024",
         {{"frame", "< set pid=30 did=03000000 flag=0 type=UInt16 value=1024"},
          {"panel", "SID ME1.LEVER.POSITION = 1024"},
          {"panel", "TID ME1.LEVER.DONE = 25.0%"}}},
        {"Another operator takes source 7 to program",
         "operator",
         "set 10 24000000 7",
         {{"panel", "SID ME1.PGM.SRC5 = OFF"},
          {"panel", "SID ME1.PGM.SRC7 = ON"},
          {"panel", "TID ME1.PGM.NAME = Playback 1"}}},
    };
}

bool play(Players& players, Step const& step) {
    players.timeLine.begin(step.title);
    players.timeLine.act(step.who, step.what);
    if (std::string_view(step.who) == "panel")
        players.raise(step.what);
    else
        players.operate(step.what);
    return players.timeLine.await(step.expected, milliseconds(5000));
}

std::vector<Expected> connected() {
    return {{"frame", "< hello"},
            {"panel", "SID CONNECTED_MF = "},
            {"panel", "SID SYSTEM.REBOOT_INDICATION = "},
            {"panel", "SID FRAME.CONNECTED = ON"},
            {"panel", "SID ME1.PGM.SRC1 = ON"},
            {"panel", "TID SOURCE16.NAME = Remote 2"}};
}

bool open(Players& players) {
    players.timeLine.begin("The frame starts");
    if (!players.startFrame())
        return false;
    players.timeLine.begin("The panel starts, connects and shows the frame's state");
    players.startPanel();
    return players.timeLine.await(connected(), milliseconds(10000));
}

bool loseAndFind(Players& players) {
    players.timeLine.begin("The frame is killed");
    players.killFrame();
    bool good = players.timeLine.await({{"panel", "SID SYSTEM.REBOOT_INDICATION = INV"},
                                        {"panel", "SID FRAME.CONNECTED = OFF"},
                                        {"panel", "SID ME1.PGM.SRC7 = OFF"}},
                                       milliseconds(10000));
    players.timeLine.begin("The frame is back, as it was at its own start");
    good &= players.startFrame();
    return players.timeLine.await(connected(), milliseconds(10000)) && good;
}

int playShow(Options const& options) {
    Players players(options);
    bool good = open(players);
    for (auto const& step : show())
        good &= play(players, step);
    good &= loseAndFind(players);
    good &= players.endPanel() == 0;
    printLine("");
    printLine(good ? "Every answer came." : "Some answers are MISSING, see above.");
    return good ? exitGood : exitCheckFailed;
}

/// The panel in the foreground, a frame behind it.
int converse(Options const& options) {
    DemoStage const stage(options.directory);
    ChildProcess frame({thisProgram(), "frame", "--bind", stage.frameAddress()},
                       [](std::string_view) {});
    std::string line;
    printLine("A panel on a frame at " + stage.frameAddress() +
              ". Try ME1.PST.SRC5, ME1.CUT, :state ME1.*, :quit");
    ChildProcess panel(
        {thisProgram(), "panel", "--dir", stage.directory(), "--address", stage.panelAddress()},
        [](std::string_view heard) { printLine(heard); });
    while (std::getline(std::cin, line) && line != ":quit")
        panel.send(line);
    return panel.finish();
}

}  // namespace

void addDemoCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<Options>();
    auto* const command = program.add_subcommand(
        "demo", "Play a show on a frame and a panel, each a process of its own");
    command
        ->add_option("--dir", options->directory, "The installation to play it on (a copy is used)")
        ->type_name("DIRECTORY")
        ->required();
    command->add_flag("--interactive", options->interactive,
                      "Leave a prompt to the panel instead of playing the show");
    command->footer("\nPrints what was done and what came of it, with the milliseconds since. The\n"
                    "exit code is 0 only if every answer came.");
    command->callback([options, &job] {
        job = [options] { return options->interactive ? converse(*options) : playShow(*options); };
    });
}

}  // namespace qfd
