#pragma once

#include "platform/cplclient/wire/MessageSplitter.h"
#include "platform/cplclient/wire/Messages.h"
#include "sims/frame/FrameModel.h"
#include "sims/frame/Value.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A panel that speaks the wire protocol by hand. Each wait gives up after `patience`.
class TestClient {
  public:
    static constexpr std::chrono::seconds patience{20};

    explicit TestClient(std::uint16_t port);
    ~TestClient();
    TestClient(TestClient const&) = delete;
    TestClient& operator=(TestClient const&) = delete;

    /// Whether the connection was taken at all.
    bool isConnected() const { return handle >= 0; }
    /// Connected, and welcome: the frame's name; empty if it doesn't say welcome.
    std::string hello(std::string_view name = "test panel");

    /// Each waits for the acknowledgement and gives its status, -1 if none comes.
    int set(std::int32_t pid, std::uint32_t did, std::int32_t flag, FrameSim::Value const& value);
    int setBytes(std::int32_t pid, std::uint32_t did, std::uint16_t type, std::string_view value);
    int event(std::int32_t eid, std::uint32_t did, std::string_view data = {});
    int setList(std::int32_t action, FrameSim::ListKey key, std::uint32_t itemId,
                std::vector<FrameSim::Value> const& fields);
    int subscribe(std::int32_t pid, std::uint32_t did, std::int32_t flag,
                  std::uint16_t callback = 7);
    int subscribe(FrameSim::ListKey key, std::int32_t flag);
    int subscribeBatch(std::vector<std::pair<std::int32_t, std::uint32_t>> const& parameters,
                       std::int32_t flag = 3, std::uint16_t callback = 7);
    int cancel(std::int32_t flags, std::int32_t service);

    template <typename Message>
    std::uint32_t send(Message const& message) {
        std::string bytes;
        cplwire::encode(bytes, message, ++sequence);
        sendBytes(bytes);
        return sequence;
    }
    void sendBytes(std::string_view bytes);
    /// The status of the acknowledgement of that request, -1 if none comes.
    int acknowledged(std::uint32_t request);

    /// The next thing that the frame says which is no acknowledgement, as a text:
    /// "update CALLBACK PID DID VALUE", "list LID NUMBER DID ITEMS HEX-PAYLOAD", "pong
    /// SEQUENCE", "bye", "refusal REASON"; "closed" at the end, "nothing" if nothing comes.
    std::string news();
    /// Whether there is anything to read, acknowledgements included, within so short a time.
    bool hearsWithin(std::chrono::milliseconds time);
    /// What the frame has said until it closed, acknowledgements left out.
    std::vector<std::string> allNews();
    /// The bytes themselves until the frame closes or falls silent; what came before isn't there.
    std::string bytesUntilClosed();

    void close();

  private:
    enum class Wait { ready, closed, timeOut };
    std::optional<std::string> takeOne(std::optional<std::uint32_t> ackWanted, int& status);
    Wait fill(std::chrono::milliseconds time);

    int handle = -1;
    std::uint32_t sequence = 0;
    cplwire::MessageSplitter splitter;
    std::deque<std::string> waiting;  // news that came before an acknowledgement
};
