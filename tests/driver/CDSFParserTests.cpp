#include "DriverFixture.h"
#include "driver/CDSFParser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace FrameDriver::Testing {
namespace {

/// What a file gives, each record on one line, and what the parser prints.
struct Outcome {
    bool opened = false;
    Lines functions;
    Lines states;
    Lines assignments;
    std::string printed;
};

std::string print(DsfFunction const& function) {
    std::string text = function.name;
    for (auto const& group : function.groups)
        text += " {" + std::to_string(group.index) + "=" + group.values.at(0) + "}";
    for (auto const& [name, value] : function.parameters)
        text += " " + name + "=" + value;
    for (auto const& one : function.returns)
        text +=
            " (" + std::to_string(one.index) + " " + one.stateId + (one.increment ? " INC)" : ")");
    return text;
}

std::string print(DsfState const& state) {
    return std::to_string(state.index) + " " + state.stateId +
           (state.hasMinimum ? " min=" + std::to_string(state.minimum) : "") +
           (state.hasMaximum ? " max=" + std::to_string(state.maximum) : "");
}

class StateFiles : public testing::Test {
  protected:
    Outcome parse(std::string const& bytes, std::int32_t baseIndex = 0) {
        directory.write("panel.dsf", bytes);
        return load("panel.dsf", baseIndex);
    }

    static Outcome load(std::string const& path, std::int32_t baseIndex = 0) {
        DsfFunctions functions;
        DsfStates states;
        DsfAssignments assignments;
        CDSFParser parser;
        Outcome outcome;
        testing::internal::CaptureStdout();
        outcome.opened = parser.load(path, functions, states, assignments, baseIndex);
        outcome.printed = testing::internal::GetCapturedStdout();
        for (auto const& function : functions)
            outcome.functions.push_back(print(function));
        for (auto const& state : states)
            outcome.states.push_back(print(state));
        for (auto const& [name, value] : assignments)
            outcome.assignments.push_back(name + " = " + value);
        return outcome;
    }

    /// The lines of the SID section alone, all of them good.
    Lines assignmentsOf(std::string const& lines) {
        auto const outcome = parse("::SIDS\n" + lines);
        EXPECT_EQ(outcome.printed, "Loading \"panel.dsf\"...OK\n");
        return outcome.assignments;
    }

    WorkingDirectory directory;
};

TEST_F(StateFiles, AFileWithoutASectionPlaysNothing) {
    auto const outcome = parse("SID.X VAL=1\nnot even a line\n");
    EXPECT_TRUE(outcome.opened);
    EXPECT_EQ(outcome.assignments, Lines{});
    EXPECT_EQ(outcome.printed, "Loading \"panel.dsf\"...OK\n");
    EXPECT_EQ(parse("").printed, "Loading \"panel.dsf\"...OK\n");
}

TEST_F(StateFiles, AMissingFileIsToldAndGivesFalse) {
    auto const outcome = load("nowhere/x.dsf");
    EXPECT_FALSE(outcome.opened);
    EXPECT_EQ(outcome.printed,
              "Loading \"nowhere/x.dsf\"...FAILED (can't open file nowhere/x.dsf)\n");
}

TEST_F(StateFiles, CommentsAreTakenOff) {
    EXPECT_EQ(assignmentsOf("// comment\nSID.X VAL=1 // note\n  // indented\nA VAL=http://x\n"),
              (Lines{"SID.X = 1", "A = http:"}));
}

TEST_F(StateFiles, AGroupStandsForManyLines) {
    EXPECT_EQ(assignmentsOf("A[1:1-3].B VAL=[1]\n"), (Lines{"A1.B = 1", "A2.B = 2", "A3.B = 3"}));
    EXPECT_EQ(assignmentsOf("A[1:1-2].B[2:x,y] VAL=0\n"),
              (Lines{"A1.Bx = 0", "A1.By = 0", "A2.Bx = 0", "A2.By = 0"}));
}

TEST_F(StateFiles, AGroupOfABackwardRangeStaysAsAMark) {
    EXPECT_EQ(assignmentsOf("A[1:5-3] VAL=0\n"), Lines{"A<1> = 0"});
}

TEST_F(StateFiles, ALastLineWithoutALineFeedIsLost) {
    EXPECT_EQ(assignmentsOf("A VAL=1\nB VAL=2"), Lines{"A = 1"});
}

TEST_F(StateFiles, TheByte0xFFEndsTheFile) {
    EXPECT_EQ(assignmentsOf("A VAL=1\nB VAL=\xFF\nC VAL=3\n"), Lines{"A = 1"});
}

TEST_F(StateFiles, BlanksAndCarriageReturnsGoAndOtherBytesStay) {
    EXPECT_EQ(assignmentsOf("\t A VAL=1 \t\r\nB V\rAL=2\r\n\r\nC VAL=\x92\xE9\x01\n"),
              (Lines{"A = 1", "B = 2", "C = \x92\xE9\x01"}));
}

TEST_F(StateFiles, AValueMayHoldBlanksAndBlanksMayStandAroundTheEqualsSign) {
    EXPECT_EQ(assignmentsOf("X VAL=a b c\nX  VAL = 5\nX\tVAL\t=\t6\nX VAL=\nX VALUE=7\nY VAL==\n"),
              (Lines{"X = a b c", "X = 5", "X = 6", "X = ", "X = 7", "Y = ="}));
}

TEST_F(StateFiles, ATagBehindABlankIsFoundAheadOfOneBehindATabAndItsEqualsSignIsTheNext) {
    EXPECT_EQ(assignmentsOf("A\tVAL=1 VAL=2\nA=B VAL=3\nX VAL a=b=c\n[1:,Y] VAL=4\n"),
              (Lines{"A\tVAL=1 = 2", "A=B = 3", "X = b=c", " = 4", "Y = 4"}));
}

TEST_F(StateFiles, HeadersAreComparedWhole) {
    EXPECT_EQ(assignmentsOf("::FIDS2 VAL=1\n ::RIDS // x\n1 R\n::SIDS\n::sids VAL=2\n"
                            "END::X VAL=3\n"),
              (Lines{"::FIDS2 = 1", "::sids = 2", "END::X = 3"}));
}

TEST_F(StateFiles, SectionsComeInAnyOrderAndAnEndEndsNothing) {
    auto const outcome = parse("::SIDS\nA VAL=1\nEND::SIDS\nB VAL=2\n::RIDS\n1 R\nEND::RIDS\n"
                               "::FIDS\nF (\nEND::FIDS\nG (\n::SIDS\nC VAL=3\n");
    EXPECT_EQ(outcome.assignments, (Lines{"A = 1", "B = 2", "C = 3"}));
    EXPECT_EQ(outcome.states, Lines{"1 R"});
    EXPECT_EQ(outcome.functions, (Lines{"F", "G"}));
    EXPECT_EQ(outcome.printed, "Loading \"panel.dsf\"...OK\n");
}

TEST_F(StateFiles, ABadSIDLineIsDroppedToldAndCounted) {
    auto const outcome = parse("::SIDS\nVAL=1\n\nX VAL 1\nX=1\nA[1:x,y]VAL=1\nGOOD VAL=1\n");
    EXPECT_EQ(outcome.assignments, Lines{"GOOD = 1"});
    EXPECT_EQ(outcome.printed, "Loading \"panel.dsf\"..."
                               "Syntax error (2): Missing VAL = <value> tag in SID -> VAL=1\n"
                               "Syntax error (4): Expecting '=' after VAL tag in SID -> X VAL 1\n"
                               "Syntax error (5): Missing VAL = <value> tag in SID -> X=1\n"
                               "Syntax error (6): Missing VAL = <value> tag in SID -> AxVAL=1\n"
                               "Syntax error (6): Missing VAL = <value> tag in SID -> AyVAL=1\n"
                               "completed with 5 parsing error(s).\n");
}

TEST_F(StateFiles, AFIDLineHasParametersAndReturns) {
    auto const outcome = parse("::FIDS\n"
                               "F(x (\n"
                               "CUT ( 1 ME1.CUT )\n"
                               "KEY  ME = 1 (2 A INC,3 B)\n"
                               "KEY N=[1:1-2] M=x(4 K[1])\n"
                               "KEY A=1 B=2\t( 5 S ,\n"
                               "NONE ( )\n",
                               100);
    EXPECT_EQ(outcome.printed, "Loading \"panel.dsf\"..."
                               "Syntax error (4): Expecting '=' after parameter name in FID -> "
                               "KEY  ME = 1 (2 A INC,3 B)\n"
                               "Syntax error (7): Expecting an index in FIDs return element -> \n"
                               "completed with 2 parsing error(s).\n");
    EXPECT_EQ(outcome.functions, (Lines{"F(x", "CUT (101 ME1.CUT)", "KEY {1=1} N=1 M=x (104 K1)",
                                        "KEY {1=2} N=2 M=x (104 K2)", "KEY A=1 B=2 (105 S)"}));
}

TEST_F(StateFiles, EachMistakeOfAFIDLineHasItsWords) {
    struct Row {
        std::string line;
        std::string words;
    };
    for (auto const& [line, words] :
         std::vector<Row>{{"NOBLANK", "Missing ( <rid idx> <value>, ... ) tag in FID -> NOBLANK"},
                          {"F A", "Expecting '=' after parameter name in FID -> F A"},
                          {"F A=1", "Expecting '(' after parameter value in FID -> F A=1"},
                          {"F A=1 B", "Expecting '=' after parameter name in FID -> F A=1 B"},
                          {"F (1 A", "Expecting ')' in FID -> F (1 A"},
                          {"F (1 A, 2 B", "Expecting ')' in FID -> F (1 A, 2 B"},
                          {"F (A)", "Expecting an index in FIDs return element -> A"},
                          {"F (1 A,)", "Expecting an index in FIDs return element -> "},
                          {"F (1 A DEC)", "unknown option 'DEC'"},
                          {"F (1 A INC INC)", "unknown option 'INC INC'"},
                          {"F (1  A)", "unknown option 'A'"}}) {
        auto const outcome = parse("::FIDS\n" + line + "\n");
        EXPECT_EQ(outcome.printed, "Loading \"panel.dsf\"...Syntax error (2): " + words +
                                       "\ncompleted with 1 parsing error(s).\n");
        EXPECT_EQ(outcome.functions, Lines{}) << line;
    }
}

TEST_F(StateFiles, ARIDLineHasLimits) {
    auto const outcome = parse("::RIDS\n"
                               "1 A\n"
                               "2\t B MIN=1 MAX=-5\n"
                               "x C MIN=y\n"
                               "3 D[1:1-2]\n"
                               "4 E MAX=16777217\n",
                               10);
    EXPECT_EQ(outcome.states, (Lines{"11 A", "12 B min=1.000000 max=-5.000000", "10 C min=0.000000",
                                     "13 D{1}", "14 E max=16777216.000000"}));
    EXPECT_EQ(outcome.printed, "Loading \"panel.dsf\"...OK\n");
}

TEST_F(StateFiles, ABadOptionOfARIDLineIsToldAndTheLineKept) {
    auto const outcome = parse("::RIDS\n1 A STEP=2 MAX=3\n2 B MIN\n3 C MIN= 4 5\n");
    EXPECT_EQ(outcome.states, (Lines{"1 A max=3.000000", "2 B", "3 C min=0.000000"}));
    EXPECT_EQ(outcome.printed,
              "Loading \"panel.dsf\"..."
              "Syntax error (2): unknown option 'STEP'\n"
              "Syntax error (3): Expecting '=' after option name in RID -> 2 B MIN\n"
              "Syntax error (4): Expecting '=' after option name in RID -> 3 C MIN= 4 5\n"
              "OK\n");
}

TEST_F(StateFiles, ARIDLineOfOneWordIsDropped) {
    auto const outcome = parse("::RIDS\nALONE\n");
    EXPECT_EQ(outcome.states, Lines{});
    EXPECT_EQ(outcome.printed, "Loading \"panel.dsf\"..."
                               "Syntax error (2): RID format <idx> <state ID> not found (ALONE)\n"
                               "completed with 1 parsing error(s).\n");
}

TEST_F(StateFiles, AMessageShowsALineUpToItsFirstNul) {
    auto const outcome = parse(std::string("::SIDS\nBAD\0LINE\nA VAL=1\n", 24));
    EXPECT_EQ(outcome.printed, "Loading \"panel.dsf\"..."
                               "Syntax error (2): Missing VAL = <value> tag in SID -> BAD\n"
                               "completed with 1 parsing error(s).\n");
    EXPECT_EQ(outcome.assignments, Lines{"A = 1"});
}

TEST_F(StateFiles, AParserMayLoadAgain) {
    directory.write("bad.dsf", "::SIDS\nX\n");
    directory.write("good.dsf", "A VAL=1\n::SIDS\nB VAL=2\n");
    DsfFunctions functions;
    DsfStates states;
    DsfAssignments assignments;
    CDSFParser parser;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(parser.load("bad.dsf", functions, states, assignments, 0));
    EXPECT_TRUE(parser.load("good.dsf", functions, states, assignments, 0));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Loading \"bad.dsf\"...Syntax error (2): Missing VAL = <value> tag in SID -> X\n"
              "completed with 1 parsing error(s).\nLoading \"good.dsf\"...OK\n");
    ASSERT_EQ(assignments.size(), 1U);
    EXPECT_EQ(assignments.front().name, "B");
}

// The play, by the driver.

class PanelReset : public DriverFixture {};

TEST_F(PanelReset, PlaysTheStatesOfTheFileInItsOrder) {
    directory.write("config/QISState.dsf",
                    "::FIDS\nCUT ( 1 X )\n::SIDS\nA[1:1-2] VAL=[1]\nBAD\nB VAL=x y\n");
    load();
    EXPECT_EQ(sinks.take(), (Lines{"SID A1 = 1", "SID A2 = 2", "SID B = x y", "SID LOADED = "}));
    EXPECT_TRUE(log.has("info: Resetting the panel to a clean state."));
}

TEST_F(PanelReset, WithoutTheFilePlaysNothing) {
    load();
    EXPECT_EQ(sinks.take(), Lines{"SID LOADED = "});
}

TEST_F(PanelReset, PlaysAgainWheneverItIsCalledAsTheFileIsThen) {
    directory.write("config/QISState.dsf", "::SIDS\nA VAL=1\n");
    load();
    sinks.take();
    directory.write("config/QISState.dsf", "::SIDS\nA VAL=2\n");
    driver->resetPanel();
    EXPECT_EQ(sinks.take(), Lines{"SID A = 2"});
}

}  // namespace
}  // namespace FrameDriver::Testing
