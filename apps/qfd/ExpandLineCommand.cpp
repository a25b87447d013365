#include "ExpandLineCommand.h"

#include "AuthorInput.h"
#include "Output.h"
#include "driver/LineExpander.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <list>
#include <string>
#include <vector>

namespace qfd {
namespace {

struct Options {
    std::vector<std::string> texts;
    bool json = false;
};

/// "TEXT", a tab, and the choices in the order in which they are made, "[1:x] [2:a]".
std::string shown(ExpandedLine const& line) {
    std::string text = onOneLine(line.text);
    char separator = '\t';
    for (auto const& choice : line.choices) {
        text += separator;
        text += "[" + std::to_string(choice.index) + ":" + onOneLine(choice.values.front()) + "]";
        separator = ' ';
    }
    return text;
}

nlohmann::ordered_json inJson(ExpandedLine const& line) {
    nlohmann::ordered_json object{{"text", widened(line.text)}};
    object["choices"] = nlohmann::ordered_json::array();
    for (auto const& choice : line.choices)
        object["choices"].push_back(
            {{"index", choice.index}, {"value", widened(choice.values.front())}});
    return object;
}

void printAll(std::string_view text, std::list<ExpandedLine> const& lines, bool json) {
    if (!json) {
        for (auto const& line : lines)
            printLine(shown(line));
        return;
    }
    nlohmann::ordered_json object{{"text", widened(text)}};
    object["results"] = nlohmann::ordered_json::array();
    for (auto const& line : lines)
        object["results"].push_back(inJson(line));
    printLine(jsonLine(object));
}

void printException(std::string_view text, bool json) {
    auto const what = currentExceptionText();
    printLine(json ? jsonLine({{"text", widened(text)}, {"error", widened(what)}}) : "!" + what);
}

int run(Options const& options) {
    forEachText(options.texts, [&](std::string_view text, std::size_t) {
        try {
            printAll(text, LineExpander(std::string(text)).expand(), options.json);
        } catch (...) {
            printException(text, options.json);
        }
    });
    return exitGood;
}

constexpr char footer[] =
    "\nPrints each line that a line of a state file stands for; behind a tab, the choices made\n"
    "for it. An exception is printed as a line that begins with !.\n"
    "\nExample:\n"
    "  qfd expand-line 'ME[1:1-2].KEY[2:1-4].ON VAL=OFF'";

}  // namespace

void addExpandLineCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<Options>();
    auto* const command =
        program.add_subcommand("expand-line", "Expand the groups of a state file's line");
    command->add_flag("--json", options->json, "Print one JSON object per line");
    command->add_option("texts", options->texts, "Lines (default: standard input's lines)")
        ->type_name("TEXT");
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return run(*options); }; });
}

}  // namespace qfd
