#include "conversion/LiteralIndex.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace FrameDriver::Conversion {
namespace {

using Places = std::set<std::pair<std::uint32_t, std::size_t>>;

/// All places of all literals, by asking for each.
Places plainly(std::vector<std::string> const& literals, std::string const& text,
               std::size_t position) {
    Places places;
    for (std::uint32_t i = 0; i < literals.size(); ++i) {
        auto offset = text.find(literals[i], position);
        for (; offset != std::string::npos; offset = text.find(literals[i], offset + 1))
            places.emplace(i, offset);
    }
    return places;
}

Places indexed(LiteralIndex const& index, std::string const& text, std::size_t position) {
    std::vector<LiteralIndex::Hit> hits;
    index.find(SearchedText(text), position, hits);
    Places places;
    for (auto const& hit : hits)
        places.emplace(hit.literal, hit.offset);
    EXPECT_EQ(places.size(), hits.size()) << "a place twice";
    return places;
}

void expectAlike(std::vector<std::string> const& literals, std::vector<std::string> const& texts) {
    LiteralIndex const index(std::vector<std::string_view>(literals.begin(), literals.end()));
    for (auto const& text : texts) {
        for (std::size_t position : {std::size_t(0), std::size_t(1), text.size() / 2}) {
            if (position > text.size())
                continue;
            ASSERT_EQ(indexed(index, text, position), plainly(literals, text, position))
                << ::testing::PrintToString(text) << " from " << position;
        }
    }
}

TEST(LiteralIndex, LiteralsThatBeginOneAnother) {
    expectAlike({"ab", "abc", "abcd", "abd", "abcde", "bc", "bcd"},
                {"abcde", "abdabcabcd", "ab", "a", "", "xxbcdxabd"});
}

TEST(LiteralIndex, NamesOfManyLevels) {
    std::vector<std::string> literals;
    std::vector<std::string> texts;
    for (int i = 0; i < 500; ++i) {
        auto const name = std::string("FID: id=A.B")
                              .append(std::to_string(i % 7))
                              .append(".C")
                              .append(std::to_string(i));
        literals.push_back(name + ", data=[");
        texts.push_back(name + ", data=[x=1\x92");
        texts.push_back(name + ", data=\x92 FID: id=" + name + ", data=[");
    }
    literals.push_back("FID: id=A");  // without the separator of the others
    literals.push_back("FID: id=A.B1");
    expectAlike(literals, texts);
}

TEST(LiteralIndex, ManyBeginnings) {
    std::vector<std::string> literals;
    for (int i = 0; i < 300; ++i)
        literals.push_back(std::string(1, static_cast<char>(i)).append(std::to_string(i * 7)));
    std::string all;
    for (auto const& literal : literals)
        all += literal;
    expectAlike(literals, {all, "700",
                           "\x01"
                           "700",
                           "7"});
}

TEST(LiteralIndex, RandomLiteralsOfFewBytes) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        std::string const alphabet = seed % 2 == 0 ? "ab." : std::string("a,\0\x92\xff=", 6);
        auto const text = [&](std::size_t shortest, std::size_t longest) {
            std::string bytes(shortest + random() % (longest - shortest + 1), ' ');
            for (auto& byte : bytes)
                byte = alphabet[random() % alphabet.size()];
            return bytes;
        };
        std::set<std::string> literals;
        for (std::size_t i = 1 + random() % 200; i > 0; --i)
            literals.insert(text(LiteralIndex::smallestLiteral, 8));
        std::vector<std::string> texts;
        for (int i = 0; i < 50; ++i)
            texts.push_back(text(0, 80));
        expectAlike({literals.begin(), literals.end()}, texts);
    }
}

}  // namespace
}  // namespace FrameDriver::Conversion
