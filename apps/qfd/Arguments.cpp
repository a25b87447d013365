#include "Arguments.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qfd {
namespace {

// CLI11 goes by an argument's first bytes. A NUL, which no argument can hold, keeps it away from
// those that are texts whatever they look like; each option takes it off again.
constexpr char guard = '\0';

bool isNegativeNumber(std::string_view argument) {
    auto const digit = argument.find_first_not_of("-.");
    return argument.starts_with('-') && digit != std::string_view::npos &&
           digit == (argument.starts_with("-.") ? 2U : 1U) && argument[digit] >= '0' &&
           argument[digit] <= '9';
}

bool isMistakable(std::string_view argument) {
    bool const isList = argument.starts_with('[') && argument.ends_with(']');
    return isList || argument == "++" || isNegativeNumber(argument);
}

void takeOffGuards(CLI::App& command) {
    for (auto* const option : command.get_options())
        if (option->get_items_expected_max() > 0)  // flags have no texts
            option->transform([](std::string const& text) {
                return text.starts_with(guard) ? text.substr(1) : text;
            });
}

// CLI11 knows "--" only before the first text. This flag stands in for it: like "--" it ends the
// list of an option's values.
constexpr char textsFollow[] = "--texts-follow";

std::vector<std::string> guarded(int argc, char** argv) {
    std::vector<std::string> arguments;
    bool onlyTexts = false;
    for (int i = 1; i < argc; ++i) {
        std::string const argument = argv[i];
        bool const mark = argument == "--" && i > 1 && !onlyTexts;
        if (mark)
            arguments.emplace_back(textsFollow);
        else
            arguments.push_back(onlyTexts || isMistakable(argument) ? guard + argument : argument);
        onlyTexts = onlyTexts || mark;
    }
    return arguments;
}

}  // namespace

void parseArguments(CLI::App& program, int argc, char** argv) {
    for (auto* const command : program.get_subcommands([](CLI::App*) { return true; })) {
        command->add_flag(textsFollow)->group("");  // not in the help
        takeOffGuards(*command);
    }
    auto arguments = guarded(argc, argv);
    std::reverse(arguments.begin(), arguments.end());  // as CLI11 wants them
    program.parse(std::move(arguments));
}

}  // namespace qfd
