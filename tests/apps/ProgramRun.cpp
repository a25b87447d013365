#include "ProgramRun.h"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/// Where the program starts, and what its three streams are.
class Surroundings {
  public:
    Surroundings() { posix_spawn_file_actions_init(&actions); }
    ~Surroundings() { posix_spawn_file_actions_destroy(&actions); }
    Surroundings(Surroundings const&) = delete;
    Surroundings& operator=(Surroundings const&) = delete;

    void open(int stream, std::string const& path, int flags) {
        posix_spawn_file_actions_addopen(&actions, stream, path.c_str(), flags, 0600);
    }
    void enter(std::string const& path) {
        posix_spawn_file_actions_addchdir_np(&actions, path.c_str());
    }

    posix_spawn_file_actions_t actions;
};

int runProgram(std::vector<std::string> words, Surroundings const& surroundings) {
    std::vector<char*> pointers;
    for (auto& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t pid = -1;
    if (posix_spawn(&pid, QFD_PROGRAM, &surroundings.actions, nullptr, pointers.data(), environ))
        throw std::runtime_error("can't start " QFD_PROGRAM);
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

ProgramRunner::ProgramRunner() {
    std::string name = (fs::temp_directory_path() / "qfd-apps-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no directory for the test");
    directory = name;
}

ProgramRunner::~ProgramRunner() { fs::remove_all(directory); }

ProgramRun ProgramRunner::run(std::vector<std::string> const& arguments, std::string const& input,
                              std::string const& in) const {
    return runWithInputFrom(write("in", input), arguments, in);
}

ProgramRun ProgramRunner::runWithInputFrom(std::string const& inputPath,
                                           std::vector<std::string> const& arguments,
                                           std::string const& in) const {
    auto const out = (directory / "out").string();
    auto const err = (directory / "err").string();
    Surroundings surroundings;
    surroundings.open(STDIN_FILENO, inputPath, O_RDONLY);
    surroundings.open(STDOUT_FILENO, out, O_WRONLY | O_CREAT | O_TRUNC);
    surroundings.open(STDERR_FILENO, err, O_WRONLY | O_CREAT | O_TRUNC);
    if (!in.empty())
        surroundings.enter(in);
    std::vector<std::string> words = {"qfd"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    int const code = runProgram(words, surroundings);
    return {code, read(out), read(err)};
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
