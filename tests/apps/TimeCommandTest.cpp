// `qfd frame` and `qfd time` as their users run them, one against the other.

#include "ProgramRun.h"
#include "tests/support/LoopbackAddress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <netinet/in.h>
#include <spawn.h>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using Words = std::vector<std::string>;

/// A `qfd frame` that runs beside the test. What it waits for comes, or the test's own time
/// limit ends it.
class FrameProcess {
  public:
    explicit FrameProcess(Words const& options) {
        Words words = {QFD_PROGRAM, "frame", "--port", "0"};
        words.insert(words.end(), options.begin(), options.end());
        std::vector<char*> arguments;
        for (auto& word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        int in[2], out[2];
        if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0) {
            return;
        }
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
        ::posix_spawn(&pid, QFD_PROGRAM, &actions, nullptr, arguments.data(), environ);
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(in[0]);
        ::close(out[1]);
        input = in[1];
        output = ::fdopen(out[0], "r");
    }
    ~FrameProcess() { end(); }
    FrameProcess(FrameProcess const&) = delete;
    FrameProcess& operator=(FrameProcess const&) = delete;

    /// The next line that holds this; empty if the output ends first.
    std::string await(std::string const& part) {
        char* line = nullptr;
        std::size_t size = 0;
        std::string found;
        for (ssize_t length = 0; found.empty() && (length = ::getline(&line, &size, output)) > 0;) {
            std::string const text(line, static_cast<std::size_t>(length - 1));
            if (text.find(part) != std::string::npos) {
                found = text;
            }
        }
        ::free(line);
        return found;
    }

    /// The port of its field time.
    std::string port() {
        auto const line = await("time-listening");
        auto const begin = line.find("port=") + 5;
        return line.substr(begin, line.find(' ', begin) - begin);
    }

    void ask(std::string const& line) {
        auto const text = line + "\n";
        EXPECT_EQ(::write(input, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    /// Types a line, and waits until it is done.
    void type(std::string const& line) {
        ask(line);
        EXPECT_EQ(await("ok command"), "ok command=time");
    }

    /// The exit code.
    int end() {
        if (pid < 0) {
            return -1;
        }
        ::kill(pid, SIGTERM);
        int status = 0;
        ::waitpid(pid, &status, 0);
        pid = -1;
        ::close(input);
        ::fclose(output);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t pid = -1;
    int input = -1;
    FILE* output = nullptr;
};

class TimeCommand : public testing::Test, protected ProgramRunner {
  protected:
    /// Until so many fields have been measured; the limit in seconds is for a slow machine.
    ProgramRun measure(std::string const& port, Words const& options,
                       std::string const& fields = "3") const {
        Words words = {"time", "--port", port, "--seconds", "100", "--fields", fields};
        words.insert(words.end(), options.begin(), options.end());
        return run(words);
    }

    static std::string lastLine(std::string const& text) {
        auto const end = text.find_last_not_of('\n');
        return text.substr(text.rfind('\n', end) + 1, end - text.rfind('\n', end));
    }
};

/// The number behind a name in a line of JSON; -1 if there is none.
long number(std::string const& line, std::string const& name) {
    auto const at = line.find("\"" + name + "\":");
    return at == std::string::npos ? -1 : std::stol(line.substr(at + name.size() + 3));
}

TEST_F(TimeCommand, MeasuresTheFieldsOfAFrameToTheNanosecond) {
    for (auto const& [rate, period] : {std::pair("50", "20000000.0"), {"59.94", "16683333.0"}}) {
        SCOPED_TRACE(rate);
        FrameProcess frame({"--time-port", "0", "--field-rate", rate});
        auto const result = measure(frame.port(), {"--json"});
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(result.err, "");
        auto const summary = lastLine(result.out);
        EXPECT_THAT(summary, StartsWith("{\"what\":\"summary\",\"seconds\":"));
        EXPECT_THAT(summary,
                    HasSubstr(std::string("\"periodNs\":{\"count\":3,\"mean\":") + period +
                              ",\"min\":" + period + ",\"max\":" + period + ",\"deviation\":0.0}"));
    }
}

TEST_F(TimeCommand, PrintsATableAndASummary) {
    FrameProcess frame({"--time-port", "0", "--field-rate", "50"});
    auto const result = measure(frame.port(), {});
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.out,
                AllOf(StartsWith("  time  asked  lost strays  round trip"),
                      ContainsRegex("period ns +20000000 +20000000 +20000000 +0.0 +3\n"),
                      ContainsRegex("asked [0-9]+, lost [0-9]+, strays [0-9]+\n"),
                      ContainsRegex("the frame's clock runs [+-][0-9.]+ ppm"),
                      EndsWith("50.000 fields a second; panels take that\n")));
}

TEST_F(TimeCommand, SaysWhenPanelsTakeNoSuchFields) {
    struct Row {
        char const* period;
        char const* verdict;
    };
    FrameProcess frame({"--time-port", "0"});
    auto const port = frame.port();
    for (auto const& [period, verdict] :
         {Row{"15000000", "66.667 fields a second; panels take only fields between 15 and 25 ms\n"},
          Row{"15000001", "66.667 fields a second; panels take that\n"},
          Row{"24999999", "40.000 fields a second; panels take that\n"},
          Row{"25000000", "40.000 fields a second; panels take only fields between 15 and 25 ms\n"},
          Row{"33366667",
              "29.970 fields a second; panels take only fields between 15 and 25 ms\n"}}) {
        SCOPED_TRACE(period);
        frame.type(std::string("time period ") + period);
        EXPECT_THAT(measure(port, {}, "1").out, EndsWith(verdict));
    }
}

TEST_F(TimeCommand, CountsWhatIsLostAndWhatIsStray) {
    FrameProcess frame({"--time-port", "0", "--field-rate", "50", "--time-lines", "all"});
    auto const port = frame.port();
    frame.type("time next lost 2");
    frame.type("time next doubled 3");
    frame.type("time next cut");
    auto const result = measure(port, {"--json"}, "5");
    EXPECT_EQ(result.code, 0);
    auto const summary = lastLine(result.out);
    EXPECT_GE(number(summary, "lost"), 3);
    EXPECT_GE(number(summary, "strays"), 4);
    EXPECT_THAT(frame.await("reason=\"lost\""), StartsWith("time-silence to=127.0.0.1:"));
    EXPECT_THAT(frame.await("faults=doubled"), StartsWith("time-reply to=127.0.0.1:"));
    EXPECT_THAT(frame.await("faults=cut"), ContainsRegex("bytes=[0-9]+ faults=cut$"));
}

TEST_F(TimeCommand, NoAnswerEndsWithOne) {
    FrameProcess frame({"--time-port", "0"});
    auto const port = frame.port();
    frame.type("time silent on");
    auto const picture = (directory / "time.svg").string();
    auto const result = run({"time", "--port", port, "--seconds", "0.2", "--plot", picture});
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.err,
                ContainsRegex("^qfd time: no answer from 127.0.0.1:" + port + " in [0-9.]+ s\n$"));
}

TEST_F(TimeCommand, DrawsAPicture) {
    FrameProcess frame({"--time-port", "0", "--field-rate", "50"});
    auto const port = frame.port();
    frame.type("time next lost");
    auto const picture = (directory / "time.svg").string();
    auto const result = measure(port, {"--plot", picture});
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(read(picture),
                AllOf(StartsWith("<svg xmlns=\"http://www.w3.org/2000/svg\" "),
                      HasSubstr(">Field time of 127.0.0.1:" + port + "</text>"),
                      HasSubstr(">Round trip, µs</text>"), HasSubstr(">Field period, ns</text>"),
                      HasSubstr(">20000000</text>"), HasSubstr("stroke=\"#d01010\""),
                      EndsWith("</svg>\n")));
}

TEST_F(TimeCommand, WhatCannotBeUsedIsNamed) {
    struct Row {
        Words arguments;
        std::string error;
    };
    for (auto const& [arguments, error] : std::initializer_list<Row>{
             {{"--frame", "no address"}, "qfd time: cannot reach no address:1506: "},
             {{"--frame", ""}, "qfd time: "},
             {{"--port", "0"}, "--port: "},
             {{"--port", "70000"}, "--port: "},
             {{"--seconds", "0"}, "--seconds: "},
             {{"--seconds", "long"}, "--seconds: "},
             {{"--fields", "-1"}, "--fields: "},
             {{"--plot", "/nowhere/time.svg"},
              "qfd time: cannot write '/nowhere/time.svg': No such file or directory\n"}}) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        Words words = {"time", "--seconds", "0.1"};
        if (arguments[0] == "--seconds") {
            words.resize(1);
        }
        words.insert(words.end(), arguments.begin(), arguments.end());
        auto const result = run(words);
        EXPECT_THAT(result.err, StartsWith(error));
        EXPECT_EQ(result.code, 2);
    }
}

TEST_F(TimeCommand, TheFramesOptionsAreChecked) {
    for (auto const& [option, value] : {std::pair("--field-rate", "fast"),
                                        {"--field-rate", "0"},
                                        {"--drift", "x"},
                                        {"--drift", "100001"},
                                        {"--time-lines", "some"},
                                        {"--time-port", "-1"},
                                        {"--time-seed", "x"},
                                        {"--time-seed", "-1"}}) {
        SCOPED_TRACE(std::string(option) + " " + value);
        auto const result = run({"frame", "--port", "0", option, value});
        EXPECT_THAT(result.err, StartsWith(std::string(option) + ": "));
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.code, 2);
    }
}

/// Holds UDP port 1506 of an address.
class HeldPort {
  public:
    explicit HeldPort(std::string const& address) {
        sockaddr_in end{};
        end.sin_family = AF_INET;
        end.sin_port = htons(1506);
        ::inet_pton(AF_INET, address.c_str(), &end.sin_addr);
        held = ::bind(socket, reinterpret_cast<sockaddr*>(&end), sizeof end) == 0;
    }
    ~HeldPort() { ::close(socket); }
    HeldPort(HeldPort const&) = delete;
    HeldPort& operator=(HeldPort const&) = delete;

    bool held = false;

  private:
    int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

TEST_F(TimeCommand, AFrameHasFieldTimeOnItsOwnPortUnlessThatIsTaken) {
    FrameDriver::Testing::LoopbackAddress const address;
    {
        FrameProcess frame({"--bind", address.text()});
        EXPECT_EQ(frame.await("time-"),
                  "time-listening address=" + address.text() + " port=1506 period=16683333");
        EXPECT_EQ(frame.end(), 0);
    }
    HeldPort const hold(address.text());
    ASSERT_TRUE(hold.held);
    FrameProcess frame({"--bind", address.text()});
    EXPECT_EQ(frame.await("time-"), "time-absent reason=\"cannot listen on " + address.text() +
                                        ":1506: Address already in use\"");
    EXPECT_EQ(frame.end(), 0);
    auto const result =
        run({"frame", "--bind", address.text(), "--port", "0", "--time-port", "1506"});
    EXPECT_EQ(result.err,
              "qfd frame: cannot listen on " + address.text() + ":1506: Address already in use\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.code, 2);
}

TEST_F(TimeCommand, ARunningFrameTakesCommandsAndTellsAsJson) {
    FrameProcess frame({"--time-port", "0", "--json", "--drift", "12.5"});
    auto const line = frame.await("time-listening");
    EXPECT_THAT(line,
                StartsWith("{\"what\":\"time-listening\",\"address\":\"127.0.0.1\",\"port\":"));
    frame.ask("time period 17000000");
    EXPECT_EQ(frame.await("command"), "{\"what\":\"ok\",\"command\":\"time\"}");
    frame.ask("time period");
    EXPECT_EQ(frame.await("error"),
              "{\"what\":\"error\",\"reason\":\"time: period: NS is missing\"}");
    frame.ask("time show");
    EXPECT_THAT(frame.await("time-clock"),
                StartsWith("{\"what\":\"time-clock\",\"present\":true,\"silent\":false,"
                           "\"period\":17000000,\"drift\":12.5,"));
}

TEST_F(TimeCommand, AFrameWithoutFieldTimeSaysSo) {
    FrameProcess frame({"--no-time"});
    frame.ask("time show");
    EXPECT_EQ(frame.await("error"), "error reason=\"time: this frame has no field time\"");
    EXPECT_EQ(frame.end(), 0);
}

TEST_F(TimeCommand, AScenarioWorksOnTheFieldTimeToo) {
    auto const script = write("script", "at 0ms time period 17000000\nthen 0ms time silent on\n"
                                        "then 0ms time show\n");
    FrameProcess frame({"--time-port", "0", "--scenario", script});
    EXPECT_EQ(frame.await("silent"), "scenario line=2 action=\"time silent on\"");
    EXPECT_THAT(frame.await("time-clock"),
                StartsWith("time-clock present=true silent=true period=17000000 "));
}

TEST_F(TimeCommand, AScenariosFieldTimeIsCheckedBeforeAnythingRuns) {
    auto const script = write("script", "at 0ms freeze\n\nat 5ms time rate fast\n");
    auto const result = run({"frame", "--port", "0", "--scenario", script});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qfd frame: " + script +
                              ":3: time: rate: HZ must be a number from 1 to 1000, not 'fast'\n");
    EXPECT_EQ(result.code, 2);
}

}  // namespace
