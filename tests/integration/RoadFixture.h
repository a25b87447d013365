#pragma once

#include "sims/frame/FrameServer.h"
#include "sims/frame/ModelFile.h"
#include "sims/panel/PanelHost.h"
#include "tests/support/LogCapture.h"
#include "tests/support/WorkingDirectory.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <chrono>
#include <filesystem>
#include <memory>
#include <netinet/in.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace FrameDriver::Testing {

/// The driver reaches frames at port 5000 alone, so each test takes a network of its own out of
/// the loopback range: 127.a.b.N, chosen by the process and checked to be free.
class LoopbackNetwork {
  public:
    LoopbackNetwork() {
        for (unsigned attempt = 0; attempt < 200; ++attempt) {
            auto const number = static_cast<unsigned>(::getpid()) * 7U + attempt;
            prefix = "127." + std::to_string(100 + number / 250 % 100) + "." +
                     std::to_string(number % 250) + ".";
            if (isFree(address(1)) && isFree(address(2)))
                return;
        }
        throw std::runtime_error("no loopback network is free");
    }
    std::string address(int number) const { return prefix + std::to_string(number); }

  private:
    static bool isFree(std::string const& address) {
        int const fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in end{};
        end.sin_family = AF_INET;
        end.sin_port = htons(5000);
        inet_pton(AF_INET, address.c_str(), &end.sin_addr);
        bool const bound = ::bind(fd, reinterpret_cast<sockaddr*>(&end), sizeof end) == 0;
        ::close(fd);
        return bound;
    }

    std::string prefix;
};

/// A copy of the sample installation, a frame at `frameAddress` and room for panels.
class RoadFixture : public testing::Test {
  protected:
    static constexpr std::chrono::seconds patience{30};
    static constexpr std::uint32_t programME1 = 0x24000000;
    static constexpr std::uint32_t presetME1 = 0x24000100;

    RoadFixture() : frameAddress(network.address(1)) {
        namespace fs = std::filesystem;
        fs::copy(QFD_INSTALLATION, directory.path(), fs::copy_options::recursive);
        setFrameAddress(frameAddress);
    }

    void setFrameAddress(std::string const& address) {
        auto text = directory.read("Configuration/Settings.xml");
        std::string const key = "<name>Simulator Frame Address</name>";
        auto const value = text.find("<value>", text.find(key)) + 7;
        text.replace(value, text.find("</value>", value) - value, address);
        directory.write("Configuration/Settings.xml", text);
    }

    std::unique_ptr<FrameSim::FrameServer> makeFrame(std::string const& address) {
        FrameSim::FrameServerOptions options;
        options.address = address;
        options.port = 5000;
        options.model = FrameSim::sampleSwitcher();
        auto server = std::make_unique<FrameSim::FrameServer>(std::move(options));
        server->start();
        return server;
    }
    void startFrame() { frame = makeFrame(frameAddress); }

    std::unique_ptr<PanelSim::PanelHost> makePanel(int index) {
        PanelSim::PanelHostOptions options;
        options.module = QFD_MODULE;
        options.panelIndex = index;
        options.address = network.address(10 + index);
        auto host = std::make_unique<PanelSim::PanelHost>(options);
        host->start();
        return host;
    }
    void startPanel() { panel = makePanel(0); }

    static bool shows(PanelSim::PanelHost& host, std::string const& sid, std::string const& value,
                      std::chrono::milliseconds limit = patience) {
        return host.record().wait({PanelSim::Heard::sid, sid, value, {}}, limit);
    }
    bool shows(std::string const& sid, std::string const& value) {
        return shows(*panel, sid, value);
    }
    bool reads(std::string const& tid, std::string const& value) {
        return panel->record().wait({PanelSim::Heard::tid, tid, value, {}}, patience);
    }
    bool connected() { return shows("FRAME.CONNECTED", "ON"); }
    /// As another operator sets it.
    void operate(std::uint32_t did, int source) {
        auto const set = frame->frame().set(
            {10, did}, 0, FrameSim::Value::ofInteger(FrameSim::DataType::UInt16, source));
        EXPECT_TRUE(set.good()) << set.cause;
    }

    LoopbackNetwork network;
    std::string const frameAddress;
    WorkingDirectory directory;
    std::unique_ptr<FrameSim::FrameServer> frame;
    std::unique_ptr<PanelSim::PanelHost> panel;
};

}  // namespace FrameDriver::Testing
