// Many panels on one frame, with other hands on it all the time. How many and for how long can
// be given, for a run outside of the tests: scripts/crowd.

#include "Installation.h"
#include "SwitcherTruth.h"
#include "sims/frame/FrameServer.h"
#include "sims/frame/ModelFile.h"
#include "sims/panel/PanelComparison.h"
#include "sims/panel/PanelHost.h"
#include "tests/support/LoopbackAddress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace FrameDriver::Testing {
namespace {

using FrameSim::DataType;
using FrameSim::Value;
using PanelSim::PanelEvent;
using PanelSim::PanelHost;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int changesPerSecond = 200;
/// The operator waits for a panel that is further behind: how fast the machine is decides how
/// much is done, and not whether it goes well.
constexpr int farBehind = 500;
/// Every so many changes the show's name is the next number, for panels to count.
constexpr int changesPerNumber = 10;

std::size_t given(char const* name, std::size_t otherwise) {
    auto const* const text = std::getenv(name);
    return text ? std::strtoul(text, nullptr, 10) : otherwise;
}

/// What this process takes of the machine.
struct Footprint {
    double megabytes;
    std::size_t descriptors;

    static Footprint now() {
        namespace fs = std::filesystem;
        std::size_t whole = 0;
        std::size_t resident = 0;
        std::ifstream("/proc/self/statm") >> whole >> resident;
        auto const entries = fs::directory_iterator("/proc/self/fd");
        return {static_cast<double>(resident) * 4096 / 1048576,
                static_cast<std::size_t>(std::distance(fs::begin(entries), fs::end(entries)))};
    }
};

/// A panel of the crowd. Hears the numbers that the operator counts up, and notes a gap, unless
/// it was dark before: a machine that stands still for two seconds costs the connections.
struct Member {
    void hear(PanelEvent const& event) {
        if (event.name == "FRAME.CONNECTED" && event.value == "OFF") {
            dark = true;
            ++losses;
        }
        if (event.kind != PanelSim::Heard::tid || event.name != "SHOW.NAME" ||
            !event.value.starts_with("Show "))
            return;
        auto const number = std::stoi(event.value.substr(5));
        gaps += number != last + 1 && !dark;
        last = number;
        dark = false;
    }

    std::unique_ptr<PanelHost> host;
    std::atomic<int> last{0};
    std::atomic<int> gaps{0};
    std::atomic<int> losses{-1};  // the clean state at the start is none
    bool dark = false;            // guarded by the record's lock
};

class Endurance : public testing::Test {
  protected:
    Endurance() {
        FrameSim::FrameServerOptions options;
        options.address = frameAddress.text();
        options.port = 5000;
        options.model = FrameSim::sampleSwitcher();
        options.recordLimit = 1000;
        options.clientLimit = panelCount + 1;
        frame = std::make_unique<FrameSim::FrameServer>(std::move(options));
        frame->start();
    }

    std::unique_ptr<PanelHost> join(int index, PanelSim::PanelRecord::Listener listener = {}) {
        auto host = std::make_unique<PanelHost>(
            PanelSim::PanelHostOptions{QFD_MODULE, installation.path(), index, panelAddress.text(),
                                       1000},
            std::move(listener));
        host->start();
        return host;
    }

    void joinAll() {
        for (std::size_t index = 0; index < panelCount; ++index) {
            auto* const member = members.emplace_back(std::make_unique<Member>()).get();
            member->host = join(static_cast<int>(index),
                                [member](PanelEvent const& event) { member->hear(event); });
        }
        for (auto const& member : members)
            ASSERT_TRUE(reads(*member->host, "SOURCE16.NAME", "Remote 2"));
        for (std::size_t index = 0; index < panelCount; ++index) {
            FIDParameterList own;
            own.add("VAL", std::to_string(index));
            members[index]->host->raise("MEMORY.SELECT", own);
        }
    }

    static bool reads(PanelHost& host, std::string const& tid, std::string const& value) {
        return host.record().wait({PanelSim::Heard::tid, tid, value, {}}, patience);
    }

    int slowest() const {
        int number = numbersTold;
        for (auto const& member : members)
            number = std::min<int>(number, member->last);
        return number;
    }

    void changeOne(int turn) {
        auto const any = [this](std::uint32_t most) {
            return static_cast<std::uint32_t>(random() % (most + 1));
        };
        auto const source = Value::ofInteger(DataType::UInt16, any(16));
        if (turn % changesPerNumber == 0)
            frame->frame().set({51, 0x01000001}, 0,
                               Value::ofText("Show " + std::to_string(++numbersTold)));
        else if (turn % 4 == 0)
            frame->frame().set({31, 0x03000000 + any(1)}, 0,
                               Value::ofInteger(DataType::UInt16, 1 + any(998)));
        else if (turn % 4 == 1)
            frame->frame().set({20, 0x08000000 + any(3) * 16 + any(1)}, 0,
                               Value::ofBool(any(1) == 1));
        else if (turn % 4 == 2)
            frame->frame().set({40, 0x18000000 + any(3)}, 0, source);
        else
            frame->frame().set({10, 0x24000000 + any(9) * 256 + any(1) * 16}, 0, source);
    }

    /// Changes the frame for so long, and lets a panel after the other do something too.
    void work(std::chrono::seconds duration) {
        auto const start = steady_clock::now();
        auto due = start;
        int turn = 0;
        for (; steady_clock::now() < start + duration; ++turn) {
            changeOne(turn);
            if (turn % 20 == 0)
                members[static_cast<std::size_t>(turn / 20) % panelCount]->host->raise(
                    "ME2.PST.SRC" + std::to_string(random() % 17), {});
            while ((numbersTold - slowest()) * changesPerNumber > farBehind)
                std::this_thread::sleep_for(milliseconds(5));
            due = std::max(due + std::chrono::microseconds(1000000 / changesPerSecond),
                           steady_clock::now() - milliseconds(100));
            std::this_thread::sleep_until(due);
        }
        changes += turn;
    }

    void expectTruth(PanelHost& fresh) {
        PanelSim::OwnNames const own(installation.read("config/OwnState.txt"));
        auto const& frames = frame->frame();
        std::vector<std::string> const none;
        for (std::size_t index = 0; index < panelCount; ++index) {
            auto& member = *members[index];
            EXPECT_TRUE(reads(*member.host, "SHOW.NAME", "Show " + std::to_string(numbersTold)));
            auto const deadline = steady_clock::now() + patience;
            while (!(lies(frames, member.host->record()).empty() &&
                     differences(member.host->record(), fresh.record(), own).empty()) &&
                   steady_clock::now() < deadline)
                std::this_thread::sleep_for(milliseconds(20));
            EXPECT_EQ(lies(frames, member.host->record()), none) << "panel " << index;
            for (auto const& one : differences(member.host->record(), fresh.record(), own))
                ADD_FAILURE() << "panel " << index << ": " << shown(one);
            EXPECT_EQ(member.gaps, 0) << "panel " << index;
            // Its own state has stayed its own.
            auto const selected = (index < 10 ? "0" : "") + std::to_string(index);
            EXPECT_EQ(member.host->record().sid("MEMORY.SELECT"), selected);
        }
    }

    void stopAll() {
        std::vector<std::thread> hands;
        for (auto const& member : members)
            hands.emplace_back([&member] { member->host->stop(); });
        for (auto& hand : hands)
            hand.join();
    }

    static constexpr std::chrono::seconds patience{60};

    std::size_t const panelCount = given("QFD_CROWD_PANELS", 16);
    std::chrono::seconds const length{given("QFD_CROWD_SECONDS", 4)};
    LoopbackAddress frameAddress;
    LoopbackAddress panelAddress;
    Installation installation{frameAddress.text()};
    std::unique_ptr<FrameSim::FrameServer> frame;
    std::vector<std::unique_ptr<Member>> members;
    std::mt19937 random{1};
    int numbersTold = 0;
    int changes = 0;
};

TEST_F(Endurance, ACrowdUnderAnothersHandsLosesNothingAndStaysAsSmall) {
    joinAll();
    work(length / 4);  // what is taken once is taken
    auto const before = Footprint::now();
    work(length - length / 4);
    auto const after = Footprint::now();
    auto const fresh = join(static_cast<int>(panelCount));
    ASSERT_TRUE(reads(*fresh, "SOURCE16.NAME", "Remote 2"));
    expectTruth(*fresh);
    EXPECT_EQ(frame->clients().size(), panelCount + 1);
    stopAll();
    int losses = 0;
    for (auto const& member : members)
        losses += member->losses;
    std::printf("%zu panels, %lld s, %d changes, %d numbers, %d connections lost: %.1f MB, %zu "
                "descriptors after a quarter, %.1f MB, %zu at the end\n",
                panelCount, static_cast<long long>(length.count()), changes, numbersTold, losses,
                before.megabytes, before.descriptors, after.megabytes, after.descriptors);
    EXPECT_EQ(after.descriptors, before.descriptors);
#ifndef QFD_SANITIZED  // a sanitizer keeps what was freed
    EXPECT_LT(after.megabytes, before.megabytes * 1.05 + 4);
#endif
}

}  // namespace
}  // namespace FrameDriver::Testing
