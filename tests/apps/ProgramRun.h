#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// What became of a run of `qfd`.
struct ProgramRun {
    int code;  ///< -1 if a signal ended it
    std::string out;
    std::string err;
};

/// Runs `qfd`, with a directory of its own for the files of the test.
class ProgramRunner {
  public:
    ProgramRunner();
    ~ProgramRunner();
    ProgramRunner(ProgramRunner const&) = delete;
    ProgramRunner& operator=(ProgramRunner const&) = delete;

    /// The arguments and the input go to the program as they are, bytes and all; `in` is the
    /// directory that it runs in, the test program's own if empty.
    ProgramRun run(std::vector<std::string> const& arguments, std::string const& input = "",
                   std::string const& in = "") const;
    /// With a file, or whatever there is at `inputPath`, as standard input.
    ProgramRun runWithInputFrom(std::string const& inputPath,
                                std::vector<std::string> const& arguments,
                                std::string const& in = "") const;

    /// Writes a file; its whole name.
    std::string write(std::string const& name, std::string const& content) const;
    static std::string read(std::string const& path);

    std::filesystem::path directory;
};
