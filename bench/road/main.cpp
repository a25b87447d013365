// How long a FID takes to the frame and back as an acknowledgement, and a change at the frame to
// the panel's sink, each next to a bare TCP connection with the same threads. All over loopback,
// taking turns in one run; nothing is pinned to a processor.
//
//     bench_road [rounds]

#include "bench/road/BareLink.h"
#include "bench/road/SlowFrame.h"
#include "sims/frame/FrameServer.h"
#include "sims/frame/ModelFile.h"
#include "sims/panel/PanelHost.h"
#include "tests/support/LoopbackAddress.h"
#include "tests/support/WorkingDirectory.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;
using FrameDriver::Testing::LoopbackAddress;
using FrameDriver::Testing::WorkingDirectory;
using Microseconds = std::vector<double>;

constexpr std::chrono::seconds patience{20};
constexpr int warmUp = 100;

template <typename Action>
void time(Microseconds& figures, Action action) {
    auto const start = Clock::now();
    action();
    figures.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
}

double quantile(Microseconds figures, double part) {
    auto const place = static_cast<long>(part * static_cast<double>(figures.size() - 1));
    std::nth_element(figures.begin(), figures.begin() + place, figures.end());
    return figures[static_cast<std::size_t>(place)];
}

/// Turns the working directory into an installation whose frame is at the address.
void install(WorkingDirectory const& here, std::string const& frameAddress) {
    std::filesystem::copy(QFD_INSTALLATION, here.path(), std::filesystem::copy_options::recursive);
    std::string const file = "Configuration/Settings.xml";
    auto text = here.read(file);
    auto const value = text.find("<value>", text.find("Simulator Frame Address")) + 7;
    text.replace(value, text.find("</value>", value) - value, frameAddress);
    here.write(file, text);
}

FrameSim::FrameServerOptions frameOptions(std::string const& address) {
    FrameSim::FrameServerOptions options;
    options.address = address;
    options.port = 5000;
    options.model = FrameSim::sampleSwitcher();
    options.recordLimit = 16;
    return options;
}

/// Panel and frame, joined.
class Road {
  public:
    Road() {
        install(here, frameAddress.text());
        frame.start();
        panel.start();
        waitFor("FRAME.CONNECTED", "ON");
    }

    /// Returns when the frame has acknowledged.
    void raise(std::string const& source) { panel.raise("ME2.PST.SRC" + source, {}); }
    void settle(std::string const& source) { waitFor("ME2.PST.SOURCE", source); }
    void changeRate(int rate) {
        frame.frame().set({31, 0x03000001}, 0,
                          FrameSim::Value::ofInteger(FrameSim::DataType::UInt16, rate));
        waitFor("ME2.RATE.FIELDS", std::to_string(rate));
    }

  private:
    void waitFor(std::string const& sid, std::string const& value) {
        if (panel.record().wait({PanelSim::Heard::sid, sid, value, {}}, patience))
            return;
        std::fprintf(stderr, "bench_road: no SID %s = %s\n", sid.c_str(), value.c_str());
        std::exit(1);
    }

    LoopbackAddress frameAddress;
    LoopbackAddress panelAddress;
    WorkingDirectory here;
    FrameSim::FrameServer frame{frameOptions(frameAddress.text())};
    PanelSim::PanelHost panel{{QFD_MODULE, here.path(), 0, panelAddress.text()}};
};

struct Figures {
    Microseconds bareAnswer, answer, bareNews, news;
};

Figures measure(int rounds) {
    Road road;
    BareLink bare;
    Figures figures;
    for (int i = 0; i < rounds + warmUp; ++i) {
        if (i == warmUp)
            figures = {};
        auto const source = std::to_string(i % 2 + 3);
        time(figures.bareAnswer, [&] { bare.ask(); });
        time(figures.answer, [&] { road.raise(source); });
        road.settle(source);
        time(figures.bareNews, [&] { bare.waitForNews(); });
        time(figures.news, [&] { road.changeRate(i % 2 + 60); });
    }
    return figures;
}

void print(char const* what, Microseconds const& figures, Microseconds const& bare) {
    auto const median = quantile(figures, 0.5);
    auto const late = quantile(figures, 0.99);
    std::printf("| %s | %.1f | %.1f | %.2f | %.2f |\n", what, median, late,
                median / quantile(bare, 0.5), late / quantile(bare, 0.99));
}

void print(Figures const& figures) {
    std::printf("| Microseconds | median | p99 | x median | x p99 |\n|---|---|---|---|---|\n");
    print("bare TCP: there and back", figures.bareAnswer, figures.bareAnswer);
    print("FID to the frame, acknowledged", figures.answer, figures.bareAnswer);
    print("bare TCP: news to the thread that takes them", figures.bareNews, figures.bareNews);
    print("change at the frame to SID at the sink", figures.news, figures.bareNews);
}

}  // namespace
}  // namespace bench

int main(int count, char** arguments) {
    auto const rounds = count > 1 ? std::atoi(arguments[1]) : 2000;
    bench::print(bench::measure(std::max(rounds, 10)));
    bench::measureSlowFrame(std::max(rounds, 10));
}
