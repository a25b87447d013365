#include "ConsoleInput.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <string>
#include <sys/signalfd.h>
#include <unistd.h>

namespace qfd {
namespace {

constexpr std::size_t longestLine = 65536;

/// Takes whole lines off the front of `buffer`. False if one of them says stop.
bool takeLines(std::string& buffer, std::function<bool(std::string_view)> const& onLine) {
    std::size_t start = 0;
    bool goOn = true;
    while (goOn) {
        auto const end = buffer.find('\n', start);
        if (end == std::string::npos) {
            break;
        }
        goOn = onLine(std::string_view(buffer).substr(start, end - start));
        start = end + 1;
    }
    buffer.erase(0, start);
    if (goOn && buffer.size() >= longestLine) {
        goOn = onLine(buffer);
        buffer.clear();
    }
    return goOn;
}

sigset_t stopSignals() {
    sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, SIGINT);
    ::sigaddset(&set, SIGTERM);
    return set;
}

}  // namespace

ConsoleInput::ConsoleInput() {
    auto const set = stopSignals();
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
    signals = ::signalfd(-1, &set, SFD_CLOEXEC);
}

ConsoleInput::~ConsoleInput() { ::close(signals); }

void ConsoleInput::run(std::function<bool(std::string_view)> const& onLine) {
    std::string buffer;
    pollfd waiting[] = {{signals, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    for (;;) {
        if (::poll(waiting, 2, -1) < 0 && errno != EINTR) {
            return;
        }
        if (waiting[0].revents != 0) {
            return;
        }
        if (waiting[1].revents == 0) {
            continue;
        }
        char block[4096];
        ssize_t const got = ::read(STDIN_FILENO, block, sizeof block);
        if (got <= 0) {
            waiting[1].fd = -1;
            buffer.append(buffer.empty() ? "" : "\n");
        } else {
            buffer.append(block, static_cast<std::size_t>(got));
        }
        if (!takeLines(buffer, onLine)) {
            return;
        }
    }
}

}  // namespace qfd
