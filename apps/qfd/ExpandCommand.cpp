#include "ExpandCommand.h"

#include "AuthorInput.h"
#include "Output.h"
#include "conversion/DictionaryRange.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace qfd {
namespace {

struct Options {
    std::vector<std::string> texts;
    bool json = false;
};

void expandOne(std::string_view text, bool json) {
    auto const results = FrameDriver::XML::expandForm(std::string(text));
    if (!json) {
        for (auto const& result : results)
            printLine(onOneLine(result));
        return;
    }
    nlohmann::ordered_json object{{"text", widened(text)}};
    object["results"] = nlohmann::ordered_json::array();
    for (auto const& result : results)
        object["results"].push_back(widened(result));
    printLine(jsonLine(object));
}

int run(Options const& options) {
    auto code = exitGood;
    forEachText(options.texts, [&](std::string_view text, std::size_t line) {
        try {
            expandOne(text, options.json);
        } catch (...) {
            // The column is where the range opens: that is as much as the notation lets know.
            printError("expand", std::to_string(line) + ":" + std::to_string(text.find('(') + 1) +
                                     ": " + currentExceptionText());
            code = exitBadUsage;
        }
    });
    return code;
}

constexpr char footer[] =
    "\nRanges as in dictionary files: (1-16) is decimal, (0x08-0x0b) hexadecimal.\n"
    "\nExample:\n"
    "  qfd expand 'PANEL.ME(1-2).KEY(1-4).ON'";

}  // namespace

void addExpandCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<Options>();
    auto* const command =
        program.add_subcommand("expand", "Expand the ranges of a dictionary text");
    command->add_flag("--json", options->json, "Print one JSON object per text");
    command->add_option("texts", options->texts, "Texts (default: standard input's lines)")
        ->type_name("TEXT");
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return run(*options); }; });
}

}  // namespace qfd
