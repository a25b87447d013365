#include "ServerFixture.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace FrameSim {
namespace {

using namespace std::chrono_literals;

class ServerInTrouble : public ServerTest {};

/// A whole message out of its parts, with whatever type and body.
std::string rawMessage(int type, std::string const& body) {
    std::string const rest = std::string(1, static_cast<char>(type)) + std::string(4, '\0') + body;
    return std::string(3, '\0') + static_cast<char>(rest.size()) + rest;
}

TEST_F(ServerInTrouble, DropsAConnectionThatSendsGarbageWithOneLine) {
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

TEST_F(ServerInTrouble, AMessageMayComeByteByByteAndManyAtOnce) {
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

TEST_F(ServerInTrouble, RefusesAPanelOfAnotherVersion) {
    start();
    TestClient client(server->port());
    cplwire::Hello hello;
    hello.protocolVersion = 2;
    client.send(hello);
    EXPECT_EQ(client.allNews(), (Texts{"refusal this frame speaks version 1", "closed"}));
    EXPECT_TRUE(told("#1 closed reason=\"another version of the protocol\""));
}

TEST_F(ServerInTrouble, ClosesAConnectionThatNeverSaysHello) {
    auto given = options();
    given.helloLimit = 50ms;
    start(std::move(given));
    TestClient client(server->port());
    EXPECT_EQ(client.news(), "closed");
    EXPECT_TRUE(told("#1 closed reason=\"no hello\""));
}

TEST_F(ServerInTrouble, NoticesAPanelThatGoesAway) {
    start();
    panel()->close();
    EXPECT_TRUE(told("#1 closed reason=\"closed by the panel\""));
    panel();
    EXPECT_TRUE(told("#2 closed"));
}

TEST_F(ServerInTrouble, DropsAPanelThatDoesntReadWithOneLine) {
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

TEST_F(ServerInTrouble, ABurstIsNoProofThatAPanelDoesntRead) {
    auto given = options();
    given.queueLimit = 100;
    start(std::move(given));
    auto const client = panel();
    std::vector<std::pair<std::int32_t, std::uint32_t>> tally;
    for (std::uint32_t source = 0; source <= 16; ++source) {
        tally.emplace_back(11, 0x1b000000 + source);
    }
    EXPECT_EQ(client->subscribeBatch(tally), 0);
    for (std::size_t i = 0; i < tally.size(); ++i) {
        EXPECT_EQ(client->news().substr(0, 12), "update 7 11 ");
    }
}

TEST_F(ServerInTrouble, TurnsAwayMorePanelsThanItsLimit) {
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

TEST_F(ServerInTrouble, RefusesConnectionsAndTakesThemAgainOnTheSamePort) {
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

TEST_F(ServerInTrouble, APortInUseCantBeHad) {
    start();
    auto given = options();
    given.port = server->port();
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

TEST_F(ServerInTrouble, HoldsBackAnswersForTheDelay) {
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

TEST_F(ServerInTrouble, FrozenItNeitherReadsNorWritesAndThawedItGoesOn) {
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

TEST_F(ServerInTrouble, FrozenItStopsWithoutAWord) {
    start();
    auto const client = panel();
    server->freeze(true);
    server->stop();
    EXPECT_EQ(client->allNews(), Texts{"closed"});
}

TEST_F(ServerInTrouble, CutsAllConnectionsAndTakesNewOnes) {
    start();
    auto const first = panel();
    auto const second = panel();
    server->disconnect();
    EXPECT_EQ(first->allNews(), Texts{"closed"});
    EXPECT_EQ(second->allNews(), Texts{"closed"});
    EXPECT_EQ(server->record().count("closed reason=\"cut off\""), 2U);
    EXPECT_EQ(panel()->set(10, program1, 0, word(3)), 0);
}

TEST_F(ServerInTrouble, SaysGoodbyeWhenItStops) {
    start();
    auto const client = panel();
    server->stop();
    EXPECT_EQ(client->allNews(), (Texts{"bye", "closed"}));
    auto const all = lines();
    EXPECT_EQ(Texts(all.end() - 3, all.end()),
              (Texts{"#1 > bye", "#1 closed reason=\"the frame stops\"", "stopped"}));
}

TEST_F(ServerInTrouble, StartsAndStopsFiftyTimesAndKeepsItsState) {
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

TEST_F(ServerInTrouble, KeepsItsPortFromOneStartToTheNextIfItIsGiven) {
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

TEST_F(ServerInTrouble, ServesManyPanelsAtOnce) {
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

TEST_F(ServerInTrouble, APresentValueIsNeverFollowedByAnOlderOne) {
    start();
    auto const client = panel();
    std::atomic<bool> ended{false};
    std::thread counter([&] {
        while (!ended) {
            for (int i = 0; i < 5; ++i) {
                server->frame().set({62, 0x3e000000}, 1, Value::ofInteger(DataType::Int32, 1));
            }
            server->clients();  // waits for the server, which else would never catch up
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

TEST_F(ServerInTrouble, AnAddressThatIsNoneCantBeHad) {
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
