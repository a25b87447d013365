#include "cpl/Issue.h"
#include "cpl/IssueDispatcher.h"
#include "tests/support/LogCapture.h"
#include "tests/support/cplclient/LinkRecords.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace FrameDriver::CPL {
namespace {

using Testing::ListRecord;
using Testing::LogCapture;
using Testing::ParameterRecord;
using Lines = std::vector<std::string>;

constexpr std::uint32_t ownId = 5;
constexpr std::uint32_t otherId = 6;

/// Keeps the log line of each issue, and whether it was marked.
class Recorder : public IssueHandler {
  public:
    void handleIssue(Issue* issue) override {
        lines.push_back((issue->isMarked() ? "marked " : "") + issue->toString());
    }
    Lines lines;
};

class IssueDispatcherTest : public testing::Test {
  protected:
    IssueDispatcherTest() {
        dispatcher.setCallbackId(ownId);
        dispatcher.addHandler(&recorder);
    }

    void update(ParameterRecord record, std::uint32_t callback = ownId) {
        dispatcher.parameterUpdate(record.message(), nullptr, &callback, nullptr);
    }
    void reply(ParameterRecord record, std::uint32_t callback = ownId) {
        dispatcher.parameterReply(record.message(), nullptr, &callback, nullptr);
    }
    void list(ListRecord record) { dispatcher.listUpdate(record.message(), nullptr); }

    LogCapture log;
    IssueDispatcher dispatcher;
    Recorder recorder;
};

struct Kind {
    ParameterRecord record;
    char const* value;
};

std::vector<Kind> kinds() {
    using std::string_view_literals::operator""sv;
    return {
        {ParameterRecord::of<std::int16_t>(1, 2, 0, -3), "-3"},
        {ParameterRecord::of<std::int32_t>(1, 2, 1, -70000), "-70000"},
        {ParameterRecord::of<std::uint16_t>(1, 2, 2, 65535), "65535"},
        {ParameterRecord::of<std::uint32_t>(1, 2, 3, 4294967295u), "4294967295"},
        {ParameterRecord::of<std::uint8_t>(1, 2, 4, 1), "true"},
        {ParameterRecord::of<std::uint8_t>(1, 2, 4, 0), "false"},
        {ParameterRecord::of(1, 2, 5, 0.5f), "0.5"},
        {ParameterRecord(1, 2, 7, "two words"), "two words"},
        {ParameterRecord(1, 2, 7, "up to\0here"sv), "up to"},
        {ParameterRecord(1, 2, 7, ""), ""},
        {ParameterRecord::of(1, 2, 8, 1.5), ""},
        {ParameterRecord::of(1, 2, 11, 0.25f), "0.25"},
        {ParameterRecord::of(1, 2, 12, 0.25f), "0.25"},
        {ParameterRecord::of(1, 2, 14, 0.25f), "0.25"},
        {ParameterRecord::of(1, 2, 15, 0.25f), "0.25"},
        {ParameterRecord::of(1, 2, 16, 0.25f), "0.25"},
        {ParameterRecord::of(1, 2, 17, 0.25f), "0.25"},
        {ParameterRecord::of<std::uint16_t>(1, 2, 18, 65535), "-1"},
        {ParameterRecord(1, 2, 6, "??"), ""},
        {ParameterRecord(1, 2, 19, ""), ""},
        {ParameterRecord(1, 2, 999, "????"), ""},
    };
}

TEST_F(IssueDispatcherTest, AnUpdateOfEveryKindBecomesAnIssue) {
    for (Kind const& kind : kinds()) {
        SCOPED_TRACE(kind.value);
        recorder.lines.clear();
        update(kind.record);
        EXPECT_EQ(recorder.lines, Lines{std::string("Parameter Issue (pid=1, did=2, val=") +
                                        kind.value + ", flag=0)"});
    }
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(IssueDispatcherTest, AReplyOfEveryKindBecomesAMarkedIssue) {
    for (Kind const& kind : kinds()) {
        SCOPED_TRACE(kind.value);
        recorder.lines.clear();
        reply(kind.record);
        EXPECT_EQ(recorder.lines, Lines{std::string("marked Parameter Issue (pid=1, did=2, val=") +
                                        kind.value + ", flag=0)"});
    }
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(IssueDispatcherTest, ParametersForAnotherRegistrationAreIgnored) {
    ParameterRecord const record(1, 2, 7, "x");
    update(record, otherId);
    reply(record, otherId);
    update(record, ownId + 0x10000);  // all 32 bits count
    EXPECT_EQ(recorder.lines, Lines{});
}

TEST_F(IssueDispatcherTest, UnregisteredItServesFFFF) {
    dispatcher.setCallbackId(IssueDispatcher().getCallbackId());
    EXPECT_EQ(dispatcher.getCallbackId(), 0xFFFF);
    update(ParameterRecord(1, 2, 7, "x"), ownId);
    EXPECT_EQ(recorder.lines, Lines{});
    update(ParameterRecord(1, 2, 7, "x"), 0xFFFF);
    EXPECT_EQ(recorder.lines.size(), 1u);
}

TEST_F(IssueDispatcherTest, AStringIsClosedAtItsLengthInTheLibrarysRecord) {
    ParameterRecord record(1, 2, 7, "abc");
    std::uint32_t const callback = ownId;
    dispatcher.parameterReply(record.message(), nullptr, &callback, nullptr);
    EXPECT_EQ(record.byteBehindValue(), '#');  // a reply leaves the record as it is
    dispatcher.parameterUpdate(record.message(), nullptr, &callback, nullptr);
    EXPECT_EQ(record.byteBehindValue(), '\0');
    EXPECT_EQ(recorder.lines, (Lines{"marked Parameter Issue (pid=1, did=2, val=abc, flag=0)",
                                     "Parameter Issue (pid=1, did=2, val=abc, flag=0)"}));
}

TEST_F(IssueDispatcherTest, OnlyStringsAreClosed) {
    auto record = ParameterRecord::of<std::int16_t>(1, 2, 0, 5);
    std::uint32_t const callback = ownId;
    dispatcher.parameterUpdate(record.message(), nullptr, &callback, nullptr);
    EXPECT_EQ(record.byteBehindValue(), '#');
}

TEST_F(IssueDispatcherTest, OnlyRepliesMustComeFromTheParameterService) {
    ParameterRecord record(1, 2, 7, "x");
    record.message()->serviceId = 4;
    reply(record);
    EXPECT_EQ(recorder.lines, Lines{});
    update(record);
    EXPECT_EQ(recorder.lines.size(), 1u);
}

TEST_F(IssueDispatcherTest, AValueShorterThanItsTypeIs0AndWarns) {
    update(ParameterRecord(9, 2, 1, "\x01\x02"));
    EXPECT_EQ(recorder.lines, Lines{"Parameter Issue (pid=9, did=2, val=0, flag=0)"});
    EXPECT_EQ(log.lines(), Lines{"warning: The value of parameter 9 is "
                                 "shorter than its type; it counts as 0."});
}

ListRecord clipList() {
    ListRecord record(6, 3, 0x08000213);
    record.item(1, 2, 0, 1).u32(100).text("first");
    record.item(2, 0, -1, 30000).u32(200).text("");
    return record;
}

TEST_F(IssueDispatcherTest, EachItemOfAListIsAnIssue) {
    list(clipList());
    EXPECT_EQ(recorder.lines,
              (Lines{"List Issue (lid=6, did=8000213, number=3, item=List Item (id=1, status=0, "
                     "size= 1, parameters: Clip Name = first, MarkIn Time = 100, )",
                     "List Issue (lid=6, did=8000213, number=3, item=List Item (id=2, status=-1, "
                     "size= 30000, parameters: Clip Name = , MarkIn Time = 200, )"}));
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(IssueDispatcherTest, ListsReachWhoeverIsNotRegisteredToo) {
    dispatcher.setCallbackId(otherId);
    list(clipList());
    EXPECT_EQ(recorder.lines.size(), 2u);
}

TEST_F(IssueDispatcherTest, AListOfAnotherServiceIsIgnored) {
    ListRecord record = clipList();
    CplListMessage* const message = record.message();
    message->serviceId = 3;
    dispatcher.listUpdate(message, nullptr);
    EXPECT_EQ(recorder.lines, Lines{});
}

TEST_F(IssueDispatcherTest, AListWithoutAPayloadIsIgnored) {
    ListRecord record = clipList();
    CplListMessage* const message = record.message();
    message->payloadLength = 0;
    dispatcher.listUpdate(message, nullptr);
    message->payloadLength = 100;
    message->payload = nullptr;
    dispatcher.listUpdate(message, nullptr);
    EXPECT_EQ(recorder.lines, Lines{});
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(IssueDispatcherTest, TheItemCountIsTheMessagesAndNotThePayloads) {
    ListRecord record = clipList();
    CplListMessage* const message = record.message();
    message->itemCount = 1;
    dispatcher.listUpdate(message, nullptr);
    EXPECT_EQ(recorder.lines.size(), 1u);
    message->itemCount = 0;
    dispatcher.listUpdate(message, nullptr);
    EXPECT_EQ(recorder.lines.size(), 1u);
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(IssueDispatcherTest, AnItemOfSize0HasNoFieldsAndTheNextFollowsItsHeader) {
    ListRecord record(6, 1, 1);
    record.item(1, 2, 0, 0).item(2, 3, 0, -1).item(3, 0, 0, 1).u32(7).text("x");
    list(record);
    EXPECT_EQ(recorder.lines,
              (Lines{"List Issue (lid=6, did=1, number=1, item=List Item (id=1, status=0, size= "
                     "0, parameters: )",
                     "List Issue (lid=6, did=1, number=1, item=List Item (id=2, status=0, size= "
                     "-1, parameters: )",
                     "List Issue (lid=6, did=1, number=1, item=List Item (id=3, status=0, size= "
                     "1, parameters: Clip Name = x, MarkIn Time = 7, )"}));
}

TEST_F(IssueDispatcherTest, AnUnknownListLeavesItsFieldsToBeTakenForTheNextHeader) {
    ListRecord record(7, 1, 1);
    record.item(1, 2, 0, 1).u32(0x11).u32(0x22).u16(0x33).u16(0);
    CplListMessage* const message = record.message();
    message->itemCount = 2;
    dispatcher.listUpdate(message, nullptr);
    EXPECT_EQ(recorder.lines,
              (Lines{"List Issue (lid=7, did=1, number=1, item=List Item (id=1, status=0, size= "
                     "1, parameters: )",
                     "List Issue (lid=7, did=1, number=1, item=List Item (id=17, status=51, size= "
                     "0, parameters: )"}));
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(IssueDispatcherTest, List51HasEightKeysWhateverItsCount) {
    ListRecord record(51, 1, 1);
    record.item(1, 0, 0, 1).i16(1).i16(2).u16(2).u16(0);
    for (int field = 0; field < 40; ++field)
        record.u16(static_cast<std::uint16_t>(field));
    record.item(2, 0, 0, 0);
    list(record);
    ASSERT_EQ(recorder.lines.size(), 2u);
    EXPECT_NE(recorder.lines[0].find("Key 8 KeyWipesCount = 39, "), std::string::npos);
    EXPECT_NE(recorder.lines[1].find("(id=2, "), std::string::npos);
}

constexpr char shortList[] = "warning: The payload of list 6 ends inside its "
                             "2 items.";

TEST_F(IssueDispatcherTest, FieldsBehindTheEndAre0OrEmptyAndEndTheMessage) {
    std::size_t const header = 8 + 12;
    struct Cut {
        std::size_t length;
        char const* fields;
    };
    Cut const cuts[] = {
        {header, "Clip Name = , MarkIn Time = 0, "},
        {header + 3, "Clip Name = , MarkIn Time = 0, "},
        {header + 4, "Clip Name = , MarkIn Time = 100, "},
        {header + 6, "Clip Name = fi, MarkIn Time = 100, "},
        {header + 9, "Clip Name = first, MarkIn Time = 100, "},
    };
    for (Cut const& cut : cuts) {
        SCOPED_TRACE(cut.length);
        recorder.lines.clear();
        list(clipList().truncate(cut.length));
        EXPECT_EQ(recorder.lines,
                  Lines{std::string("List Issue (lid=6, did=8000213, number=3, item=List Item "
                                    "(id=1, status=0, size= 1, parameters: ") +
                        cut.fields + ")"});
        EXPECT_EQ(log.take(), Lines{shortList});
    }
}

TEST_F(IssueDispatcherTest, AnItemWhoseHeaderIsCutEndsTheMessage) {
    for (std::size_t length = 8; length < 20; ++length) {
        SCOPED_TRACE(length);
        list(clipList().truncate(length));
        EXPECT_EQ(recorder.lines, Lines{});
        EXPECT_EQ(log.take(), Lines{shortList});
    }
}

TEST_F(IssueDispatcherTest, EveryPrefixOfAPayloadIsReadInsideItsBounds) {
    std::size_t const whole = clipList().length();
    for (std::size_t length = 1; length < whole; ++length) {
        log.take();
        list(clipList().truncate(length));
        EXPECT_EQ(log.take().size(), 1u) << length;
    }
}

/// Notes its name in a common list.
class Named : public IssueHandler {
  public:
    Named(Lines& common, char const* own) : order(common), name(own) {}
    void handleIssue(Issue*) override { order.push_back(name); }

  private:
    Lines& order;
    char const* name;
};

TEST_F(IssueDispatcherTest, HandlersAreCalledInOrderAndRemovedOneAtATime) {
    Lines order;
    Named first(order, "first");
    Named second(order, "second");
    dispatcher.addHandler(&first);
    dispatcher.addHandler(&second);
    dispatcher.addHandler(&first);
    update(ParameterRecord(1, 2, 7, "x"));
    EXPECT_EQ(order, (Lines{"first", "second", "first"}));
    order.clear();
    dispatcher.removeHandler(&first);
    update(ParameterRecord(1, 2, 7, "x"));
    EXPECT_EQ(order, (Lines{"second", "first"}));
    order.clear();
    dispatcher.removeHandler(&first);
    dispatcher.removeHandler(&first);
    update(ParameterRecord(1, 2, 7, "x"));
    EXPECT_EQ(order, Lines{"second"});
}

class Thrower : public IssueHandler {
  public:
    void handleIssue(Issue*) override { throw std::out_of_range("invalid string position"); }
};

TEST_F(IssueDispatcherTest, AHandlersExceptionGoesOnIntoTheLibrary) {
    Thrower thrower;
    Lines order;
    Named last(order, "last");
    dispatcher.addHandler(&thrower);
    dispatcher.addHandler(&last);
    EXPECT_THROW(update(ParameterRecord(1, 2, 7, "x")), std::out_of_range);
    EXPECT_THROW(list(clipList()), std::out_of_range);
    EXPECT_EQ(recorder.lines.size(), 2u);
    EXPECT_EQ(order, Lines{});
}

}  // namespace
}  // namespace FrameDriver::CPL
