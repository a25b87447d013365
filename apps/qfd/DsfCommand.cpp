#include "DsfCommand.h"

#include "AuthorInput.h"
#include "Output.h"
#include "driver/CDSFParser.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace qfd {
namespace {

struct Options {
    std::string file;
    bool json = false;
};

void printFinding(Options const& options, std::ptrdiff_t line, char const* severity,
                  std::string_view cause) {
    if (options.json) {
        printLine(jsonLine({{"file", widened(options.file)},
                            {"line", line},
                            {"severity", severity},
                            {"cause", widened(cause)}}));
        return;
    }
    printError("dsf", options.file + ":" + std::to_string(line) + ": " + severity + ": " +
                          std::string(cause));
}

/// The driver's parser, whose words become findings with a file and a line.
class DryRun : public CDSFParser {
  public:
    explicit DryRun(Options const& what) : options(what) {}

    /// What would be played; what can't be read is printed.
    DsfAssignments run() {
        DsfFunctions functions;
        DsfStates states;
        DsfAssignments assignments;
        try {
            load(options.file, functions, states, assignments, 0);
        } catch (...) {
            find("nothing is played, as the driver ends here: " + currentExceptionText());
            assignments.clear();
        }
        return assignments;
    }

    bool isGood() const { return good; }

  private:
    // "Syntax error (LINE): cause"; how far it has got is of no interest here.
    void print(std::string const& text) override {
        auto const end = text.find("): ");
        if (text.starts_with("Syntax error (") && end != std::string::npos)
            find(std::string_view(text).substr(end + 3, text.size() - end - 4));
    }

    void find(std::string_view cause) {
        printFinding(options, lineNumber, "error", cause);
        good = false;
    }

    Options const& options;
    bool good = true;
};

/// What the driver doesn't say: a part of the file that it doesn't look at.
void warnOfTheUnread(Options const& options, std::string_view bytes) {
    auto const end = bytes.find('\xFF');
    auto const read = bytes.substr(0, end);
    auto const line = 1 + std::ranges::count(read, '\n');
    if (end != std::string_view::npos)
        printFinding(options, line, "warning", "the byte 0xFF ends the file here");
    else if (!read.empty() && read.back() != '\n')
        printFinding(options, line, "warning", "the last line has no line feed and is lost");
}

int run(Options const& options) {
    auto const bytes = readInput(options.file);  // a file that isn't there is no finding
    DryRun dryRun(options);
    for (auto const& [name, value] : dryRun.run()) {
        if (options.json)
            printLine(jsonLine({{"sid", widened(name)}, {"value", widened(value)}}));
        else
            printLine(std::string("SID ").append(name).append(" = ").append(value));
    }
    warnOfTheUnread(options, bytes);
    return dryRun.isGood() ? exitGood : exitCheckFailed;
}

constexpr char footer[] =
    "\nReads the file as the driver does when it resets the panel, and prints each state that it\n"
    "would send, in order. What can't be read goes to standard error with its line; the exit\n"
    "code is then 1.\n"
    "\nExample:\n"
    "  qfd dsf installation/config/QISState.dsf";

}  // namespace

void addDsfCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<Options>();
    auto* const command =
        program.add_subcommand("dsf", "Show what a panel's state file would play");
    command->add_flag("--json", options->json, "Print one JSON object per state and finding");
    command->add_option("file", options->file, "The state file")->required()->type_name("FILE");
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return run(*options); }; });
}

}  // namespace qfd
