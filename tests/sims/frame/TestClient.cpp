#include "TestClient.h"

#include "sims/frame/ListLayouts.h"
#include "sims/frame/WireValue.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

std::string hex(std::string_view bytes) {
    std::string out;
    for (char const byte : bytes) {
        out += FrameSim::shownDevice(static_cast<unsigned char>(byte)).substr(6);
    }
    return out;
}

std::string shown(cplwire::ParameterUpdate const& update) {
    auto const value = FrameSim::valueFromBytes(update.dataType, update.value);
    return "update " + std::to_string(update.callback) + " " + std::to_string(update.pid) + " " +
           FrameSim::shownDevice(update.did) + " " +
           (value ? FrameSim::shownValue(*value) : "undecodable");
}

std::string shown(cplwire::ListUpdate const& update) {
    return "list " + std::to_string(update.itemCount) + " " + hex(update.payload);
}

std::string shown(cplwire::RawMessage const& message) {
    using cplwire::Type;
    switch (message.type) {
    case Type::ParameterUpdate:
        return shown(cplwire::decode<cplwire::ParameterUpdate>(message.body).value());
    case Type::ListUpdate:
        return shown(cplwire::decode<cplwire::ListUpdate>(message.body).value());
    case Type::Pong:
        return "pong " + std::to_string(message.sequence);
    case Type::Bye:
        return "bye";
    case Type::Welcome:
        return "welcome " +
               std::string(cplwire::decode<cplwire::Welcome>(message.body).value().name);
    case Type::Refusal:
        return "refusal " +
               std::string(cplwire::decode<cplwire::Refusal>(message.body).value().reason);
    default:
        return "type " + std::to_string(static_cast<int>(message.type));
    }
}

}  // namespace

TestClient::TestClient(std::uint16_t port) {
    handle = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(handle, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        close();
    }
}

TestClient::~TestClient() { close(); }

void TestClient::close() {
    if (handle >= 0) {
        ::close(handle);
        handle = -1;
    }
}

std::string TestClient::hello(std::string_view name) {
    cplwire::Hello message;
    message.name = name;
    send(message);
    auto const answer = news();
    return answer.starts_with("welcome ") ? answer.substr(8) : "";
}

int TestClient::set(std::int32_t pid, std::uint32_t did, std::int32_t flag,
                    FrameSim::Value const& value) {
    auto const bytes = FrameSim::valueBytes(value);
    return acknowledged(
        send(cplwire::Set{pid, did, flag, static_cast<std::uint16_t>(value.type), bytes}));
}

int TestClient::setBytes(std::int32_t pid, std::uint32_t did, std::uint16_t type,
                         std::string_view value) {
    return acknowledged(send(cplwire::Set{pid, did, 0, type, value}));
}

int TestClient::event(std::int32_t eid, std::uint32_t did, std::string_view data) {
    return acknowledged(send(cplwire::Event{eid, did, data}));
}

int TestClient::setList(std::int32_t action, FrameSim::ListKey key, std::uint32_t itemId,
                        std::vector<FrameSim::Value> const& fields) {
    auto const bytes = FrameSim::fieldBytes(fields);
    return acknowledged(
        send(cplwire::SetList{action, key.lid, key.did, key.number, itemId, bytes}));
}

int TestClient::subscribe(std::int32_t pid, std::uint32_t did, std::int32_t flag,
                          std::uint16_t callback) {
    return acknowledged(send(cplwire::SubscribeParameter{pid, did, callback, flag}));
}

int TestClient::subscribe(FrameSim::ListKey key, std::int32_t flag) {
    return acknowledged(send(cplwire::SubscribeList{key.lid, key.number, key.did, 7, flag}));
}

int TestClient::subscribeBatch(
    std::vector<std::pair<std::int32_t, std::uint32_t>> const& parameters, std::int32_t flag,
    std::uint16_t callback) {
    return acknowledged(send(cplwire::SubscribeBatch{callback, flag, parameters}));
}

int TestClient::cancel(std::int32_t flags, std::int32_t service) {
    return acknowledged(send(cplwire::Cancel{flags, service}));
}

void TestClient::sendBytes(std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t const sent = ::send(handle, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            return;  // what becomes of the connection is seen when it is read
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

TestClient::Wait TestClient::fill(std::chrono::milliseconds time) {
    pollfd waitingFor{handle, POLLIN, 0};
    if (::poll(&waitingFor, 1, static_cast<int>(time.count())) <= 0) {
        return Wait::timeOut;
    }
    char block[65536];
    ssize_t const got = ::recv(handle, block, sizeof block, 0);
    if (got <= 0) {
        return Wait::closed;
    }
    splitter.feed({block, static_cast<std::size_t>(got)});
    return Wait::ready;
}

std::string TestClient::bytesUntilClosed() {
    std::string all;
    for (;;) {
        pollfd waitingFor{handle, POLLIN, 0};
        char block[65536];
        if (::poll(&waitingFor, 1, static_cast<int>(std::chrono::milliseconds(patience).count())) <=
            0) {
            return all + " and then silence";
        }
        ssize_t const got = ::recv(handle, block, sizeof block, 0);
        if (got <= 0) {
            return all;
        }
        all.append(block, static_cast<std::size_t>(got));
    }
}

std::optional<std::string> TestClient::takeOne(std::optional<std::uint32_t> ackWanted,
                                               int& status) {
    for (;;) {
        while (auto const message = splitter.next()) {
            if (message->type != cplwire::Type::Acknowledge) {
                return shown(*message);
            }
            if (ackWanted && message->sequence == *ackWanted) {
                status = cplwire::decode<cplwire::Acknowledge>(message->body).value().status;
                return std::nullopt;
            }
        }
        switch (fill(patience)) {
        case Wait::ready:
            break;
        case Wait::closed:
            return "closed";
        case Wait::timeOut:
            return "nothing";
        }
    }
}

int TestClient::acknowledged(std::uint32_t request) {
    for (;;) {
        int status = -1;
        auto said = takeOne(request, status);
        if (!said) {
            return status;
        }
        if (*said == "closed" || *said == "nothing") {
            return -1;
        }
        waiting.push_back(std::move(*said));
    }
}

std::string TestClient::news() {
    if (!waiting.empty()) {
        auto said = std::move(waiting.front());
        waiting.pop_front();
        return said;
    }
    int status = -1;
    return takeOne(std::nullopt, status).value_or("nothing");
}

bool TestClient::hearsWithin(std::chrono::milliseconds time) {
    return !waiting.empty() || fill(time) != Wait::timeOut;
}

std::vector<std::string> TestClient::allNews() {
    std::vector<std::string> all;
    for (;;) {
        all.push_back(news());
        if (all.back() == "closed" || all.back() == "nothing") {
            return all;
        }
    }
}
