#include "bench/road/SlowFrame.h"

#include "sims/frame/FrameServer.h"
#include "sims/frame/ModelFile.h"
#include "sims/panel/PanelHost.h"
#include "tests/support/LoopbackAddress.h"
#include "tests/support/WorkingDirectory.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

constexpr Milliseconds late{400};  // of the 500 that the settings allow
constexpr std::chrono::seconds patience{20};

/// An installation whose frame is at an address of its own.
class Place {
  public:
    Place() {
        namespace fs = std::filesystem;
        fs::copy(QFD_INSTALLATION, directory.path(), fs::copy_options::recursive);
        std::string const file = "Configuration/Settings.xml";
        auto text = directory.read(file);
        auto const value = text.find("<value>", text.find("Simulator Frame Address")) + 7;
        text.replace(value, text.find("</value>", value) - value, frameAddress.text());
        directory.write(file, text);
    }

    FrameDriver::Testing::LoopbackAddress frameAddress;
    FrameDriver::Testing::LoopbackAddress panelAddress;
    FrameDriver::Testing::WorkingDirectory directory;
};

FrameSim::FrameServerOptions optionsAt(std::string const& address) {
    FrameSim::FrameServerOptions options;
    options.address = address;
    options.port = 5000;
    options.model = FrameSim::sampleSwitcher();
    options.recordLimit = 16;
    return options;
}

/// One FID after the other, until it goes.
class Sender {
  public:
    explicit Sender(PanelSim::PanelHost& panel) : thread([this, &panel] { send(panel); }) {}
    ~Sender() {
        stopping = true;
        thread.join();
    }
    int sent() const { return count; }

  private:
    void send(PanelSim::PanelHost& panel) {
        while (!stopping) {
            panel.raise("AUX1.SRC" + std::to_string(count % 2 + 3), {});
            ++count;
        }
    }

    std::atomic<bool> stopping{false};
    std::atomic<int> count{0};
    std::thread thread;
};

class SlowRoad {
  public:
    SlowRoad() {
        frame.start();
        panel.start();
        waitFor("FRAME.CONNECTED", "ON");
    }

    /// From a change at the frame to the panel's sink, so many times, in microseconds.
    std::vector<double> news(int rounds) {
        std::vector<double> figures;
        for (int i = 0; i < rounds; ++i) {
            auto const start = Clock::now();
            frame.frame().set({31, 0x03000001}, 0,
                              FrameSim::Value::ofInteger(FrameSim::DataType::UInt16, 60 + i % 2));
            waitFor("ME2.RATE.FIELDS", std::to_string(60 + i % 2));
            figures.push_back(
                std::chrono::duration<double, std::micro>(Clock::now() - start).count());
            // Spread over several acknowledgements of a slow frame.
            std::this_thread::sleep_for(Milliseconds(2));
        }
        return figures;
    }
    void delayAcknowledgements() {
        frame.delay({late, late, FrameSim::Delay::Order::acknowledgements});
    }

    PanelSim::PanelHost& host() { return panel; }

  private:
    void waitFor(std::string const& sid, std::string const& value) {
        if (panel.record().wait({PanelSim::Heard::sid, sid, value, {}}, patience))
            return;
        std::fprintf(stderr, "bench_road: no SID %s = %s\n", sid.c_str(), value.c_str());
        std::exit(1);
    }

    Place place;
    FrameSim::FrameServer frame{optionsAt(place.frameAddress.text())};
    PanelSim::PanelHost panel{{QFD_MODULE, place.directory.path(), 0, place.panelAddress.text()}};
};

double at(std::vector<double> const& sorted, double part) {
    return sorted[static_cast<std::size_t>(part * static_cast<double>(sorted.size() - 1))];
}

void print(char const* what, std::vector<double> figures) {
    std::sort(figures.begin(), figures.end());
    std::printf("| %s | %.1f | %.1f | %.1f |\n", what, at(figures, 0.5), at(figures, 0.99),
                figures.back());
}

}  // namespace

void measureSlowFrame(int rounds) {
    SlowRoad road;
    road.news(100);
    auto const alone = road.news(rounds);
    road.delayAcknowledgements();
    Sender const sender(road.host());
    auto const start = Clock::now();
    auto const beside = road.news(rounds);
    auto const each = std::chrono::duration<double, std::milli>(Clock::now() - start).count() /
                      std::max(sender.sent(), 1);
    std::printf(
        "\n| Beside a slow frame, microseconds | median | p99 | most |\n|---|---|---|---|\n");
    print("change to SID, nobody sends", alone);
    print("change to SID, beside a slow sender", beside);
    std::printf("\nThe sender's FIDs took %.0f ms each.\n", each);
}

}  // namespace bench
