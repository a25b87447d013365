#include "bench/convert/Trial.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

namespace {

// Not more than this, or the machine would suffer.
constexpr rlim_t mostMemory = rlim_t(12) << 30;

[[noreturn]] void runChild(std::function<std::string()> const& step, int answer) {
    rlimit const memory{mostMemory, mostMemory};
    setrlimit(RLIMIT_AS, &memory);
    std::string text;
    try {
        text = step();
    } catch (std::exception const& failure) {
        text = failure.what();
    }
    text += '\n';
    auto const written = ::write(answer, text.data(), text.size());
    _exit(written == static_cast<ssize_t>(text.size()) ? 0 : 1);
}

// What the other side of the pipe said, up to the line's end.
std::string readLine(int pipe) {
    std::string text;
    char byte = 0;
    while (::read(pipe, &byte, 1) == 1) {
        if (byte == '\n')
            return text;
        text += byte;
    }
    return "ended without a word";
}

}  // namespace

std::string tryOut(std::function<std::string()> const& step, std::chrono::seconds limit) {
    int ends[2];
    if (::pipe(ends) != 0)
        return "no pipe";
    std::fflush(stdout);
    auto const child = fork();
    if (child < 0)
        return "no process";
    if (child == 0)
        runChild(step, ends[1]);
    ::close(ends[1]);
    pollfd ready{ends[0], POLLIN, 0};
    auto const milliseconds = std::chrono::milliseconds(limit).count();
    std::string outcome = "takes more than " + std::to_string(limit.count()) + " s to compile";
    if (::poll(&ready, 1, static_cast<int>(milliseconds)) > 0)
        outcome = readLine(ends[0]);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    ::close(ends[0]);
    return outcome;
}

}  // namespace bench
