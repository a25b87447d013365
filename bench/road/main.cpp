// How long a FID takes to the frame and back as an acknowledgement, and a change at the frame to
// the panel's sink, next to a bare TCP round trip, all over loopback and in one run.
//
//     bench_road [rounds]

#include "sims/frame/FrameServer.h"
#include "sims/frame/ModelFile.h"
#include "sims/panel/PanelHost.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdlib.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::vector<double>;
namespace fs = std::filesystem;

constexpr std::chrono::seconds patience{20};

template <typename Action>
double timed(Action action) {
    auto const start = Clock::now();
    action();
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

double quantile(Microseconds figures, double part) {
    std::sort(figures.begin(), figures.end());
    return figures[static_cast<std::size_t>(part * static_cast<double>(figures.size() - 1))];
}

void noDelay(int fd) {
    int const on = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

/// Sixty-four bytes there and back, a thread on each side.
Microseconds bareRoundTrips(int rounds) {
    int const listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in end{};
    end.sin_family = AF_INET;
    end.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof end;
    ::bind(listener, reinterpret_cast<sockaddr*>(&end), size);
    ::listen(listener, 1);
    getsockname(listener, reinterpret_cast<sockaddr*>(&end), &size);
    std::thread echo([listener] {
        int const peer = ::accept(listener, nullptr, nullptr);
        noDelay(peer);
        std::array<char, 64> bytes;
        while (::recv(peer, bytes.data(), bytes.size(), MSG_WAITALL) == 64)
            if (::send(peer, bytes.data(), bytes.size(), 0) != 64)
                break;
        ::close(peer);
    });
    int const fd = ::socket(AF_INET, SOCK_STREAM, 0);
    Microseconds figures;
    std::array<char, 64> bytes{};
    if (::connect(fd, reinterpret_cast<sockaddr*>(&end), size) == 0) {
        noDelay(fd);
        for (int i = 0; i < rounds; ++i)
            figures.push_back(timed([&] {
                if (::send(fd, bytes.data(), bytes.size(), 0) != 64 ||
                    ::recv(fd, bytes.data(), bytes.size(), MSG_WAITALL) != 64)
                    std::abort();
            }));
    }
    ::close(fd);
    echo.join();
    ::close(listener);
    return figures;
}

/// The sample installation in a directory of its own, with the frame's address in its settings.
class Installation {
  public:
    explicit Installation(std::string const& frameAddress) {
        auto name = (fs::temp_directory_path() / "qfd-bench-XXXXXX").native();
        if (!mkdtemp(name.data()))
            std::abort();
        directory = name;
        fs::copy(QFD_INSTALLATION, directory, fs::copy_options::recursive);
        auto const path = directory / "Configuration/Settings.xml";
        std::ifstream in(path, std::ios::binary);
        std::string text{std::istreambuf_iterator<char>(in), {}};
        auto const value =
            text.find("<value>", text.find("<name>Simulator Frame Address</name>")) + 7;
        text.replace(value, text.find("</value>", value) - value, frameAddress);
        std::ofstream(path, std::ios::binary) << text;
    }
    ~Installation() {
        std::error_code ignored;
        fs::remove_all(directory, ignored);
    }
    Installation(Installation const&) = delete;
    Installation& operator=(Installation const&) = delete;

    fs::path directory;
};

bool waitForSid(PanelSim::PanelHost& panel, std::string const& name, std::string const& value) {
    return panel.record().wait({PanelSim::Heard::sid, name, value, {}}, patience);
}

void print(char const* what, Microseconds const& figures, Microseconds const& bare) {
    auto const median = quantile(figures, 0.5);
    auto const worst = quantile(figures, 0.99);
    std::printf("%-44s %9.1f %9.1f %9.2f %9.2f\n", what, median, worst,
                median / quantile(bare, 0.5), worst / quantile(bare, 0.99));
}

int measure(int rounds) {
    auto const address = "127.77." + std::to_string(::getpid() / 250 % 250) + "." +
                         std::to_string(::getpid() % 250 + 1);
    Installation const installation(address);
    FrameSim::FrameServerOptions options;
    options.address = address;
    options.port = 5000;
    options.model = FrameSim::sampleSwitcher();
    options.recordLimit = 16;
    FrameSim::FrameServer frame(options);
    frame.start();
    PanelSim::PanelHost panel({QFD_MODULE, installation.directory.native(), 0, address});
    panel.start();
    if (!waitForSid(panel, "FRAME.CONNECTED", "ON")) {
        std::fprintf(stderr, "bench_road: the panel doesn't connect\n");
        return 1;
    }
    auto const bare = bareRoundTrips(rounds);
    Microseconds toFrame;
    Microseconds toPanel;
    for (int i = 0; i < rounds; ++i) {
        auto const source = std::to_string(i % 2 + 3);
        toFrame.push_back(timed([&] { panel.raise("ME2.PST.SRC" + source, {}); }));
        waitForSid(panel, "ME2.PST.SOURCE", source);
    }
    for (int i = 0; i < rounds; ++i) {
        auto const rate = i % 2 + 60;
        toPanel.push_back(timed([&] {
            frame.frame().set({31, 0x03000001}, 0,
                              FrameSim::Value::ofInteger(FrameSim::DataType::UInt16, rate));
            waitForSid(panel, "ME2.RATE.FIELDS", std::to_string(rate));
        }));
    }
    std::printf("%-44s %9s %9s %9s %9s\n", "microseconds", "median", "p99", "x median", "x p99");
    print("bare TCP round trip, 64 bytes", bare, bare);
    print("FID to frame, acknowledged", toFrame, bare);
    print("change at the frame to SID at the sink", toPanel, bare);
    panel.stop();
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    auto const rounds = count > 1 ? std::atoi(arguments[1]) : 2000;
    return measure(std::max(rounds, 10));
}
