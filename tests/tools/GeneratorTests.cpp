#include "tools/FIDGenerator.h"
#include "tools/ParameterGenerator.h"
#include "tools/Random15.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace FrameDriver::Tools::MonkeyTest {
namespace {

std::vector<int> firstOf(Random15& random, int count) {
    std::vector<int> numbers;
    while (count-- > 0)
        numbers.push_back(random.next());
    return numbers;
}

std::set<std::string> manyOf(ParameterGenerator const& generator, int count = 2000) {
    std::set<std::string> values;
    while (count-- > 0)
        values.insert(generator.generateValue());
    return values;
}

TEST(Random15, GivesTheStandardsExampleSequenceEveryTime) {
    Random15 one;
    Random15 other;
    EXPECT_EQ(firstOf(one, 5), (std::vector<int>{16838, 5758, 10113, 17515, 31051}));
    EXPECT_EQ(firstOf(other, 5), (std::vector<int>{16838, 5758, 10113, 17515, 31051}));
    EXPECT_EQ(firstOf(one, 100), firstOf(other, 100));
}

TEST(Random15, HasFifteenBitsAndUsesThemAll) {
    Random15 random;
    int lowest = 32767;
    int highest = 0;
    for (int i = 0; i < 1'000'000; ++i) {
        int const number = random.next();
        lowest = std::min(lowest, number);
        highest = std::max(highest, number);
    }
    EXPECT_EQ(lowest, 0);
    EXPECT_EQ(highest, 32767);
}

TEST(Random15, IsSharedByThreadsWithoutLosingANumber) {
    Random15 shared;
    Random15 alone;
    std::multiset<int> expected;
    for (int number : firstOf(alone, 20'000))
        expected.insert(number);
    std::vector<int> first;
    std::vector<int> second;
    std::thread one([&] { first = firstOf(shared, 10'000); });
    std::thread two([&] { second = firstOf(shared, 10'000); });
    one.join();
    two.join();
    std::multiset<int> taken(first.begin(), first.end());
    taken.insert(second.begin(), second.end());
    EXPECT_EQ(taken, expected);
}

TEST(RandomIntegerGenerator, NeverYieldsTheUpperBound) {
    EXPECT_EQ(manyOf(RandomIntegerGenerator("VAL", 0, 4)),
              (std::set<std::string>{"0", "1", "2", "3"}));
    EXPECT_EQ(manyOf(RandomIntegerGenerator("VAL", -2, 1)),
              (std::set<std::string>{"-2", "-1", "0"}));
}

TEST(RandomIntegerGenerator, ARangeWithoutRoomYieldsTheLowerBound) {
    EXPECT_EQ(manyOf(RandomIntegerGenerator("VAL", 7, 7)), (std::set<std::string>{"7"}));
}

TEST(RandomIntegerGenerator, ARangeThatRunsBackwardsCountsUpFromItsLowerBound) {
    EXPECT_EQ(manyOf(RandomIntegerGenerator("VAL", 4, 1)), (std::set<std::string>{"4", "5", "6"}));
}

TEST(RandomIntegerGenerator, BoundsAtTheEndsOfTheirTypeWrap) {
    constexpr auto least = std::numeric_limits<std::int32_t>::min();
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    // The range wraps to -1, and a number modulo that is 0.
    EXPECT_EQ(manyOf(RandomIntegerGenerator("VAL", least, most)),
              (std::set<std::string>{"-2147483648"}));
    EXPECT_EQ(manyOf(RandomIntegerGenerator("VAL", most, most - 2)),
              (std::set<std::string>{"2147483647", "-2147483648"}));
}

TEST(RandomFloatGenerator, StaysBelowTheUpperBound) {
    RandomFloatGenerator const generator("VAL", 0, 1);
    for (auto const& value : manyOf(generator, 200'000)) {
        EXPECT_GE(std::stof(value), 0.0F) << value;
        EXPECT_LT(std::stod(value), 1.0) << value;
    }
}

TEST(RandomFloatGenerator, TakesItsFractionInSteps) {
    auto const values = manyOf(RandomFloatGenerator("VAL", -16384, 16384), 2000);
    for (auto const& value : values)
        EXPECT_EQ(value.find('.'), std::string::npos) << value;
    EXPECT_GT(values.size(), 1000U);
}

TEST(RandomEnumGenerator, YieldsEachOfItsValuesAndNothingWithoutOne) {
    EXPECT_EQ(manyOf(RandomEnumGenerator("VAL", {"CUT", "", "\x92"})),
              (std::set<std::string>{"CUT", "", "\x92"}));
    EXPECT_EQ(manyOf(RandomEnumGenerator("VAL", {})), (std::set<std::string>{""}));
}

TEST(ParameterGenerator, MakesAParameterOfItsNameAndACloneDoesTheSame) {
    std::unique_ptr<ParameterGenerator> const copy(RandomEnumGenerator("MODE", {"CUT"}).clone());
    auto const parameter = copy->generate();
    EXPECT_EQ(parameter.getName(), "MODE");
    EXPECT_EQ(parameter.getValue(), "CUT");
}

std::string shown(FIDGenerator const& generator) {
    auto const [name, list] = generator.generate();
    std::string text = name;
    for (auto const& parameter : list)
        text += " " + parameter.getName() + "=" + parameter.getValue();
    return text;
}

TEST(FIDGenerator, GeneratesOneParameterPerGeneratorInOrder) {
    FIDGenerator generator("ME1.KEY1");
    generator.addParameter(new RandomEnumGenerator("B", {"x"}));
    generator.addParameter(new RandomIntegerGenerator("A", 5, 6));
    EXPECT_EQ(shown(generator), "ME1.KEY1 B=x A=5");
}

TEST(FIDGenerator, ACopyOwnsCopies) {
    FIDGenerator copy("OTHER");
    {
        FIDGenerator original("ME1.CUT");
        original.addParameter(new RandomEnumGenerator("B", {"x"}));
        FIDGenerator const second(original);
        copy = second;
        copy = *&copy;
        EXPECT_EQ(shown(second), "ME1.CUT B=x");
    }
    EXPECT_EQ(shown(copy), "ME1.CUT B=x");
}

}  // namespace
}  // namespace FrameDriver::Tools::MonkeyTest
