#include "driver/LineExpander.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <new>
#include <random>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

Texts textsOf(std::string const& line) {
    Texts texts;
    for (auto const& expanded : LineExpander(line).expand())
        texts.push_back(expanded.text);
    return texts;
}

/// "1=x 2=a" for the choices of an expanded line.
std::string choicesOf(ExpandedLine const& line) {
    std::string text;
    for (auto const& choice : line.choices) {
        EXPECT_EQ(choice.values.size(), 1U);
        text += (text.empty() ? "" : " ") + std::to_string(choice.index) + "=" + choice.values[0];
    }
    return text;
}

struct Row {
    std::string line;
    Texts texts;
};

void expectAll(std::vector<Row> const& rows) {
    for (auto const& [line, texts] : rows)
        EXPECT_EQ(textsOf(line), texts) << line;
}

TEST(LineExpander, ALineWithoutBracketsIsItself) {
    expectAll({{"SID.X VAL=1", {"SID.X VAL=1"}}, {"", {""}}, {"a<1>b", {"a<1>b"}}});
    EXPECT_TRUE(LineExpander("SID.X VAL=1").expand().front().choices.empty());
}

TEST(LineExpander, AReferenceTakesItsGroupsValueAndTheChoiceIsRecorded) {
    LineExpander const expander("A[1:x,y]B[1]");
    EXPECT_EQ(expander.line, "A{1}B<1>");
    auto const lines = expander.expand();
    EXPECT_EQ(textsOf("A[1:x,y]B[1]"), (Texts{"AxBx", "AyBy"}));
    EXPECT_EQ(choicesOf(lines.front()), "1=x");
    EXPECT_EQ(choicesOf(lines.back()), "1=y");
}

TEST(LineExpander, ARangeStandsForEachIntegerAndSpacesVanish) {
    expectAll({{"A[1:0-2]", {"A0", "A1", "A2"}},
               {"A[1: a , b ]", {"Aa", "Ab"}},
               {"A[1: a\t]", {"Aa\t"}},
               {"A[1: 8 - 10 ]", {"A8", "A9", "A10"}},
               {"A[1:x,1-2,y]", {"Ax", "A1", "A2", "Ay"}},
               {"A[1:-2]", {"A0", "A1", "A2"}},
               {"A[1:007-8]", {"A7", "A8"}},
               {"A[1:a-b]", {"A0"}}});
}

TEST(LineExpander, ARangeThatRunsBackwardsHasNoValuesAndTheGroupIsAReference) {
    EXPECT_EQ(LineExpander("A[1:5-3]").line, "A<1>");
    expectAll({{"A[1:5-3]", {"A<1>"}}, {"A[1:x]B[1:5-3]", {"AxBx"}}});
}

TEST(LineExpander, AnEmptyElementIsAValue) {
    expectAll({{"A[1:]B", {"AB"}}, {"A[1:,x]B", {"AB", "AxB"}}, {"A[1: ]B", {"AB"}}});
}

TEST(LineExpander, TwoGroupsComeOutWithTheFirstVaryingSlowest) {
    expectAll({{"[1:a,b][2:1,2]", {"a1", "a2", "b1", "b2"}}});
}

TEST(LineExpander, AnInnerGroupIsReadFirstAndWhatIsCompleteStaysAhead) {
    LineExpander const expander("[1:[2:p,q]r,s]");
    EXPECT_EQ(expander.line, "{1}");
    ASSERT_EQ(expander.groups.size(), 2U);
    EXPECT_EQ(expander.groups.front().index, 2);
    EXPECT_EQ(expander.groups.back().values, (Texts{"{2}r", "s"}));
    EXPECT_EQ(textsOf("[1:[2:p,q]r,s]"), (Texts{"s", "pr", "qr"}));
    EXPECT_EQ(choicesOf(expander.expand().back()), "1={2}r 2=q");
}

TEST(LineExpander, AGroupNestedInAValueIsChosenOnceAndRepeated) {
    expectAll({{"[1:[2:p,q]]-[1]", {"p-p", "q-q"}}});
}

TEST(LineExpander, AReferenceToNoGroupStays) {
    expectAll({{"X[7]", {"X<7>"}}, {"X[]", {"X<0>"}}, {"X[y]", {"X<0>"}}});
}

TEST(LineExpander, AnIndexIsReadAsANumberOrZero) {
    expectAll({{"[y:a,b][0]", {"aa", "bb"}},
               {"[ 2x:a][2]", {"aa"}},
               {"[-1:a][-1]", {"aa"}},
               {"[:a][]", {"aa"}}});
}

TEST(LineExpander, BracketsThatDoNotPairEndTheReading) {
    expectAll({{"A]B[1:x]", {"A]B[1:x]"}}, {"A[1:x", {"A[1:x"}}, {"[1:a]]", {"a]"}}});
}

TEST(LineExpander, ASecondReferenceIsReplacedWhereItStoodBeforeTheFirst) {
    // A value of the mark's length does no harm, a shorter or longer one damages the text.
    expectAll({{"[1:abc] [1] [1]", {"abc abc abc"}},
               {"[1:x].[1].[1].", {"x.x.<1x"}},
               {"[1:long] [1] [1]!", {"long longlong>!"}}});
}

TEST(LineExpander, APlaceBehindTheEndThrows) {
    try {
        textsOf("[1:x][1][1][1]");
        ADD_FAILURE() << "no exception";
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(), "invalid string position");
    }
}

TEST(LineExpander, BracesOfALinesOwnAreMarks) {
    expectAll({{"{3}", {}},
               {"a{", {"a{"}},
               {"}a{", {"}a{"}},
               {"[1:a,b]{9}", {}},
               {"{1}[1:a,b]", {"aa", "ab", "ba", "bb"}},
               {"[1:x]{ 1 }", {"xx"}}});
}

TEST(LineExpander, TheFirstGroupOfAnIndexCounts) {
    expectAll({{"[1:a,b][1:c]", {"aa", "ab", "ba", "bb"}}});
}

TEST(LineExpander, ALineMayHaveAnyNumberOfGroups) {
    std::string line;
    for (int index = 1; index <= 600; ++index)
        line += "[" + std::to_string(index) + ":x]";
    EXPECT_EQ(textsOf(line), Texts{std::string(600, 'x')});
}

TEST(LineExpander, WhatWouldTakeAllMemoryIsRefusedAtOnce) {
    EXPECT_THROW(textsOf("[1:0-2000000000]"), std::bad_alloc);
    EXPECT_THROW(textsOf("[1:{1}]"), std::bad_alloc);
    EXPECT_THROW(LineExpander("[1:{1},{1}]").expand(1000), std::bad_alloc);
    EXPECT_THROW(LineExpander("[1:0-9][2:0-9]").expand(109), std::bad_alloc);
    EXPECT_EQ(LineExpander("[1:0-9][2:0-9]").expand(110).size(), 100U);
}

// The same, step by step and with regular expressions: a queue of texts, of which each pass
// resolves the first that has a choice.

struct PlainGroup {
    int index;
    Texts values;
};

struct PlainLine {
    std::string text;
    std::vector<PlainGroup> groups;
};

Texts plainValues(std::string const& list) {
    Texts values;
    std::regex const range(R"(([^-]*)-([\s\S]*))");
    for (std::size_t start = 0; start <= list.size();) {
        auto const end = std::min(list.find(',', start), list.size());
        auto const element = list.substr(start, end - start);
        std::smatch parts;
        if (std::regex_match(element, parts, range)) {
            for (int i = std::atoi(parts.str(1).c_str()); i <= std::atoi(parts.str(2).c_str()); ++i)
                values.push_back(std::to_string(i));
        } else {
            values.push_back(std::regex_replace(element, std::regex("^ +| +$"), ""));
        }
        start = end + 1;
    }
    return values;
}

PlainLine plainRead(std::string text) {
    PlainLine line;
    for (std::smatch group;;) {
        auto const close = text.find(']');
        auto const open = text.substr(0, close).rfind('[');
        if (close == std::string::npos || open == std::string::npos)
            break;
        auto const body = text.substr(open + 1, close - open - 1);
        auto const colon = body.find(':');
        int const index = std::atoi(body.substr(0, colon).c_str());
        auto const values =
            colon == std::string::npos ? Texts{} : plainValues(body.substr(colon + 1));
        auto const number = std::to_string(index);
        text = text.substr(0, open) + (values.empty() ? "<" + number + ">" : "{" + number + "}") +
               text.substr(close + 1);
        if (!values.empty())
            line.groups.push_back({index, values});
    }
    line.text = text;
    return line;
}

std::string plainChoice(std::string text, std::smatch const& mark, std::string const& value) {
    int const index = std::atoi(mark.str(1).c_str());
    auto const place = static_cast<std::size_t>(mark.position());
    text = text.substr(0, place) + value + text.substr(place + mark.str().size());
    auto other = std::regex_replace(value, std::regex(R"(\{)"), "<");
    other = std::regex_replace(other, std::regex(R"(\})"), ">");
    std::vector<std::pair<std::size_t, std::size_t>> places;
    std::regex const reference("<([^>]*)>");
    for (std::sregex_iterator at(text.begin(), text.end(), reference), end; at != end; ++at) {
        if (std::atoi(at->str(1).c_str()) == index)
            places.emplace_back(at->position(), at->str().size());
    }
    for (auto const& [start, length] : places) {
        if (start > text.size())
            throw std::out_of_range("invalid string position");
        text = text.substr(0, start) + other +
               (start + length < text.size() ? text.substr(start + length) : "");
    }
    return text;
}

Texts plainTexts(std::string const& line) {
    auto const read = plainRead(line);
    Texts queue{read.text};
    std::regex const choice(R"(\{([^}]*)\})");
    for (std::size_t at = 0; at < queue.size();) {
        std::smatch mark;
        auto const text = queue[at];
        if (!std::regex_search(text, mark, choice)) {
            ++at;
            continue;
        }
        queue.erase(queue.begin() + static_cast<std::ptrdiff_t>(at));
        for (auto const& group : read.groups) {
            if (group.index != std::atoi(mark.str(1).c_str()))
                continue;
            for (auto const& value : group.values)
                queue.push_back(plainChoice(text, mark, value));
            break;
        }
    }
    return queue;
}

/// The texts, or what was thrown.
template <typename Expand>
Texts outcome(Expand expand, std::string const& line) {
    try {
        return expand(line);
    } catch (std::out_of_range const& error) {
        return {std::string("!") + error.what()};
    }
}

TEST(LineExpander, RandomLinesComeOutAsStepByStep) {
    char const* const given = std::getenv("QFD_TEST_SEED");
    auto const seed =
        given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device{}();
    std::cout << "QFD_TEST_SEED=" << seed << '\n';
    std::mt19937 random(seed);
    Texts const pieces{"[1:", "[2:", "[3:", "]",   "]",   "]",   "[1]", "[2]", "[3]", ",",
                       "a",   "bcd", " ",   "1-3", "5-4", "<1>", "x",   "[",   "-"};
    std::uniform_int_distribution<std::size_t> pick(0, pieces.size() - 1);
    std::uniform_int_distribution<int> count(1, 14);
    for (int round = 0; round < 3000; ++round) {
        std::string line;
        for (int i = count(random); i > 0; --i)
            line += pieces[pick(random)];
        ASSERT_EQ(outcome(textsOf, line), outcome(plainTexts, line)) << line;
    }
}

}  // namespace
