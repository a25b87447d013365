#include "TemplateCommand.h"

#include "AuthorInput.h"
#include "Output.h"
#include "template/TemplateParser.h"
#include "template/TemplateString.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <optional>

using FrameDriver::Template::TemplateString;

namespace qfd {
namespace {

struct Options {
    std::string source;
    std::vector<std::string> texts;
    bool json = false;
};

TemplateString parse(std::string const& source) {
    try {
        return FrameDriver::Template::TemplateParser::parse(source);
    } catch (...) {
        throw InputError("'" + escaped(source) + "' is no template: " + currentExceptionText());
    }
}

nlohmann::ordered_json examine(TemplateString const& pattern, std::string_view text) {
    nlohmann::ordered_json object;
    object["text"] = widened(text);
    object["matches"] = pattern.matches(text);
    object["variables"] = nlohmann::ordered_json::object();
    object["prints"] = widened(pattern.toString());
    try {
        if (object["matches"])
            for (auto const& [name, value] : pattern.extractVariables(text))
                object["variables"][widened(name)] = widened(value);
    } catch (...) {
        object["error"] = widened(currentExceptionText());
    }
    return object;
}

void printPlain(nlohmann::ordered_json const& object) {
    printLine(object["matches"] ? "matches true" : "matches false");
    for (auto const& [name, value] : object["variables"].items())
        printLine(onOneLine(narrowed(name)) + " = " +
                  onOneLine(narrowed(value.get<std::string>())));
    if (object.contains("error"))
        printLine("!" + onOneLine(narrowed(object["error"].get<std::string>())));
    printLine("prints " + onOneLine(narrowed(object["prints"].get<std::string>())));
}

int run(Options const& options) {
    auto const pattern = parse(options.source);
    forEachText(options.texts, [&](std::string_view text, std::size_t count) {
        auto const object = examine(pattern, text);
        if (options.json) {
            printLine(jsonLine(object));
            return;
        }
        if (count > 1)
            printLine("");
        printPlain(object);
    });
    return exitGood;
}

constexpr char footer[] =
    "\nPrints whether the text matches, what each variable captures, and the template as the\n"
    "driver prints it: \"matches true\", \"NAME = VALUE\", \"prints TEMPLATE\". A blank line\n"
    "stands between two texts.\n"
    "\nExample:\n"
    "  qfd template 'PANEL.ME{@me}.KEY{@key}.ON' PANEL.ME1.KEY3.ON";

}  // namespace

void addTemplateCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<Options>();
    auto* const command = program.add_subcommand(
        "template", "Try a template on texts: does it match, what is caught");
    command->add_flag("--json", options->json, "Print one JSON object per text");
    command->add_option("template", options->source, "The template")
        ->required()
        ->type_name("TEMPLATE");
    command->add_option("texts", options->texts, "Texts (default: standard input's lines)")
        ->type_name("TEXT");
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return run(*options); }; });
}

}  // namespace qfd
