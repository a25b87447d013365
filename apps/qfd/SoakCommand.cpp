#include "SoakCommand.h"

#include "ChildProcess.h"
#include "DemoStage.h"
#include "LineCounter.h"
#include "Output.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace qfd {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

struct Options {
    std::string directory;
    double minutes = 1;
    unsigned seed = 1;
    unsigned growth = 16;  // MiB
    bool json = false;
};

/// How long a joined panel may take to show everything, on a machine that does other things too.
constexpr milliseconds patience{60000};

// What is counted. Of the frame: what panels send it, and what it tells them.
constexpr char frameUp[] = "listening address=";
constexpr char messageSet[] = " < set";
constexpr char messageEvent[] = " < event";
constexpr char issueValue[] = " > update";
constexpr char issueList[] = " > list";
// Of the panel.
constexpr char joined[] = "SID FRAME.CONNECTED = ON";
constexpr char monkeyOn[] = "SID MONKEYTEST.ENABLED = ON";
constexpr char monkeyOff[] = "SID MONKEYTEST.ENABLED = OFF";
constexpr char stateShown[] = "SID ";
constexpr char textShown[] = "TID ";
constexpr char difference[] = "DIFFERENCE ";

/// What is done to the link, and what ends it again after a while.
struct Fault {
    char const* name;
    std::vector<char const*> begin;
    milliseconds length;
    std::vector<char const*> end;
    bool endsLink = true;  // then the panel has to come back
};

std::vector<Fault> const& faults() {
    static std::vector<Fault> const all = {
        {"the line is cut", {"disconnect"}, milliseconds(0), {}},
        {"the frame stands still", {"freeze"}, milliseconds(4000), {"thaw"}},
        {"the frame is away", {"refuse on", "disconnect"}, milliseconds(2500), {"refuse off"}},
        {"acknowledgements come late",
         {"delay-acks 20 300"},
         milliseconds(2000),
         {"delay-acks 0"},
         false},
        {"the frame restarts", {"restart 500"}, milliseconds(0), {}},
        {"the frame talks nonsense", {"garbage random"}, milliseconds(0), {}},
        {"the line breaks within a message", {"break to 30 7", "disconnect"}, milliseconds(0), {}},
    };
    return all;
}

/// Memory and descriptors of a process, as the system has them.
struct Footprint {
    long kilobytes = 0;
    long descriptors = 0;

    static Footprint of(int process) {
        Footprint print;
        auto const folder = "/proc/" + std::to_string(process);
        std::ifstream status(folder + "/status");
        for (std::string word; status >> word;) {
            if (word == "VmRSS:")
                status >> print.kilobytes;
        }
        std::error_code gone;
        for ([[maybe_unused]] auto const& entry :
             std::filesystem::directory_iterator(folder + "/fd", gone))
            ++print.descriptors;
        return print;
    }
};

/// How many FIDs the monkeys of a panel say that they have raised, and how many threads an
/// exception ended: the panel's log tells.
struct LogFindings {
    unsigned long raised = 0;
    unsigned long threadsLost = 0;

    static LogFindings in(std::string const& path) {
        LogFindings found;
        constexpr std::string_view told = "The monkey has raised ";
        std::ifstream log(path);
        for (std::string line; std::getline(log, line);) {
            if (auto const at = line.find(told); at != std::string::npos)
                found.raised = std::stoul(line.substr(at + told.size()));
            found.threadsLost += line.find("An exception ended the thread") != std::string::npos;
        }
        return found;
    }
};

class Soak {
  public:
    explicit Soak(Options const& what) : options(what), stage(what.directory), random(what.seed) {}

    int run() {
        if (!start())
            return exitCheckFailed;
        auto const end =
            Clock::now() + std::chrono::duration_cast<Clock::duration>(
                               std::chrono::duration<double, std::ratio<60>>(options.minutes));
        // What a process takes once and for all it has taken after a while.
        settle(std::min<Clock::duration>((end - Clock::now()) / 5, seconds(60)));
        before = Footprint::of(panel->id());
        while (Clock::now() + seconds(8) < end) {
            settle(milliseconds(random() % 4000 + 2000));
            spoil(faults()[random() % faults().size()]);
        }
        settle(end - Clock::now());
        stopPlaying();
        after = Footprint::of(panel->id());
        compare();
        report();
        return holds ? exitGood : exitCheckFailed;
    }

  private:
    static std::string thisProgram() {
        return std::filesystem::read_symlink("/proc/self/exe").string();
    }
    std::string logFile() const { return stage.directory() + "/soak.log"; }

    /// Stops at the first thing that doesn't come: nothing behind it would.
    bool start() { return startFrame() && startPanel() && startPlaying(); }

    bool startFrame() {
        frame.emplace(
            std::vector<std::string>{thisProgram(), "frame", "--bind", stage.frameAddress()},
            [this](std::string_view line) { told.add(line); });
        return check(told.waitForMore(frameUp, 0, patience), "the frame comes up");
    }

    bool startPanel() {
        panel.emplace(std::vector<std::string>{thisProgram(), "panel", "--dir", stage.directory(),
                                               "--address", stage.panelAddress(), "--log", "debug",
                                               "--log-file", logFile()},
                      [this](std::string_view line) { heard.add(line); });
        return check(heard.waitForMore(joined, 0, patience), "the panel is joined to it");
    }

    bool startPlaying() {
        panel->send("DRIVER.MONKEYTEST.ENABLE VAL=ON");
        frame->send("operate 20 " + std::to_string(options.seed));
        return check(heard.waitForMore(monkeyOn, 0, patience), "the monkey is on");
    }

    static void settle(Clock::duration time) {
        if (time > Clock::duration::zero())
            std::this_thread::sleep_for(time);
    }

    /// One fault, and the panel's way back.
    void spoil(Fault const& fault) {
        auto const times = heard.of(joined);
        for (auto const* command : fault.begin)
            frame->send(command);
        settle(fault.length);
        for (auto const* command : fault.end)
            frame->send(command);
        ++spoiled;
        if (fault.endsLink)
            check(heard.waitForMore(joined, times, patience),
                  std::string("the panel is back after: ") + fault.name);
    }

    void stopPlaying() {
        frame->send("operate 0");
        frame->send("heal");
        auto const times = heard.of(monkeyOff);
        panel->send("DRIVER.MONKEYTEST.ENABLE VAL=OFF");
        check(heard.waitForMore(monkeyOff, times, patience), "the monkey is off");
        settle(seconds(1));  // a monkey ends its pause of half a second at most
    }

    /// The panel's exit code tells: 1 for a difference, others for a sanitizer's or a crash.
    void compare() {
        panel->send(":compare");
        int const code = panel->finish();
        check(code == 0,
              "the panel shows what the frame is (its exit code is " + std::to_string(code) + ")");
        frame->send("quit");
        check(frame->finish() == 0, "the frame ends well");
    }

    void report() {
        auto const findings = LogFindings::in(logFile());
        auto const growth = after.kilobytes - before.kilobytes;
        auto const messages = told.of(messageSet) + told.of(messageEvent);
        auto const issues = told.of(issueValue) + told.of(issueList);
        check(findings.raised > 0, "the monkey raised FIDs");
        check(messages > 0 && issues > 0, "messages and issues crossed");
        check(findings.threadsLost == 0, "no thread was lost to an exception");
        check(growth <= static_cast<long>(options.growth) * 1024, "memory keeps its bounds");
        check(after.descriptors <= before.descriptors, "descriptors keep their number");
        tell("minutes", options.minutes);
        tell("FIDs raised by the monkey", findings.raised);
        tell("messages sent", messages);
        tell("issues received", issues);
        tell("states and texts shown", heard.of(stateShown) + heard.of(textShown));
        tell("faults", spoiled);
        tell("memory before, KiB", before.kilobytes);
        tell("memory growth, KiB", growth);
        tell("descriptors before", before.descriptors);
        tell("descriptors growth", after.descriptors - before.descriptors);
        tell("differences", heard.of(difference));
        tell("held", holds);
        if (options.json)
            printLine(jsonLine(figures));
    }

    template <typename Value>
    void tell(std::string const& name, Value value) {
        nlohmann::ordered_json const figure = value;
        if (options.json)
            figures[name] = figure;
        else
            printLine(name + ": " + figure.dump());
    }

    bool check(bool good, std::string const& what) {
        if (!good)
            printError("soak", "failed: " + what);
        holds = holds && good;
        return good;
    }

    Options const& options;
    DemoStage stage;
    std::mt19937 random;
    LineCounter told{frameUp, messageSet, messageEvent, issueValue, issueList};
    LineCounter heard{joined, monkeyOn, monkeyOff, stateShown, textShown, difference};
    std::optional<ChildProcess> frame;
    std::optional<ChildProcess> panel;
    Footprint before;
    Footprint after;
    unsigned long spoiled = 0;
    bool holds = true;
    nlohmann::ordered_json figures;
};

constexpr char footer[] =
    "\nA frame and a panel as processes of their own; in the panel the monkey test, at the frame\n"
    "another operator, and on the line a fault now and then. At the end the panel must show what\n"
    "the frame is, and must not have grown. The exit code is 1 if anything did not hold.\n"
    "\nExample:\n"
    "  qfd soak --dir installation --minutes 10";

}  // namespace

void addSoakCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<Options>();
    auto* const command =
        program.add_subcommand("soak", "Let a monkey play on a panel while its link is spoiled");
    command
        ->add_option("--dir", options->directory, "The installation to play it on (a copy is used)")
        ->type_name("DIRECTORY")
        ->required();
    command->add_option("--minutes", options->minutes, "How long")
        ->type_name("N")
        ->check(CLI::Range(0.25, 100000.0))
        ->capture_default_str();
    command->add_option("--seed", options->seed, "What decides the faults and the operator")
        ->type_name("N")
        ->capture_default_str();
    command->add_option("--growth", options->growth, "How much memory the panel may come to take")
        ->type_name("MIB")
        ->capture_default_str();
    command->add_flag("--json", options->json, "Print the figures as one JSON object");
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return Soak(*options).run(); }; });
}

}  // namespace qfd
