// The commands for panels' state files as their users run them.

#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

class StateFileCommands : public testing::Test {
  protected:
    void expect(Words const& arguments, std::string const& out, std::string const& err, int code,
                std::string const& input = "") const {
        auto const run = runner.run(arguments, input);
        EXPECT_EQ(run.out, out);
        EXPECT_EQ(run.err, err);
        EXPECT_EQ(run.code, code);
    }

    ProgramRunner const runner;
};

TEST_F(StateFileCommands, DsfPrintsWhatWouldBePlayedInOrder) {
    auto const file = runner.write("good.dsf", "IGNORED VAL=1\n::SIDS\nA[1:2-1,b,a] VAL=[1]\n"
                                               "C VAL=\x92 x\n::FIDS\nF (1 A)\n");
    expect({"dsf", file}, "SID Ab = b\nSID Aa = a\nSID C = \x92 x\n", "", 0);
    expect({"dsf", "--json", file},
           "{\"sid\":\"Ab\",\"value\":\"b\"}\n{\"sid\":\"Aa\",\"value\":\"a\"}\n"
           "{\"sid\":\"C\",\"value\":\"\\u0092 x\"}\n",
           "", 0);
}

TEST_F(StateFileCommands, DsfTellsEachMistakeWithFileAndLine) {
    auto const file =
        runner.write("bad.dsf", "::SIDS\nX\nA VAL=1\n::RIDS\n1 R STEP=1\n::FIDS\nF (A)\n");
    expect({"dsf", file}, "SID A = 1\n",
           "qfd dsf: " + file + ":2: error: Missing VAL = <value> tag in SID -> X\n" +
               "qfd dsf: " + file + ":5: error: unknown option 'STEP'\n" + "qfd dsf: " + file +
               ":7: error: Expecting an index in FIDs return element -> A\n",
           1);
    expect({"dsf", "--json", file},
           "{\"file\":\"" + file +
               "\",\"line\":2,\"severity\":\"error\",\"cause\":\"Missing VAL = <value> tag in SID "
               "-> X\"}\n" +
               "{\"file\":\"" + file +
               "\",\"line\":5,\"severity\":\"error\",\"cause\":\"unknown option 'STEP'\"}\n" +
               "{\"file\":\"" + file +
               "\",\"line\":7,\"severity\":\"error\",\"cause\":\"Expecting an index in FIDs return "
               "element -> A\"}\n{\"sid\":\"A\",\"value\":\"1\"}\n",
           "", 1);
}

TEST_F(StateFileCommands, DsfWarnsOfWhatTheDriverDoesNotLookAt) {
    auto const cut = runner.write("cut.dsf", "::SIDS\nA VAL=1\nB VAL=2");
    expect({"dsf", cut}, "SID A = 1\n",
           "qfd dsf: " + cut + ":3: warning: the last line has no line feed and is lost\n", 0);
    auto const ended = runner.write("ended.dsf", "::SIDS\nA VAL=1\n\xFF\nB VAL=2\n");
    expect({"dsf", ended}, "SID A = 1\n",
           "qfd dsf: " + ended + ":3: warning: the byte 0xFF ends the file here\n", 0);
}

TEST_F(StateFileCommands, DsfFindsALineThatEndsTheDriversStart) {
    auto const file = runner.write("end.dsf", "::SIDS\nA VAL=1\nVAL VAL=[1:x][1][1][1]\n");
    expect({"dsf", file}, "",
           "qfd dsf: " + file +
               ":3: error: nothing is played, as the driver ends here: invalid string position\n",
           1);
}

TEST_F(StateFileCommands, DsfWithoutItsFileIsBadUsage) {
    expect({"dsf", "/nowhere/x.dsf"}, "",
           "qfd dsf: cannot read '/nowhere/x.dsf': No such file or directory\n", 2);
    EXPECT_EQ(runner.run({"dsf"}).code, 2);
}

TEST_F(StateFileCommands, TheShippedFilePlaysEveryStateWithoutAMistake) {
    auto const run = runner.run({"dsf", INSTALLATION "/config/QISState.dsf"});
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.out.find("SID FRAME.CONNECTED = OFF\n"), std::string::npos);
    EXPECT_NE(run.out.find("SID ME2.KEY4.CUT.SRC16 = OFF\n"), std::string::npos);
    EXPECT_EQ(run.out.find_first_of("[]{}<>"), std::string::npos);
}

TEST_F(StateFileCommands, ExpandLinePrintsEachLineWithItsChoices) {
    expect({"expand-line", "A[1:x,y]B[1]", "plain"}, "AxBx\t[1:x]\nAyBy\t[1:y]\nplain\n", "", 0);
    expect({"expand-line"},
           "\x92"
           "1\t[1:1]\n\nX<7>\n",
           "", 0, "\x92[1:1-1]\n\nX[7]");
    expect({"expand-line", "[1:x][1][1][1]"}, "!invalid string position\n", "", 0);
    expect({"expand-line", "--json", "A[1:x]", "[1:x][1][1][1]"},
           "{\"text\":\"A[1:x]\",\"results\":[{\"text\":\"Ax\",\"choices\":[{\"index\":1,"
           "\"value\":\"x\"}]}]}\n"
           "{\"text\":\"[1:x][1][1][1]\",\"error\":\"invalid string position\"}\n",
           "", 0);
}

TEST_F(StateFileCommands, AnArgumentInBracketsIsATextLikeAnyOther) {
    expect({"expand", "[a,b]", "[]", "[\x01", "[c]\x01", "[c]\x01\x01"},
           "[a,b]\n[]\n[\x01\n[c]\x01\n[c]\x01\x01\n", "", 0);
}

// Every row of the page's table, through the program.
TEST_F(StateFileCommands, ThePagesExamplesAreTrue) {
    std::ifstream page(DOCS "/formats/state-file.md");
    std::regex const row(R"(\| `([^`]*)` \| (.*) \|)");
    std::regex const quoted("`([^`]*)`");
    std::smatch parts;
    int rows = 0;
    for (std::string line; std::getline(page, line);) {
        if (line == "## What is told")
            break;
        if (!std::regex_match(line, parts, row))
            continue;
        std::string expected;
        auto const texts = parts.str(2);
        for (std::sregex_iterator at(texts.begin(), texts.end(), quoted), end; at != end; ++at)
            expected += at->str(1) + "\n";
        auto const out = runner.run({"expand-line", parts.str(1)}).out;
        EXPECT_EQ(std::regex_replace(out, std::regex("\t[^\n]*"), ""), expected) << line;
        ++rows;
    }
    EXPECT_EQ(rows, 7);
}

}  // namespace
