#include "sims/panel/PanelScript.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace PanelSim;

struct Printer {
    std::string operator()(Raise const& raise) const {
        std::string line = "raise [" + raise.name + "]";
        for (FIDParameter const& parameter : raise.parameters) {
            line += " [" + parameter.getName() + "]=[" + parameter.getValue() + "]";
        }
        return line + " @" + std::to_string(raise.parameters.getSourceWidget().widget);
    }
    std::string operator()(Wait const& wait) const {
        return "wait " + shown(wait.expectation) + " within " + std::to_string(wait.atMost.count());
    }
    std::string operator()(Sleep const& sleep) const {
        return "sleep " + std::to_string(sleep.duration.count());
    }
    std::string operator()(ShowState const& show) const { return "state " + show.pattern; }
    std::string operator()(Compare const&) const { return "compare"; }
    std::string operator()(Quit const&) const { return "quit"; }
};

/// The line in a plain form, or what is wrong with it.
std::string read(std::string_view line) {
    try {
        auto const command = parseLine(line, "file", 7);
        return command ? std::visit(Printer(), *command) : "nothing";
    } catch (ScriptError const& error) {
        return error.what();
    }
}

struct Row {
    std::string line;
    std::string result;
};

void expectAll(std::initializer_list<Row> rows) {
    for (auto const& [line, result] : rows) {
        SCOPED_TRACE(line);
        EXPECT_EQ(read(line), result);
    }
}

TEST(PanelScript, ALineRaisesAFID) {
    expectAll({
        {"ME1.CUT", "raise [ME1.CUT] @0"},
        {"  ME1.CUT\t ", "raise [ME1.CUT] @0"},
        {"ME1.CUT\r", "raise [ME1.CUT] @0"},
        {"X A=1 B=", "raise [X] [A]=[1] [B]=[] @0"},
        {"X A=1 A=2", "raise [X] [A]=[1] [A]=[2] @0"},
        {"X A=b=c", "raise [X] [A]=[b=c] @0"},
        {"X VAL=-1 @307", "raise [X] [VAL]=[-1] @307"},
        {"X @0", "raise [X] @0"},
        {"X @65535", "raise [X] @65535"},
        {"X A=@5 #=1", "raise [X] [A]=[@5] [#]=[1] @0"},
        {"X A=a\\x20", "raise [X] [A]=[a\\x20] @0"},
    });
}

TEST(PanelScript, QuotesHoldAnyByte) {
    expectAll({
        {"X A=\"a b\"", "raise [X] [A]=[a b] @0"},
        {"X A=\"\"", "raise [X] [A]=[] @0"},
        {"X \"A=B\"=C", "raise [X] [A=B]=[C] @0"},
        {"X A=x\"y z\"w", "raise [X] [A]=[xy zw] @0"},
        {"X A=\"\\x92\\xB0\\x0a\"", "raise [X] [A]=[\222\xb0\n] @0"},
        {"X A=\"\\\"\\\\\\n\\r\\t\"", "raise [X] [A]=[\"\\\n\r\t] @0"},
        {"X A=\222", "raise [X] [A]=[\222] @0"},
        {"\":wait\" A=1", "raise [:wait] [A]=[1] @0"},
        {"X \"@5\"=1", "raise [X] [@5]=[1] @0"},
    });
}

TEST(PanelScript, LinesWithoutACommand) {
    expectAll({{"", "nothing"},
               {" \t", "nothing"},
               {"\r", "nothing"},
               {"# x=\"", "nothing"},
               {"  #", "nothing"}});
}

TEST(PanelScript, Commands) {
    expectAll({
        {":wait SID A", "wait SID A within 2000"},
        {":wait SID A 1", "wait SID A = 1 within 2000"},
        {":wait TID A \"x y\" within 50", "wait TID A = x y within 50"},
        {":wait TID A within 0", "wait TID A within 0"},
        {":wait SID A \"within\" within 3600000", "wait SID A = within within 3600000"},
        {":wait SID A \"\"", "wait SID A =  within 2000"},
        {":wait FID A", "wait FID A within 2000"},
        {":wait FID A WP=3 REG=\"1 2\" within 9", "wait FID A WP=3 REG=1 2 within 9"},
        {":sleep 20", "sleep 20"},
        {":state", "state *"},
        {":state ME1.*", "state ME1.*"},
        {":compare", "compare"},
        {":quit", "quit"},
    });
}

TEST(PanelScript, AFaultNamesFileLineColumnAndCause) {
    expectAll({
        {"X A", "file:7:3: expected NAME=VALUE"},
        {"X =1", "file:7:3: expected NAME=VALUE"},
        {"X \"A=1\"", "file:7:3: expected NAME=VALUE"},
        {"A=1", "file:7:1: expected a FID's name or a command"},
        {"\"\" A=1", "file:7:1: expected a FID's name or a command"},
        {"X @5 A=1", "file:7:6: unexpected 'A=1'"},
        {"X @", "file:7:4: expected a widget's number, 0 to 65535"},
        {"X @65536", "file:7:4: expected a widget's number, 0 to 65535"},
        {"X @-1", "file:7:4: expected a widget's number, 0 to 65535"},
        {"X @99999999999", "file:7:4: expected a widget's number, 0 to 65535"},
        {"X A=\"b", "file:7:5: a quote that isn't closed"},
        {"X A=\"\\", "file:7:6: an escape that isn't \\\" \\\\ \\n \\r \\t or \\xHH"},
        {"X A=\"\\q\"", "file:7:6: an escape that isn't \\\" \\\\ \\n \\r \\t or \\xHH"},
        {"X A=\"\\x4\"", "file:7:6: \\x without two hexadecimal digits"},
        {"X A=\"\\x4", "file:7:6: \\x without two hexadecimal digits"},
        {":stop", "file:7:1: unknown command ':stop'"},
        {":wait", "file:7:6: expected SID, TID or FID"},
        {":wait sid A", "file:7:7: expected SID, TID or FID"},
        {":wait SID", "file:7:10: expected a name"},
        {":wait SID A b c", "file:7:15: unexpected 'c'"},
        {":wait SID A within", "file:7:19: expected milliseconds"},
        {":wait SID A within 5ms", "file:7:20: expected milliseconds, 0 to 3600000"},
        {":wait SID A within 5 6", "file:7:22: unexpected '6'"},
        {":wait FID A b", "file:7:13: expected NAME=VALUE"},
        {":sleep", "file:7:7: expected milliseconds"},
        {":sleep 3600001", "file:7:8: expected milliseconds, 0 to 3600000"},
        {":state a b", "file:7:10: unexpected 'b'"},
        {":compare now", "file:7:10: unexpected 'now'"},
        {":quit now", "file:7:7: unexpected 'now'"},
    });
}

TEST(PanelScript, AScriptIsReadToItsEnd) {
    auto const commands = parseScript("# start\nA\n\nB x=1\n:quit", "s");
    ASSERT_EQ(commands.size(), 3U);
    EXPECT_EQ(std::visit(Printer(), commands[1]), "raise [B] [x]=[1] @0");
    EXPECT_EQ(std::visit(Printer(), commands[2]), "quit");
    EXPECT_TRUE(parseScript("", "s").empty());
}

TEST(PanelScript, AFaultAnywhereInAScriptCountsItsLines) {
    try {
        parseScript("A\n\nB x\n", "s");
        FAIL() << "no fault";
    } catch (ScriptError const& error) {
        EXPECT_STREQ(error.what(), "s:3:3: expected NAME=VALUE");
    }
}

}  // namespace
