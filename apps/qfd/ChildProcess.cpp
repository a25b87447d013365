#include "ChildProcess.h"

#include "Command.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

extern char** environ;

namespace qfd {
namespace {

std::string reason(int error) { return std::generic_category().message(error); }

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw InputError("no pipe to be had: " + reason(errno));
    return ends;
}

std::vector<char*> argumentsOf(std::vector<std::string> const& command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (auto const& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    return arguments;
}

}  // namespace

ChildProcess::ChildProcess(std::vector<std::string> const& command, OnLine onLine)
    : hear(std::move(onLine)) {
    auto const toChild = makePipe();
    auto const fromChild = makePipe();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, toChild[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fromChild[1], STDOUT_FILENO);
    auto arguments = argumentsOf(command);
    auto const error =
        posix_spawn(&pid, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(toChild[0]);
    ::close(fromChild[1]);
    input = toChild[1];
    output = fromChild[0];
    if (error != 0) {
        pid = -1;
        ::close(input);
        ::close(output);
        throw InputError("can't start " + command[0] + ": " + reason(error));
    }
    reader = std::thread([this] { readLines(); });
}

ChildProcess::~ChildProcess() {
    if (pid > 0)
        kill();
}

void ChildProcess::readLines() {
    std::string pending;
    std::array<char, 4096> buffer;
    for (;;) {
        auto const count = ::read(output, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return;
        pending.append(buffer.data(), static_cast<std::size_t>(count));
        std::size_t start = 0;
        for (auto end = pending.find('\n'); end != std::string::npos;
             end = pending.find('\n', start)) {
            hear(std::string_view(pending).substr(start, end - start));
            start = end + 1;
        }
        pending.erase(0, start);
    }
}

void ChildProcess::send(std::string_view line) {
    auto const text = std::string(line) + "\n";
    // A child that has ended would end us by a signal.
    struct sigaction const ignore = [] {
        struct sigaction action {};
        action.sa_handler = SIG_IGN;
        return action;
    }();
    struct sigaction before {};
    sigaction(SIGPIPE, &ignore, &before);
    [[maybe_unused]] auto const written = ::write(input, text.data(), text.size());
    sigaction(SIGPIPE, &before, nullptr);
}

int ChildProcess::finish() { return wait(); }

void ChildProcess::kill() {
    ::kill(pid, SIGKILL);
    wait();
}

int ChildProcess::wait() {
    if (pid <= 0)
        return 0;
    ::close(input);
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    pid = -1;
    reader.join();
    ::close(output);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace qfd
