#include "driver/FIDMapHandler.h"
#include "tests/support/RecordingSinks.h"

#include <gtest/gtest.h>

using FrameDriver::Testing::RecordingSinks;
using Lines = std::vector<std::string>;

namespace {

struct Taker {
    bool take(std::string const& name, FIDParameterList const& parameters) {
        heard.push_back(name + "/" + std::to_string(parameters.size()));
        return true;
    }
    bool other(std::string const& name, FIDParameterList const&) {
        heard.push_back("other " + name);
        return true;
    }
    Lines heard;
};

class Pattern : public PatternFIDFunctionBase {
  public:
    Pattern(std::string patternText, Lines& target) : text(std::move(patternText)), heard(target) {}
    bool invoke(std::string const& name, FIDParameterList const&,
                FIDParameterList const& captured) override {
        std::string line = text + " " + name;
        for (auto const& each : captured)
            line += " " + each.getName() + "=" + each.getValue();
        heard.push_back(line);
        return true;
    }
    std::string pattern() const override { return text; }

  private:
    std::string text;
    Lines& heard;
};

}  // namespace

TEST(FIDMapHandler, CallsWhatIsRegisteredUnderExactlyThatName) {
    FIDMapHandler handler;
    Taker taker;
    handler.addFunction<Taker>("A.B", &taker, &Taker::take);
    FIDParameterList parameters;
    parameters.add("x", "1");
    for (auto const* name : {"A.B", "a.b", "A.B ", "A", ""})
        handler.handleFID(name, parameters);
    EXPECT_EQ(taker.heard, (Lines{"A.B/1"}));
}

TEST(FIDMapHandler, AddingANameTwiceIsRefusedAndKeepsTheFirst) {
    FIDMapHandler handler;
    Taker taker;
    EXPECT_TRUE(handler.addFunction<Taker>("A", &taker, &Taker::take));
    EXPECT_FALSE(handler.addFunction<Taker>("A", &taker, &Taker::other));
    handler.handleFID("A", {});
    EXPECT_EQ(taker.heard, (Lines{"A/0"}));
}

TEST(FIDMapHandler, RemovesAFunctionOnce) {
    FIDMapHandler handler;
    Taker taker;
    handler.addFunction<Taker>("A", &taker, &Taker::take);
    EXPECT_TRUE(handler.removeFunction("A"));
    EXPECT_FALSE(handler.removeFunction("A"));
    handler.handleFID("A", {});
    EXPECT_EQ(taker.heard, Lines{});
}

TEST(FIDMapHandler, AnUnknownNameGoesToTheFirstPatternThatItFits) {
    FIDMapHandler handler;
    Taker taker;
    Lines heard;
    handler.addFunction<Taker>("A.1.C", &taker, &Taker::take);
    handler.addPatternFunction(std::make_unique<Pattern>("A.*.C", heard));
    handler.addPatternFunction(std::make_unique<Pattern>("*.*.C", heard));
    for (auto const* name : {"A.1.C", "A.2.C", "B.3.C", "B.3.D", "A.C"})
        handler.handleFID(name, {});
    EXPECT_EQ(taker.heard, (Lines{"A.1.C/0"}));
    EXPECT_EQ(heard, (Lines{"A.*.C A.2.C 1=2", "*.*.C B.3.C 1=B 2=3"}));
}

TEST(FIDMapHandler, ForwardsToTheSinksInTheirSlots) {
    FIDMapHandler handler;
    RecordingSinks sinks;
    handler.setStateSink(&sinks);
    handler.setFunctionSink(&sinks);
    handler.setState("S", "1");
    handler.setStateNumber("N", 0.5F);
    handler.reservedState2(nullptr, nullptr);
    handler.reservedState3(nullptr, nullptr);
    handler.reservedState4(nullptr);
    handler.setText("T", "text");
    FIDParameterList parameters;
    parameters.add("WP", "2");
    handler.sendFunction("F", parameters);
    EXPECT_EQ(sinks.lines(), (Lines{"SID S = 1", "number N = 0.500000", "slot 2", "slot 3",
                                    "slot 4", "TID T = text", "FID F WP=2"}));
}

TEST(FIDMapHandler, WithoutSinksForwardsNothing) {
    FIDMapHandler handler;
    handler.setState("S", "1");
    handler.setStateNumber("N", 1);
    handler.reservedState2(nullptr, nullptr);
    handler.reservedState3(nullptr, nullptr);
    handler.reservedState4(nullptr);
    handler.setText("T", "1");
    handler.sendFunction("F", {});
    SUCCEED();
}

TEST(FIDMapHandler, AnswersItsOwnNumberOnly) {
    FIDMapHandler handler;
    EXPECT_EQ(handler.queryInterface(1100), static_cast<IInterface*>(&handler));
    for (int const id : {0, 1101, 1201, -1})
        EXPECT_EQ(handler.queryInterface(id), nullptr) << id;
    handler.reservedFunction1(nullptr);
    handler.reservedFunction2();
}
