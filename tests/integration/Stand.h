#pragma once

#include "Installation.h"
#include "sims/frame/FrameServer.h"
#include "sims/panel/PanelHost.h"
#include "tests/support/LoopbackAddress.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace FrameDriver::Testing {

/// One panel and the frame that it is joined to. The driver takes its time to come back after a
/// fault, so tests of many faults set up many of these, side by side in one process; each has a
/// frame's address of its own.
class Stand {
  public:
    using Parameters = std::initializer_list<std::pair<char const*, char const*>>;

    /// How long a test waits for what must come, on a machine that has other things to do.
    static constexpr std::chrono::seconds patience{60};

    /// The frame runs; the panel doesn't.
    explicit Stand(int index);

    /// One stand at a time: writes the frame's address into the installation's settings.
    void startPanel(Installation const& installation);

    // From any thread.

    void raise(std::string const& fid, Parameters parameters = {});
    /// The number of the panel's last connection, from 1, and what has crossed it.
    FrameSim::ConnectionCount connection();
    bool waitForEnd(std::uint32_t connection, std::chrono::milliseconds atMost = patience);
    /// Waits until the panel tells the truth about the frame by the connection of that number;
    /// what is still no truth if the time runs out.
    std::vector<std::string> waitForTruth(std::uint32_t connection);
    /// What another operator does meanwhile: buses, keys, rates, names, lists, registers.
    void changeFrame(std::mt19937& random);

  private:
    void changeLists(std::mt19937& random);

    int const number;
    LoopbackAddress frameAddress;
    LoopbackAddress panelAddress;

  public:
    FrameSim::FrameServer frame;
    std::unique_ptr<PanelSim::PanelHost> panel;  // stops ahead of the others
};

using Stands = std::vector<std::unique_ptr<Stand>>;

/// Stands with a panel each, all at work and telling the truth.
Stands makeStands(Installation const& installation, std::size_t count);

/// Runs the work of each stand, with its place, on a thread of its own, and waits for all.
void onAll(Stands const& stands, std::function<void(Stand&, std::size_t)> const& work);

/// Stops all panels at once: each takes its second.
void stopAll(Stands const& stands);

/// Everything that a show has: selecting, cuts, keys, automatic transitions, aux buses,
/// memories, names. Ends when each step has been acknowledged, or has failed.
void playShow(Stand& stand);

}  // namespace FrameDriver::Testing
