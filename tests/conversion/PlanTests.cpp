// An entry taken by itself must do what its templates do by theirs.

#include "conversion/TemplateConversion.h"
#include "template/ContextStore.h"
#include "template/TemplateParser.h"
#include "tests/support/engine/DictionaryGenerator.h"

#include <gtest/gtest.h>

#include <exception>
#include <random>
#include <string>
#include <vector>

namespace FrameDriver::Conversion {
namespace {

using Template::TemplateParser;
using Texts = std::vector<std::string>;

TEST(TemplateConversion, ConvertAppendsOrLeavesTheListAlone) {
    TemplateConversion const conversion(TemplateParser::parse("A={@x};"),
                                        {TemplateParser::parse("<{@x}>"), TemplateParser::parse(""),
                                         TemplateParser::parse("{@y}")});
    Template::ContextStore context;
    Texts results{"there"};
    EXPECT_FALSE(conversion.convert("B=1;", &context, results));
    EXPECT_EQ(results, Texts{"there"});
    EXPECT_TRUE(conversion.convert("A=1;", &context, results));
    EXPECT_EQ(results, (Texts{"there", "<1>", "", "{@y}"}));
    EXPECT_TRUE(conversion.matches("xxA=1;"));
    EXPECT_FALSE(conversion.matches("A=1;x"));
    EXPECT_EQ(conversion.getFrom().toString(), "A={@x};");
    EXPECT_EQ(conversion.getTo().size(), 3U);
}

TEST(TemplateConversion, CopiesOutliveTheirOriginal) {
    auto copy = [] {
        TemplateConversion const original(TemplateParser::parse("A={@x|increment}"),
                                          {TemplateParser::parse("{@x|increment}")});
        return TemplateConversion(original);
    }();
    Template::ContextStore context;
    Texts results;
    EXPECT_TRUE(copy.convert("A=1", &context, results));
    EXPECT_EQ(results, Texts{"2"});
}

/// What the templates themselves do.
Texts plainly(DictionaryGenerator::Entry const& entry, std::string const& text,
              Template::ContextStore& context) {
    if (!entry.from.matches(text))
        return {"no match"};
    auto const variables = entry.from.extractVariables(text);
    Texts results;
    for (auto const& result : entry.to)
        results.push_back(result.evaluate(variables, &context));
    return results;
}

Texts planned(TemplateConversion const& conversion, std::string const& text,
              Template::ContextStore& context) {
    Texts results;
    auto const matched = conversion.convert(text, &context, results);
    EXPECT_EQ(matched, conversion.matches(text));
    return matched ? results : Texts{"no match"};
}

template <typename Call>
Texts orException(Call call) {
    try {
        return call();
    } catch (std::exception const& failure) {
        return {std::string("threw ") + failure.what()};
    }
}

TEST(TemplateConversion, DoesWhatItsTemplatesDo) {
    auto const seed = std::random_device{}();
    SCOPED_TRACE(seed);
    DictionaryGenerator generator(seed);
    Template::ContextStore context;
    context.set("KEY", "7");
    for (int round = 0; round < 150; ++round) {
        auto const shape = DictionaryGenerator::allShapes[round % 5];
        auto const& entries = generator.makeDictionary(shape, 4);
        for (auto const& entry : entries) {
            TemplateConversion const conversion(entry.from, entry.to);
            for (int i = 0; i < 40; ++i) {
                auto const text = generator.makeText();
                ASSERT_EQ(orException([&] { return planned(conversion, text, context); }),
                          orException([&] { return plainly(entry, text, context); }))
                    << entry.from.toString() << " for " << ::testing::PrintToString(text);
            }
        }
    }
}

}  // namespace
}  // namespace FrameDriver::Conversion
