#include "sims/frame/FrameServer.h"

#include "TestClient.h"
#include "sims/frame/ModelFile.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

namespace FrameSim {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

constexpr std::uint32_t program1 = 0x24000000;
constexpr std::uint32_t preset1 = 0x24000100;
constexpr std::uint32_t me1 = 0x03000000;
constexpr std::uint32_t show = 0x01000001;
constexpr ListKey registers{23, 1, 0x35000000};
constexpr ListKey clips{6, 1, 0x3e000000};

Value word(std::int64_t number) { return Value::ofInteger(DataType::UInt16, number); }

/// A running sample switcher whose fields pass by hand.
class Server : public testing::Test {
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

TEST_F(Server, TellsWhereItListensFirst) {
    start();
    ASSERT_NE(server->port(), 0);
    EXPECT_EQ(server->record().texts(),
              Texts{"listening address=127.0.0.1 port=" + std::to_string(server->port()) +
                    " model=\"sample switcher\""});
}

TEST_F(Server, WelcomesAPanelAndTellsEachThingReceivedAndSent) {
    start();
    auto const client = panel("stripe 1");
    EXPECT_EQ(client->set(10, program1, 0, word(3)), 0);
    EXPECT_EQ(client->event(40, me1), 0);
    EXPECT_EQ(client->set(99, program1, 0, word(3)), 3);
    client->send(cplwire::Bye{});
    EXPECT_EQ(client->news(), "closed");
    EXPECT_EQ(lines(), (Texts{
                           R"(#1 < hello version=1 name="stripe 1")",
                           R"(#1 > welcome version=1 name="sample switcher")",
                           "#1 < set pid=10 did=24000000 flag=0 type=UInt16 value=3",
                           "#1 > ack status=0",
                           R"(#1 < event eid=40 did=03000000 data="")",
                           "#1 > ack status=0",
                           "#1 < set pid=99 did=24000000 flag=0 type=UInt16 value=3",
                           R"(#1 > ack status=3 cause="no such parameter")",
                           "#1 < bye",
                           R"(#1 closed reason="bye")",
                       }));
    EXPECT_EQ(server->frame().value({10, preset1}), word(3));
}

TEST_F(Server, ASubscriptionIsAnsweredByThePresentValueUnlessItIsForUpdatesOnly) {
    start();
    auto const client = panel();
    for (std::int32_t const flag : {1, 3, 2}) {
        EXPECT_EQ(client->subscribe(10, program1, flag), 0);
        EXPECT_EQ(client->news(), "update 7 10 24000000 1");
    }
    EXPECT_EQ(client->subscribe(10, preset1, 4), 0);
    client->send(cplwire::Ping{});
    EXPECT_EQ(client->news().substr(0, 4), "pong");
    server->frame().set({10, preset1}, 0, word(9));
    EXPECT_EQ(client->news(), "update 7 10 24000100 9");
}

TEST_F(Server, ReplaceEndsTheOtherSubscriptionsAndAppendDoesNot) {
    start();
    auto const client = panel();
    client->subscribe(10, program1, 4);
    client->subscribe(51, show, 3);
    EXPECT_EQ(client->news(), "update 7 51 01000001 \"Sample show\"");
    server->frame().set({10, program1}, 0, word(5));
    EXPECT_EQ(client->news(), "update 7 10 24000000 5");
    client->subscribe(51, show, 2);
    EXPECT_EQ(client->news(), "update 7 51 01000001 \"Sample show\"");
    server->frame().set({10, program1}, 0, word(6));
    server->frame().set({51, show}, 0, Value::ofText("a\x92"));
    EXPECT_EQ(client->news(), "update 7 51 01000001 \"a\\x92\"");
}

TEST_F(Server, RefusesASubscriptionToWhatItDoesntHave) {
    start();
    auto const client = panel();
    EXPECT_EQ(client->subscribe(10, 0x24000f00, 1), 3);
    EXPECT_EQ(client->subscribe(10, program1, 0), 3);
    EXPECT_EQ(client->subscribe(10, program1, 5), 3);
    EXPECT_EQ(client->subscribe(ListKey{23, 2, 0x35000000}, 1), 3);
    EXPECT_EQ(client->subscribe(registers, 9), 3);
    EXPECT_EQ(client->cancel(1, 3), 3);
    EXPECT_EQ(client->cancel(3, 5), 3);
    server->frame().set({10, program1}, 0, word(5));
    client->send(cplwire::Ping{});
    EXPECT_EQ(client->news().substr(0, 4), "pong");
}

TEST_F(Server, ABatchSubscribesToAllThatThereIs) {
    start();
    auto const client = panel();
    EXPECT_EQ(client->subscribeBatch({{10, preset1}, {10, program1}}), 0);
    EXPECT_EQ(client->news(), "update 7 10 24000100 2");
    EXPECT_EQ(client->news(), "update 7 10 24000000 1");
    EXPECT_EQ(client->subscribeBatch({{99, 1}, {50, show}}, 3, 8), 3);
    EXPECT_EQ(client->news(), "update 8 50 01000001 50");
    EXPECT_EQ(client->subscribeBatch({}), 0);
    EXPECT_EQ(server->record().count("subscribe batch=0 flag=3 callback=7"), 1U);
    EXPECT_EQ(server->record().count("ack status=3 cause=\"no such parameter: 1\""), 1U);
}

TEST_F(Server, EachCallbackThatSubscribedIsTold) {
    start();
    auto const client = panel();
    client->subscribe(10, program1, 4, 7);
    client->subscribe(10, program1, 4, 7);
    client->subscribe(10, program1, 4, 9);
    server->frame().set({10, program1}, 0, word(5));
    server->frame().set({10, program1}, 0, word(6));
    EXPECT_EQ(client->news(), "update 7 10 24000000 5");
    EXPECT_EQ(client->news(), "update 9 10 24000000 5");
    EXPECT_EQ(client->news(), "update 7 10 24000000 6");
    EXPECT_EQ(client->news(), "update 9 10 24000000 6");
}

TEST_F(Server, CancelEndsTheSubscriptionsOfItsService) {
    start();
    auto const client = panel();
    client->subscribe(10, program1, 4);
    client->subscribe(registers, 4);
    EXPECT_EQ(client->cancel(3, 3), 0);
    server->frame().set({10, program1}, 0, word(5));
    server->frame().event({65, 0x35000000}, std::string(6, '\0'));
    EXPECT_EQ(client->news().substr(0, 7), "list 1 ");
    EXPECT_EQ(client->cancel(3, 4), 0);
    server->frame().event({65, 0x35000000}, std::string("\0\0\0\0\0\1", 6));
    client->send(cplwire::Ping{});
    EXPECT_EQ(client->news().substr(0, 4), "pong");
}

TEST_F(Server, ConsequencesFollowTheAcknowledgementInOrder) {
    start();
    auto const client = panel();
    client->subscribeBatch({{10, program1}, {10, preset1}, {11, 0x1b000002}}, 4);
    auto const first = client->send(cplwire::Event{40, me1, {}});
    auto const second = client->send(cplwire::Event{40, me1, {}});
    EXPECT_EQ(client->acknowledged(first), 0);
    EXPECT_FALSE(client->acknowledged(second) != 0);
    Texts const news{client->news(), client->news(), client->news(),
                     client->news(), client->news(), client->news()};
    EXPECT_EQ(news, (Texts{"update 7 10 24000000 2", "update 7 10 24000100 1",
                           "update 7 11 1b000002 true", "update 7 10 24000000 1",
                           "update 7 10 24000100 2", "update 7 11 1b000002 false"}));
}

TEST_F(Server, TellsAPanelOfChangesByOthersAndOfItsOwn) {
    start();
    auto const first = panel("first");
    auto const second = panel("second");
    first->subscribe(10, program1, 4);
    second->subscribe(10, program1, 4);
    EXPECT_EQ(first->set(10, program1, 0, word(4)), 0);
    EXPECT_EQ(first->news(), "update 7 10 24000000 4");
    EXPECT_EQ(second->news(), "update 7 10 24000000 4");
    Texts summaries;
    for (auto const& line : server->clients()) {
        auto const text = line.text();
        summaries.push_back(text.substr(0, text.find(" from=")));
    }
    EXPECT_EQ(summaries, (Texts{"#1 panel name=\"first\"", "#2 panel name=\"second\""}));
}

TEST_F(Server, AutoTransitionReportsTheLeverEachField) {
    start();
    auto const client = panel();
    client->subscribe(30, me1, 4);
    client->subscribe(10, program1, 4);
    client->set(31, me1, 0, word(3));
    EXPECT_EQ(client->event(41, me1), 0);
    server->frame().advanceFields(1);
    EXPECT_EQ(client->news(), "update 7 30 03000000 1365");
    server->frame().advanceFields(2);
    EXPECT_EQ(client->news(), "update 7 30 03000000 2730");
    EXPECT_EQ(client->news(), "update 7 30 03000000 4095");
    EXPECT_EQ(client->news(), "update 7 10 24000000 2");
}

TEST_F(Server, FieldsPassByTheMachinesClockIfItIsToldSo) {
    auto given = options();
    given.realFields = true;
    start(std::move(given));
    auto const client = panel();
    client->subscribe(30, me1, 4);
    client->set(31, me1, 0, word(2));
    EXPECT_EQ(client->event(41, me1), 0);
    EXPECT_EQ(client->news(), "update 7 30 03000000 2047");
    EXPECT_EQ(client->news(), "update 7 30 03000000 4095");
}

TEST_F(Server, SendsAListWhenSubscribedAndEachChangeOfIt) {
    start();
    auto const client = panel();
    std::string const head = "0006000"
                             "13e000000";
    EXPECT_EQ(
        client->setList(1, clips, 1, {Value::ofInteger(DataType::UInt32, 25), Value::ofText("A")}),
        0);
    EXPECT_EQ(client->subscribe(clips, 1), 0);
    EXPECT_EQ(client->news(), "list 1 " + head +
                                  "00000001"
                                  "00000000"
                                  "0001"
                                  "0006"
                                  "00000019"
                                  "4100");
    EXPECT_EQ(
        client->setList(1, clips, 2, {Value::ofInteger(DataType::UInt32, 0), Value::ofText("")}),
        0);
    EXPECT_EQ(client->news(), "list 2 " + head +
                                  "00000001"
                                  "00000002"
                                  "0002"
                                  "0006"
                                  "00000019"
                                  "4100"
                                  "00000002"
                                  "00000000"
                                  "0001"
                                  "0005"
                                  "00000000"
                                  "00");
    EXPECT_EQ(client->setList(3, clips, 1, {}), 0);
    EXPECT_EQ(client->news(), "list 1 " + head +
                                  "00000001"
                                  "00000000"
                                  "0003"
                                  "0000");
    EXPECT_EQ(client->setList(1, registers, 1, {}), 3);
    EXPECT_EQ(server->record().count(
                  "#1 < setlist action=1 lid=6 number=1 did=3e000000 itemId=1 \"MarkIn Time\"=25 "
                  "\"Clip Name\"=\"A\""),
              1U);
    EXPECT_EQ(server->record().count(
                  "#1 > list lid=6 number=1 did=3e000000 items=1 itemId=1 nextItemId=0 status=3"),
              1U);
}

TEST_F(Server, AnEmptyListIsNotSentAndALongOneComesInSeveralMessages) {
    start();
    auto const client = panel();
    EXPECT_EQ(client->subscribe(clips, 1), 0);
    auto const fields = [](std::string const& name) {
        return std::vector<Value>{Value::ofInteger(DataType::UInt32, 1), Value::ofText(name)};
    };
    server->frame().putItem(clips, {.itemId = 1, .fields = fields("a")});
    EXPECT_EQ(client->news().substr(0, 7), "list 1 ");
    for (std::uint32_t id = 2; id <= 9; ++id) {
        server->frame().putItem(clips, {.itemId = id, .fields = fields(std::string(20000, 'x'))});
        EXPECT_EQ(client->news().substr(0, 7), "list 2 ");
    }
    EXPECT_TRUE(server->sendList(clips));
    EXPECT_EQ(client->news().substr(0, 7), "list 5 ");
    EXPECT_EQ(client->news().substr(0, 7), "list 4 ");
    EXPECT_FALSE(server->sendList({6, 9, 0x3e000000}));
}

TEST_F(Server, AnswersAPingUnderItsOwnNumber) {
    start();
    auto const client = panel();
    auto const number = client->send(cplwire::Ping{});
    EXPECT_EQ(client->news(), "pong " + std::to_string(number));
    client->send(cplwire::Pong{});
    EXPECT_TRUE(told("#1 < pong"));
}

TEST_F(Server, RefusesASetWhoseBytesAreNoValue) {
    start();
    auto const client = panel();
    EXPECT_EQ(client->setBytes(10, program1, 2, "\1"), 3);
    EXPECT_EQ(client->setBytes(10, program1, 99, "ab"), 3);
    EXPECT_EQ(server->record().count("type=UInt16 value=\"\\x01\""), 1U);
    EXPECT_EQ(server->record().count("type=type99 value=\"ab\""), 1U);
    EXPECT_EQ(server->record().count("cause=\"not a value of its type\""), 2U);
}

/// A whole message out of its parts, with whatever type and body.
std::string rawMessage(int type, std::string const& body) {
    std::string const rest = std::string(1, static_cast<char>(type)) + std::string(4, '\0') + body;
    return std::string(3, '\0') + static_cast<char>(rest.size()) + rest;
}

TEST_F(Server, DropsAConnectionThatSendsGarbageWithOneLine) {
    struct Row {
        bool greets;
        std::string bytes;
        std::string reason;
    };
    Row const rows[] = {
        {false, "GET / HTTP/1.0\r\n\r\n", "garbage: message of impossible length"},
        {false, rawMessage(1, "no hello"), "garbage: message of type 1"},
        {false, rawMessage(10, ""), "garbage: message of type 10"},
        {false, std::string(4, '\0'), "garbage: message of impossible length"},
        {true, std::string("\xff\xff\xff\xff"), "garbage: message of impossible length"},
        {true, rawMessage(1, ""), "garbage: message of type 1"},
        {true, rawMessage(10, "short"), "garbage: message of type 10"},
        {true, rawMessage(14, std::string(9, '\0')), "garbage: message of type 14"},
        {true, rawMessage(20, std::string(4, '\0')), "garbage: message of type 20"},
        {true, rawMessage(99, ""), "garbage: message of type 99"},
        {true, rawMessage(40, "long"), "garbage: message of type 40"},
    };
    start();
    auto const other = panel("bystander");
    std::uint32_t id = 1;
    for (auto const& row : rows) {
        SCOPED_TRACE(row.reason + " of " + row.bytes);
        TestClient client(server->port());
        ++id;
        if (row.greets) {
            client.hello();
        }
        client.sendBytes(row.bytes);
        EXPECT_EQ(client.news(), "closed");
        EXPECT_TRUE(told("#" + std::to_string(id) + " closed reason=\"" + row.reason + "\""));
    }
    EXPECT_EQ(server->record().count(" closed "), std::size(rows));
    EXPECT_EQ(other->set(10, program1, 0, word(3)), 0);
}

TEST_F(Server, AMessageMayComeByteByByteAndManyAtOnce) {
    start();
    auto const client = panel();
    std::string bytes;
    cplwire::encode(bytes, cplwire::Ping{}, 1000);
    for (char const byte : bytes) {
        client->sendBytes({&byte, 1});
    }
    EXPECT_EQ(client->news(), "pong 1000");
    client->sendBytes(bytes + bytes + bytes);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(client->news(), "pong 1000");
    }
}

TEST_F(Server, RefusesAPanelOfAnotherVersion) {
    start();
    TestClient client(server->port());
    cplwire::Hello hello;
    hello.protocolVersion = 2;
    client.send(hello);
    EXPECT_EQ(client.allNews(), (Texts{"refusal this frame speaks version 1", "closed"}));
    EXPECT_TRUE(told("#1 closed reason=\"another version of the protocol\""));
}

TEST_F(Server, ClosesAConnectionThatNeverSaysHello) {
    auto given = options();
    given.helloLimit = 50ms;
    start(std::move(given));
    TestClient client(server->port());
    EXPECT_EQ(client.news(), "closed");
    EXPECT_TRUE(told("#1 closed reason=\"no hello\""));
}

TEST_F(Server, NoticesAPanelThatGoesAway) {
    start();
    panel()->close();
    EXPECT_TRUE(told("#1 closed reason=\"closed by the panel\""));
    panel();
    EXPECT_TRUE(told("#2 closed"));
}

TEST_F(Server, DropsAPanelThatDoesntReadWithOneLine) {
    auto given = options();
    given.queueLimit = 100000;
    start(std::move(given));
    auto const idle = panel("idle");
    auto const other = panel("bystander");
    idle->subscribe(51, show, 4);
    // More than the system's own buffers take; the frame must neither wait nor grow.
    for (int i = 0; i < 2000 && server->record().count("#1 closed") == 0; ++i) {
        server->frame().set({51, show}, 0,
                            Value::ofText(std::string(60000, 'x') + std::to_string(i)));
        EXPECT_EQ(other->set(10, program1, 0, word(i % 16)), 0);
    }
    EXPECT_TRUE(told("#1 closed reason=\"does not read: more than 100000 bytes are waiting\""));
    EXPECT_EQ(server->record().count("#1 closed"), 1U);
}

TEST_F(Server, TurnsAwayMorePanelsThanItsLimit) {
    auto given = options();
    given.clientLimit = 2;
    start(std::move(given));
    auto const first = panel();
    auto second = panel();
    TestClient third(server->port());
    EXPECT_EQ(third.news(), "closed");
    EXPECT_TRUE(told("#3 closed reason=\"too many panels\""));
    second.reset();
    EXPECT_TRUE(told("#2 closed"));
    auto const fourth = panel();
    EXPECT_EQ(first->set(10, program1, 0, word(3)), 0);
}

TEST_F(Server, RefusesConnectionsAndTakesThemAgainOnTheSamePort) {
    start();
    auto const before = panel();
    auto const port = server->port();
    server->refuse(true);
    server->refuse(true);
    EXPECT_FALSE(TestClient(port).isConnected());
    EXPECT_EQ(before->set(10, program1, 0, word(3)), 0);
    server->refuse(false);
    EXPECT_EQ(server->port(), port);
    EXPECT_EQ(panel()->set(10, program1, 0, word(4)), 0);
}

TEST_F(Server, ARefusingFrameHoldsItsPort) {
    start();
    server->refuse(true);
    auto given = options();
    given.port = server->port();
    server->refuse(false);
    FrameServer second(std::move(given));
    try {
        second.start();
        FAIL() << "took a port that is in use";
    } catch (StartError const& error) {
        EXPECT_EQ(error.what(), "cannot listen on 127.0.0.1:" + std::to_string(server->port()) +
                                    ": Address already in use");
    }
    second.stop();
    EXPECT_EQ(second.record().texts(), Texts{});
}

TEST_F(Server, HoldsBackAnswersForTheDelay) {
    start();
    auto const client = panel();
    server->delay(100ms);
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(client->set(10, program1, 0, word(3)), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 100ms);
    EXPECT_EQ(server->frame().value({10, program1}), word(3));
    server->delay(10min);
    auto const held = client->send(cplwire::Ping{});
    EXPECT_TRUE(told("#1 < ping"));
    EXPECT_FALSE(client->hearsWithin(50ms));
    EXPECT_EQ(server->record().count("#1 > pong"), 0U);
    server->delay(0ms);
    client->send(cplwire::Ping{});
    EXPECT_TRUE(told("#1 < ping", 2));
    EXPECT_FALSE(client->hearsWithin(50ms)) << "messages must keep their order";
    server->stop();
    EXPECT_EQ(client->allNews(), (Texts{"pong " + std::to_string(held),
                                        "pong " + std::to_string(held + 1), "bye", "closed"}));
}

TEST_F(Server, FrozenItNeitherReadsNorWritesAndThawedItGoesOn) {
    start();
    auto const client = panel();
    client->subscribe(10, program1, 4);
    server->freeze(true);
    auto const request = client->send(cplwire::Set{10, preset1, 0, 2, std::string_view("\0\7", 2)});
    server->frame().set({10, program1}, 0, word(5));
    EXPECT_FALSE(client->hearsWithin(50ms));
    EXPECT_EQ(server->frame().value({10, preset1}), word(2));
    TestClient waits(server->port());
    EXPECT_TRUE(waits.isConnected());  // by the system, not by the frame
    EXPECT_EQ(server->clients().size(), 1U);
    server->freeze(false);
    EXPECT_EQ(client->acknowledged(request), 0);
    EXPECT_EQ(client->news(), "update 7 10 24000000 5");
    EXPECT_EQ(waits.hello(), "sample switcher");
}

TEST_F(Server, FrozenItStopsWithoutAWord) {
    start();
    auto const client = panel();
    server->freeze(true);
    server->stop();
    EXPECT_EQ(client->allNews(), Texts{"closed"});
}

TEST_F(Server, CutsAllConnectionsAndTakesNewOnes) {
    start();
    auto const first = panel();
    auto const second = panel();
    server->disconnect();
    EXPECT_EQ(first->allNews(), Texts{"closed"});
    EXPECT_EQ(second->allNews(), Texts{"closed"});
    EXPECT_EQ(server->record().count("closed reason=\"cut off\""), 2U);
    EXPECT_EQ(panel()->set(10, program1, 0, word(3)), 0);
}

TEST_F(Server, SaysGoodbyeWhenItStops) {
    start();
    auto const client = panel();
    server->stop();
    EXPECT_EQ(client->allNews(), (Texts{"bye", "closed"}));
    auto const all = lines();
    EXPECT_EQ(Texts(all.end() - 3, all.end()),
              (Texts{"#1 > bye", "#1 closed reason=\"the frame stops\"", "stopped"}));
}

TEST_F(Server, StartsAndStopsFiftyTimesAndKeepsItsState) {
    start();
    std::atomic<bool> ended{false};
    std::thread busybody([&] {
        for (int i = 0; !ended; ++i) {
            server->frame().set({10, preset1}, 0, word(i % 16));
            server->clients();
            std::this_thread::yield();
        }
    });
    for (int i = 0; i < 50; ++i) {
        auto const client = panel();
        EXPECT_EQ(client->set(10, program1, 0, word(i % 16)), 0);
        server->stop();
        server->stop();
        EXPECT_EQ(server->frame().value({10, program1}), word(i % 16));
        server->start();
        server->start();
    }
    ended = true;
    busybody.join();
}

TEST_F(Server, KeepsItsPortFromOneStartToTheNextIfItIsGiven) {
    start();
    auto given = options();
    given.port = server->port();
    server->stop();
    start(std::move(given));
    auto const port = server->port();
    auto client = panel();
    server->stop();
    client.reset();
    server->start();
    EXPECT_EQ(server->port(), port);
    EXPECT_EQ(panel()->set(10, program1, 0, word(3)), 0);
}

TEST_F(Server, ServesManyPanelsAtOnce) {
    start();
    constexpr int panels = 20;
    constexpr int sets = 50;
    std::vector<std::thread> threads;
    std::atomic<int> good{0};
    for (int i = 0; i < panels; ++i) {
        threads.emplace_back([&, i] {
            TestClient client(server->port());
            client.hello("panel " + std::to_string(i));
            client.subscribe(62, 0x3e000000, 3);
            for (int n = 0; n < sets; ++n) {
                good += client.set(62, 0x3e000000, 1, Value::ofInteger(DataType::Int32, 1)) == 0;
            }
            std::string last = client.news();
            for (int more = 1; last != "update 7 62 3e000000 1000" && more <= panels * sets;
                 ++more) {
                last = client.news();
            }
            EXPECT_EQ(last, "update 7 62 3e000000 1000");
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, panels * sets);
    EXPECT_EQ(server->frame().value({62, 0x3e000000}), Value::ofInteger(DataType::Int32, 1000));
}

TEST_F(Server, APresentValueIsNeverFollowedByAnOlderOne) {
    start();
    auto const client = panel();
    std::atomic<bool> ended{false};
    std::thread counter([&] {
        while (!ended) {
            server->frame().set({62, 0x3e000000}, 1, Value::ofInteger(DataType::Int32, 1));
        }
    });
    while (server->frame().value({62, 0x3e000000})->integer() == 0) {
        std::this_thread::yield();
    }
    for (int i = 0; i < 50; ++i) {
        client->subscribe(62, 0x3e000000, 2, static_cast<std::uint16_t>(i));
    }
    ended = true;
    counter.join();
    client->send(cplwire::Ping{});
    int last = -1;
    for (auto said = client->news(); !said.starts_with("pong"); said = client->news()) {
        int const value = std::stoi(said.substr(said.rfind(' ') + 1));
        // The first value of a new subscription may be the last one of the one before.
        EXPECT_GE(value, last) << said;
        last = value;
    }
    EXPECT_GT(last, 0);
}

TEST_F(Server, AnAddressThatIsNoneCantBeHad) {
    auto given = options();
    given.address = "192.0.2.1";
    given.port = 5000;
    FrameServer other(std::move(given));
    EXPECT_THROW(other.start(), StartError);
    auto named = options();
    named.address = "no such host";
    EXPECT_THROW(FrameServer(std::move(named)).start(), StartError);
}

}  // namespace
}  // namespace FrameSim
