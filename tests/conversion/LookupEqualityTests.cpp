// The lookup beside the plain one: the same results in the same order, the same exceptions, and
// the same lists kept, for dictionaries and texts of every awkward kind.

#include "conversion/TemplateConversionCollection.h"
#include "template/ContextStore.h"
#include "tests/support/engine/DictionaryGenerator.h"
#include "tests/support/engine/PlainEngine.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <random>
#include <string>
#include <vector>

namespace FrameDriver::Conversion {
namespace {

/// A seed of its own for each run, or the one of QFD_TEST_SEED, to repeat a run.
std::uint64_t chooseSeed() {
    char const* const given = std::getenv("QFD_TEST_SEED");
    auto const seed = given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
    std::cout << "QFD_TEST_SEED=" << seed << '\n';
    return seed;
}

/// The two lookups with the same entries, each with a store of its own.
class Pair {
  public:
    Pair() {
        for (auto* store : {&context, &plainContext}) {
            store->set("KEY", "7");
            store->set("KEY.1", "one");
        }
    }

    void add(DictionaryGenerator::Entry const& entry) {
        collection.add(TemplateConversion(entry.from, entry.to));
        plain.add(entry.from, entry.to);
    }

    /// Whether both answer alike.
    ::testing::AssertionResult agree(std::string const& text) {
        auto const expected = answer(plain, text, plainContext);
        auto const found = answer(collection, text, context);
        if (expected != found)
            return ::testing::AssertionFailure()
                   << "results: " << ::testing::PrintToString(found)
                   << "\nexpected: " << ::testing::PrintToString(expected);
        if (plain.recentSizes() != collection.recentSizes())
            return ::testing::AssertionFailure()
                   << "kept lists: " << ::testing::PrintToString(collection.recentSizes())
                   << "\nexpected: " << ::testing::PrintToString(plain.recentSizes());
        matched += expected.empty() ? 0 : 1;
        failed += !expected.empty() && expected.front().starts_with("threw ") ? 1 : 0;
        return ::testing::AssertionSuccess();
    }

    std::size_t matched = 0;
    std::size_t failed = 0;

  private:
    template <typename Engine>
    static std::vector<std::string> answer(Engine& engine, std::string const& text,
                                           Template::ContextStore& store) {
        try {
            return engine.convert(text, &store);
        } catch (std::exception const& failure) {
            return {std::string("threw ") + failure.what()};
        }
    }

    TemplateConversionCollection collection;
    PlainEngine plain;
    Template::ContextStore context;
    Template::ContextStore plainContext;
};

std::string printable(std::vector<DictionaryGenerator::Entry> const& entries) {
    std::string list;
    for (auto const& entry : entries)
        list.append("  ").append(::testing::PrintToString(entry.from.toString())).append("\n");
    return list;
}

TEST(LookupEquality, AnswersAsThePlainWalkForRandomDictionaries) {
    auto const seed = chooseSeed();
    DictionaryGenerator generator(seed);
    std::mt19937_64 random(seed + 1);
    constexpr std::size_t sizes[] = {0, 1, 3, 8, 20, 60, 250};
    constexpr std::size_t dictionaries = 260;
    constexpr std::size_t texts = 400;
    std::size_t matched = 0;
    std::size_t failed = 0;
    for (std::size_t i = 0; i < dictionaries; ++i) {
        auto const shape = DictionaryGenerator::allShapes[i % 5];
        auto const& entries = generator.makeDictionary(shape, sizes[random() % 7]);
        Pair pair;
        // Some entries come when conversion has begun.
        auto const late = random() % 4 == 0 ? entries.size() / 2 : 0;
        for (std::size_t entry = 0; entry + late < entries.size(); ++entry)
            pair.add(entries[entry]);
        for (std::size_t k = 0; k < texts; ++k) {
            if (k >= texts / 2 && k - texts / 2 < late)
                pair.add(entries[entries.size() - late + k - texts / 2]);
            auto const text = generator.makeText();
            ASSERT_TRUE(pair.agree(text)) << "dictionary " << i << ", text " << k << ": "
                                          << ::testing::PrintToString(text) << "\nentries:\n"
                                          << printable(entries);
        }
        matched += pair.matched;
        failed += pair.failed;
    }
    // Enough texts of each kind, or the comparison says little.
    EXPECT_GT(matched, dictionaries * texts / 4);
    EXPECT_GT(failed, 10U);
    std::cout << "texts " << dictionaries * texts << ", with results " << matched
              << ", with exceptions " << failed << '\n';
}

// Large enough for groups of many literals, whose index is made from a sample of them.
TEST(LookupEquality, AnswersAsThePlainWalkForLargeDictionaries) {
    auto const seed = chooseSeed();
    DictionaryGenerator generator(seed);
    for (auto const shape : DictionaryGenerator::allShapes) {
        auto const& entries = generator.makeDictionary(shape, 1500);
        Pair pair;
        for (auto const& entry : entries)
            pair.add(entry);
        for (int k = 0; k < 400; ++k) {
            auto const text = generator.makeText();
            ASSERT_TRUE(pair.agree(text)) << "shape " << static_cast<int>(shape) << ", text " << k
                                          << ": " << ::testing::PrintToString(text);
        }
    }
}

}  // namespace
}  // namespace FrameDriver::Conversion
