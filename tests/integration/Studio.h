#pragma once

#include "Installation.h"
#include "sims/frame/FrameServer.h"
#include "sims/panel/PanelHost.h"
#include "tests/support/LogCapture.h"
#include "tests/support/LoopbackAddress.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace FrameDriver::Testing {

/// A frame, a panel with the module, and what it runs in; nothing is started yet.
class Studio : public testing::Test {
  protected:
    using Parameters = std::initializer_list<std::pair<char const*, char const*>>;

    /// How long a test waits for what must come.
    static constexpr std::chrono::seconds patience{30};

    Studio();
    ~Studio() override;

    /// A sample switcher at the address, not started.
    static std::unique_ptr<FrameSim::FrameServer> makeFrame(std::string const& address);
    std::unique_ptr<PanelSim::PanelHost> makePanel(int index = 0) const;
    /// Loads the module and starts the driver.
    void startPanel();
    /// Frame and panel, joined: what follows a connection has been done.
    void startBoth();

    // What is expected of the panel; each waits.
    testing::AssertionResult shows(std::string const& sid, std::string const& value);
    testing::AssertionResult reads(std::string const& tid, std::string const& value);
    static testing::AssertionResult meets(PanelSim::PanelHost& host, PanelSim::Heard kind,
                                          std::string const& name, std::string const& value);

    void raise(std::string const& fid, Parameters parameters = {});
    static void raise(PanelSim::PanelHost& host, std::string const& fid,
                      Parameters parameters = {});

    /// Waits for the frame to have told so many lines with `part` in them.
    testing::AssertionResult frameTells(std::string_view part, std::size_t count = 1) const;
    /// Another operator sets a UInt16 parameter at the frame.
    void operatorSets(std::int32_t pid, std::uint32_t did, std::int64_t value) const;
    std::string frameValue(std::int32_t pid, std::uint32_t did) const;

    LogCapture log;
    LoopbackAddress frameAddress;
    LoopbackAddress panelAddress;
    Installation installation{frameAddress.text()};
    std::unique_ptr<FrameSim::FrameServer> frame = makeFrame(frameAddress.text());
    std::unique_ptr<PanelSim::PanelHost> panel;  // stops ahead of the frame
};

}  // namespace FrameDriver::Testing
