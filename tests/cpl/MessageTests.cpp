#include "cpl/DataValue.h"
#include "cpl/Issue.h"
#include "cpl/SetListMessage.h"
#include "cpl/SetMessage.h"
#include "cpl/Subscription.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

namespace FrameDriver::CPL {
namespace {

template <typename T>
void* valueOf(T value) {
    return new T(value);
}

std::string setText(int pid, std::int32_t tag, void* data, int flag = 0) {
    SetMessage message(static_cast<PIDType>(pid), 0x08000213, static_cast<eCpl2SetType>(flag));
    message.setData(data);
    message.setDataType(tag);
    return message.toString();
}

TEST(SetMessage, LogLineSpacesItsEqualSignsAndMarksTheHexNumber) {
    EXPECT_EQ(setText(17, Int16, valueOf<std::int16_t>(-3), 4),
              "Set Message (pid = 17, did = 0x8000213, val = -3, flag = 4)");
    EXPECT_EQ(setText(17, String, makeText("a b")),
              "Set Message (pid = 17, did = 0x8000213, val = a b, flag = 0)");
}

TEST(SetMessage, PidIsPrintedWithoutASign) {
    EXPECT_EQ(setText(-1, NoValue, nullptr),
              "Set Message (pid = 4294967295, did = 0x8000213, val = , flag = 0)");
}

TEST(SetMessage, HasNoValueAtFirst) {
    SetMessage const message(PIDType{1}, 2, eSetToggle);
    EXPECT_EQ(message.getType(), 6);
    EXPECT_EQ(message.getPid(), 1);
    EXPECT_EQ(message.getDid(), 2u);
    EXPECT_EQ(message.getFlag(), 8);
    EXPECT_EQ(message.getData(), nullptr);
    EXPECT_EQ(message.getDataType(), 19);
}

TEST(SetMessage, DoesNotReleaseADouble) {
    double number = 1.5;
    EXPECT_EQ(setText(1, Double, &number),
              "Set Message (pid = 1, did = 0x8000213, val = , flag = 0)");
    EXPECT_EQ(number, 1.5);
}

TEST(ParameterIssue, LogLinePrintsThePidWithItsSign) {
    ParameterIssue const issue(-1, 0xABC, UInt16, valueOf<std::uint16_t>(65535), 3);
    EXPECT_EQ(issue.toString(), "Parameter Issue (pid=-1, did=abc, val=65535, flag=3)");
    EXPECT_EQ(issue.getType(), 16);
    EXPECT_EQ(issue.getServiceType(), 3);
}

TEST(ParameterIssue, ValueTextFollowsTheTag) {
    auto const text = [](std::int32_t tag, void* data) {
        return ParameterIssue(1, 2, tag, data, 0).toString();
    };
    EXPECT_EQ(text(Bool, valueOf(true)), "Parameter Issue (pid=1, did=2, val=true, flag=0)");
    EXPECT_EQ(text(Degree, valueOf(1.25f)), "Parameter Issue (pid=1, did=2, val=1.25, flag=0)");
    EXPECT_EQ(text(State, valueOf<std::uint16_t>(65535)),
              "Parameter Issue (pid=1, did=2, val=-1, flag=0)");
}

TEST(ParameterIssue, WithoutAValueHasANullPointerAndPrintsNothing) {
    ParameterIssue const issue(5, 6, 7);
    EXPECT_EQ(issue.getDataType(), 19);
    EXPECT_EQ(issue.getData(), nullptr);
    EXPECT_EQ(issue.toString(), "Parameter Issue (pid=5, did=6, val=, flag=7)");
    EXPECT_EQ(ParameterIssue().toString(), "Parameter Issue (pid=0, did=0, val=, flag=0)");
}

TEST(ParameterIssue, IsMarkedOnlyWhenTold) {
    ParameterIssue issue;
    EXPECT_FALSE(issue.isMarked());
    issue.setMarked();
    EXPECT_TRUE(issue.isMarked());
    EXPECT_TRUE(ParameterIssue(issue).isMarked());
}

TEST(ParameterIssue, ACopyHasAValueOfItsOwn) {
    auto original = std::make_unique<ParameterIssue>(1, 2, String, makeText("text"), 3);
    ParameterIssue const copy(*original);
    EXPECT_NE(copy.getData(), original->getData());
    original.reset();
    EXPECT_EQ(copy.toString(), "Parameter Issue (pid=1, did=2, val=text, flag=3)");
}

TEST(ParameterIssue, ACopyLosesADouble) {
    double number = 2.5;
    ParameterIssue const original(1, 2, Double, &number, 0);
    ParameterIssue const copy(original);
    EXPECT_EQ(original.getData(), &number);
    EXPECT_EQ(copy.getData(), nullptr);
    EXPECT_EQ(copy.getDataType(), 8);
}

ListItem itemWithName() {
    ListItem item(7, -2, 30, 9);
    item.addParameter(ListItemParameter("Name", makeText("x"), String));
    return item;
}

TEST(ListIssue, LogLineLeavesItsBracketOpen) {
    ListIssue const issue(-6, 0x84000001, itemWithName(), 65535);
    EXPECT_EQ(issue.toString(), "List Issue (lid=-6, did=84000001, number=65535, item=List Item "
                                "(id=7, status=-2, size= 30, parameters: Name = x, )");
    EXPECT_EQ(issue.getType(), 16);
    EXPECT_EQ(issue.getServiceType(), 4);
}

TEST(ListIssue, GivesACopyOfItsItem) {
    ListIssue const issue(6, 1, itemWithName(), 1);
    ListItem const copy = issue.getItem();
    EXPECT_EQ(copy.getNextItemId(), 9u);
    EXPECT_NE(copy.getParameters().at("Name").getData(),
              issue.viewItem().getParameters().at("Name").getData());
}

TEST(SetListMessage, LogLineOpensAsAListIssueAndCutsTheAction) {
    SetListMessage const message(eListIDType{6}, 2, 0x10, eListItemAction{0x10003}, itemWithName());
    EXPECT_EQ(message.toString(), "List Issue (lid=6, did=10, number=2, action=3, item=List Item "
                                  "(id=7, status=-2, size= 30, parameters: Name = x, )");
    EXPECT_EQ(message.getType(), 32);
    EXPECT_EQ(message.getAction(), 0x10003);
    EXPECT_EQ(message.getItem().getItemId(), 7u);
}

TEST(Subscription, LogLines) {
    ParameterSubscription const parameter(PIDType{-1}, 0xFF, eSubscribeAppend);
    EXPECT_EQ(parameter.toString(), "Parameter Subscription (pid=4294967295, did=ff, flag=3)");
    EXPECT_EQ(parameter.getType(), 8);
    EXPECT_EQ(parameter.getKind(), 0);
    ListSubscription const list(eListIDType{6}, 4, 0x20, eSubscribeUpdate);
    EXPECT_EQ(list.toString(), "List Subscription (lid=6, did=20, flag=4)");  // no number
    EXPECT_EQ(list.getNumber(), 4);
    EXPECT_EQ(list.getKind(), 1);
    BatchSubscription const batch({}, eSubscribeImmediate);
    EXPECT_EQ(batch.toString(), "Batch Subscription ");
    EXPECT_EQ(batch.getKind(), 2);
    EXPECT_EQ(batch.getFlag(), 1);
}

class Mortal : public ParameterSubscription {
  public:
    explicit Mortal(int& counter)
        : ParameterSubscription(PIDType{1}, 2, eSubscribeAppend), deaths(counter) {}
    ~Mortal() override { ++deaths; }

  private:
    int& deaths;
};

TEST(BatchSubscription, DeletesItsMembersPastANullOne) {
    int deaths = 0;
    {
        BatchSubscription const batch({new Mortal(deaths), nullptr, new Mortal(deaths)},
                                      eSubscribeAppend);
        EXPECT_EQ(batch.getSubscriptions().size(), 3u);
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 2);
}

}  // namespace
}  // namespace FrameDriver::CPL
