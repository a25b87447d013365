#include "Arguments.h"
#include "CheckCommand.h"
#include "Command.h"
#include "ConvertCommand.h"
#include "DecorateCommand.h"
#include "DemoCommand.h"
#include "DidCommand.h"
#include "DsfCommand.h"
#include "ExpandCommand.h"
#include "ExpandLineCommand.h"
#include "FrameCommand.h"
#include "MessageCommand.h"
#include "Output.h"
#include "PanelCommand.h"
#include "SoakCommand.h"
#include "TemplateCommand.h"
#include "TimeCommand.h"

#include <CLI/CLI.hpp>

#include <string>

namespace {

/// The jobs, in the order in which `qfd --help` shows them.
constexpr void (*addCommands[])(CLI::App&, qfd::Job&) = {
    qfd::addDemoCommand,    qfd::addFrameCommand,  qfd::addPanelCommand,
    qfd::addConvertCommand, qfd::addDidCommand,    qfd::addTemplateCommand,
    qfd::addMessageCommand, qfd::addExpandCommand, qfd::addDecorateCommand,
    qfd::addCheckCommand,   qfd::addDsfCommand,    qfd::addExpandLineCommand,
    qfd::addTimeCommand,    qfd::addSoakCommand,
};

constexpr char helpFooter[] =
    "`qfd SUBCOMMAND --help` tells all about a subcommand. Texts that begin with - stand behind\n"
    "--; negative numbers such as -2.5 need none.\n"
    "\nThe exit code is 0 when all went well, 1 when a check said no, and 2 when the command\n"
    "line or an input is wrong.";

/// CLI11 has an exit code for each kind of mistake; to the user they are all one.
int report(CLI::App const& program, CLI::ParseError const& outcome) {
    return program.exit(outcome) == 0 ? qfd::exitGood : qfd::exitBadUsage;
}

std::string chosen(CLI::App const& program) {
    auto const subcommands = program.get_subcommands();
    return subcommands.empty() ? "" : subcommands.front()->get_name();
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App program("The frame driver's tools: the two simulators, and the checkers and\n"
                     "converters for the files that the driver reads.",
                     "qfd");
    qfd::Job job;
    program.require_subcommand(1);
    program.set_version_flag("--version", "qfd " QFD_PROGRAM_VERSION);
    program.footer(helpFooter);
    for (auto* const add : addCommands) {
        add(program, job);
    }
    try {
        qfd::parseArguments(program, argc, argv);
    } catch (CLI::ParseError const& outcome) {
        return report(program, outcome);
    }
    try {
        return job();
    } catch (qfd::InputError const& error) {
        qfd::printError(chosen(program), error.what());
        return qfd::exitBadUsage;
    }
}
