#include "WireText.h"

#include "platform/cplclient/wire/Messages.h"

#include <array>
#include <cstdio>
#include <optional>

namespace {

using namespace cplwire;

std::string device(std::uint32_t did) {
    std::array<char, 9> digits{};
    std::snprintf(digits.data(), digits.size(), "%08x", did);
    return digits.data();
}

std::string join(std::string text, auto const&... fields) {
    auto const add = [&text](auto const& field) {
        if constexpr (requires { std::to_string(field); })
            text.append(" ").append(std::to_string(field));
        else
            text.append(" ").append(field);
    };
    (add(fields), ...);
    return text;
}

std::string text(Hello const& m) { return join("hello", m.protocolVersion, m.name); }
std::string text(Welcome const& m) { return join("welcome", m.protocolVersion, m.name); }
std::string text(Refusal const& m) { return join("refusal", m.protocolVersion, m.reason); }
std::string text(Set const& m) {
    return join("set", m.pid, device(m.did), m.flag, m.dataType, hex(m.value));
}
std::string text(Event const& m) { return join("event", m.eid, device(m.did), hex(m.data)); }
std::string text(SetList const& m) {
    return join("setList", m.action, m.lid, device(m.did), m.number, m.itemId, hex(m.fields));
}
std::string text(SubscribeParameter const& m) {
    return join("subscribe", m.pid, device(m.did), m.callback, m.flag);
}
std::string text(SubscribeList const& m) {
    return join("subscribeList", m.lid, m.number, device(m.did), m.callback, m.flag);
}
std::string text(SubscribeBatch const& m) {
    auto all = join("subscribeBatch", m.callback, m.flag);
    for (auto const& [pid, did] : m.parameters)
        all.append(join({}, pid, device(did)));
    return all;
}
std::string text(Cancel const& m) { return join("cancel", m.flags, m.service); }
std::string text(Acknowledge const& m) { return join("acknowledge", m.status); }
std::string text(ParameterUpdate const& m) {
    return join("update", m.callback, m.pid, device(m.did), m.dataType, hex(m.value));
}
std::string text(ParameterReply const& m) {
    return join("reply", m.callback, m.pid, device(m.did), m.dataType, hex(m.value));
}
std::string text(ListUpdate const& m) { return join("list", m.itemCount, hex(m.payload)); }
std::string text(Ping const&) { return "ping"; }
std::string text(Pong const&) { return "pong"; }
std::string text(Bye const&) { return "bye"; }

/// Adds the message's text if it is of this type and can be read.
template <typename Message>
bool tryAs(RawMessage const& raw, std::string& result) {
    if (raw.type != Message::type)
        return false;
    auto const message = decode<Message>(raw.body);
    if (message)
        result = text(*message);
    return message.has_value();
}

template <typename... Messages>
std::string asOneOf(RawMessage const& raw) {
    std::string result = "garbage";
    (tryAs<Messages>(raw, result) || ...);
    return result;
}

}  // namespace

std::string hex(std::string_view bytes) {
    static constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (char const byte : bytes) {
        result += digits[static_cast<unsigned char>(byte) >> 4U];
        result += digits[static_cast<unsigned char>(byte) & 15U];
    }
    return result;
}

std::string wireText(RawMessage const& message) {
    return asOneOf<Hello, Welcome, Refusal, Set, Event, SetList, SubscribeParameter, SubscribeList,
                   SubscribeBatch, Cancel, Acknowledge, ParameterUpdate, ParameterReply, ListUpdate,
                   Ping, Pong, Bye>(message);
}
