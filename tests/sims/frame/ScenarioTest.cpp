#include "sims/frame/Scenario.h"

#include "ServerFixture.h"

#include <fstream>

namespace FrameSim {
namespace {

using namespace std::chrono_literals;
using TimePoint = ScenarioPlayer::TimePoint;

std::string errorOf(std::string_view content) {
    try {
        Scenario const scenario("f", content);
        return "";
    } catch (ScenarioError const& error) {
        return error.what();
    }
}

TEST(Scenario, EveryTriggerAndActionCanBeRead) {
    std::string const model = QFD_SOURCE_DIR "/installation/frame/sample-switcher.json";
    std::string const lines[] = {
        "at 0ms freeze",
        "  at 86400s\tthaw \r",
        "every 1ms cut",
        "every 2s auto 2",
        "after 3 sets disconnect",
        "after 1 requests event 65 35000000 00000000 0007",
        "after 1 connects refuse on",
        "after 1 hellos mute off",
        "after 1 events list 12 1 62000000",
        "after 1 listsets delay 5",
        "after 1 subscribes delay 5 10",
        "after 1 cancels delay-acks 0 100",
        "after 1 pings shuffle 10",
        "after 1 closes heal",
        "when event 12 break to 1 0",
        "when event 40 03000000 break from 1000000000 4294967295 this",
        "when set 10 24000000 set 10 24000000 5",
        "when listset 23 truncate values",
        "when subscribe 10 corrupt lists 3",
        "on connect 2 truncate lists 0 0",
        "on hello 2 garbage random this",
        "on close 2 garbage length 3",
        "at 1s garbage version",
        "at 1s garbage type",
        "at 1s version 2",
        "at 1s version off",
        "at 1s seed 4294967295",
        "at 1s flood 100 2000",
        "at 1s flood 100 2000 10 24000000",
        "at 1s operate 10",
        "at 1s operate 10 3",
        "at 1s restart",
        "at 1s restart 500",
        "at 1s restart 500 model " + model + " set 10 24000000 5 set 51 01000001 \"a # b\"",
        "at 1s restart set 10 24000000 5",
        "at 1s drop this 10 24000000",
        "at 1s drop-list 1 23 1 35000000",
        "at 1s set 51 01000001 a text # of many words",
    };
    for (auto const& line : lines) {
        EXPECT_EQ(errorOf(line), "");
    }
    auto const all = Scenario("f", "# comment\n\n   \r\n at 1s  cut 2 \nthen 2ms cut");
    ASSERT_EQ(all.steps().size(), 2U);
    EXPECT_EQ(all.steps()[0].line, 4U);
    EXPECT_EQ(all.steps()[0].trigger.time, 1s);
    EXPECT_EQ(all.steps()[1].line, 5U);
    EXPECT_EQ(all.steps()[1].text, "cut");
}

TEST(Scenario, ErrorsNameTheirPlaceAndCause) {
    struct Row {
        std::string text;
        std::string place;
        std::string cause;
    };
    Row const rows[] = {
        {"x 5ms cut", "1:1", "a line must begin with at, every, then, after, when or on, not 'x'"},
        {"\n# c\n  at", "3:5", "the time is missing"},
        {"at 5 cut", "1:4", "the time must be like 500ms or 3s, not '5'"},
        {"at ms cut", "1:4", "the time must be like 500ms or 3s, not 'ms'"},
        {"at 5min cut", "1:4", "the time must be like 500ms or 3s, not '5min'"},
        {"at -5ms cut", "1:4", "the time must be from 0ms to 86400s, not '-5ms'"},
        {"at 86401s cut", "1:4", "the time must be from 0ms to 86400s, not '86401s'"},
        {"at 99999999999999999999s cut", "1:4",
         "the time must be like 500ms or 3s, not '99999999999999999999s'"},
        {"every 0ms cut", "1:7", "the time must be from 1ms to 86400s, not '0ms'"},
        {"then 1s cut", "1:1", "there is no line above that 'then' could follow"},
        {"at 5ms", "1:7", "the action is missing"},
        {"at 5ms quit", "1:8", "there is no action 'quit'"},
        {"at 5ms cut 1 2", "1:14", "too much: '2'"},
        {"at 5ms cut 17", "1:12", "ME must be a number from 1 to 16, not '17'"},
        {"after sets cut", "1:7", "N must be a number from 1 to 1000000000, not 'sets'"},
        {"after 0 sets cut", "1:7", "N must be a number from 1 to 1000000000, not '0'"},
        {"after 1 set cut", "1:9",
         "it must be connects, hellos, sets, events, listsets, subscribes, cancels, pings, closes "
         "or requests, not 'set'"},
        {"when ping 1 cut", "1:6", "it must be set, event, listset or subscribe, not 'ping'"},
        {"when event x cut", "1:12", "ID must be a number from 0 to 65535, not 'x'"},
        {"when event 1 3000000 cut", "1:14", "there is no action '3000000'"},
        {"on set 1 cut", "1:4", "it must be connect, hello or close, not 'set'"},
        {"on connect 0 cut", "1:12", "CLIENT must be a number from 1 to 1000000000, not '0'"},
        {"at 1s refuse", "1:13", "on or off is missing"},
        {"at 1s refuse yes", "1:14", "it must be on or off, not 'yes'"},
        {"at 1s delay 5 4", "1:15", "MOST must not be less than MS"},
        {"at 1s delay 600001", "1:13", "MS must be a number from 0 to 600000, not '600001'"},
        {"at 1s break at 1 1", "1:13", "it must be to or from, not 'at'"},
        {"at 1s break to 0 1", "1:16", "MESSAGE must be a number from 1 to 1000000000, not '0'"},
        {"at 1s break to 1", "1:17", "BYTE is missing"},
        {"at 1s break to 1 1 next", "1:20",
         "CLIENT must be a number from 1 to 4294967294, not 'next'"},
        {"at 1s truncate events", "1:16", "it must be values or lists, not 'events'"},
        {"at 1s garbage some", "1:15", "it must be random, length, version or type, not 'some'"},
        {"at 1s flood 5", "1:14", "MS is missing"},
        {"at 1s flood 5 5 10", "1:19", "DID is missing"},
        {"at 1s set 10 24000000", "1:22", "VALUE is missing"},
        {"at 1s set 10 xyz 5", "1:14", "DID must be up to eight hexadecimal digits, not 'xyz'"},
        {"at 1s event 40 03000000 abc", "1:25", "HEX must be pairs of hexadecimal digits"},
        {"at 1s restart now", "1:15", "MS must be a number from 0 to 600000, not 'now'"},
        {"at 1s restart model /none/x.json", "1:21", "/none/x.json: No such file or directory"},
        {"at 1s restart set 51 01000001 \"x", "1:31", "the quoted text isn't whole: \"x"},
        {"at 1s drop 0 10 24000000", "1:12",
         "CLIENT must be a number from 1 to 4294967294, not '0'"},
    };
    for (auto const& row : rows) {
        auto const whole = errorOf(row.text);
        auto const line = row.text.substr(row.text.rfind('\n') + 1);
        auto const column = std::stoul(row.place.substr(row.place.find(':') + 1));
        EXPECT_EQ(whole, "f:" + row.place + ": " + row.cause + "\n" + line + "\n" +
                             std::string(column - 1, ' ') + "^");
    }
    EXPECT_THROW(Scenario::readFile("/none/such"), ScenarioError);
}

/// Plays a scenario by a clock of the test's.
class Played {
  public:
    explicit Played(std::string_view content)
        : player(
              Scenario("f", content),
              [this](auto const& step, std::uint32_t client) {
                  done += std::to_string(step.line) +
                          (client == 0 ? "" : "#" + std::to_string(client)) + " ";
              },
              now) {}

    std::string pass(std::chrono::milliseconds time) {
        now += time;
        player.pass(now);
        return std::exchange(done, {});
    }
    std::string see(Happening::Kind kind, std::uint32_t client = 1, std::int32_t id = 0,
                    std::uint32_t did = 0) {
        player.notice({kind, client, id, did}, now);
        return std::exchange(done, {});
    }
    std::optional<std::chrono::nanoseconds> left() const {
        auto const due = player.nextDue();
        return due ? std::optional<std::chrono::nanoseconds>(*due - now) : std::nullopt;
    }

  private:
    TimePoint now = TimePoint() + 1h;
    std::string done;
    ScenarioPlayer player;
};

using Kind = Happening::Kind;

TEST(ScenarioPlayer, DoesWhatIsDueInTheOrderOfTheTimes) {
    Played played("at 20ms cut\nat 10ms cut\nat 0ms cut\nevery 15ms cut");
    EXPECT_EQ(played.left(), 0ms);
    EXPECT_EQ(played.pass(0ms), "3 ");
    EXPECT_EQ(played.left(), 10ms);
    EXPECT_EQ(played.pass(9ms), "");
    EXPECT_EQ(played.pass(11ms), "2 4 1 ");
    EXPECT_EQ(played.left(), 15ms);
    EXPECT_EQ(played.pass(14ms), "");
    EXPECT_EQ(played.pass(1ms), "4 ");
}

TEST(ScenarioPlayer, ThenWaitsForTheLineAbove) {
    Played played("on connect 2 cut\nthen 5ms cut\nthen 5ms cut\nevery 100ms cut\nthen 1ms cut");
    EXPECT_EQ(played.pass(10ms), "");
    EXPECT_EQ(played.see(Kind::connect, 1), "");
    EXPECT_EQ(played.see(Kind::connect, 2), "1#2 ");
    EXPECT_EQ(played.pass(5ms), "2#2 ");
    EXPECT_EQ(played.pass(4ms), "");
    EXPECT_EQ(played.pass(1ms), "3#2 ");
    EXPECT_EQ(played.pass(80ms), "4 ");
    EXPECT_EQ(played.pass(1ms), "5 ");
    EXPECT_EQ(played.pass(99ms), "4 ");
    EXPECT_EQ(played.pass(1ms), "5 ");
}

TEST(ScenarioPlayer, TriggersFireOnce) {
    Played played("after 2 sets cut\nafter 3 requests cut\nwhen event 12 cut\n"
                  "when set 10 24000000 cut\non hello 3 cut\non close 3 cut\nafter 1 pings cut");
    EXPECT_EQ(played.left(), std::nullopt);
    EXPECT_EQ(played.see(Kind::set, 1, 10, 1), "");
    EXPECT_EQ(played.see(Kind::ping, 1), "7#1 ");
    EXPECT_EQ(played.see(Kind::set, 2, 10, 0x24000000), "1#2 4#2 ");
    EXPECT_EQ(played.see(Kind::subscribe, 4), "2#4 ");
    EXPECT_EQ(played.see(Kind::event, 5, 12, 7), "3#5 ");
    EXPECT_EQ(played.see(Kind::event, 5, 12, 7), "");
    EXPECT_EQ(played.see(Kind::set, 2, 10, 0x24000000), "");
    EXPECT_EQ(played.see(Kind::hello, 3), "5#3 ");
    EXPECT_EQ(played.see(Kind::close, 3), "6#3 ");
    EXPECT_EQ(played.see(Kind::close, 3), "");
    EXPECT_EQ(played.see(Kind::none, 3), "");
}

class PlayedByAServer : public ServerTest {};

TEST_F(PlayedByAServer, AFaultWorksBeforeTheAnswerThatItIsAbout) {
    start();
    server->play(Scenario("f", "after 3 sets break to 5 6 this\n"
                               "on connect 2 break to 1 0 this\n"
                               "on connect 3 mute on\n"
                               "when event 40 freeze\n"
                               "then 30ms thaw\n"));
    auto const client = panel();
    EXPECT_EQ(client->set(10, program1, 0, word(3)), 0);
    EXPECT_EQ(client->set(10, program1, 0, word(4)), 0);
    EXPECT_EQ(client->set(10, program1, 0, word(5)), 0) << "the fourth message";
    EXPECT_EQ(client->set(10, program1, 0, word(6)), -1);
    EXPECT_TRUE(told("#1 closed reason=\"cut at byte 6 of message 5 to the panel\""));
    EXPECT_EQ(TestClient(server->port()).hello(), "");
    auto const third = panel();
    auto const begun = std::chrono::steady_clock::now();
    EXPECT_EQ(third->event(40, me1), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begun, 30ms);
    EXPECT_TRUE(told("#3 scenario line=5 action=\"thaw\""));
}

TEST_F(PlayedByAServer, WhatCantBeDoneIsOneLine) {
    start();
    server->play(Scenario("f", "at 0ms set 10 24000000 x\nat 0ms garbage random this\n"
                               "at 0ms set 9 09000000 1\nat 0ms break to 1 0 1\n"
                               "at 0ms restart set 10 24000000 x\nat 1ms drop 1 10 24000000\n"
                               "at 2ms event 65 35000000 00"));
    EXPECT_TRUE(told("error reason=", 6));
    auto texts = lines();
    std::erase_if(texts, [](std::string const& text) { return !text.starts_with("error"); });
    EXPECT_EQ(texts,
              (Texts{"error reason=\"line 1: 'x' is no UInt16\"",
                     "error reason=\"line 2: no panel has caused it, so there is no 'this'\"",
                     "error reason=\"line 3: there is no parameter pid=9 did=09000000\"",
                     "error reason=\"line 5: 'x' is no UInt16\"",
                     "error reason=\"line 6: that panel has no such subscription\"",
                     "error reason=\"line 7: refused: event data of the wrong size\""}));
}

TEST_F(PlayedByAServer, EveryActionCanBeDoneInTheMiddleOfAMessage) {
    for (auto const* const action :
         {"disconnect", "restart", "restart 10", "heal", "garbage random", "garbage length this",
          "break to 1000 0 this", "break from 4 0 this", "mute on", "refuse on", "shuffle 1",
          "set 10 24000000 5", "cut", "list 12 1 62000000", "drop this 10 24000000",
          "flood 1000 10", "operate 100", "delay 1 2"}) {
        SCOPED_TRACE(action);
        start();
        server->play(Scenario("f", std::string("when set 10 ") + action));
        auto const other = panel();
        auto const client = panel();
        EXPECT_EQ(client->subscribe(10, program1, 3), 0);
        client->send(cplwire::Set{10, program1, 0, 2, std::string_view("\0\x09", 2)});
        client->send(cplwire::Ping{});
        EXPECT_TRUE(told("#2 scenario line=1"));
        server->heal();
        EXPECT_EQ(server->record().count("error"), 0U);
        EXPECT_TRUE(server->record().count("restarted") == 0 || told("returned"));
        panel("later");
    }
}

TEST_F(PlayedByAServer, TheSampleScenarioRuns) {
    std::string const path = QFD_SOURCE_DIR "/installation/frame/rough-evening.scenario";
    std::ifstream in(path);
    std::string script, text;
    while (std::getline(in, text)) {
        // The same, fifty times as fast.
        for (auto const& [from, to] :
             {std::pair{" 20s ", " 400ms "}, std::pair{" 5s ", " 100ms "},
              std::pair{" 4s ", " 80ms "}, std::pair{" 2s ", " 40ms "}, std::pair{" 1000 ", " 20 "},
              std::pair{" 2000", " 40"}, std::pair{" 0 800", " 0 16"}}) {
            if (auto const at = text.find(from); at != std::string::npos && text[0] != '#') {
                text.replace(at, std::string_view(from).size(), to);
            }
        }
        script += text + "\n";
    }
    ASSERT_EQ(Scenario::readFile(path).steps().size(), Scenario(path, script).steps().size());
    start();
    server->play(Scenario(path, script));
    std::vector<std::pair<std::int32_t, std::uint32_t>> all;
    server->frame().look([&](FrameModel const& model) {
        for (auto const& [key, parameter] : model.allParameters()) {
            all.emplace_back(key.pid, key.did);
        }
    });
    auto const lastLine = std::to_string(Scenario(path, script).steps().back().line);
    bool cutDone = false;
    for (int i = 0; i < 1000 && server->record().count("scenario line=" + lastLine) == 0; ++i) {
        TestClient client(server->port());
        if (!client.isConnected() || client.hello().empty() || client.subscribeBatch(all) != 0) {
            continue;
        }
        while (client.set(10, program1, 0, word(i % 16)) != -1 &&
               server->record().count("scenario line=" + lastLine) == 0) {
            if (server->record().count("\"thaw\"") != 0 && !std::exchange(cutDone, true)) {
                client.event(40, me1);
            }
        }
    }
    EXPECT_TRUE(told("scenario line=" + lastLine));
    EXPECT_EQ(server->record().count("scenario line="), Scenario(path, script).steps().size());
    EXPECT_EQ(server->record().count("error"), 0U);
    EXPECT_TRUE(told("#1 closed reason=\"cut at byte 5 of message 40 to the panel\""));
    EXPECT_TRUE(told("#2 closed reason=\"cut at byte 0 of message 3 to the panel\""));
    EXPECT_EQ(server->record().count("> garbage bytes=64"), 1U);
    EXPECT_EQ(panel()->subscribe(10, program1, 4), 0) << "all is well again";
}

}  // namespace
}  // namespace FrameSim
