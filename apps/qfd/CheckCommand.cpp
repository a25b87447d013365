#include "CheckCommand.h"

#include "AuthorInput.h"
#include "Output.h"
#include "conversion/DictionaryCheck.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

using FrameDriver::XML::DictionaryFinding;

namespace qfd {
namespace {

struct Options {
    std::vector<std::string> files;
    bool json = false;
};

void print(std::string const& path, DictionaryFinding const& finding, bool json) {
    if (json) {
        printLine(jsonLine(
            {{"file", widened(path)},
             {"line", finding.position.line},
             {"column", finding.position.column},
             {"severity", finding.severity == DictionaryFinding::fatal ? "error" : "warning"},
             {"cause", widened(finding.cause)}}));
        return;
    }
    auto text = toText(path, finding);
    while (text.ends_with('\n'))
        text.pop_back();
    printLine(text);
}

int run(Options const& options) {
    XMLLibrary const library;
    auto code = exitGood;
    for (auto const& path : options.files) {
        readInput(path);  // a file that isn't there is no finding
        for (auto const& finding : FrameDriver::XML::checkDictionary(path)) {
            print(path, finding, options.json);
            code = exitCheckFailed;
        }
    }
    return code;
}

constexpr char footer[] =
    "\nThe driver passes over what it doesn't understand in a dictionary; this says what that is,\n"
    "and where. Exit code 1 if there is anything to say.\n"
    "\nExample:\n"
    "  qfd check installation/Configuration/*/To*.xml";

}  // namespace

void addCheckCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<Options>();
    auto* const command = program.add_subcommand("check", "Look for mistakes in dictionary files");
    command->add_flag("--json", options->json, "Print one JSON object per finding");
    command->add_option("files", options->files, "Dictionary files")->required()->type_name("FILE");
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return run(*options); }; });
}

}  // namespace qfd
