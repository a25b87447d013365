#include "conversion/CPLMarshaller.h"
#include "cpl/DataValue.h"
#include "cpl/Issue.h"
#include "cpl/SendEventMessage.h"
#include "cpl/SetListMessage.h"
#include "cpl/SetMessage.h"
#include "cpl/Subscription.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace FrameDriver::Conversion {
namespace {

using namespace CPL;

CPLMarshaller const marshaller;

std::string const did = "did=[EncodingType=08, MEIdType=3, KeyerIDType=1, eEMemLevel=2\222";
constexpr std::uint32_t didNumber = 0x08000213;

template <typename T>
void* valueOf(T value) {
    return new T(value);
}

template <typename T>
std::unique_ptr<T> read(std::string const& text) {
    std::unique_ptr<Message> message(marshaller.unmarshal(text));
    T* const wanted = dynamic_cast<T*>(message.get());
    EXPECT_NE(wanted, nullptr) << text;
    message.release();
    return std::unique_ptr<T>(wanted);
}

std::string dataText(std::int32_t tag, void* data) {
    ParameterIssue const issue(1, didNumber, tag, data, 0);
    std::string const text = marshaller.marshal(&issue);
    std::string const head = "Parameter Issue: pid=1, " + did + ", ";
    std::string const tail = ", flag=absolute";
    EXPECT_EQ(text.substr(0, head.size()), head);
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
    return text.substr(head.size(), text.size() - head.size() - tail.size());
}

// Writing.

ListItem clipItem() {
    ListItem item(4294967295u, -1, 77, 4000000000u);
    item.addParameter(ListItemParameter("MarkIn Time", valueOf<std::uint32_t>(100), UInt32));
    item.addParameter(ListItemParameter("Clip Name", makeText("a, b"), String));
    return item;
}

std::string const clipItemText =
    "item=[itemId=4294967295, status=-1, nextItemId=4000000000, "
    "param=[name=Clip Name, data=[type=String, value=a, b\222\222, "
    "param=[name=MarkIn Time, data=[type=UInt32, value=100\222\222\222";

TEST(CPLMarshaller, WritesASetMessageWithoutItsValue) {
    SetMessage message(PIDType{-17}, didNumber, eSetToggle);
    message.setData(valueOf<std::int32_t>(5));
    message.setDataType(Int32);
    EXPECT_EQ(marshaller.marshal(&message), "Set Message: pid=-17, " + did);
}

TEST(CPLMarshaller, WritesAnEventWithItsSizeAlone) {
    SendEventMessage message(EIDType{64}, didNumber);
    EXPECT_EQ(marshaller.marshal(&message),
              "Send Event Message: eid=64, " + did + ", message_size=0");
    message.reserve(65535);
    EXPECT_EQ(marshaller.marshal(&message),
              "Send Event Message: eid=64, " + did + ", message_size=65535");
}

TEST(CPLMarshaller, WritesListItems) {
    SetListMessage const message(eListIDType{6}, 65535, didNumber, eListItemAction{2}, clipItem());
    EXPECT_EQ(marshaller.marshal(&message),
              "Set List Message: lid=6, " + did + ", number=65535, action=2, " + clipItemText);
    ListIssue const issue(-6, didNumber, clipItem(), 3);
    EXPECT_EQ(marshaller.marshal(&issue),
              "List Issue: lid=-6, " + did + ", number=3, " + clipItemText);
    ListIssue const bare(6, didNumber, ListItem(), 3);
    EXPECT_EQ(marshaller.marshal(&bare), "List Issue: lid=6, " + did +
                                             ", number=3, item=[itemId=0, status=1, "
                                             "nextItemId=0\222");
}

TEST(CPLMarshaller, WritesSubscriptionsAListWithoutItsFlag) {
    ParameterSubscription const parameter(PIDType{17}, didNumber, eSubscribeReplace);
    EXPECT_EQ(marshaller.marshal(&parameter),
              "Parameter Subscription: pid=17, " + did + ", flag=replace");
    ListSubscription const list(eListIDType{6}, 2, didNumber, eSubscribeReplace);
    EXPECT_EQ(marshaller.marshal(&list), "List Subscription: lid=6, number=2, " + did);
}

TEST(CPLMarshaller, ABatchHasNoText) {
    BatchSubscription const batch({}, eSubscribeAppend);
    EXPECT_EQ(marshaller.marshal(&batch), "undefined subscription type.");
}

/// Kinds that the driver never makes.
class OddMessage : public Message {
  public:
    explicit OddMessage(int type) : Message(type) {}
    std::string toString() const override { return ""; }
};
class OddIssue : public Issue {
  public:
    explicit OddIssue(int service) : Issue(service) {}
    std::string toString() const override { return ""; }
};
class OddSubscription : public Subscription {
  public:
    explicit OddSubscription(int kind) : Subscription(kind, eSubscribeAppend) {}
    std::string toString() const override { return ""; }
};

TEST(CPLMarshaller, WhatItDoesNotKnowShowsAsUndefined) {
    OddMessage const message(7);
    EXPECT_EQ(marshaller.marshal(&message), "undefined");
    OddIssue const issue(-5);
    EXPECT_EQ(marshaller.marshal(&issue), "undefined issue service type (-5)");
    OddSubscription const subscription(3);
    EXPECT_EQ(marshaller.marshal(&subscription), "undefined subscription type.");
}

struct WrittenValue {
    std::int32_t tag;
    void* data;
    char const* text;
};

TEST(CPLMarshaller, WritesValuesOfEveryKind) {
    WrittenValue const values[] = {
        {0, valueOf<std::int16_t>(-32768), "type=Int16, value=-32768"},
        {1, valueOf<std::int32_t>(-70000), "type=Int32, value=-70000"},
        {2, valueOf<std::uint16_t>(65535), "type=UInt16, value=65535"},
        {3, valueOf<std::uint32_t>(4294967295u), "type=UInt32, value=4294967295"},
        {4, valueOf(true), "type=Bool, value=true"},
        {4, valueOf(false), "type=Bool, value=false"},
        {5, valueOf(0.1f), "type=Float, value=0.1"},
        {5, valueOf(1234567.0f), "type=Float, value=1.23457e+06"},
        {7, makeText("a, b=c]"), "type=String, value=a, b=c]"},
        {7, makeText(""), "type=String, value="},
        {11, valueOf(1.5f), "type=Clock, value=1.5"},
        {12, valueOf(1.5f), "type=Degree, value=1.5"},
        {14, valueOf(100.0f), "type=Percent, value=100"},
        {15, valueOf(1.5f), "type=Revolution, value=1.5"},
        {16, valueOf(-1.5f), "type=ScreenUnit, value=-1.5"},
        {17, valueOf(1.5f), "type=SPercent, value=1.5"},
        {18, valueOf<std::uint16_t>(65535), "type=State, value=-1"},
    };
    for (WrittenValue const& value : values)
        EXPECT_EQ(dataText(value.tag, value.data), std::string("data=[") + value.text + "\222");
}

TEST(CPLMarshaller, WritesTheFirstFourBytesOfADoubleAsAFloat) {
    float const halves[2] = {0.75f, -1.0f};
    double number;
    std::memcpy(&number, halves, sizeof number);
    EXPECT_EQ(dataText(Double, &number), "data=[type=Double, value=0.75\222");
}

TEST(CPLMarshaller, AMissingValueIsEmptyAndAnUnknownKindSaysSo) {
    EXPECT_EQ(dataText(Int32, nullptr), "data=[type=Int32, value=\222");
    EXPECT_EQ(dataText(Double, nullptr), "data=[type=Double, value=\222");
    int something = 1;
    for (int const tag : {6, 9, 10, 13, 19, 20, -1})
        EXPECT_EQ(dataText(tag, &something),
                  "data=[datatype not recognized! (" + std::to_string(tag) + ")\222");
    ListItem item;
    item.addParameter(ListItemParameter("N", nullptr, NoValue));
    ListIssue const issue(6, didNumber, item, 1);
    EXPECT_EQ(marshaller.marshal(&issue),
              "List Issue: lid=6, " + did +
                  ", number=1, item=[itemId=0, status=1, nextItemId=0, "
                  "param=[name=N, data=[datatype not recognized! (19)\222\222\222");
}

std::string flagOf(std::string const& text) { return text.substr(text.rfind("flag=") + 5); }

struct FlagWord {
    int value;
    char const* word;
};

TEST(CPLMarshaller, WritesFlagsByTheirWords) {
    FlagWord const setFlags[] = {{0, "absolute"}, {1, "relative"}, {2, "detent"},
                                 {4, "default"},  {8, "toggle"},   {10, "factory default"},
                                 {3, "invalid"},  {99, "invalid"}, {-1, "invalid"}};
    for (FlagWord const& flag : setFlags) {
        ParameterIssue const issue(1, didNumber, flag.value);
        EXPECT_EQ(flagOf(marshaller.marshal(&issue)), flag.word);
    }
    FlagWord const subscriptionFlags[] = {{1, "immediate"}, {2, "replace"}, {3, "append"},
                                          {4, "update"},    {0, "append"},  {5, "append"}};
    for (FlagWord const& flag : subscriptionFlags) {
        ParameterSubscription const subscription(PIDType{1}, didNumber,
                                                 static_cast<eSubscribeFlags>(flag.value));
        EXPECT_EQ(flagOf(marshaller.marshal(&subscription)), flag.word);
    }
}

TEST(CPLMarshaller, AnUnknownDeviceIdShowsInsideTheText) {
    ParameterIssue const issue(1, 0x05000001, 0);
    EXPECT_EQ(marshaller.marshal(&issue),
              "Parameter Issue: pid=1, undefined device id encoding type (5), "
              "data=[datatype not recognized! (19)\222, flag=absolute");
    EXPECT_EQ(marshaller.marshalDeviceId(didNumber), did);
    EXPECT_EQ(marshaller.unmarshalDeviceId(did), didNumber);
}

// Reading.

TEST(CPLMarshaller, OnlyTheKnownTagsAreRead) {
    for (char const* text : {"", ":", "SID: id=x, value=1", "set message: 1", "Set Message : 1",
                             " Set Message: 1", "Set Messages: 1", "Send Event: eid=1"})
        EXPECT_EQ(marshaller.unmarshal(text), nullptr) << text;
}

std::string setText(std::string const& data, std::string const& flag = "absolute") {
    return "Set Message: pid=17, " + did + ", data=[" + data + "\222, flag=" + flag;
}

TEST(CPLMarshaller, ReadsASetMessageWithAndWithoutItsLabel) {
    for (char const* pid : {"17", "pid=17", "pid= 17", "anything=17"}) {
        auto const message = read<SetMessage>(std::string("Set Message: ") + pid + ", " + did +
                                              ", data=[type=Int32, value=-5\222, flag=toggle");
        EXPECT_EQ(message->toString(),
                  "Set Message (pid = 17, did = 0x8000213, val = -5, flag = 8)");
        EXPECT_EQ(message->getDataType(), Int32);
    }
}

struct ReadValue {
    char const* data;
    int tag;
    char const* text;
};

TEST(CPLMarshaller, ReadsValuesOfEveryKind) {
    ReadValue const values[] = {
        {"type=Int16, value=-3", 0, "-3"},
        {"type=Int16, value=40000", 0, "0"},
        {"type=Int32, value= 12abc", 1, "12"},
        {"type=UInt16, value=65535", 2, "65535"},
        {"type=UInt32, value=4294967295", 3, "4294967295"},
        {"type=Bool, value=true", 4, "true"},
        {"type=Bool, value=TRUE", 4, "false"},
        {"type=Float, value=0.5", 5, "0.5"},
        {"type=Float, value=x", 5, "0"},
        {"type=String, value=one, two=2", 7, "one, two=2"},
        {"type=String, value=", 7, ""},
        {"type=Clock, value=0.5", 11, "0.5"},
        {"type=Degree, value=0.5", 12, "0.5"},
        {"type=Percent, value=0.5", 14, "0.5"},
        {"type=Revolution, value=0.5", 15, "0.5"},
        {"type=ScreenUnit, value=0.5", 16, "0.5"},
        {"type=SPercent, value=0.5", 17, "0.5"},
        {"type=State, value=65541", 18, "5"},
        {"type=State, value=-1", 18, "-1"},
        {"type=Double, value=0.5", 8, ""},
        {"type=Boolean, value=true", 19, ""},
        {"type=, value=true", 19, ""},
        {"size=4, value=true", 19, ""},
    };
    for (ReadValue const& value : values) {
        SCOPED_TRACE(value.data);
        auto const message = read<SetMessage>(setText(value.data));
        EXPECT_EQ(message->getDataType(), value.tag);
        EXPECT_EQ(message->toString(),
                  std::string("Set Message (pid = 17, did = 0x8000213, val = ") + value.text +
                      ", flag = 0)");
        EXPECT_EQ(message->getData() == nullptr, value.tag == NoValue);
    }
}

TEST(CPLMarshaller, ReadsADoubleInFullSoThatItDoesNotWriteBack) {
    auto const message = read<SetMessage>(setText("type=Double, value=1.5"));
    EXPECT_EQ(*static_cast<double*>(message->getData()), 1.5);
    EXPECT_EQ(dataText(Double, message->getData()), "data=[type=Double, value=0\222");
}

TEST(CPLMarshaller, AStringEndsAtTheClosingByte) {
    auto const message = read<SetMessage>(setText("type=String, value=cut\222here, flag=relative"));
    EXPECT_STREQ(static_cast<char const*>(message->getData()), "cut");
    // The flag stands behind the next comma, up to the end of the text.
    EXPECT_EQ(message->getFlag(), 99);
}

TEST(CPLMarshaller, ReadsFlagsByTheirExactWords) {
    FlagWord const words[] = {{0, "absolute"}, {1, "relative"},  {2, "detent"},
                              {4, "default"},  {8, "toggle"},    {10, "factory default"},
                              {99, "invalid"}, {99, "nonsense"}, {99, "absolute "},
                              {99, ""},        {99, "Absolute"}};
    for (FlagWord const& word : words)
        EXPECT_EQ(read<SetMessage>(setText("type=Bool, value=true", word.word))->getFlag(),
                  word.value)
            << word.word;
}

TEST(CPLMarshaller, ReadsAMalformedSetMessageSomehow) {
    struct Text {
        std::string text;
        char const* shown;
    };
    // Without a comma the identifier is sought from the second character on, an "e".
    Text const texts[] = {
        {"Set Message", "Set Message (pid = 0, did = 0xe000000, val = , flag = 99)"},
        {"Set Message: x", "Set Message (pid = 0, did = 0xe000000, val = , flag = 99)"},
        {"Set Message: 5", "Set Message (pid = 5, did = 0xe000000, val = , flag = 99)"},
        {"Set Message: pid=5, " + did, "Set Message (pid = 5, did = 0x8000213, val = , flag = 99)"},
        {"Set Message: pid=5, " + did + ", flag=relative",
         "Set Message (pid = 5, did = 0x8000213, val = , flag = 99)"},
        {"Set Message: pid=99999999999, " + did + ", data=[type=Bool, value=true\222",
         "Set Message (pid = 0, did = 0x8000213, val = true, flag = 99)"},
    };
    for (Text const& text : texts)
        EXPECT_EQ(read<SetMessage>(text.text)->toString(), text.shown) << text.text;
}

TEST(CPLMarshaller, AFieldBehindTheEndIsAnInvalidPosition) {
    for (char const* text :
         {"Set Message:", "Set Message: 1,", "Send Event Message:", "Set List Message: lid=1,",
          "Set List Message: lid=1, did=[EncodingType=08\222, number=1, action=1, "
          "item=[itemId=1, status=1, nextItemId=1, param\222\222"}) {
        try {
            delete marshaller.unmarshal(text);
            ADD_FAILURE() << text;
        } catch (std::out_of_range const& failure) {
            EXPECT_STREQ(failure.what(), "invalid string position") << text;
        }
    }
    // The lock isn't left held.
    EXPECT_EQ(marshaller.unmarshal(""), nullptr);
}

using Bytes = std::vector<int>;

Bytes eventBytes(std::string const& data) {
    auto const message =
        read<SendEventMessage>("Send Event Message: eid=64, " + did + ", data=[" + data + "\222");
    EXPECT_EQ(message->getEid(), 64);
    EXPECT_EQ(message->getDid(), didNumber);
    EXPECT_FALSE(message->addByte(1));  // full, whatever the text held
    return Bytes(message->getData(), message->getData() + message->getSize());
}

TEST(CPLMarshaller, ReadsEventDataAndFillsWhatIsReserved) {
    EXPECT_EQ(eventBytes("size=4, value=0aFF"), (Bytes{0x0A, 0xFF, 0, 0}));
    EXPECT_EQ(eventBytes("size=4, value=0102030405"), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(eventBytes("size=2, value="), (Bytes{0, 0}));
    EXPECT_EQ(eventBytes("size=2, value=0x1f2"), (Bytes{0, 0x1F}));
    EXPECT_EQ(eventBytes("size=0, value=0102"), Bytes{});
    EXPECT_EQ(eventBytes("size=x, value=0102"), Bytes{});
    EXPECT_EQ(eventBytes("size=65536, value=01"), Bytes{});
}

TEST(CPLMarshaller, AnEventWithoutDataHasNoBuffer) {
    auto const message = read<SendEventMessage>("Send Event Message: eid=-64, " + did);
    EXPECT_EQ(message->getSize(), 0);
    EXPECT_EQ(message->getEid(), -64);
    EXPECT_EQ(message->getDid(), didNumber);
}

TEST(CPLMarshaller, ReadsAListItemWithItsNextIdAsTheSize) {
    auto const message =
        read<SetListMessage>("Set List Message: lid=6, " + did + ", number=2, action=3, " +
                             "item=[itemId=4000000000, status=-1, nextItemId=8, "
                             "param=[name=MarkIn Time, data=[type=UInt32, value=100\222\222, "
                             "param=[name=Clip Name, data=[type=String, value=a, b=c\222\222, "
                             "param=[name=MarkIn Time, data=[type=UInt32, value=200\222\222\222");
    EXPECT_EQ(message->toString(),
              "List Issue (lid=6, did=8000213, number=2, action=3, item=List Item "
              "(id=4000000000, status=-1, size= 8, parameters: Clip Name = a, b=c, "
              "MarkIn Time = 100, )");
    EXPECT_EQ(message->viewItem().getNextItemId(), 0u);
}

std::string itemRead(std::string const& item) {
    return read<SetListMessage>("Set List Message: lid=6, " + did + ", number=1, action=1, " + item)
        ->toString()
        .substr(57);
}

TEST(CPLMarshaller, ReadsItemsThatAreOdd) {
    EXPECT_EQ(itemRead("item=[itemId=1, status=2, nextItemId=3\222"),
              "List Item (id=1, status=2, size= 3, parameters: )");
    EXPECT_EQ(itemRead("item=[a=1, b=2, c=3\222"),
              "List Item (id=1, status=2, size= 3, parameters: )");
    EXPECT_EQ(itemRead("item=[\222"), "List Item (id=0, status=0, size= 0, parameters: )");
    // A parameter without a closing byte ends the reading and isn't added.
    EXPECT_EQ(itemRead("item=[itemId=1, status=2, nextItemId=3, "
                       "param=[name=A, data=[type=Bool, value=true\222\222, "
                       "param=[name=B, data=[type=Bool, value=true"),
              "List Item (id=1, status=2, size= 3, parameters: A = true, )");
    // One of an unknown kind is added without a value, and so is a Double.
    EXPECT_EQ(itemRead("item=[itemId=1, status=2, nextItemId=3, "
                       "param=[name=A, data=[type=Bol, value=true\222\222, "
                       "param=[name=B, data=[type=Double, value=1\222\222\222"),
              "List Item (id=1, status=2, size= 3, parameters: A = , B = , )");
}

TEST(CPLMarshaller, ADoubleInAnItemLosesItsValueAndKeepsItsKind) {
    auto const message =
        read<SetListMessage>("Set List Message: lid=6, " + did +
                             ", number=1, action=1, item=[itemId=1, status=2, nextItemId=3, "
                             "param=[name=B, data=[type=Double, value=1\222\222\222");
    ListItemParameter const& parameter = message->viewItem().getParameters().at("B");
    EXPECT_EQ(parameter.getDataType(), Double);
    EXPECT_EQ(parameter.getData(), nullptr);
}

TEST(CPLMarshaller, NumberAndActionAreUnsigned16Bits) {
    auto const message = read<SetListMessage>("Set List Message: lid=-6, " + did +
                                              ", number=-1, action=65536, item=[\222");
    EXPECT_EQ(message->getLid(), -6);
    EXPECT_EQ(message->getNumber(), 65535);
    EXPECT_EQ(message->getAction(), 0);
}

struct Subscribing {
    std::string text;
    std::string shown;
};

TEST(CPLMarshaller, ReadsParameterSubscriptions) {
    Subscribing const rows[] = {
        {"Parameter Subscription: pid=17, " + did + ", flag=immediate",
         "Parameter Subscription (pid=17, did=8000213, flag=1)"},
        {"Parameter Subscription: 17, " + did + ", flag=update",
         "Parameter Subscription (pid=17, did=8000213, flag=4)"},
        {"Parameter Subscription: pid=17, " + did + ", flag=nonsense",
         "Parameter Subscription (pid=17, did=8000213, flag=3)"},
        {"Parameter Subscription: pid=17, " + did,
         "Parameter Subscription (pid=17, did=8000213, flag=3)"},
        {"Parameter Subscription: pid=17", "Parameter Subscription (pid=17, did=0, flag=3)"},
        {"Parameter Subscription", "Parameter Subscription (pid=0, did=0, flag=3)"},
        // Without a closing byte, the text behind the first "=" of all is the flag.
        {"Parameter Subscription: =update", "Parameter Subscription (pid=0, did=0, flag=4)"},
    };
    for (Subscribing const& row : rows)
        EXPECT_EQ(read<ParameterSubscription>(row.text)->toString(), row.shown) << row.text;
}

TEST(CPLMarshaller, ReadsListSubscriptions) {
    auto const subscription =
        read<ListSubscription>("List Subscription: lid=6, number=2, " + did + ", flag=replace");
    EXPECT_EQ(subscription->toString(), "List Subscription (lid=6, did=8000213, flag=2)");
    EXPECT_EQ(subscription->getNumber(), 2);
    EXPECT_EQ(read<ListSubscription>("List Subscription: lid=6, number=2, " + did)->getFlag(), 3);
    // The flag is sought behind the last closing byte.
    EXPECT_EQ(read<ListSubscription>("List Subscription: lid=6, number=2, " + did +
                                     ", flag=replace\222, flag=update")
                  ->getFlag(),
              4);
    EXPECT_EQ(read<ListSubscription>("List Subscription")->toString(),
              "List Subscription (lid=0, did=0, flag=3)");
}

std::vector<std::string> batchOf(std::string const& text, int& flag) {
    auto const batch = read<BatchSubscription>(text);
    flag = batch->getFlag();
    std::vector<std::string> members;
    for (Subscription const* const member : batch->getSubscriptions())
        members.push_back(member->toString());
    return members;
}

TEST(CPLMarshaller, ReadsBatchesMemberByMember) {
    using Members = std::vector<std::string>;
    struct Batch {
        std::string text;
        int flag;
        Members members;
    };
    Batch const batches[] = {
        {"Batch Subscription: | flag=update", 4, {}},
        {"Batch Subscription: | \t flag=update \t ", 4, {}},
        {"Batch Subscription: ", 3, {}},
        {"Batch Subscription", 3, {}},
        {"Batch Subscription: |Parameter Subscription: pid=1, " + did +
             "|Parameter Subscription: pid=2, " + did + ", flag=replace| flag=immediate",
         1,
         {"Parameter Subscription (pid=1, did=8000213, flag=3)",
          "Parameter Subscription (pid=2, did=8000213, flag=2)"}},
        // Members are trimmed, empty ones vanish, and a blank one stays.
        {"Batch Subscription: || \t Parameter Subscription: pid=1, " + did +
             ", flag=update \t || | flag=append |",
         3,
         {"Parameter Subscription (pid=1, did=8000213, flag=4)",
          "Parameter Subscription (pid=0, did=0, flag=3)"}},
        // Whatever a member says, it is read as a parameter subscription.
        {"Batch Subscription: |List Subscription: lid=6, number=2, " + did + "|update",
         4,
         {"Parameter Subscription (pid=6, did=0, flag=3)"}},
        // The last token is the flag, whatever it says.
        {"Batch Subscription: |Parameter Subscription: pid=1, " + did, 3, {}},
    };
    for (Batch const& batch : batches) {
        SCOPED_TRACE(batch.text);
        int flag = 0;
        EXPECT_EQ(batchOf(batch.text, flag), batch.members);
        EXPECT_EQ(flag, batch.flag);
    }
}

TEST(CPLMarshaller, IssuesReadAsTheyAreWritten) {
    std::string const parameter = "Parameter Issue: pid=-17, " + did +
                                  ", data=[type=String, value=a, b\222, flag=factory default";
    EXPECT_EQ(marshaller.marshal(read<ParameterIssue>(parameter).get()), parameter);
    std::string const list = "List Issue: lid=6, " + did +
                             ", number=3, item=[itemId=1, status=2, nextItemId=0, "
                             "param=[name=A, data=[type=Bool, value=true\222\222\222";
    auto const issue = read<ListIssue>(list);
    EXPECT_EQ(marshaller.marshal(issue.get()), list);
    EXPECT_FALSE(issue->isMarked());
    EXPECT_EQ(*static_cast<double*>(read<ParameterIssue>("Parameter Issue: pid=1, " + did +
                                                         ", data=[type=Double, value=2.5\222, "
                                                         "flag=absolute")
                                        ->getData()),
              2.5);
}

TEST(CPLMarshaller, EveryPrefixOfEveryFormIsReadOrRefusedCleanly) {
    std::string const forms[] = {
        setText("type=String, value=x"),
        setText("type=Double, value=1"),
        "Send Event Message: eid=64, " + did + ", data=[size=4, value=0aFF\222",
        "Set List Message: lid=6, " + did + ", number=1, action=1, " + clipItemText,
        "Parameter Issue: pid=1, " + did + ", data=[type=Int32, value=1\222, flag=toggle",
        "List Issue: lid=6, " + did + ", number=1, " + clipItemText,
        "List Subscription: lid=6, number=2, " + did + ", flag=replace",
        "Batch Subscription: |Parameter Subscription: pid=1, " + did + "| flag=update",
    };
    for (std::string const& form : forms)
        for (std::size_t length = 0; length <= form.size(); ++length) {
            // Memory of its own, without a byte to spare behind it.
            std::vector<char> const bytes(form.begin(),
                                          form.begin() + static_cast<std::ptrdiff_t>(length));
            try {
                delete marshaller.unmarshal(std::string_view(bytes.data(), bytes.size()));
            } catch (std::out_of_range const& failure) {
                ASSERT_STREQ(failure.what(), "invalid string position");
            }
        }
}

TEST(CPLMarshaller, TheTwoDirectionsRunBesideEachOther) {
    std::string const text = setText("type=Int32, value=5");
    std::thread reader([&] {
        for (int i = 0; i < 500; ++i)
            ASSERT_EQ(read<SetMessage>(text)->getPid(), 17);
    });
    ParameterSubscription const subscription(PIDType{17}, didNumber, eSubscribeReplace);
    for (int i = 0; i < 500; ++i)
        ASSERT_EQ(marshaller.marshal(&subscription),
                  "Parameter Subscription: pid=17, " + did + ", flag=replace");
    reader.join();
}

}  // namespace
}  // namespace FrameDriver::Conversion
