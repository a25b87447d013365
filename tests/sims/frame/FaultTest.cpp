// Each fault that the frame can be told to have, as a panel meets it.
#include "ServerFixture.h"
#include "sims/frame/Scenario.h"

#include <algorithm>
#include <set>
#include <thread>

namespace FrameSim {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

constexpr ParameterKey showName{51, show};

class AFault : public ServerTest {
  protected:
    void SetUp() override { start(); }

    /// Subscribes and takes the present value.
    static void join(TestClient& client, std::int32_t pid = 10, std::uint32_t did = program1) {
        ASSERT_EQ(client.subscribe(pid, did, 3), 0);
        ASSERT_EQ(client.news().substr(0, 9), "update 7 ");
    }
    std::string shownUpdate(int value) { return "update 7 10 24000000 " + std::to_string(value); }
    void setProgram(int value) {
        ASSERT_TRUE(server->frame().set({10, program1}, 0, word(value)).good());
    }
};

TEST_F(AFault, MuteTakesConnectionsAndNeverAnswersThem) {
    auto const old = panel("old");
    server->mute(true);
    TestClient fresh(server->port());
    ASSERT_TRUE(fresh.isConnected());
    fresh.send(cplwire::Hello{});
    EXPECT_TRUE(told("#2 connected"));
    EXPECT_EQ(old->set(10, program1, 0, word(3)), 0) << "those that stand aren't touched";
    EXPECT_FALSE(fresh.hearsWithin(20ms));
    server->mute(false);
    EXPECT_EQ(fresh.news(), "welcome sample switcher");
}

TEST_F(AFault, AMuteFrameDoesntCountTheTimeToTheHello) {
    auto given = options();
    given.helloLimit = 50ms;
    start(std::move(given));
    server->mute(true);
    TestClient client(server->port());
    EXPECT_FALSE(client.hearsWithin(100ms));
    server->mute(false);
    EXPECT_EQ(client.hello(), "sample switcher");
}

TEST_F(AFault, AMuteFrameNoticesWhoGoesAway) {
    server->mute(true);
    TestClient client(server->port());
    client.send(cplwire::Hello{});
    client.close();
    EXPECT_TRUE(told("#1 closed reason=\"closed by the panel\""));
}

TEST_F(AFault, FreezeStopsInTheMiddleOfWhatHasBeenRead) {
    server->play(Scenario("test", "after 2 sets freeze"));
    auto const client = panel();
    std::string bytes;
    for (std::uint32_t i = 1; i <= 3; ++i) {
        std::string const value{'\0', static_cast<char>(i + 4)};
        cplwire::encode(bytes, cplwire::Set{10, program1, 0, 2, value}, i);
    }
    client->sendBytes(bytes);
    EXPECT_TRUE(told("scenario line=1"));
    EXPECT_EQ(server->frame().value({10, program1}), word(6));
    EXPECT_FALSE(client->hearsWithin(20ms));
    server->freeze(false);
    EXPECT_EQ(client->acknowledged(3), 0);
    EXPECT_EQ(server->frame().value({10, program1}), word(7));
}

TEST_F(AFault, FreezeStillAcceptsByTheSystemAndAnswersNobody) {
    server->freeze(true);
    TestClient client(server->port());
    EXPECT_TRUE(client.isConnected());
    client.send(cplwire::Hello{});
    EXPECT_FALSE(client.hearsWithin(20ms));
    server->freeze(false);
    EXPECT_EQ(client.news(), "welcome sample switcher");
}

TEST_F(AFault, DamageSpoilsThePayloadAndLeavesTheMessageWhole) {
    struct Row {
        Damage damage;
        std::string news;
    };
    Row const rows[] = {
        {{.how = Damage::How::truncate, .byte = 1}, "update 7 10 24000000 undecodable"},
        {{.how = Damage::How::truncate, .byte = 0}, "update 7 10 24000000 undecodable"},
        {{.how = Damage::How::truncate}, "update 7 10 24000000 undecodable"},
    };
    auto const client = panel();
    join(*client);
    for (auto const& row : rows) {
        server->damage(row.damage);
        setProgram(3);
        EXPECT_EQ(client->news(), row.news);
        setProgram(1);
        EXPECT_EQ(client->news(), shownUpdate(1)) << "only one was ordered";
    }
    server->damage({.how = Damage::How::corrupt, .byte = 0});
    setProgram(3);
    auto const spoiled = client->news();
    EXPECT_NE(spoiled, shownUpdate(3));
    EXPECT_EQ(spoiled.substr(0, 21), "update 7 10 24000000 ");
    EXPECT_EQ(server->record().count("fault=truncated"), std::size(rows));
    EXPECT_EQ(server->record().count("value=3 callback=7 fault=corrupted"), 1U);
    EXPECT_EQ(server->frame().value({10, program1}), word(3)) << "the frame itself isn't spoiled";
}

TEST_F(AFault, DamageOfListsLeavesValuesAlone) {
    auto const client = panel();
    join(*client);
    ASSERT_EQ(client->subscribe(ListKey{12, 1, 0x62000000}, 4), 0);
    server->damage({.what = Damage::What::lists, .byte = 3});
    setProgram(3);
    EXPECT_EQ(client->news(), shownUpdate(3));
    server->sendList({12, 1, 0x62000000});
    EXPECT_EQ(client->news(), "list 17 000c00");
    server->sendList({12, 1, 0x62000000});
    EXPECT_GT(client->news().size(), 100U);
}

TEST_F(AFault, APayloadWithoutThatByteIsLeftAloneAndNotCounted) {
    auto const client = panel();
    join(*client);
    server->damage({.byte = 2});
    setProgram(3);
    EXPECT_EQ(client->news(), shownUpdate(3));
    ASSERT_EQ(client->subscribe(51, show, 4), 0);
    server->frame().set(showName, 0, Value::ofText("abcdef"));
    EXPECT_EQ(client->news(), "update 7 51 01000001 \"ab\"");
}

TEST_F(AFault, ASeedMeansTheSameDamage) {
    auto const client = panel();
    ASSERT_EQ(client->subscribe(51, show, 4), 0);
    std::set<std::string> heard;
    for (int round = 0; round < 3; ++round) {
        server->seed(7);
        server->damage({.how = Damage::How::corrupt, .count = 3});
        std::string all;
        for (char letter = 'a'; letter < 'd'; ++letter) {
            server->frame().set(showName, 0, Value::ofText(std::string(100, letter)));
            all += client->news();
        }
        heard.insert(all);
    }
    EXPECT_EQ(heard.size(), 1U);
}

TEST_F(AFault, GarbageIsWhatItSays) {
    struct Row {
        Garbage kind;
        std::string start;
        std::size_t size;
    };
    Row const rows[] = {
        {Garbage::random, "", 64},
        {Garbage::length, "\xff\xff\xff\xff", 4},
        {Garbage::version, std::string("\0\0\0\x0e\x02\0\0\0\0\0\x02\0\x05", 13) + "frame", 18},
        {Garbage::type, std::string("\0\0\0\x05\x63", 5), 9},
    };
    std::uint32_t id = 0;
    for (auto const& row : rows) {
        auto const client = panel();
        EXPECT_EQ(server->sendGarbage(row.kind, ++id), 1U);
        EXPECT_TRUE(
            told("#" + std::to_string(id) + " > garbage bytes=" + std::to_string(row.size)));
        server->disconnect();
        auto const bytes = client->bytesUntilClosed();
        EXPECT_EQ(bytes.size(), row.size);
        EXPECT_EQ(bytes.substr(0, row.start.size()), row.start);
    }
    EXPECT_EQ(server->sendGarbage(Garbage::random), 0U);
    EXPECT_EQ(server->sendGarbage(Garbage::random, 1), 0U);
}

TEST_F(AFault, AWelcomeMayBearAnotherVersion) {
    server->welcomeVersion(7);
    TestClient client(server->port());
    client.hello();
    EXPECT_TRUE(told("#1 > welcome version=7 name=\"sample switcher\""));
    server->welcomeVersion(std::nullopt);
    panel();
    EXPECT_TRUE(told("#2 > welcome version=1 name=\"sample switcher\""));
}

TEST_F(AFault, DelayWithJitterKeepsTheOrder) {
    auto const client = panel();
    join(*client);
    server->delay(Delay{5ms, 30ms});
    auto const begun = steady_clock::now();
    for (int value = 2; value <= 16; ++value) {
        setProgram(value);
    }
    for (int value = 2; value <= 16; ++value) {
        EXPECT_EQ(client->news(), shownUpdate(value));
    }
    EXPECT_GE(steady_clock::now() - begun, 5ms);
    EXPECT_THROW(server->delay(Delay{5ms, 4ms}), FaultError);
    EXPECT_THROW(server->delay(Delay{-1ms, 4ms}), FaultError);
}

TEST_F(AFault, LateAcknowledgementsArePassedByTheNews) {
    auto const client = panel();
    join(*client);
    server->delay({50ms, 60ms, Delay::Order::acknowledgements});
    auto const begun = steady_clock::now();
    EXPECT_EQ(client->set(10, program1, 0, word(3)), 0);
    EXPECT_GE(steady_clock::now() - begun, 50ms);
    EXPECT_EQ(client->news(), shownUpdate(3));
    auto const lines = server->record().texts();
    auto const at = [&](std::string_view part) {
        return std::find_if(lines.begin(), lines.end(), [part](std::string const& line) {
            return line.find(part) != std::string::npos;
        });
    };
    auto const update = at("> update pid=10 did=24000000 type=UInt16 value=3");
    EXPECT_NE(std::find(update, lines.end(), "#1 > ack status=0"), lines.end());
}

TEST_F(AFault, ShufflingKeepsTheOrderOfWhatBelongsTogether) {
    auto const client = panel();
    ASSERT_EQ(client->subscribe(10, program1, 4), 0);
    ASSERT_EQ(client->subscribe(10, preset1, 4), 0);
    server->delay({0ms, 20ms, Delay::Order::shuffled});
    constexpr int count = 14;
    for (int value = 3; value < 3 + count; ++value) {
        setProgram(value);
        server->frame().set({10, preset1}, 0, word(value));
    }
    Texts first, second;
    std::string order;
    for (int i = 0; i < 2 * count; ++i) {
        auto const news = client->news();
        bool const isFirst = news.find(" 24000000 ") != std::string::npos;
        (isFirst ? first : second).push_back(news.substr(news.rfind(' ') + 1));
        order += isFirst ? '1' : '2';
    }
    Texts expected;
    for (int value = 3; value < 3 + count; ++value) {
        expected.push_back(std::to_string(value));
    }
    EXPECT_EQ(first, expected);
    EXPECT_EQ(second, expected);
    std::string unshuffled;
    for (int i = 0; i < count; ++i) {
        unshuffled += "12";
    }
    EXPECT_NE(order, unshuffled);
}

TEST_F(AFault, AfterShufflingNothingOldComesBehindSomethingNew) {
    auto const client = panel();
    join(*client);
    server->delay({100ms, 100ms, Delay::Order::shuffled});
    setProgram(3);
    server->heal();
    setProgram(4);
    EXPECT_EQ(client->news(), shownUpdate(3));
    EXPECT_EQ(client->news(), shownUpdate(4));
}

TEST_F(AFault, AcknowledgementsShuffleAmongThemselves) {
    auto const client = panel();
    server->delay({0ms, 20ms, Delay::Order::shuffled});
    std::vector<std::uint32_t> requests;
    for (int i = 0; i < 20; ++i) {
        std::string const value{'\0', static_cast<char>(i % 2 + 1)};
        requests.push_back(client->send(cplwire::Set{10, program1, 0, 2, value}));
    }
    ASSERT_TRUE(told("> ack", requests.size()));
    server->disconnect();
    auto const bytes = client->bytesUntilClosed();
    cplwire::MessageSplitter splitter;
    splitter.feed(bytes);
    std::vector<std::uint32_t> answered;
    while (auto const message = splitter.next()) {
        answered.push_back(message->sequence);
    }
    EXPECT_NE(answered, requests);
    std::sort(answered.begin(), answered.end());
    EXPECT_EQ(answered, requests);
}

TEST_F(AFault, AFloodChangesValuesForAWhile) {
    auto const client = panel();
    ASSERT_EQ(client->subscribe(10, program1, 4), 0);
    server->flood({.perSecond = 1000, .time = 100ms, .parameter = ParameterKey{10, program1}});
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(client->news(), shownUpdate(i % 17 + 2 <= 16 ? i % 17 + 2 : i % 17 - 15)) << i;
    }
    EXPECT_FALSE(client->hearsWithin(20ms)) << "it is over";
}

TEST_F(AFault, AFloodWithoutAParameterTakesAllInTurn) {
    auto const before = server->frame().dump();
    auto const client = panel();
    ASSERT_EQ(client->subscribe(51, show, 4), 0);
    server->flood({.perSecond = 2000, .time = 200ms});
    EXPECT_EQ(client->news().substr(0, 28), "update 7 51 01000001 \"flood ");
    EXPECT_EQ(client->news().substr(0, 28), "update 7 51 01000001 \"flood ");
    EXPECT_NE(server->frame().dump(), before);
}

TEST_F(AFault, AFloodOverWhatAPanelDoesntReadCostsThePanelAndNoMemory) {
    auto given = options();
    given.queueLimit = 20000;
    given.recordLimit = 1000;
    start(std::move(given));
    auto const idle = panel("idle");
    ASSERT_EQ(idle->subscribe(51, show, 4), 0);
    server->frame().set(showName, 0, Value::ofText(std::string(60000, 'x')));
    server->frame().set(showName, 0, Value::ofText(std::string(60001, 'x')));
    for (int i = 0; i < 400 && server->record().count("#1 closed") == 0; ++i) {
        server->frame().set(showName, 0,
                            Value::ofText(std::string(60000, 'x') + std::to_string(i)));
        server->flood({.perSecond = 1000000, .time = 1ms});
        server->clients();
    }
    EXPECT_TRUE(told("#1 closed reason=\"does not read: more than 20000 bytes are waiting\""));
    EXPECT_LE(server->record().lines().size(), 1000U);
}

TEST_F(AFault, ADelayDoesntLetMoreWaitThanTheLimit) {
    auto given = options();
    given.queueLimit = 1000;
    start(std::move(given));
    auto const client = panel();
    ASSERT_EQ(client->subscribe(51, show, 4), 0);
    server->delay(1h);
    for (int i = 0; i < 100; ++i) {
        server->frame().set(showName, 0, Value::ofText(std::to_string(i)));
    }
    EXPECT_EQ(client->news(), "closed");
    EXPECT_TRUE(told("#1 closed reason=\"does not read: more than 1000 bytes are waiting\""));
}

TEST_F(AFault, AnotherOperatorWorksByItsSeed) {
    std::vector<std::pair<std::int32_t, std::uint32_t>> all;
    server->frame().look([&](FrameModel const& model) {
        for (auto const& [key, parameter] : model.allParameters()) {
            all.emplace_back(key.pid, key.did);
        }
    });
    auto const work = [&](std::uint32_t seed) {
        start();
        auto const client = panel();
        EXPECT_EQ(client->subscribeBatch(all, 4), 0);
        server->operate(1000, seed);
        std::string text;
        for (int i = 0; i < 40; ++i) {
            text += client->news() + "\n";
        }
        return text;
    };
    auto const heard = work(5);
    EXPECT_EQ(work(5), heard);
    EXPECT_NE(work(6), heard);
}

TEST_F(AFault, ARestartDropsEveryoneAndComesBackWithOtherState) {
    auto const old = panel();
    join(*old);
    server->restart({.values = {{{10, program1}, word(9)}, {showName, Value::ofText("other")}}});
    EXPECT_EQ(old->news(), "closed");
    auto const fresh = panel();
    ASSERT_EQ(fresh->subscribe(10, program1, 3), 0);
    EXPECT_EQ(fresh->news(), shownUpdate(9));
    EXPECT_EQ(server->frame().value(showName), Value::ofText("other"));
    EXPECT_TRUE(told("restarted model=\"sample switcher\""));
}

TEST_F(AFault, ARestartMayBringAnotherModel) {
    auto const old = panel();
    auto model = readModel("m", R"({"name": "other", "parameters": [
        {"pid": 1, "device": "01000000", "name": "p", "type": "UInt16", "value": 4}]})");
    server->restart({.model = model, .values = {{{1, 0x01000000}, word(6)}}});
    EXPECT_EQ(old->news(), "closed");
    TestClient fresh(server->port());
    EXPECT_EQ(fresh.hello(), "other");
    ASSERT_EQ(fresh.subscribe(1, 0x01000000, 3), 0);
    EXPECT_EQ(fresh.news(), "update 7 1 01000000 6");
    EXPECT_NE(fresh.subscribe(10, program1, 3), 0);
}

TEST_F(AFault, AwayForAWhileItRefusesAndThenComesBack) {
    auto const old = panel();
    server->restart({.away = 50ms});
    EXPECT_FALSE(TestClient(server->port()).isConnected());
    server->refuse(false);
    EXPECT_FALSE(TestClient(server->port()).isConnected()) << "it isn't there yet";
    EXPECT_TRUE(told("returned"));
    panel();
}

TEST_F(AFault, ARestartWithAValueThatFitsNothingHasNotHappened) {
    auto const client = panel();
    join(*client);
    EXPECT_THROW(server->restart({.values = {{{10, program1}, word(9)}, {{1, 1}, word(1)}}}),
                 FaultError);
    EXPECT_THROW(server->restart({.values = {{{10, program1}, Value::ofText("x")}}}), FaultError);
    setProgram(3);
    EXPECT_EQ(client->news(), shownUpdate(3));
}

TEST_F(AFault, ADroppedSubscriptionIsSilent) {
    auto const client = panel();
    join(*client);
    ASSERT_EQ(client->subscribe(10, preset1, 4), 0);
    ASSERT_EQ(client->subscribe(registers, 4), 0);
    EXPECT_TRUE(server->dropSubscription(1, ParameterKey{10, program1}));
    EXPECT_FALSE(server->dropSubscription(1, ParameterKey{10, program1}));
    EXPECT_FALSE(server->dropSubscription(2, ParameterKey{10, preset1}));
    EXPECT_TRUE(server->dropSubscription(1, registers));
    EXPECT_FALSE(server->dropSubscription(1, registers));
    EXPECT_FALSE(server->dropSubscription(2, registers));
    setProgram(5);
    server->sendList(registers);
    server->frame().set({10, preset1}, 0, word(7));
    EXPECT_EQ(client->news(), "update 7 10 24000100 7");
}

TEST_F(AFault, HealEndsAllOfThem) {
    server->refuse(true);
    server->mute(true);
    server->delay(1h);
    server->freeze(true);
    server->welcomeVersion(3);
    server->damage({.count = 100, .byte = 0});
    server->cut({.message = 1, .byte = 0});
    server->operate(1000);
    server->heal();
    auto const client = panel();
    ASSERT_EQ(client->subscribe(51, show, 3), 0);
    EXPECT_EQ(client->news().substr(0, 22), "update 7 51 01000001 \"");
}

TEST_F(AFault, WhatIsChangedWhileNobodyServesDoesntWait) {
    server->stop();
    for (int i = 0; i < 1000; ++i) {
        server->frame().set({10, program1}, 0, word(i % 16));
    }
    EXPECT_TRUE(server->frame().takeChanges().empty());
}

TEST_F(AFault, HoldingIsAllThatAPanelHasSubscribedTo) {
    auto const client = panel("desk");
    EXPECT_TRUE(server->holding(1)->lines().empty());
    EXPECT_FALSE(server->holding(2));
    ASSERT_EQ(client->subscribe(51, show, 4), 0);
    ASSERT_EQ(client->subscribe(10, program1, 4), 0);
    ASSERT_EQ(client->subscribe(10, program1, 4, 8), 0) << "twice, for two callbacks";
    ASSERT_EQ(client->subscribe(clips, 4), 0);
    ASSERT_EQ(client->subscribe(registers, 4), 0);
    setProgram(12);
    auto const held = server->holding(1);
    ASSERT_TRUE(held);
    EXPECT_EQ(held->client, 1U);
    EXPECT_EQ(held->name, "desk");
    ASSERT_EQ(held->parameters.size(), 2U);
    EXPECT_EQ(held->parameters[0].key, (ParameterKey{10, program1}));
    EXPECT_EQ(held->parameters[0].value, word(12));
    EXPECT_EQ(held->parameters[1].key, showName);
    ASSERT_EQ(held->lists.size(), 2U);
    EXPECT_EQ(held->lists[0].first, clips);
    EXPECT_EQ(held->lists[1].first, registers);
    EXPECT_EQ(held->lists[1].second, *server->frame().items(registers));
    EXPECT_EQ(held->lines()[0].text(), "parameter pid=10 did=24000000 type=UInt16 value=12");
    EXPECT_EQ(client->cancel(3, 4), 0);
    EXPECT_TRUE(server->holding(1)->lists.empty());
}

}  // namespace
}  // namespace FrameSim
