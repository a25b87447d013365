#pragma once

#include <functional>
#include <stdexcept>

namespace CLI {
class App;
}

/// How the jobs of `qfd` join the program.
///
/// Each job is a subcommand in a file pair of its own, `XxxCommand.h` and `XxxCommand.cpp`,
/// whose header declares one function:
///
///     void addXxxCommand(CLI::App& program, Job& job);
///
/// It adds the subcommand with its options to `program`, and has the subcommand's callback put
/// what is to be done into `job`. The options must outlive the call; a shared pointer in both
/// lambdas does that:
///
///     auto options = std::make_shared<Options>();
///     CLI::App* command = program.add_subcommand("xxx", "One line of what it does");
///     command->add_option("--file", options->file, "...");
///     command->callback([options, &job] { job = [options] { return run(*options); }; });
///
/// The table in main.cpp then gets one line.
namespace qfd {

/// What `qfd` gives back.
enum ExitCode : int {
    exitGood = 0,
    exitCheckFailed = 1,  ///< the work was done, and a check in it says no
    exitBadUsage = 2      ///< the command line or an input is wrong, or can't be had
};

/// What the chosen subcommand does; its result is the exit code. Runs once, on the main thread,
/// after the whole command line has been read and found good. May throw `InputError`.
using Job = std::function<int()>;

/// An input can't be used. main prints "qfd SUBCOMMAND: " and the text on standard error, and
/// ends with `exitBadUsage`.
class InputError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace qfd
