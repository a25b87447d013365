// The dictionary authors' commands as their users run them.

#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using Words = std::vector<std::string>;

struct Row {
    Words arguments;
    std::string input;
    std::string out;
    std::string err;
    int code;
};

/// "~" for the closing byte, in all of a row.
std::string bytes(std::string text) {
    std::replace(text.begin(), text.end(), '~', '\222');
    return text;
}

void expectAll(std::initializer_list<Row> rows) {
    ProgramRunner const runner;
    for (auto const& row : rows) {
        Words arguments;
        std::transform(row.arguments.begin(), row.arguments.end(), std::back_inserter(arguments),
                       bytes);
        SCOPED_TRACE(testing::PrintToString(row.arguments) + " < " + row.input);
        auto const result = runner.run(arguments, bytes(row.input));
        EXPECT_EQ(result.out, bytes(row.out));
        EXPECT_EQ(result.err, row.err);
        EXPECT_EQ(result.code, row.code);
    }
}

constexpr char memory[] = INSTALLATION "/Configuration/Memory/ToFrame.xml";
constexpr char systemFile[] = INSTALLATION "/Configuration/System/ToFrame.xml";
constexpr char recall[] = "FID: id=MEMORY.RECALL, data=[REG=10~";
constexpr char recalled[] = "Send Event Message: eid=64, did=[EncodingType=35, eEMemLevel=0, "
                            "SuiteIDType=0~, data=[size=2, value=000a~\n";

TEST(AuthorCommands, ConvertGivesTheNumberOfResultsAndThenTheResults) {
    expectAll({
        {{"convert", "--dictionary", memory, recall}, "", "1\n" + std::string(recalled), "", 0},
        {{"convert", "--dictionary", memory},
         std::string(recall) + "\nnothing\n" + recall,
         "1\n" + std::string(recalled) + "0\n1\n" + recalled,
         "",
         0},
        {{"convert", "--dictionary", memory}, "", "", "", 0},
        {{"convert", "--dictionary", memory, "--dictionary", systemFile, recall,
          "FID: id=CALC.DEGREE, data=[VAL=1~"},
         "",
         "1\n" + std::string(recalled) + "1\nSID: id=CALC.RESULT, value=1.0\xb0\n",
         "",
         0},
    });
}

TEST(AuthorCommands, ConvertKeepsAResultOnItsLineAndTellsAnException) {
    expectAll({
        {{"convert", "--dictionary", systemFile, "FID: id=CALC.DEGREE, data=[VAL=a\\\nb~"},
         "",
         "1\nSID: id=CALC.RESULT, value=a\\x5c\\x0ab.0\xb0\n",
         "",
         0},
        {{"convert", "--dictionary", systemFile, "--context", "VIDEO.FRAMERATE=25",
          "FID: id=CALC.FRAMES.OF.TIMECODE, data=[VAL=x:y:z:w~", "nothing"},
         "",
         "!Unable to convert a string value into an UInt32.\n0\n",
         "",
         0},
    });
}

TEST(AuthorCommands, ConvertKeepsTheStoreFromTextToText) {
    std::string const mode = "FID: id=MEMORY.MODE, data=[VAL=STORE~";
    std::string const key = "FID: id=MEMORY.KEY, data=[REG=1~";
    std::string const shown = "2\nContext: name=MEMORY.MODE, value=STORE\n"
                              "SID: id=MEMORY.MODE.STORE, value=ON\n2\n";
    std::string const last = "FID: id=MEMORY.MODE, data=[VAL=RECALL~\n";
    expectAll({
        {{"convert", "--dictionary", memory, mode, key},
         "",
         shown + "FID: id=MEMORY.RECALL, data=[REG=1~\n" + last,
         "",
         0},
        {{"convert", "--dictionary", memory, "--apply-context", mode, key},
         "",
         shown + "FID: id=MEMORY.STORE, data=[REG=1~\n" + last,
         "",
         0},
        {{"convert", "--dictionary", memory, "--context", "MEMORY.MODE=STORE", key},
         "",
         "2\nFID: id=MEMORY.STORE, data=[REG=1~\n" + last,
         "",
         0},
    });
}

TEST(AuthorCommands, ConvertInJson) {
    expectAll({{{"convert", "--dictionary", systemFile, "--json",
                 "FID: id=CALC.DEGREE, data=[VAL=1~", "x"},
                "",
                "{\"text\":\"FID: id=CALC.DEGREE, data=[VAL=1\\u0092\",\"results\":[\"SID: "
                "id=CALC.RESULT, value=1.0\\u00b0\"]}\n{\"text\":\"x\",\"results\":[]}\n",
                "",
                0}});
}

TEST(AuthorCommands, ConvertNamesTheDictionaryThatItCannotRead) {
    ProgramRunner const runner;
    auto const broken = runner.write("broken.xml", "<dictionary>\n<conversion>\n</dictionary>\n");
    auto const result = runner.run({"convert", "--dictionary", broken, "x"});
    EXPECT_THAT(result.err, StartsWith("qfd convert: " + broken + ":3:"));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(runner.run({"convert", "x"}).code, 2);
    EXPECT_EQ(runner.run({"convert", "--dictionary", memory, "--context", "x", "y"}).code, 2);
    EXPECT_EQ(runner.run({"convert", "--manifest", "x"}).code, 2);
}

TEST(AuthorCommands, DidReadsWhatHoldsAGroupAndWritesNumbers) {
    std::string const text = "did=[EncodingType=08, MEIdType=3, KeyerIDType=1, eEMemLevel=2~";
    expectAll({
        {{"did", "08000213", text}, "", text + "\n08000213\n", "", 0},
        {{"did"},
         "0x8000213\n" + text + "\n85000000",
         text + "\n08000213\ndid=[EncodingType=85, "
                "SubLevelID=0, eEMemSublevelType=0, eEMemLevels=0, SuiteIDType=0~\n",
         "",
         0},
        {{"did", "did=[EncodingType=85~"}, "", "000000ff\n", "", 0},
        {{"did", "ff000000"}, "", "undefined device id encoding type (ff)\n", "", 0},
        {{"did", "--json", text},
         "",
         "{\"did\":\"08000213\",\"text\":\"did=[EncodingType=08, MEIdType=3, KeyerIDType=1, "
         "eEMemLevel=2\\u0092\"}\n",
         "",
         0},
        {{"did", "zz"}, "", "", "qfd did: 1:1: 'zz' is no hexadecimal number\n", 2},
    });
}

TEST(AuthorCommands, TemplateMatchesCapturesAndPrints) {
    expectAll({
        {{"template", "{@a}-{@b}", "1-2"},
         "",
         "matches true\na = 1\nb = 2\nprints {@a}-{@b}\n",
         "",
         0},
        {{"template", "abc", "abcx"}, "", "matches false\nprints abc\n", "", 0},
        {{"template", "{@a|leverarm=1,b=0,c=false}~", "x~"},
         "",
         "matches true\na = x\nprints {@a|leverarmSetter}~\n",
         "",
         0},
        {{"template", "{}", "x"},
         "",
         "",
         "qfd template: '{}' is no template: invalid string position\n",
         2},
    });
}

TEST(AuthorCommands, MessageTellsWhatTheFrameWouldBeSent) {
    expectAll({
        {{"message", "Set Message: 17, did=[EncodingType=08~, data=[type=UInt16, value=5~, "
                     "flag=nonsense"},
         "",
         "kind = set\npid = 17\ndid = 08000000\ntype = UInt16\nvalue = 5\nflag = 99\n",
         "",
         0},
        {{"message", "SID: id=X, value=1"}, "", "!no message to the frame\n", "", 1},
    });
    ProgramRunner const runner;
    auto const event =
        runner.run({"message"}, bytes("Send Event Message: eid=64, did=[EncodingType=35~, "
                                      "data=[size=4, value=0aFF~\n"));
    EXPECT_EQ(event.out, "kind = event\neid = 64\ndid = 35000000\nsize = 4\ndata = 0a ff 00 00\n");
}

TEST(AuthorCommands, ExpandGivesOneTextALine) {
    expectAll({
        {{"expand", "A(1-2)B(0x08-0x09)"}, "", "A1B08\nA1B09\nA2B08\nA2B09\n", "", 0},
        {{"expand", "(10-11)(1-2)"}, "", "10(1-2)\n11(1-2)\n", "", 0},
        {{"expand", "A(3-1)"}, "", "", "", 0},
        {{"expand"}, "A~(1-2)\nB\n", "A~1\nA~2\nB\n", "", 0},
    });
    ProgramRunner const runner;
    auto const bad = runner.run({"expand", "A(x)"});
    EXPECT_EQ(bad.err, "qfd expand: 1:2: Unable to convert a string value into an Int32.\n");
    EXPECT_EQ(bad.code, 2);
}

TEST(AuthorCommands, DecorateAppliesWords) {
    expectAll({
        {{"decorate", "increment", "7"}, "", "8\n", "", 0},
        {{"decorate", "format:degree", "90"}, "", "90.0\xb0\n", "", 0},
        {{"decorate", "isEqualTo:K", "v", "--context", "K=v"}, "", "true\n", "", 0},
        {{"decorate", "round", "-2.5", "-0.4"}, "", "-2\n0\n", "", 0},
        {{"decorate", "increment", "-1", "--json"},
         "",
         "{\"word\":\"increment\",\"value\":\"-1\",\"result\":\"0\"}\n",
         "",
         0},
        {{"decorate", "width=4,padding=-", "--", "-x", "--", "-h"},
         "",
         "---x\n----\n---h\n",
         "",
         0},
        {{"decorate", "width=5,padding=.", "-.5", "[a,b]", "++", "a]", "did", "--", "++"},
         "",
         "..-.5\n[a,b]\n...++\n...a]\n..did\n...++\n",
         "",
         0},
        {{"decorate", "isEqualTo:K", "[a,b]", "--context", "K=[a,b]"}, "", "true\n", "", 0},
        {{"decorate"},
         "increment|width=4,padding=0\t7\nisEmpty\t\nincrement\t~",
         "0008\ntrue\n~\n",
         "",
         0},
        {{"decorate", "bitmask=zz,a=b,c=d", "1"},
         "",
         "!Unable to convert a string value into a UInt32\n",
         "",
         0},
        {{"decorate", "nonsense", "7"},
         "",
         "",
         "qfd decorate: 1:1: 'nonsense' is no decorator; --list shows them all\n",
         2},
        {{"decorate"},
         "increment\t7\nno tab\n",
         "8\n",
         "qfd decorate: 2:1: a line is WORD, tab, VALUE\n",
         2},
    });
}

TEST(AuthorCommands, DecorateListsEveryWord) {
    ProgramRunner const runner;
    auto const list = runner.run({"decorate", "--list", "--json"}).out;
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 33);
    EXPECT_THAT(list, StartsWith("{\"keyword\":\"enum\","));
    EXPECT_THAT(list, HasSubstr("{\"keyword\":\"nextElementRemover\","));
}

TEST(AuthorCommands, CheckSaysNothingOfAGoodDictionary) {
    expectAll({{{"check", memory, systemFile}, "", "", "", 0},
               {{"check", "/nowhere"},
                "",
                "",
                "qfd check: cannot read '/nowhere': No such file or directory\n",
                2}});
}

}  // namespace
