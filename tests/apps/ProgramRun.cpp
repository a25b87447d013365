#include "ProgramRun.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

namespace fs = std::filesystem;

namespace {

/// For the shell, which takes nothing in single quotes for anything but itself.
std::string quoted(std::string const& argument) {
    std::string text = "'";
    for (char const byte : argument) {
        text += byte == '\'' ? "'\\''" : std::string(1, byte);
    }
    return text + "'";
}

}  // namespace

ProgramRunner::ProgramRunner() {
    std::string name = (fs::temp_directory_path() / "qfd-apps-XXXXXX").string();
    directory = mkdtemp(name.data());
}

ProgramRunner::~ProgramRunner() { fs::remove_all(directory); }

ProgramRun ProgramRunner::run(std::vector<std::string> const& arguments,
                              std::string const& input) const {
    std::string command = quoted(QFD_PROGRAM);
    for (auto const& argument : arguments) {
        command += " " + quoted(argument);
    }
    auto const out = (directory / "out").string();
    auto const err = (directory / "err").string();
    command += " <" + quoted(write("in", input)) + " >" + quoted(out) + " 2>" + quoted(err);
    int const status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read(out), read(err)};
}

std::string ProgramRunner::write(std::string const& name, std::string const& content) const {
    auto const path = (directory / name).string();
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

std::string ProgramRunner::read(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}
