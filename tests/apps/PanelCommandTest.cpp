// `qfd panel` as its users run it, around a module that does what the FIDs say.

#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using Words = std::vector<std::string>;

class PanelCommand : public testing::Test, protected ProgramRunner {
  protected:
    /// Around the module, in the test's own directory.
    ProgramRun drive(std::string const& input, Words const& options = {}) const {
        Words arguments = {"panel", "--module", FAKE_MODULE, "--dir", directory.string()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return run(arguments, input);
    }

    /// What every run starts with.
    std::string start(std::string const& configured = "configure 0 []  []") const {
        return "SID CWD = " + std::filesystem::canonical(directory).string() +
               "\nSID CALLS = onLoad;" + configured + ";setStateSink;setFunctionSink;load;\n";
    }
};

TEST_F(PanelCommand, PrintsWhatThePanelHears) {
    auto const result = drive("SHOW A=\"x y\" @611\nBACK N=1 M=2\n");
    EXPECT_EQ(result.out, start() + "SID WIDGET = 611\nSID A = x y\nFID BACK N=1 M=2\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.code, 0);
}

TEST_F(PanelCommand, EveryByteGoesThroughInBothDirections) {
    auto const result = drive("SHOW A=\xb0\222 B=\"\\x92\\xff\"\n");
    EXPECT_EQ(result.out, start() + "SID WIDGET = 0\nSID A = \xb0\222\nSID B = \222\xff\n");
}

TEST_F(PanelCommand, ConfiguresThePanel) {
    auto const result = drive("", {"--index", "3", "--address", "127.0.0.7"});
    EXPECT_EQ(result.out, start("configure 3 [] 127.0.0.7 []"));
}

TEST_F(PanelCommand, JsonGivesAnObjectALine) {
    auto const result =
        drive("SHOW A=\"\\x92\\\"\"\nBACK N=1 N=2\nTHROW TEXT=\"\\xb0\"\n", {"--json"});
    EXPECT_THAT(result.out,
                HasSubstr("{\"kind\":\"SID\",\"name\":\"WIDGET\",\"value\":\"0\"}\n"
                          "{\"kind\":\"SID\",\"name\":\"A\",\"value\":\"\\u0092\\\"\"}\n"
                          "{\"kind\":\"FID\",\"name\":\"BACK\",\"parameters\":[{\"name\":\"N\","
                          "\"value\":\"1\"},{\"name\":\"N\",\"value\":\"2\"}]}\n"
                          "{\"kind\":\"!\",\"text\":\"\\u00b0\"}\n"));
    EXPECT_EQ(result.code, 1);
}

TEST_F(PanelCommand, AScriptRunsFromAFile) {
    auto const script =
        write("script", "# comment\nSHOW A=1\n:wait SID A 1\n:state A\n:quit\nSHOW A=2\n");
    auto const result = drive("SHOW A=3\n", {"--script", script});
    EXPECT_EQ(result.out, start() + "SID WIDGET = 0\nSID A = 1\nSID A = 1\n");
    EXPECT_EQ(result.code, 0);
}

TEST_F(PanelCommand, AWaitThatRunsOutEndsTheRunWithOne) {
    auto const result = drive("SHOW A=1\n:wait SID CWD\n:wait SID A 2 within 0\nSHOW A=2\n");
    EXPECT_EQ(result.out, start() + "SID WIDGET = 0\nSID A = 1\n");
    EXPECT_EQ(result.err, "qfd panel: waited 0 ms for SID A = 2: it is 1\n"
                          "qfd panel: since the last wait came nothing\n");
    EXPECT_EQ(result.code, 1);
}

TEST_F(PanelCommand, AnExceptionIsPrintedAndTheRunGoesOn) {
    auto const result = drive("THROW TEXT=\"no way\"\nSHOW A=1\n");
    EXPECT_EQ(result.out, start() + "! no way\nSID WIDGET = 0\nSID A = 1\n");
    EXPECT_EQ(result.code, 1);
}

TEST_F(PanelCommand, AFaultInAScriptIsFoundBeforeAnythingRuns) {
    auto const script = write("script", "SHOW A=1\n\nSHOW A\n");
    auto const result = drive("", {"--script", script});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qfd panel: " + script + ":3:6: expected NAME=VALUE\n");
    EXPECT_EQ(result.code, 2);
}

TEST_F(PanelCommand, AFaultOnStandardInputEndsTheRunThere) {
    auto const result = drive("SHOW A=1\n:wiat\nSHOW A=2\n");
    EXPECT_EQ(result.out, start() + "SID WIDGET = 0\nSID A = 1\n");
    EXPECT_EQ(result.err, "qfd panel: standard input:2:1: unknown command ':wiat'\n");
    EXPECT_EQ(result.code, 2);
}

TEST_F(PanelCommand, StopsTheDriverAtTheEnd) {
    auto const log = (directory / "calls").string();
    drive("LOG.TO FILE=" + log + "\n");
    EXPECT_EQ(read(log), "unload;onUnload;delete;");
}

TEST_F(PanelCommand, WhatCannotBeUsedIsNamed) {
    struct Row {
        Words arguments;
        std::string error;
    };
    auto const here = directory.string();
    for (auto const& [arguments, error] : std::initializer_list<Row>{
             {{"--module", "/nowhere/x.so", "--dir", here},
              "qfd panel: cannot load the module '/nowhere/x.so': "},
             {{"--module", QFD_PROGRAM, "--dir", here},
              "qfd panel: cannot load the module '" QFD_PROGRAM "': "},
             {{"--module", FAKE_MODULE, "--dir", "/nowhere"},
              "qfd panel: cannot go to the installation '/nowhere': No such file or directory\n"},
             {{"--module", FAKE_MODULE, "--dir", here, "--script", "/nowhere"},
              "qfd panel: cannot read '/nowhere': No such file or directory\n"},
             {{"--module", FAKE_MODULE}, "--dir is required\n"},
             {{"--dir", here, "--log", "loud"}, "--log: "},
             {{"--dir", here, "--index", "-1"}, "--index: "}}) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        Words words = {"panel"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        auto const result = run(words);
        EXPECT_THAT(result.err, StartsWith(error));
        EXPECT_EQ(result.code, 2);
    }
}

}  // namespace
