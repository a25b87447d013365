#pragma once

#include "platform/cplclient/CPLTypes.h"
#include "platform/cplclient/wire/Wire.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The messages, each as a structure with `encode`, which appends the whole message to a
/// buffer, and `decode`, which reads a body: nothing if it is too short, too long or holds a
/// number that can't be. Views in a decoded message point into the body.
///
/// The bytes of a value go by its tag: 1 for a Bool, 2 for 16-bit numbers, 4 for 32-bit numbers
/// and floats, all big-endian; a String is its bytes without a NUL.
namespace cplwire {

/// client to frame, first on a connection
struct Hello {
    static constexpr Type type = Type::Hello;
    std::uint32_t magicNumber = magic;
    std::uint16_t protocolVersion = version;
    std::string_view name;  ///< the client's
};

/// frame to client, the answer to a hello: come in
struct Welcome {
    static constexpr Type type = Type::Welcome;
    std::uint16_t protocolVersion = version;
    std::string_view name;  ///< the frame's
};

/// frame to client, the answer to a hello: no, and why. The frame then closes.
struct Refusal {
    static constexpr Type type = Type::Refusal;
    std::uint16_t protocolVersion = version;
    std::string_view reason;
};

// Requests, client to frame; each is acknowledged under its own sequence number.

struct Set {
    static constexpr Type type = Type::Set;
    std::int32_t pid = 0;
    std::uint32_t did = 0;
    std::int32_t flag = 0;
    std::uint16_t dataType = 0;
    std::string_view value;
};

struct Event {
    static constexpr Type type = Type::Event;
    std::int32_t eid = 0;
    std::uint32_t did = 0;
    std::string_view data;
};

/// `fields` is as in an item of a list payload, docs/formats/list-items.md.
struct SetList {
    static constexpr Type type = Type::SetList;
    std::int32_t action = 0;
    std::int32_t lid = 0;
    std::uint32_t did = 0;
    std::uint16_t number = 0;
    std::uint32_t itemId = 0;
    std::string_view fields;
};

struct SubscribeParameter {
    static constexpr Type type = Type::SubscribeParameter;
    std::int32_t pid = 0;
    std::uint32_t did = 0;
    std::uint16_t callback = 0;
    std::int32_t flag = 0;
};

struct SubscribeList {
    static constexpr Type type = Type::SubscribeList;
    std::int32_t lid = 0;
    std::uint16_t number = 0;
    std::uint32_t did = 0;
    std::uint16_t callback = 0;
    std::int32_t flag = 0;
};

struct SubscribeBatch {
    static constexpr Type type = Type::SubscribeBatch;
    std::uint16_t callback = 0;
    std::int32_t flag = 0;
    std::vector<std::pair<std::int32_t, std::uint32_t>> parameters;  ///< pid and did
};

struct Cancel {
    static constexpr Type type = Type::Cancel;
    std::int32_t flags = 0;
    std::int32_t service = 0;
};

/// frame to client; the sequence is that of the request
struct Acknowledge {
    static constexpr Type type = Type::Acknowledge;
    std::int32_t status = 0;
};

// News, frame to client.

struct ParameterUpdate {
    static constexpr Type type = Type::ParameterUpdate;
    std::uint16_t callback = 0;
    std::uint16_t pid = 0;
    std::uint32_t did = 0;
    std::uint16_t dataType = 0;
    std::string_view value;
};

/// as ParameterUpdate, the answer to a question
struct ParameterReply : ParameterUpdate {
    static constexpr Type type = Type::ParameterReply;
};

/// `payload` is as CplListMessage of platform/cplclient/CCallback.h describes it.
struct ListUpdate {
    static constexpr Type type = Type::ListUpdate;
    std::uint16_t itemCount = 0;
    std::string_view payload;
};

// Either way, without a body. A ping is answered by a pong under its own sequence number. A
// bye is the last message; the other side closes.

struct Ping {
    static constexpr Type type = Type::Ping;
};
struct Pong {
    static constexpr Type type = Type::Pong;
};
struct Bye {
    static constexpr Type type = Type::Bye;
};

/// Appends `message` to `out`. False, and `out` as it was, if a field is too long for its
/// length or the whole for `maximumLength`.
template <typename Message>
bool encode(std::string& out, Message const& message, std::uint32_t sequence = 0);

/// Reads a body of the message's type.
template <typename Message>
std::optional<Message> decode(std::string_view body);

}  // namespace cplwire
