#pragma once

#include "platform/cplclient/wire/Wire.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace cplwire {

/// One whole message as it came. The body is valid until the splitter is fed again.
struct RawMessage {
    Type type;
    std::uint32_t sequence;
    std::string_view body;
};

/// Cuts a stream of bytes into messages. Holds at most one message of the largest length that
/// is allowed, and what the last read brought behind it. Thread: one.
class MessageSplitter {
  public:
    explicit MessageSplitter(std::size_t longest = maximumLength) : limit(longest) {}

    /// The bytes of the next read.
    void feed(std::string_view bytes);
    /// The next message, or nothing while it isn't whole. Nothing for good once `broken`.
    std::optional<RawMessage> next();

    /// A length that no message has: the stream can't be followed any more.
    bool broken() const { return isBroken; }
    /// From the next message on. Connections start small and grow with the handshake.
    void setLimit(std::size_t longest) { limit = longest; }

  private:
    std::size_t limit;
    std::string buffer;
    std::size_t start = 0;  // of what hasn't been taken yet
    bool isBroken = false;
};

}  // namespace cplwire
