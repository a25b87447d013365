#pragma once

#include <functional>
#include <string_view>

namespace qfd {

/// The main thread of a program that serves until it is told to stop: reads lines from standard
/// input until a line says so, or SIGINT or SIGTERM comes. The end of the input stops nothing,
/// so that the program can run with none.
///
/// Make it before any thread starts: it has both signals taken from all of them.
class ConsoleInput {
  public:
    ConsoleInput();
    ~ConsoleInput();
    ConsoleInput(ConsoleInput const&) = delete;
    ConsoleInput& operator=(ConsoleInput const&) = delete;

    /// Calls `onLine` for each line, without its newline, until it returns false. A last line
    /// without a newline counts. A line longer than 64 KiB comes in pieces.
    void run(std::function<bool(std::string_view)> const& onLine);

  private:
    int signals = -1;
};

}  // namespace qfd
