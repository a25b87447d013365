#include "sims/frame/Frame.h"

#include "sims/frame/ModelFile.h"

#include <gtest/gtest.h>

#include <limits>

namespace FrameSim {
namespace {

using Texts = std::vector<std::string>;

/// A change as a text: "PID DID VALUE", or "LID ITEM-ID NEXT-ITEM-ID STATUS ..." of a list.
std::string shown(Change const& change) {
    if (auto const* parameter = std::get_if<ParameterChange>(&change)) {
        return std::to_string(parameter->key.pid) + " " + shownDevice(parameter->key.did) + " " +
               shownValue(parameter->value);
    }
    auto const& list = std::get<ListChange>(change);
    std::string text = "list " + std::to_string(list.key.lid);
    for (auto const& item : list.items) {
        text += " (" + std::to_string(item.itemId) + " next " + std::to_string(item.nextItemId) +
                " status " + std::to_string(item.status) + (item.empty ? " empty)" : ")");
    }
    return text;
}

Texts changesOf(Frame& frame) {
    Texts all;
    for (auto const& change : frame.takeChanges()) {
        all.push_back(shown(change));
    }
    return all;
}

Value word(std::int64_t number) { return Value::ofInteger(DataType::UInt16, number); }

std::string set(Frame& frame, ParameterKey key, std::int32_t flag, Value const& value) {
    auto const outcome = frame.set(key, flag, value);
    EXPECT_EQ(outcome.status, outcome.cause.empty() ? 0 : 3);
    return outcome.good() ? shownValue(*frame.value(key)) : outcome.cause;
}

constexpr char plainModel[] = R"({"parameters": [
    {"pid": 1, "device": "01000001", "type": "UInt16", "value": 10, "maximum": 99, "also": 65535},
    {"pid": 2, "device": "01000001", "type": "Bool"},
    {"pid": 3, "device": "01000001", "type": "Percent", "value": 50, "minimum": 0, "maximum": 100},
    {"pid": 4, "device": "01000001", "type": "State", "value": 1},
    {"pid": 5, "device": "01000001", "type": "String", "value": "show"},
    {"pid": 6, "device": "01000001", "type": "Int32", "value": 5},
    {"pid": 7, "device": "01000001", "type": "UInt16", "readOnly": true}],
  "events": [{"eid": 9, "device": "01000001", "data": 2}],
  "lists": [{"lid": 6, "number": 1, "device": "3e000000", "writable": true},
            {"lid": 23, "number": 1, "device": "35000000"}]})";

ParameterKey pid(std::int32_t number) { return {number, 0x01000001}; }

TEST(FrameSet, DoesWhatItsFlagAndTypeSay) {
    struct Row {
        std::int32_t pid;
        std::int32_t flag;
        Value value;
        std::string after;  // the value, or why not
    };
    auto const real = [](float number) { return Value::ofReal(DataType::Float, number); };
    auto const step = [](std::int64_t number) { return Value::ofInteger(DataType::Int16, number); };
    constexpr float inf = std::numeric_limits<float>::infinity();
    std::string const refusal = "wrong type or set flag";
    Row const rows[] = {
        {1, 0, word(20), "20"},
        {1, 0, word(100), "99"},
        {1, 0, word(65535), "65535"},
        {1, 0, step(20), refusal},
        {1, 1, word(5), "15"},
        {1, 1, step(-3), "7"},
        {1, 1, step(-30), "0"},
        {1, 1, real(1), refusal},
        {1, 4, Value::ofBool(true), "10"},
        {1, 10, word(3), "10"},
        {1, 8, word(3), refusal},
        {1, 2, word(3), refusal},
        {1, 99, word(3), refusal},
        {2, 0, Value::ofBool(true), "true"},
        {2, 8, Value::ofBool(false), "true"},
        {2, 1, Value::ofBool(true), refusal},
        {2, 0, word(1), refusal},
        {3, 0, real(20), "20"},
        {3, 0, Value::ofReal(DataType::Percent, 20), "20"},
        {3, 0, real(120), "100"},
        {3, 1, real(-60), "0"},
        {3, 0, real(inf), refusal},
        {3, 0, Value::ofReal(DataType::Degree, 20), refusal},
        {4, 0, step(-1), "65535"},
        {4, 0, word(2), refusal},
        {5, 0, Value::ofText("a\x92"), R"("a\x92")"},
        {5, 1, Value::ofText("more"), refusal},
        {5, 4, Value::ofText(""), "\"show\""},
        {6, 1, Value::ofInteger(DataType::Int32, std::numeric_limits<std::int32_t>::max()),
         "2147483647"},
        {7, 0, word(1), "read only"},
        {8, 0, word(1), "no such parameter"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE("pid " + std::to_string(row.pid) + " flag " + std::to_string(row.flag) +
                     " value " + shownValue(row.value));
        Frame frame(readModel("m", plainModel));
        EXPECT_EQ(set(frame, pid(row.pid), row.flag, row.value), row.after);
    }
}

TEST(FrameSet, IsAChangeOnlyIfTheValueIsAnother) {
    Frame frame(readModel("m", plainModel));
    int news = 0;
    frame.setChangeHook([&] { ++news; });
    frame.set(pid(1), 0, word(10));
    EXPECT_EQ(changesOf(frame), Texts{});
    EXPECT_EQ(news, 0);
    frame.set(pid(1), 0, word(100));
    frame.set(pid(1), 0, word(99));
    EXPECT_EQ(changesOf(frame), Texts{"1 01000001 99"});
    EXPECT_EQ(changesOf(frame), Texts{});
    EXPECT_EQ(news, 2);
}

TEST(FrameAssign, GoesPastReadOnlyButNotPastTypeAndRange) {
    Frame frame(readModel("m", plainModel));
    EXPECT_TRUE(frame.assign(pid(7), word(4)));
    EXPECT_TRUE(frame.assign(pid(1), word(200)));
    EXPECT_FALSE(frame.assign(pid(1), Value::ofBool(true)));
    EXPECT_FALSE(frame.assign(pid(8), word(1)));
    EXPECT_EQ(changesOf(frame), (Texts{"7 01000001 4", "1 01000001 99"}));
}

TEST(FrameEvent, IsTakenOnlyAsTheModelHasIt) {
    Frame frame(readModel("m", plainModel));
    EXPECT_EQ(frame.event({9, 0x01000001}, "ab").cause, "");
    EXPECT_EQ(frame.event({9, 0x01000001}, "abc").cause, "event data of the wrong size");
    EXPECT_EQ(frame.event({9, 0x01000002}, "ab").cause, "no such event");
    EXPECT_EQ(frame.event({8, 0x01000001}, "ab").cause, "no such event");
}

constexpr ListKey clips{6, 1, 0x3e000000};

std::string clip(std::int64_t markIn, std::string const& name) {
    return fieldBytes({Value::ofInteger(DataType::UInt32, markIn), Value::ofText(name)});
}

TEST(FrameList, AnItemStandsInThePlaceOfItsIdAndIsLinked) {
    Frame frame(readModel("m", plainModel));
    EXPECT_TRUE(frame.writeList(1, clips, 5, clip(0, "b")).good());
    EXPECT_EQ(changesOf(frame), Texts{"list 6 (5 next 0 status 1)"});
    EXPECT_TRUE(frame.writeList(1, clips, 9, clip(0, "c")).good());
    EXPECT_EQ(changesOf(frame), Texts{"list 6 (5 next 9 status 2) (9 next 0 status 1)"});
    EXPECT_TRUE(frame.writeList(1, clips, 2, clip(0, "a")).good());
    EXPECT_EQ(changesOf(frame), Texts{"list 6 (2 next 5 status 1)"});
    EXPECT_TRUE(frame.writeList(2, clips, 5, clip(25, "B")).good());
    EXPECT_EQ(changesOf(frame), Texts{"list 6 (5 next 9 status 2)"});
    EXPECT_TRUE(frame.writeList(1, clips, 5, clip(25, "B")).good());
    EXPECT_EQ(changesOf(frame), Texts{});
    EXPECT_TRUE(frame.writeList(3, clips, 5, "").good());
    EXPECT_EQ(changesOf(frame), Texts{"list 6 (2 next 9 status 2) (5 next 0 status 3 empty)"});
    EXPECT_TRUE(frame.writeList(3, clips, 9, "").good());
    EXPECT_EQ(changesOf(frame), Texts{"list 6 (2 next 0 status 2) (9 next 0 status 3 empty)"});
    EXPECT_TRUE(frame.writeList(3, clips, 2, "").good());
    EXPECT_EQ(changesOf(frame), Texts{"list 6 (2 next 0 status 3 empty)"});
    EXPECT_EQ(frame.items(clips), std::vector<ListItem>{});
}

TEST(FrameList, RefusesWhatCantBeWritten) {
    Frame frame(readModel("m", plainModel));
    EXPECT_EQ(frame.writeList(1, {6, 2, 0x3e000000}, 1, clip(0, "a")).cause, "no such list");
    EXPECT_EQ(frame.writeList(1, {23, 1, 0x35000000}, 1, "").cause, "read only");
    EXPECT_EQ(frame.writeList(4, clips, 1, clip(0, "a")).cause, "no such action");
    EXPECT_EQ(frame.writeList(2, clips, 1, clip(0, "a")).cause, "no such item");
    EXPECT_EQ(frame.writeList(3, clips, 1, "").cause, "no such item");
    EXPECT_EQ(frame.writeList(1, clips, 1, "abc").cause, "fields of the wrong form");
    EXPECT_EQ(changesOf(frame), Texts{});
}

TEST(FrameList, IsBounded) {
    Frame frame(readModel("m", plainModel));
    for (std::uint32_t id = 1; id <= mostListItems; ++id) {
        ASSERT_TRUE(frame.writeList(1, clips, id, clip(0, "a")).good());
    }
    EXPECT_EQ(frame.writeList(1, clips, 20000, clip(0, "a")).cause, "the list is full");
    EXPECT_TRUE(frame.writeList(1, clips, 1, clip(0, "b")).good());
}

TEST(FrameDump, ShowsOnlyLinesThatContainThePattern) {
    Frame frame(readModel("m", plainModel));
    EXPECT_EQ(frame.dump().size(), 7U);
    ASSERT_EQ(frame.dump("pid=3 ").size(), 1U);
    EXPECT_EQ(frame.dump("pid=3 ")[0].text(), "parameter pid=3 did=01000001 type=Percent value=50");
    EXPECT_EQ(frame.dump("nothing like it").size(), 0U);
}

TEST(FrameChanges, ComeWithTheStateBehindTheLastOfThem) {
    Frame frame(readModel("m", plainModel));
    frame.set(pid(1), 0, word(1));
    frame.set(pid(1), 0, word(2));
    std::int64_t seen = 0;
    auto const changes =
        frame.takeChanges([&](FrameModel const& model) { seen = model.integer(pid(1)); });
    EXPECT_EQ(seen, 2);
    EXPECT_EQ(changes.size(), 2U);
}

}  // namespace
}  // namespace FrameSim
