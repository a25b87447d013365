#include "sims/frame/Frame.h"
#include "sims/frame/ModelFile.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace FrameSim {
namespace {

using Texts = std::vector<std::string>;

constexpr EventKey cut{40, 0x03000000};
constexpr EventKey cutOn2{40, 0x03000001};
constexpr EventKey autoTransition{41, 0x03000000};
constexpr EventKey recall{64, 0x35000000};
constexpr EventKey store{65, 0x35000000};
constexpr EventKey copy{85, 0x35000000};
constexpr ParameterKey program{10, 0x24000000};
constexpr ParameterKey key1Fill{10, 0x24000200};
constexpr ParameterKey key1On{20, 0x08000000};
constexpr ParameterKey key3On{20, 0x08000020};
constexpr ParameterKey lever{30, 0x03000000};
constexpr ParameterKey rate{31, 0x03000000};
constexpr ParameterKey elements{32, 0x03000000};
constexpr ParameterKey direction{33, 0x03000000};
constexpr ParameterKey running{34, 0x03000000};
constexpr ParameterKey aux1{40, 0x18000000};
constexpr ParameterKey inUse{60, 0x35000000};
constexpr ListKey registers{23, 1, 0x35000000};

class Switcher : public testing::Test {
  protected:
    void set(ParameterKey key, std::int64_t number) {
        auto const type = *frame.typeOf(key);
        auto const value =
            type == DataType::Bool ? Value::ofBool(number != 0) : Value::ofInteger(type, number);
        EXPECT_EQ(frame.set(key, 0, value).cause, "");
    }
    std::string value(ParameterKey key) { return shownValue(*frame.value(key)); }
    std::string tally(std::uint32_t source) { return value({11, 0x1b000000 + source}); }
    /// The sources on air, in order.
    Texts onAir() {
        Texts all;
        for (std::uint32_t source = 0; source <= 16; ++source) {
            if (tally(source) == "true") {
                all.push_back(std::to_string(source));
            }
        }
        return all;
    }
    /// What has changed since the last look: "PID DID VALUE", lists as "list LID".
    Texts changes() {
        Texts all;
        for (auto const& change : frame.takeChanges()) {
            if (auto const* parameter = std::get_if<ParameterChange>(&change)) {
                all.push_back(std::to_string(parameter->key.pid) + " " +
                              shownDevice(parameter->key.did) + " " + shownValue(parameter->value));
            } else {
                all.push_back("list " + std::to_string(std::get<ListChange>(change).key.lid));
            }
        }
        return all;
    }
    std::string happen(EventKey key, std::string_view data = {}) {
        return frame.event(key, data).cause;
    }
    static std::string twoBytes(unsigned number) {
        return {static_cast<char>(number >> 8U), static_cast<char>(number)};
    }
    static std::string storeData(unsigned number) {
        return std::string(4, '\0') + twoBytes(number);
    }

    Frame frame{sampleSwitcher()};
};

TEST_F(Switcher, StartsWithTheTallyOfWhatIsOnAir) {
    EXPECT_EQ(onAir(), Texts{"1"});
    EXPECT_EQ(changes(), Texts{});
}

TEST_F(Switcher, CutSwapsProgramAndPreset) {
    EXPECT_EQ(happen(cut), "");
    EXPECT_EQ(changes(), (Texts{"10 24000000 2", "10 24000100 1", "11 1b000002 true"}));
    EXPECT_EQ(onAir(), (Texts{"1", "2"}));  // source 1 is still on M/E 2
    EXPECT_EQ(happen(cutOn2), "");
    EXPECT_EQ(onAir(), Texts{"2"});
    EXPECT_EQ(happen({40, 0x03000002}), "no such event");
}

TEST_F(Switcher, CutTogglesTheKeyersOfTheNextTransition) {
    set(elements, 0b01010);  // keys 1 and 3, and no background
    set(key3On, 1);
    changes();
    EXPECT_EQ(happen(cut), "");
    EXPECT_EQ(changes(), (Texts{"20 08000000 true", "20 08000020 false"}));
    EXPECT_EQ(value(program), "1");
}

TEST_F(Switcher, AutoMovesTheLeverOverTheRateAndSwapsAtItsEnd) {
    set(rate, 4);
    changes();
    EXPECT_EQ(happen(autoTransition), "");
    EXPECT_EQ(changes(), Texts{"34 03000000 true"});
    EXPECT_TRUE(frame.busy());
    frame.advanceFields(1);
    EXPECT_EQ(changes(), (Texts{"30 03000000 1023", "11 1b000002 true"}));
    frame.advanceFields(2);
    EXPECT_EQ(changes(), (Texts{"30 03000000 2047", "30 03000000 3071"}));
    frame.advanceFields(1);
    EXPECT_EQ(changes(), (Texts{"30 03000000 4095", "34 03000000 false", "10 24000000 2",
                                "10 24000100 1", "33 03000000 1"}));
    EXPECT_FALSE(frame.busy());
    frame.advanceFields(5);
    EXPECT_EQ(changes(), Texts{});
    EXPECT_EQ(onAir(), (Texts{"1", "2"}));
}

TEST_F(Switcher, TheNextAutoGoesBack) {
    set(rate, 1);
    happen(autoTransition);
    frame.advanceFields(1);
    EXPECT_EQ(value(lever), "4095");
    happen(autoTransition);
    frame.advanceFields(1);
    EXPECT_EQ(value(lever), "0");
    EXPECT_EQ(value(direction), "0");
    EXPECT_EQ(value(program), "1");
}

TEST_F(Switcher, ASecondAutoStopsTheFirstAndAThirdGoesOnOverTheRest) {
    set(rate, 100);
    happen(autoTransition);
    frame.advanceFields(50);
    EXPECT_EQ(value(lever), "2047");
    happen(autoTransition);
    EXPECT_EQ(value(running), "false");
    frame.advanceFields(10);
    EXPECT_EQ(value(lever), "2047");
    happen(autoTransition);
    frame.advanceFields(49);
    EXPECT_EQ(value(running), "true");
    frame.advanceFields(1);
    EXPECT_EQ(value(running), "false");
    EXPECT_EQ(value(lever), "4095");
    EXPECT_EQ(value(program), "2");
}

TEST_F(Switcher, BothMixEffectsRunAtOnce) {
    happen(autoTransition);
    happen({41, 0x03000001});
    frame.advanceFields(25);
    EXPECT_EQ(value(lever), "4095");
    EXPECT_EQ(value({30, 0x03000001}), "4095");
    EXPECT_FALSE(frame.busy());
}

TEST_F(Switcher, ACutInAnAutoTakesItToItsEnd) {
    happen(autoTransition);
    frame.advanceFields(5);
    changes();
    happen(cut);
    EXPECT_EQ(changes(), (Texts{"30 03000000 4095", "34 03000000 false", "10 24000000 2",
                                "10 24000100 1", "33 03000000 1"}));
    EXPECT_FALSE(frame.busy());
}

TEST_F(Switcher, TheLeverByHandSwapsAtTheOtherEndOnly) {
    set(lever, 2000);
    EXPECT_EQ(onAir(), (Texts{"1", "2"}));
    set(lever, 0);
    EXPECT_EQ(value(program), "1");
    EXPECT_EQ(onAir(), Texts{"1"});
    set(lever, 4000);
    set(lever, 4095);
    EXPECT_EQ(value(program), "2");
    EXPECT_EQ(value(direction), "1");
    set(lever, 100);
    set(lever, 4095);
    EXPECT_EQ(value(program), "2");
    set(lever, 0);
    EXPECT_EQ(value(program), "1");
    EXPECT_EQ(value(direction), "0");
}

TEST_F(Switcher, AHandOnTheLeverStopsTheAuto) {
    happen(autoTransition);
    frame.advanceFields(5);
    set(lever, 3000);
    EXPECT_EQ(value(running), "false");
    frame.advanceFields(5);
    EXPECT_EQ(value(lever), "3000");
}

TEST_F(Switcher, AnAutoWithNowhereToGoTurnsFirst) {
    set(direction, 1);
    happen(autoTransition);
    frame.advanceFields(25);
    EXPECT_EQ(value(lever), "4095");
    EXPECT_EQ(value(program), "2");
    EXPECT_EQ(value(direction), "1");
}

TEST_F(Switcher, TallyFollowsKeyersAndNotAuxes) {
    set(key1Fill, 7);
    set(aux1, 9);
    EXPECT_EQ(onAir(), Texts{"1"});
    set(key1On, 1);
    EXPECT_EQ(onAir(), (Texts{"1", "7"}));
    set(program, 0);
    EXPECT_EQ(onAir(), (Texts{"0", "1", "7"}));
    set(elements, 0b00010);
    set(key1On, 0);
    EXPECT_EQ(onAir(), (Texts{"0", "1"}));
    set(lever, 10);  // key 1 comes in, the background stays
    EXPECT_EQ(onAir(), (Texts{"0", "1", "7"}));
    EXPECT_EQ(frame.set({11, 0x1b000001}, 0, Value::ofBool(false)).cause, "read only");
}

TEST_F(Switcher, ARegisterHoldsWhatItsPageSays) {
    set(program, 5);
    set(key1On, 1);
    set(rate, 99);
    set(aux1, 3);
    EXPECT_EQ(happen(store, storeData(3)), "");
    EXPECT_EQ(value(inUse), "3");
    set(program, 6);
    set(key1On, 0);
    set(rate, 10);
    set(aux1, 4);
    set(lever, 100);
    changes();
    EXPECT_EQ(happen(recall, twoBytes(3)), "");
    EXPECT_EQ(changes(),
              (Texts{"10 24000000 5", "20 08000000 true", "31 03000000 99", "40 18000000 3",
                     "11 1b000000 true", "11 1b000005 true", "11 1b000006 false"}));
    EXPECT_EQ(value(lever), "100");
}

TEST_F(Switcher, ARegisterInUseStandsInItsList) {
    EXPECT_EQ(frame.items(registers)->size(), 0U);
    happen(store, storeData(3));
    happen(store, storeData(1));
    EXPECT_EQ(happen(copy, twoBytes(3) + twoBytes(99)), "");
    Texts shown;
    for (auto const& line : frame.dump("lid=23")) {
        shown.push_back(line.text());
    }
    EXPECT_EQ(shown, (Texts{R"(item lid=23 number=1 did=35000000 itemId=2 nextItemId=4 status=1 )"
                            R"("Register Id"=1 "Is Valid"=true "Register Name"="Register 1" )"
                            R"("Register Comment"="")",
                            R"(item lid=23 number=1 did=35000000 itemId=4 nextItemId=100 status=1 )"
                            R"("Register Id"=3 "Is Valid"=true "Register Name"="Register 3" )"
                            R"("Register Comment"="")",
                            R"(item lid=23 number=1 did=35000000 itemId=100 nextItemId=0 status=1 )"
                            R"("Register Id"=99 "Is Valid"=true "Register Name"="Register 99" )"
                            R"("Register Comment"="")"}));
}

TEST_F(Switcher, ACopiedRegisterIsTheSameAsItsSource) {
    set(program, 5);
    happen(store, storeData(3));
    happen(copy, twoBytes(3) + twoBytes(4));
    set(program, 6);
    happen(store, storeData(3));
    EXPECT_EQ(happen(recall, twoBytes(4)), "");
    EXPECT_EQ(value(program), "5");
    EXPECT_EQ(value(inUse), "4");
}

TEST_F(Switcher, RefusesRegistersThatArentThere) {
    EXPECT_EQ(happen(recall, twoBytes(3)), "not possible");
    EXPECT_EQ(happen(store, storeData(100)), "not possible");
    EXPECT_EQ(happen(copy, twoBytes(3) + twoBytes(4)), "not possible");
    happen(store, storeData(3));
    EXPECT_EQ(happen(copy, twoBytes(3) + twoBytes(100)), "not possible");
    EXPECT_EQ(happen(recall, "\3"), "event data of the wrong size");
}

TEST_F(Switcher, FieldRateOf59IsTheBroadcastOne) {
    EXPECT_DOUBLE_EQ(frame.fieldRate(), 50);
    set({50, 0x01000001}, 59);
    EXPECT_DOUBLE_EQ(frame.fieldRate(), 60000.0 / 1001.0);
}

TEST(SwitcherOfAnotherSize, TakesItsSizeFromTheModel) {
    Frame frame(readModel("m", R"({"behaviour": "switcher", "parameters": [
        {"pid": 10, "device": "24000000", "type": "UInt16", "value": 1,
         "over": [{"shift": 4, "count": 3}, {"shift": 8, "count": 2}]}],
      "events": [{"eid": 40, "device": "03000000", "over": [{"shift": 0, "count": 4}]},
                 {"eid": 41, "device": "03000000"}, {"eid": 7, "device": "00000000"}]})"));
    frame.set({10, 0x24000120}, 0, Value::ofInteger(DataType::UInt16, 9));
    EXPECT_TRUE(frame.event({40, 0x03000002}, "").good());
    EXPECT_EQ(frame.value({10, 0x24000020})->integer(), 9);
    EXPECT_EQ(frame.event({40, 0x03000003}, "").cause, "not possible");
    EXPECT_TRUE(frame.event({7, 0}, "").good());
    EXPECT_TRUE(frame.event({41, 0x03000000}, "").good());  // no lever, no rate: still no harm
    frame.advanceFields(100);
    EXPECT_FALSE(frame.busy());
}

}  // namespace
}  // namespace FrameSim
