#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// What became of a run of `qfd`.
struct ProgramRun {
    int code;
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

    /// The arguments go to the program as they are, bytes and all.
    ProgramRun run(std::vector<std::string> const& arguments, std::string const& input = "") const;

    /// Writes a file; its whole name.
    std::string write(std::string const& name, std::string const& content) const;
    static std::string read(std::string const& path);

    std::filesystem::path directory;
};
