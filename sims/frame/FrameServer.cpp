#include "sims/frame/FrameServer.h"

#include "sims/frame/CommandWords.h"
#include "sims/frame/FrameLoop.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace FrameSim {

using std::chrono::steady_clock;

FrameServer::FrameServer(FrameServerOptions options)
    : loop(std::make_unique<Loop>(std::move(options))) {}

FrameServer::~FrameServer() { stop(); }

void FrameServer::start() { loop->start(); }

void FrameServer::stop() { loop->stop(); }

std::string FrameServer::address() const { return loop->options.address; }

std::uint16_t FrameServer::port() const { return loop->boundPort; }

Frame& FrameServer::frame() { return loop->frame; }

TrafficRecord& FrameServer::record() { return loop->record; }

void FrameServer::refuse(bool on) {
    loop->call([this, on] { loop->refuse(on); });
}

void FrameServer::delay(std::chrono::milliseconds time) { delay(Delay{time, time}); }

void FrameServer::delay(Delay const& wanted) {
    if (wanted.least < std::chrono::milliseconds(0) || wanted.most < wanted.least) {
        throw FaultError("a delay must be from 0 up, and its most no less than its least");
    }
    loop->call([this, wanted] { loop->faults.delay = wanted; });
}

void FrameServer::mute(bool on) {
    loop->call([this, on] { loop->mute(on); });
}

void FrameServer::freeze(bool on) {
    loop->call([this, on] { loop->freeze(on); });
}

bool FrameServer::cut(Cut const& place) {
    bool good = false;
    loop->call([this, place, &good] { good = loop->cut(place); });
    return good;
}

void FrameServer::seed(std::uint32_t number) {
    loop->call([this, number] { loop->faults.seed(number); });
}

void FrameServer::damage(Damage const& wanted) {
    loop->call([this, wanted] { loop->faults.order(wanted); });
}

std::size_t FrameServer::sendGarbage(Garbage kind, std::uint32_t client) {
    std::size_t count = 0;
    loop->call([this, kind, client, &count] { count = loop->sendGarbage(kind, client); });
    return count;
}

void FrameServer::welcomeVersion(std::optional<std::uint16_t> number) {
    loop->call([this, number] { loop->faults.welcomeVersion = number; });
}

bool FrameServer::dropSubscription(std::uint32_t client, ParameterKey key) {
    bool known = false;
    loop->call([this, client, key, &known] {
        auto* const session = loop->find(client);
        known = session && session->drop(key);
    });
    return known;
}

bool FrameServer::dropSubscription(std::uint32_t client, ListKey key) {
    bool known = false;
    loop->call([this, client, key, &known] {
        auto* const session = loop->find(client);
        known = session && session->drop(key);
    });
    return known;
}

void FrameServer::flood(Flood const& wanted) {
    loop->call([this, wanted] { loop->hands.flood(wanted, steady_clock::now()); });
}

void FrameServer::operate(std::uint32_t perSecond, std::uint32_t chance) {
    loop->call(
        [this, perSecond, chance] { loop->hands.operate(perSecond, chance, steady_clock::now()); });
}

void FrameServer::restart(Restart wanted) {
    auto const shared = std::make_shared<Restart>(std::move(wanted));
    loop->call([this, shared] { loop->restart(std::move(*shared)); });
}

void FrameServer::heal() {
    loop->call([this] { loop->heal(); });
}

void FrameServer::fieldTime(std::string_view command) {
    if (!loop->options.fieldTime) {
        throw CommandError("this frame has no field time");
    }
    loop->options.fieldTime(command);
}

void FrameServer::play(Scenario const& scenario) {
    loop->call([this, &scenario] {
        auto const run = [this](Scenario::Step const& step, std::uint32_t client) {
            auto line = Line{.client = client, .what = "scenario"};
            line.number("line", static_cast<std::int64_t>(step.line)).add("action", step.text);
            loop->record.add(std::move(line));
            try {
                step.action(*this, client);
            } catch (std::runtime_error const& error) {
                loop->record.add(Line{.client = client, .what = "error"}.add(
                    "reason", "line " + std::to_string(step.line) + ": " + error.what()));
            }
        };
        loop->scenario.emplace(scenario, run, steady_clock::now());
    });
}

std::vector<ConnectionCount> FrameServer::crossed() {
    std::vector<ConnectionCount> all;
    loop->call([this, &all] { all = loop->crossed(); });
    return all;
}

std::optional<Holding> FrameServer::holding(std::uint32_t client) {
    std::optional<Holding> all;
    loop->call([this, client, &all] { all = loop->holding(client); });
    return all;
}

void FrameServer::disconnect() {
    loop->call([this] { loop->disconnect(); });
}

bool FrameServer::sendList(ListKey key) {
    bool known = false;
    loop->call([this, key, &known] { known = loop->sendList(key); });
    return known;
}

std::vector<Line> FrameServer::clients() {
    std::vector<Line> all;
    loop->call([this, &all] {
        for (auto const& client : loop->clients) {
            if (client->isOpen()) {
                all.push_back(client->summary());
            }
        }
    });
    return all;
}

}  // namespace FrameSim
