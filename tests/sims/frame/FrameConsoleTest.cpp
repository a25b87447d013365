#include "sims/frame/FrameConsole.h"

#include "TestClient.h"
#include "sims/frame/ModelFile.h"

#include <gtest/gtest.h>

namespace FrameSim {
namespace {

using Texts = std::vector<std::string>;

FrameServerOptions options() {
    FrameServerOptions given;
    given.model = sampleSwitcher();
    return given;
}

class Console : public testing::Test {
  protected:
    /// What the console answers to a line.
    Texts type(std::string_view line) {
        answers.clear();
        goesOn = console.execute(line);
        return answers;
    }
    std::string lastOf(std::string_view line) {
        auto const all = type(line);
        return all.empty() ? "" : all.back();
    }

    FrameServer server{options()};
    Texts answers;
    FrameConsole console{server, [this](Line const& line) { answers.push_back(line.text()); }};
    bool goesOn = true;
};

TEST_F(Console, SetsAndShowsAParameter) {
    EXPECT_EQ(type("set 10 24000000 3"),
              (Texts{"parameter pid=10 did=24000000 type=UInt16 value=3", "ok command=set"}));
    EXPECT_EQ(type(" get  10\t0x24000000 \r"),
              (Texts{"parameter pid=10 did=24000000 type=UInt16 value=3", "ok command=get"}));
    EXPECT_EQ(type("set 51 1000001 Evening show  at 8")[0],
              "parameter pid=51 did=01000001 type=String value=\"Evening show  at 8\"");
    EXPECT_EQ(type(R"(set 51 1000001 " a\x92 ")")[0],
              R"(parameter pid=51 did=01000001 type=String value=" a\x92 ")");
    EXPECT_EQ(type("set 20 08000000 true")[0],
              "parameter pid=20 did=08000000 type=Bool value=true");
    EXPECT_EQ(type("set 10 24000000 99")[0], "parameter pid=10 did=24000000 type=UInt16 value=16");
}

TEST_F(Console, NamesWhatIsWrongAndGoesOn) {
    struct Row {
        std::string line;
        std::string reason;
    };
    Row const rows[] = {
        {"foo", "foo: there is no command 'foo'; try help"},
        {"set", "set: PID is missing"},
        {"set x", "set: PID must be a number from 0 to 65535, not 'x'"},
        {"set 70000 1 1", "set: PID must be a number from 0 to 65535, not '70000'"},
        {"set 10", "set: DID is missing"},
        {"set 10 24g00000 1", "set: DID must be up to eight hexadecimal digits, not '24g00000'"},
        {"set 10 24000000", "set: VALUE is missing"},
        {"set 10 24000000 x", "set: 'x' is no UInt16"},
        {"set 10 24000000 3 4", "set: '3 4' is no UInt16"},
        {"set 10 25000000 3", "set: there is no parameter pid=10 did=25000000"},
        {"set 11 1b000001 true", "set: refused: read only"},
        {"set 51 01000001 \"x", "set: the quoted text isn't whole: \"x"},
        {"get 10 25000000", "get: there is no parameter pid=10 did=25000000"},
        {"get 10 24000000 1", "get: too much: '1'"},
        {"list 23 1", "list: DID is missing"},
        {"list 23 2 35000000", "list: there is no list lid=23 number=2 did=35000000"},
        {"event 40 03000009", "event: refused: no such event"},
        {"event 64 35000000 0", "event: HEX must be pairs of hexadecimal digits"},
        {"event 64 35000000 0z", "event: HEX must be pairs of hexadecimal digits"},
        {"event 64 35000000 0001", "event: refused: not possible"},
        {"cut 17", "cut: ME must be a number from 1 to 16, not '17'"},
        {"cut 3", "cut: refused: no such event"},
        {"auto 1 2", "auto: too much: '2'"},
        {"refuse", "refuse: on or off is missing"},
        {"refuse maybe", "refuse: it must be on or off, not 'maybe'"},
        {"delay -1", "delay: MS must be a number from 0 to 600000, not '-1'"},
        {"freeze now", "freeze: too much: 'now'"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(type(row.line), Texts{"error reason=" + FrameSim::quoted(row.reason)});
        EXPECT_TRUE(goesOn);
    }
}

TEST_F(Console, BlankLinesAndCommentsDoNothing) {
    EXPECT_EQ(type(""), Texts{});
    EXPECT_EQ(type("  \t\r"), Texts{});
    EXPECT_EQ(type("# set 10 24000000 3"), Texts{});
    EXPECT_TRUE(goesOn);
}

TEST_F(Console, CutsAndStartsTransitions) {
    EXPECT_EQ(type("cut"), Texts{"ok command=cut"});
    EXPECT_EQ(server.frame().value({10, 0x24000000})->integer(), 2);
    EXPECT_EQ(type("cut 2"), Texts{"ok command=cut"});
    EXPECT_EQ(server.frame().value({10, 0x24000010})->integer(), 2);
    EXPECT_EQ(type("auto"), Texts{"ok command=auto"});
    EXPECT_TRUE(server.frame().busy());
    EXPECT_EQ(type("event 65 35000000 00000000 0007"), Texts{"ok command=event"});
    EXPECT_EQ(lastOf("get 60 35000000"), "ok command=get");
    EXPECT_EQ(answers[0], "parameter pid=60 did=35000000 type=UInt16 value=7");
}

TEST_F(Console, ShowsTheStateOrAPartOfIt) {
    EXPECT_EQ(type("state").size(), 94U + 17U + 1U);
    EXPECT_EQ(type("state did=01000001"),
              (Texts{"parameter pid=50 did=01000001 type=UInt16 value=50",
                     "parameter pid=51 did=01000001 type=String value=\"Sample show\"",
                     "ok command=state"}));
    EXPECT_EQ(type("state none of them"), Texts{"ok command=state"});
}

TEST_F(Console, WorksTheServersSwitches) {
    server.start();
    TestClient client(server.port());
    client.hello("p");
    client.subscribe(ListKey{12, 1, 0x62000000}, 4);
    auto const panels = type("clients");
    ASSERT_EQ(panels.size(), 2U);
    EXPECT_EQ(panels[0].substr(0, 25), "#1 panel name=\"p\" from=12");
    EXPECT_NE(panels[0].find(" parameters=0 lists=1"), std::string::npos);
    EXPECT_EQ(type("list 12 1 62000000"), Texts{"ok command=list"});
    EXPECT_EQ(client.news().substr(0, 8), "list 17 ");
    EXPECT_EQ(type("refuse on"), Texts{"ok command=refuse"});
    EXPECT_FALSE(TestClient(server.port()).isConnected());
    EXPECT_EQ(type("refuse off"), Texts{"ok command=refuse"});
    EXPECT_EQ(type("freeze"), Texts{"ok command=freeze"});
    client.send(cplwire::Ping{});
    EXPECT_FALSE(client.hearsWithin(std::chrono::milliseconds(20)));
    EXPECT_EQ(type("thaw"), Texts{"ok command=thaw"});
    EXPECT_EQ(client.news().substr(0, 4), "pong");
    EXPECT_EQ(type("delay 10"), Texts{"ok command=delay"});
    client.send(cplwire::Ping{});
    EXPECT_EQ(client.news().substr(0, 4), "pong");
    EXPECT_EQ(type("disconnect"), Texts{"ok command=disconnect"});
    EXPECT_EQ(client.news(), "closed");
}

TEST_F(Console, DumpsWhatPanelsHaveSubscribedTo) {
    server.start();
    TestClient first(server.port());
    first.hello("p");
    first.subscribe(10, 0x24000000, 4);
    TestClient second(server.port());
    second.hello("q");
    second.subscribe(20, 0x08000000, 4);
    second.subscribe(ListKey{12, 1, 0x62000000}, 4);
    std::string const value = "#1 parameter pid=10 did=24000000 type=UInt16 value=1";
    auto const all = type("dump");
    ASSERT_EQ(all.size(), 1U + 1U + 17U + 1U);
    EXPECT_EQ(all[0], value);
    EXPECT_EQ(all[1], "#2 parameter pid=20 did=08000000 type=Bool value=false");
    EXPECT_EQ(all[2].substr(0, 46), "#2 item lid=12 number=1 did=62000000 itemId=1 ");
    EXPECT_EQ(type("dump 1"), (Texts{value, "ok command=dump"}));
    EXPECT_EQ(type("dump 3"), Texts{"error reason=\"dump: there is no panel 3\""});
    EXPECT_EQ(type("dump 1 x"), Texts{"error reason=\"dump: too much: 'x'\""});
    EXPECT_EQ(type("dump 1 --json"), (Texts{value, "ok command=dump"}));
    Texts json;
    FrameConsole other(
        server, [](Line const&) {}, [&](Line const& line) { json.push_back(line.text()); });
    other.execute("dump 1 --json");
    other.execute("dump --json");
    EXPECT_EQ(json.size(), 1U + 19U);
    EXPECT_EQ(json[0], value);
}

TEST_F(Console, WorksTheFaults) {
    server.start();
    EXPECT_EQ(type("break to 2 3"), Texts{"ok command=break"});
    {
        TestClient client(server.port());
        client.hello();
        client.send(cplwire::Ping{});
        EXPECT_EQ(client.news(), "closed");
    }
    EXPECT_TRUE(server.record().waitFor("#1 closed reason=\"cut at byte 3 of message 2 to the "));
    // A welcome of 28 bytes and 3 of the pong; a hello of 27 and a ping of 9.
    EXPECT_EQ(type("crossed")[0],
              "#1 crossed open=false toMessages=1 toBytes=31 fromMessages=2 fromBytes=36");
    EXPECT_EQ(type("break to 1 0 1"), Texts{"error reason=\"break: that place is past\""});
    EXPECT_EQ(type("mute on"), Texts{"ok command=mute"});
    TestClient client(server.port());
    client.send(cplwire::Hello{});
    EXPECT_FALSE(client.hearsWithin(std::chrono::milliseconds(10)));
    EXPECT_EQ(type("mute off"), Texts{"ok command=mute"});
    EXPECT_EQ(client.news(), "welcome sample switcher");
    EXPECT_EQ(client.subscribe(10, 0x24000000, 4), 0);
    EXPECT_EQ(type("truncate values 1 0"), Texts{"ok command=truncate"});
    EXPECT_EQ(type("cut"), Texts{"ok command=cut"});
    EXPECT_EQ(client.news(), "update 7 10 24000000 undecodable");
    EXPECT_EQ(type("drop 2 10 24000000"), Texts{"ok command=drop"});
    EXPECT_EQ(type("drop this 10 24000000"),
              Texts{"error reason=\"drop: no panel has caused it, so there is no 'this'\""});
    EXPECT_EQ(type("garbage version 2"), Texts{"ok command=garbage"});
    EXPECT_EQ(type("garbage version 9"), Texts{"error reason=\"garbage: there is no such panel\""});
    EXPECT_EQ(client.news(), "welcome frame");
    EXPECT_EQ(type("flood 10 0 10 25000000"),
              Texts{"error reason=\"flood: there is no such parameter\""});
    EXPECT_EQ(type("restart set 10 24000000 7"), Texts{"ok command=restart"});
    EXPECT_EQ(client.news(), "closed");
    EXPECT_EQ(server.frame().value({10, 0x24000000})->integer(), 7);
    EXPECT_EQ(type("restart set 10 24000000 x"),
              Texts{"error reason=\"restart: 'x' is no UInt16\""});
    EXPECT_EQ(type("heal"), Texts{"ok command=heal"});
}

TEST_F(Console, HelpNamesEveryCommand) {
    auto const all = type("help");
    Texts names;
    for (auto const& line : all) {
        auto const start = line.find('"') + 1;
        names.push_back(line.substr(start, line.find_first_of(" \"", start) - start));
    }
    names.pop_back();  // ok
    EXPECT_EQ(names, (Texts{"set",        "list",  "event",      "cut",     "auto",    "refuse",
                            "mute",       "delay", "delay-acks", "shuffle", "freeze",  "thaw",
                            "disconnect", "break", "truncate",   "corrupt", "garbage", "version",
                            "seed",       "flood", "operate",    "restart", "drop",    "drop-list",
                            "heal",       "time",  "get",        "state",   "clients", "dump",
                            "crossed",    "help",  "quit"}));
    EXPECT_EQ(all[0], "help command=\"set PID DID VALUE\" does=\"sets a parameter as another "
                      "operator would; a text may stand in double quotes\"");
}

TEST_F(Console, QuitEndsIt) {
    EXPECT_EQ(type("quit"), Texts{"ok command=quit"});
    EXPECT_FALSE(goesOn);
    EXPECT_EQ(type("quit now"), Texts{"error reason=\"quit: too much: 'now'\""});
}

}  // namespace
}  // namespace FrameSim
