#include "DecorateCommand.h"

#include "AuthorInput.h"
#include "Output.h"
#include "template/DecoratorTable.h"
#include "template/TemplateParser.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>

using FrameDriver::Template::ContextStore;
using FrameDriver::Template::decoratorTable;
using FrameDriver::Template::TemplateParser;

namespace qfd {
namespace {

struct Options {
    std::string words;
    std::vector<std::string> values;
    std::vector<std::string> context;
    bool list = false;
    bool json = false;
};

/// The first of the words that makes no decorator; empty if all do.
std::string unknownWord(std::string_view words) {
    while (true) {
        auto const bar = words.find('|');
        auto const word = words.substr(0, bar);
        auto const rows = decoratorTable();
        if (std::none_of(rows.begin(), rows.end(),
                         [&](auto const& row) { return word.starts_with(row.keyword); }))
            return word.empty() ? "" : std::string(word);
        if (bar == std::string_view::npos)
            return "";
        words.remove_prefix(bar + 1);
    }
}

class Decorating {
  public:
    explicit Decorating(Options const& given) : options(given) {
        fillContext(store, options.context);
    }

    void decorate(std::string const& words, std::string_view value, std::size_t line) {
        if (words.empty())
            return complain(line, 1, "a line is WORD, tab, VALUE");
        if (auto const word = unknownWord(words); !word.empty())
            return complain(line, words.find(word) + 1,
                            "'" + escaped(word) + "' is no decorator; --list shows them all");
        try {
            auto const chain = TemplateParser::parse("{@x|" + words + "}");
            print(words, value, "result", chain.evaluate({{"x", std::string(value)}}, &store));
        } catch (...) {
            print(words, value, "error", currentExceptionText());
        }
    }
    int exitCode() const { return bad ? exitBadUsage : exitGood; }

  private:
    void print(std::string const& words, std::string_view value, char const* kind,
               std::string const& text) const {
        if (options.json)
            printLine(jsonLine(
                {{"word", widened(words)}, {"value", widened(value)}, {kind, widened(text)}}));
        else
            printLine((std::string_view(kind) == "error" ? "!" : "") + onOneLine(text));
    }
    void complain(std::size_t line, std::size_t column, std::string const& cause) {
        printError("decorate", std::to_string(line) + ":" + std::to_string(column) + ": " + cause);
        bad = true;
    }

    Options const& options;
    ContextStore store;
    bool bad = false;
};

int printList(bool json) {
    for (auto const& row : decoratorTable()) {
        if (json) {
            printLine(jsonLine({{"keyword", row.keyword},
                                {"form", row.form},
                                {"arguments", row.arguments},
                                {"explanation", row.explanation}}));
            continue;
        }
        printLine(row.form);
        if (!row.arguments.empty())
            printLine("    arguments: " + std::string(row.arguments));
        printLine("    " + std::string(row.explanation));
    }
    return exitGood;
}

int run(Options const& options) {
    if (options.list)
        return printList(options.json);
    Decorating decorating(options);
    if (!options.words.empty()) {
        forEachText(options.values, [&](std::string_view value, std::size_t line) {
            decorating.decorate(options.words, value, line);
        });
        return decorating.exitCode();
    }
    forEachText({}, [&](std::string_view line, std::size_t number) {
        auto const tab = line.find('\t');
        bool const whole = tab != std::string_view::npos;
        decorating.decorate(whole ? std::string(line.substr(0, tab)) : "",
                            whole ? line.substr(tab + 1) : "", number);
    });
    return decorating.exitCode();
}

constexpr char footer[] =
    "\nWords are joined by | and applied from left to right. Without WORD, standard input has\n"
    "lines of WORD, tab, VALUE; with WORD alone, lines of VALUE. An exception is printed as a\n"
    "line that begins with !. A value that begins with - and is no number stands behind --.\n"
    "\nExamples:\n"
    "  qfd decorate 'increment|width=3,padding=0' 7\n"
    "  qfd decorate format:seconds_to_frames 1.5 --context VIDEO.FRAMERATE=25";

}  // namespace

void addDecorateCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<Options>();
    auto* const command =
        program.add_subcommand("decorate", "Put values through decorators, or list the decorators");
    command->add_flag("--list", options->list, "Print every word with its form and what it does");
    command->add_option("--context", options->context, "State to read; may repeat")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    command->add_flag("--json", options->json, "Print one JSON object per value");
    command->add_option("word", options->words, "Decorator words, joined by |")->type_name("WORD");
    command->add_option("values", options->values, "Values (default: standard input's lines)")
        ->type_name("VALUE");
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return run(*options); }; });
}

}  // namespace qfd
