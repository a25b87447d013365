#include "PanelCommand.h"

#include "Output.h"
#include "platform/logging/LogManager.h"
#include "sims/panel/PanelHost.h"
#include "sims/panel/PanelRunner.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace qfd {
namespace {

using Brindlemoor::Utilities::Logging::LogLevel;
using Brindlemoor::Utilities::Logging::LogManager;
using PanelSim::PanelEvent;
using PanelSim::PanelHost;
using PanelSim::PanelRunner;

struct PanelOptions {
    std::string module;
    std::string directory;
    std::int32_t index = 0;
    std::string address;
    std::string script;
    bool compare = false;
    bool json = false;
    LogLevel level = LogLevel::Error;
    std::string logFile;
};

constexpr std::size_t heardKept = 1000;          // of what the panel heard; nothing here looks back
constexpr std::size_t logFileSize = 16U << 20U;  // bytes, then it is rolled over

constexpr std::int32_t panelNumbers = 29668;  // the local port is 6200 + 2 x number

constexpr std::pair<char const*, LogLevel> levels[] = {{"debug", LogLevel::Debug},
                                                       {"info", LogLevel::Info},
                                                       {"warning", LogLevel::Warning},
                                                       {"error", LogLevel::Error},
                                                       {"off", LogLevel::Off}};

constexpr char footer[] =
    "One command a line, from the script or from standard input:\n"
    "  NAME [PARAMETER=VALUE ...] [@WIDGET]   raise a FID; \"...\" holds any byte, \\xHH too\n"
    "  :wait SID|TID NAME [VALUE] [within MS]\n"
    "  :wait FID NAME [PARAMETER=VALUE ...] [within MS]\n"
    "  :sleep MS, :state [PATTERN], :compare, :quit, # comment\n"
    "\nPrints what the panel hears: \"SID NAME = VALUE\", \"TID NAME = VALUE\", \"FID NAME\n"
    "PARAMETER=VALUE ...\", and \"! TEXT\" for an exception that a FID brings back. The exit\n"
    "code is 1 after such an exception, and when a :wait runs out, which ends the run. The\n"
    "driver's own printing goes to standard error.\n"
    "\n:compare joins a fresh panel to the same frame and prints, as \"DIFFERENCE SID NAME: this\n"
    "panel VALUE, a fresh one VALUE\", all that the two show unlike but what config/OwnState.txt\n"
    "calls the panel's own. Any difference makes the exit code 1. --compare does it at the end.\n"
    "\nExample:\n"
    "  printf 'ME1.CUT\\n:wait SID ME1.PGM.SOURCE 2\\n' | qfd panel --dir installation";

std::string defaultModule() {
    std::error_code error;
    auto const program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path().parent_path() / "lib" / "tavrine_frame_driver.so").string();
}

/// What the panel hears, on the program's standard output. The descriptor itself is then
/// standard error's: a driver prints on its own account, and that must not get between the
/// lines of somebody who reads them.
class PanelPrinter {
  public:
    explicit PanelPrinter(bool asJson) : json(asJson), out(::fdopen(::dup(STDOUT_FILENO), "w")) {
        ::dup2(STDERR_FILENO, STDOUT_FILENO);
    }

    void print(PanelEvent const& event) { write(json ? inJson(event) : shown(event)); }

    void print(PanelSim::Difference const& difference) {
        write(json ? jsonLine({{"kind", "difference"},
                               {"of", PanelSim::kindName(difference.kind)},
                               {"name", widened(difference.name)},
                               {"value", widened(difference.value)},
                               {"fresh", widened(difference.fresh)}})
                   : "DIFFERENCE " + shown(difference));
    }

    void printException(std::string const& text) {
        write(json ? jsonLine({{"kind", "!"}, {"text", widened(text)}}) : "! " + text);
    }

  private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    static std::string inJson(PanelEvent const& event) {
        nlohmann::ordered_json object = {{"kind", PanelSim::kindName(event.kind)},
                                         {"name", widened(event.name)}};
        if (event.kind != PanelSim::Heard::fid) {
            object["value"] = widened(event.value);
            return jsonLine(object);
        }
        auto& list = object["parameters"] = nlohmann::ordered_json::array();
        for (FIDParameter const& parameter : event.parameters) {
            list.push_back(
                {{"name", widened(parameter.getName())}, {"value", widened(parameter.getValue())}});
        }
        return jsonLine(object);
    }

    /// One write a line: the lines of several threads don't mix.
    void write(std::string line) {
        line.push_back('\n');
        std::fwrite(line.data(), 1, line.size(), out.get());
        std::fflush(out.get());
    }

    bool const json;
    std::unique_ptr<std::FILE, Close> const out;
};

void startLog(PanelOptions const& options) {
    auto* const log = LogManager::getInstance();
    log->setDefaultLevel(options.level);
    if (options.logFile.empty()) {
        log->addConsole();
        return;
    }
    try {
        // The host's start changes the directory, and the file is opened anew when it is full.
        log->addRotatingFile(std::filesystem::absolute(options.logFile), logFileSize, 3);
    } catch (std::runtime_error const& error) {
        throw InputError(error.what());
    }
}

/// Runs the lines of standard input as they come. A person may correct a slip; to a program it
/// is the end.
PanelRunner::Outcome runInput(PanelRunner& runner) {
    bool const person = ::isatty(STDIN_FILENO) == 1;
    std::string line;
    for (std::size_t number = 1; std::getline(std::cin, line); ++number) {
        try {
            auto const command = PanelSim::parseLine(line, "standard input", number);
            auto const outcome = command ? runner.run(*command) : PanelRunner::Outcome::goOn;
            if (outcome != PanelRunner::Outcome::goOn) {
                return outcome;
            }
        } catch (PanelSim::ScriptError const& error) {
            if (!person) {
                throw;
            }
            printError("panel", error.what());
        }
    }
    return PanelRunner::Outcome::quit;
}

/// What the installation calls the panel's own; nothing if it doesn't say.
PanelSim::OwnNames ownNames(std::string const& directory) {
    auto const file = std::filesystem::path(directory) / "config" / "OwnState.txt";
    return std::filesystem::exists(file) ? PanelSim::OwnNames(readInput(file.string()))
                                         : PanelSim::OwnNames();
}

/// The number of a panel that has a local port to itself, as far away as can be.
std::int32_t freshIndex(std::int32_t index) { return (index + panelNumbers / 2) % panelNumbers; }

void runScript(PanelRunner& runner, std::vector<PanelSim::Command> const& script) {
    for (auto const& command : script) {
        if (runner.run(command) != PanelRunner::Outcome::goOn) {
            return;
        }
    }
}

int drive(PanelOptions const& options) {
    // The whole script is read before anything runs: a slip in its last line shouldn't leave
    // the frame half set.
    std::optional<std::vector<PanelSim::Command>> script;
    if (!options.script.empty()) {
        script = PanelSim::parseScript(readInput(options.script), options.script);
    }
    auto const own = ownNames(options.directory);
    // The host's start changes the directory, to which names are relative.
    PanelSim::PanelHostOptions const fresh{std::filesystem::absolute(options.module), "",
                                           freshIndex(options.index), options.address};
    // For ever, as the record that prints through it.
    auto* const printer = new PanelPrinter(options.json);
    startLog(options);
    PanelHost host({options.module, options.directory, options.index, options.address, heardKept},
                   [printer](PanelEvent const& event) { printer->print(event); });
    host.start();
    PanelRunner runner(
        host.record(), [&host](auto const& name, auto const& list) { host.raise(name, list); },
        [&] { return PanelSim::compareWithFresh(host.record(), fresh, own); },
        {[printer](PanelEvent const& event) { printer->print(event); },
         [printer](PanelSim::Difference const& one) { printer->print(one); },
         [printer](std::string const& text) { printer->printException(text); },
         [](std::string const& text) { printError("panel", text); }});
    if (script) {
        runScript(runner, *script);
    } else {
        runInput(runner);
    }
    if (options.compare) {
        runner.run(PanelSim::Compare{});
    }
    host.stop();
    return runner.allGood() ? exitGood : exitCheckFailed;
}

int runPanel(PanelOptions const& options) {
    try {
        return drive(options);
    } catch (PanelSim::ScriptError const& error) {
        throw InputError(error.what());
    } catch (PanelSim::PanelHostError const& error) {
        throw InputError(error.what());
    }
}

}  // namespace

void addPanelCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<PanelOptions>();
    options->module = defaultModule();
    auto* const command = program.add_subcommand(
        "panel", "Be a panel's software: load the driver, raise FIDs, print what it tells");
    command->add_option("--module", options->module, "The driver's module")
        ->type_name("FILE")
        ->capture_default_str();
    command->add_option("--dir", options->directory, "The installation: where the driver runs")
        ->type_name("DIRECTORY")
        ->required();
    command->add_option("--index", options->index, "The panel's number")
        ->type_name("N")
        ->check(CLI::Range(0, panelNumbers - 1))
        ->capture_default_str();
    command->add_option("--address", options->address, "The panel's own address")
        ->type_name("ADDRESS");
    command->add_option("--script", options->script, "Commands to run, - for standard input")
        ->type_name("FILE");
    command->add_flag("--compare", options->compare,
                      "At the end, compare what is shown with a fresh panel on the same frame");
    command->add_flag("--json", options->json, "Print one JSON object per line");
    std::map<std::string, LogLevel> const names(std::begin(levels), std::end(levels));
    command->add_option("--log", options->level, "debug, info, warning, error or off")
        ->type_name("LEVEL")
        ->transform(CLI::CheckedTransformer(names))
        ->default_str("error");
    command->add_option("--log-file", options->logFile, "Log to this file, not standard error")
        ->type_name("FILE");
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return runPanel(*options); }; });
}

}  // namespace qfd
