#pragma once

#include "TestClient.h"
#include "sims/frame/FrameServer.h"
#include "sims/frame/ModelFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace FrameSim {

using Texts = std::vector<std::string>;

inline constexpr std::uint32_t program1 = 0x24000000;
inline constexpr std::uint32_t preset1 = 0x24000100;
inline constexpr std::uint32_t me1 = 0x03000000;
inline constexpr std::uint32_t show = 0x01000001;
inline constexpr ListKey registers{23, 1, 0x35000000};
inline constexpr ListKey clips{6, 1, 0x3e000000};

inline Value word(std::int64_t number) { return Value::ofInteger(DataType::UInt16, number); }

/// A running sample switcher whose fields pass by hand.
class ServerTest : public testing::Test {
  protected:
    static FrameServerOptions options() {
        FrameServerOptions given;
        given.model = sampleSwitcher();
        return given;
    }

    std::unique_ptr<TestClient> panel(std::string_view name = "panel") {
        auto client = std::make_unique<TestClient>(server->port());
        EXPECT_EQ(client->hello(name), "sample switcher");
        return client;
    }
    void start(FrameServerOptions given = options()) {
        server = std::make_unique<FrameServer>(std::move(given));
        server->start();
    }
    /// The lines without those of connecting, which hold a port.
    Texts lines() {
        Texts all;
        for (auto& text : server->record().texts()) {
            if (text.find("listening") != 0 && text.find(" connected ") == std::string::npos) {
                all.push_back(std::move(text));
            }
        }
        return all;
    }
    bool told(std::string_view part, std::size_t count = 1) {
        return server->record().waitFor(part, count);
    }

    std::unique_ptr<FrameServer> server;
};

}  // namespace FrameSim
