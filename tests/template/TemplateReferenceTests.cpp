// The engine beside a slow one that is obviously right: random templates and texts of a small
// alphabet, so that literals repeat, overlap and go missing all the time.

#include "template/PlainString.h"
#include "template/TemplateParser.h"
#include "template/TemplateString.h"
#include "template/Variable.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace FrameDriver::Template {
namespace {

using Random = std::mt19937_64;
using Captures = std::map<std::string, std::string>;

/// A seed of its own for each run, or the one of QFD_TEST_SEED, to repeat a run.
Random::result_type chooseSeed() {
    char const* const given = std::getenv("QFD_TEST_SEED");
    auto const seed = given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
    std::cout << "QFD_TEST_SEED=" << seed << '\n';
    return seed;
}

std::string randomText(Random& random, std::string const& alphabet, std::size_t longest) {
    std::string text(random() % (longest + 1), ' ');
    for (auto& character : text)
        character = alphabet[random() % alphabet.size()];
    return text;
}

// --- The reference -------------------------------------------------------------------------

struct Piece {
    bool isVariable;
    std::string text;  // the literal, or the variable's name

    long find(std::string const& source, long position) const {
        if (isVariable)
            return position;
        auto const offset = source.find(text, static_cast<std::size_t>(position));
        return offset == std::string::npos ? -1 : static_cast<long>(offset);
    }
    long length() const { return isVariable ? 0 : static_cast<long>(text.size()); }
};

bool slowMatches(std::vector<Piece> const& pieces, std::string const& text) {
    long position = 0;
    bool found = true;
    for (auto const& piece : pieces) {
        auto const offset = piece.find(text, position);
        if (offset == -1) {
            found = false;
            break;
        }
        position = offset + piece.length();
    }
    if (pieces.empty())
        return found;
    if (pieces.back().isVariable)
        return found;
    return static_cast<long>(text.size()) <= position;
}

// Nothing if a capture starts behind the end.
std::optional<Captures> slowExtract(std::vector<Piece> const& pieces, std::string const& text) {
    Captures captures;
    long position = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (!pieces[i].isVariable) {
            position += pieces[i].length();
            continue;
        }
        long length = static_cast<long>(text.size()) - position + 1;
        if (i + 1 < pieces.size())
            length = std::max(pieces[i + 1].find(text, 0) - position, 0L);
        if (position > static_cast<long>(text.size()))
            return std::nullopt;
        captures.insert({pieces[i].text, text.substr(static_cast<std::size_t>(position),
                                                     static_cast<std::size_t>(length))});
        position += length;
    }
    return captures;
}

// --- The comparison ------------------------------------------------------------------------

std::vector<Piece> randomPieces(Random& random) {
    std::vector<Piece> pieces(random() % 6);
    for (auto& piece : pieces) {
        piece.isVariable = random() % 2 == 0;
        piece.text =
            piece.isVariable ? std::string(1, "xyz"[random() % 3]) : randomText(random, "ab-", 2);
    }
    return pieces;
}

// Null entries between the pieces count for nothing.
TemplateString build(std::vector<Piece> const& pieces, Random& random) {
    std::vector<Segment*> segments;
    for (auto const& piece : pieces) {
        if (random() % 8 == 0)
            segments.push_back(nullptr);
        if (piece.isVariable)
            segments.push_back(new Variable(piece.text));
        else
            segments.push_back(new PlainString(piece.text));
    }
    if (random() % 8 == 0)
        segments.push_back(nullptr);
    return TemplateString(segments);
}

std::optional<Captures> fastExtract(TemplateString const& pattern, std::string const& text) {
    try {
        auto const variables = pattern.extractVariables(text);
        return Captures(variables.begin(), variables.end());
    } catch (std::out_of_range const&) {
        return std::nullopt;
    }
}

TEST(TemplateReference, MatchesAndCapturesAgree) {
    Random random(chooseSeed());
    int matched = 0, threw = 0;
    for (int round = 0; round < 30000 && !::testing::Test::HasFailure(); ++round) {
        auto const pieces = randomPieces(random);
        auto const pattern = build(pieces, random);
        for (int i = 0; i < 5; ++i) {
            auto const text = randomText(random, "ab-", 8);
            SCOPED_TRACE("'" + text + "' against '" + pattern.toString() + "'");
            auto const expected = slowExtract(pieces, text);
            EXPECT_EQ(pattern.matches(text), slowMatches(pieces, text));
            EXPECT_EQ(fastExtract(pattern, text), expected);
            matched += slowMatches(pieces, text);
            threw += !expected;
        }
    }
    EXPECT_GT(matched, 1000) << "the texts reach the good cases";
    EXPECT_GT(threw, 1000) << "and the bad ones";
}

// --- The language ---------------------------------------------------------------------------

std::vector<std::string> slowTokens(std::string text) {
    std::vector<std::string> tokens;
    for (;;) {
        auto const open = text.find('{');
        if (open == std::string::npos) {
            if (!text.empty())
                tokens.push_back(text);
            return tokens;
        }
        if (open != 0)
            tokens.push_back(text.substr(0, open));
        int depth = 1;
        auto close = open + 1;
        for (; close < text.size(); ++close) {
            depth += text[close] == '{';
            depth -= text[close] == '}';
            if (depth == 0)
                break;
        }
        tokens.push_back(text.substr(open + 1, close - open - 1));
        text = text.substr(depth == 0 ? close + 1 : open + 1);
    }
}

std::string slowVariable(std::string const& token) {
    std::string base, word;
    for (auto const character : token + "|") {
        if (character != '|') {
            word += character;
            continue;
        }
        if (!word.empty() && word[0] == '@')
            base = word;
        word.clear();
    }
    return "{" + base + "}";
}

// What the parsed text prints, without "$" words and decorators; nothing if it fails.
std::optional<std::string> slowPrint(std::string const& text) {
    std::string print;
    for (auto const& token : slowTokens(text)) {
        if (token.empty())
            return std::nullopt;
        print += token[0] == '@' ? slowVariable(token) : token;
    }
    return print;
}

std::optional<std::string> fastPrint(std::string const& text) {
    try {
        return TemplateParser::parse(text).toString();
    } catch (std::out_of_range const&) {
        return std::nullopt;
    }
}

TEST(TemplateReference, ParsedTextsPrintAlike) {
    Random random(chooseSeed());
    int parsed = 0;
    for (int round = 0; round < 30000 && !::testing::Test::HasFailure(); ++round) {
        auto const text = randomText(random, "{{}}@|a-", 12);
        EXPECT_EQ(fastPrint(text), slowPrint(text)) << text;
        parsed += slowPrint(text).has_value();
    }
    EXPECT_GT(parsed, 1000);
}

}  // namespace
}  // namespace FrameDriver::Template
