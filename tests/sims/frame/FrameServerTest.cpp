#include "ServerFixture.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace FrameSim {
namespace {

using namespace std::chrono_literals;

class Server : public ServerTest {};

TEST_F(Server, TellsWhereItListensFirst) {
    start();
    ASSERT_NE(server->port(), 0);
    EXPECT_EQ(server->record().texts(),
              Texts{"listening address=127.0.0.1 port=" + std::to_string(server->port()) +
                    " model=\"sample switcher\""});
}

TEST_F(Server, WelcomesAPanelAndTellsEachThingReceivedAndSent) {
    start();
    auto const client = panel("stripe 1");
    EXPECT_EQ(client->set(10, program1, 0, word(3)), 0);
    EXPECT_EQ(client->event(40, me1), 0);
    EXPECT_EQ(client->set(99, program1, 0, word(3)), 3);
    client->send(cplwire::Bye{});
    EXPECT_EQ(client->news(), "closed");
    EXPECT_EQ(lines(), (Texts{
                           R"(#1 < hello version=1 name="stripe 1")",
                           R"(#1 > welcome version=1 name="sample switcher")",
                           "#1 < set pid=10 did=24000000 flag=0 type=UInt16 value=3",
                           "#1 > ack status=0",
                           R"(#1 < event eid=40 did=03000000 data="")",
                           "#1 > ack status=0",
                           "#1 < set pid=99 did=24000000 flag=0 type=UInt16 value=3",
                           R"(#1 > ack status=3 cause="no such parameter")",
                           "#1 < bye",
                           R"(#1 closed reason="bye")",
                       }));
    EXPECT_EQ(server->frame().value({10, preset1}), word(3));
}

TEST_F(Server, ASubscriptionIsAnsweredByThePresentValueUnlessItIsForUpdatesOnly) {
    start();
    auto const client = panel();
    for (std::int32_t const flag : {1, 3, 2}) {
        EXPECT_EQ(client->subscribe(10, program1, flag), 0);
        EXPECT_EQ(client->news(), "update 7 10 24000000 1");
    }
    EXPECT_EQ(client->subscribe(10, preset1, 4), 0);
    client->send(cplwire::Ping{});
    EXPECT_EQ(client->news().substr(0, 4), "pong");
    server->frame().set({10, preset1}, 0, word(9));
    EXPECT_EQ(client->news(), "update 7 10 24000100 9");
}

TEST_F(Server, ReplaceEndsTheOtherSubscriptionsAndAppendDoesNot) {
    start();
    auto const client = panel();
    client->subscribe(10, program1, 4);
    client->subscribe(51, show, 3);
    EXPECT_EQ(client->news(), "update 7 51 01000001 \"Sample show\"");
    server->frame().set({10, program1}, 0, word(5));
    EXPECT_EQ(client->news(), "update 7 10 24000000 5");
    client->subscribe(51, show, 2);
    EXPECT_EQ(client->news(), "update 7 51 01000001 \"Sample show\"");
    server->frame().set({10, program1}, 0, word(6));
    server->frame().set({51, show}, 0, Value::ofText("a\x92"));
    EXPECT_EQ(client->news(), "update 7 51 01000001 \"a\\x92\"");
}

TEST_F(Server, RefusesASubscriptionToWhatItDoesntHave) {
    start();
    auto const client = panel();
    EXPECT_EQ(client->subscribe(10, 0x24000f00, 1), 3);
    EXPECT_EQ(client->subscribe(10, program1, 0), 3);
    EXPECT_EQ(client->subscribe(10, program1, 5), 3);
    EXPECT_EQ(client->subscribe(ListKey{23, 2, 0x35000000}, 1), 3);
    EXPECT_EQ(client->subscribe(registers, 9), 3);
    EXPECT_EQ(client->cancel(1, 3), 3);
    EXPECT_EQ(client->cancel(3, 5), 3);
    server->frame().set({10, program1}, 0, word(5));
    client->send(cplwire::Ping{});
    EXPECT_EQ(client->news().substr(0, 4), "pong");
}

TEST_F(Server, ABatchSubscribesToAllThatThereIs) {
    start();
    auto const client = panel();
    EXPECT_EQ(client->subscribeBatch({{10, preset1}, {10, program1}}), 0);
    EXPECT_EQ(client->news(), "update 7 10 24000100 2");
    EXPECT_EQ(client->news(), "update 7 10 24000000 1");
    EXPECT_EQ(client->subscribeBatch({{99, 1}, {50, show}}, 3, 8), 3);
    EXPECT_EQ(client->news(), "update 8 50 01000001 50");
    EXPECT_EQ(client->subscribeBatch({}), 0);
    EXPECT_EQ(server->record().count("subscribe batch=0 flag=3 callback=7"), 1U);
    EXPECT_EQ(server->record().count("ack status=3 cause=\"no such parameter: 1\""), 1U);
}

TEST_F(Server, EachCallbackThatSubscribedIsTold) {
    start();
    auto const client = panel();
    client->subscribe(10, program1, 4, 7);
    client->subscribe(10, program1, 4, 7);
    client->subscribe(10, program1, 4, 9);
    server->frame().set({10, program1}, 0, word(5));
    server->frame().set({10, program1}, 0, word(6));
    EXPECT_EQ(client->news(), "update 7 10 24000000 5");
    EXPECT_EQ(client->news(), "update 9 10 24000000 5");
    EXPECT_EQ(client->news(), "update 7 10 24000000 6");
    EXPECT_EQ(client->news(), "update 9 10 24000000 6");
}

TEST_F(Server, CancelEndsTheSubscriptionsOfItsService) {
    start();
    auto const client = panel();
    client->subscribe(10, program1, 4);
    client->subscribe(registers, 4);
    EXPECT_EQ(client->cancel(3, 3), 0);
    server->frame().set({10, program1}, 0, word(5));
    server->frame().event({65, 0x35000000}, std::string(6, '\0'));
    EXPECT_EQ(client->news().substr(0, 7), "list 1 ");
    EXPECT_EQ(client->cancel(3, 4), 0);
    server->frame().event({65, 0x35000000}, std::string("\0\0\0\0\0\1", 6));
    client->send(cplwire::Ping{});
    EXPECT_EQ(client->news().substr(0, 4), "pong");
}

TEST_F(Server, ConsequencesFollowTheAcknowledgementInOrder) {
    start();
    auto const client = panel();
    client->subscribeBatch({{10, program1}, {10, preset1}, {11, 0x1b000002}}, 4);
    auto const first = client->send(cplwire::Event{40, me1, {}});
    auto const second = client->send(cplwire::Event{40, me1, {}});
    EXPECT_EQ(client->acknowledged(first), 0);
    EXPECT_FALSE(client->acknowledged(second) != 0);
    Texts const news{client->news(), client->news(), client->news(),
                     client->news(), client->news(), client->news()};
    EXPECT_EQ(news, (Texts{"update 7 10 24000000 2", "update 7 10 24000100 1",
                           "update 7 11 1b000002 true", "update 7 10 24000000 1",
                           "update 7 10 24000100 2", "update 7 11 1b000002 false"}));
}

TEST_F(Server, TellsAPanelOfChangesByOthersAndOfItsOwn) {
    start();
    auto const first = panel("first");
    auto const second = panel("second");
    first->subscribe(10, program1, 4);
    second->subscribe(10, program1, 4);
    EXPECT_EQ(first->set(10, program1, 0, word(4)), 0);
    EXPECT_EQ(first->news(), "update 7 10 24000000 4");
    EXPECT_EQ(second->news(), "update 7 10 24000000 4");
    Texts summaries;
    for (auto const& line : server->clients()) {
        auto const text = line.text();
        summaries.push_back(text.substr(0, text.find(" from=")));
    }
    EXPECT_EQ(summaries, (Texts{"#1 panel name=\"first\"", "#2 panel name=\"second\""}));
}

TEST_F(Server, AutoTransitionReportsTheLeverEachField) {
    start();
    auto const client = panel();
    client->subscribe(30, me1, 4);
    client->subscribe(10, program1, 4);
    client->set(31, me1, 0, word(3));
    EXPECT_EQ(client->event(41, me1), 0);
    server->frame().advanceFields(1);
    EXPECT_EQ(client->news(), "update 7 30 03000000 1365");
    server->frame().advanceFields(2);
    EXPECT_EQ(client->news(), "update 7 30 03000000 2730");
    EXPECT_EQ(client->news(), "update 7 30 03000000 4095");
    EXPECT_EQ(client->news(), "update 7 10 24000000 2");
}

TEST_F(Server, FieldsPassByTheMachinesClockIfItIsToldSo) {
    auto given = options();
    given.realFields = true;
    start(std::move(given));
    auto const client = panel();
    client->subscribe(30, me1, 4);
    client->set(31, me1, 0, word(2));
    EXPECT_EQ(client->event(41, me1), 0);
    EXPECT_EQ(client->news(), "update 7 30 03000000 2047");
    EXPECT_EQ(client->news(), "update 7 30 03000000 4095");
}

TEST_F(Server, SendsAListWhenSubscribedAndEachChangeOfIt) {
    start();
    auto const client = panel();
    std::string const head = "0006000"
                             "13e000000";
    EXPECT_EQ(
        client->setList(1, clips, 1, {Value::ofInteger(DataType::UInt32, 25), Value::ofText("A")}),
        0);
    EXPECT_EQ(client->subscribe(clips, 1), 0);
    EXPECT_EQ(client->news(), "list 1 " + head +
                                  "00000001"
                                  "00000000"
                                  "0001"
                                  "0006"
                                  "00000019"
                                  "4100");
    EXPECT_EQ(
        client->setList(1, clips, 2, {Value::ofInteger(DataType::UInt32, 0), Value::ofText("")}),
        0);
    EXPECT_EQ(client->news(), "list 2 " + head +
                                  "00000001"
                                  "00000002"
                                  "0002"
                                  "0006"
                                  "00000019"
                                  "4100"
                                  "00000002"
                                  "00000000"
                                  "0001"
                                  "0005"
                                  "00000000"
                                  "00");
    EXPECT_EQ(client->setList(3, clips, 1, {}), 0);
    EXPECT_EQ(client->news(), "list 1 " + head +
                                  "00000001"
                                  "00000000"
                                  "0003"
                                  "0000");
    EXPECT_EQ(client->setList(1, registers, 1, {}), 3);
    EXPECT_EQ(server->record().count(
                  "#1 < setlist action=1 lid=6 number=1 did=3e000000 itemId=1 \"MarkIn Time\"=25 "
                  "\"Clip Name\"=\"A\""),
              1U);
    EXPECT_EQ(server->record().count(
                  "#1 > list lid=6 number=1 did=3e000000 items=1 itemId=1 nextItemId=0 status=3"),
              1U);
}

TEST_F(Server, AnEmptyListIsNotSentAndALongOneComesInSeveralMessages) {
    start();
    auto const client = panel();
    EXPECT_EQ(client->subscribe(clips, 1), 0);
    auto const fields = [](std::string const& name) {
        return std::vector<Value>{Value::ofInteger(DataType::UInt32, 1), Value::ofText(name)};
    };
    server->frame().putItem(clips, {.itemId = 1, .fields = fields("a")});
    EXPECT_EQ(client->news().substr(0, 7), "list 1 ");
    for (std::uint32_t id = 2; id <= 9; ++id) {
        server->frame().putItem(clips, {.itemId = id, .fields = fields(std::string(20000, 'x'))});
        EXPECT_EQ(client->news().substr(0, 7), "list 2 ");
    }
    EXPECT_TRUE(server->sendList(clips));
    EXPECT_EQ(client->news().substr(0, 7), "list 5 ");
    EXPECT_EQ(client->news().substr(0, 7), "list 4 ");
    EXPECT_FALSE(server->sendList({6, 9, 0x3e000000}));
}

TEST_F(Server, AnswersAPingUnderItsOwnNumber) {
    start();
    auto const client = panel();
    auto const number = client->send(cplwire::Ping{});
    EXPECT_EQ(client->news(), "pong " + std::to_string(number));
    client->send(cplwire::Pong{});
    EXPECT_TRUE(told("#1 < pong"));
}

TEST_F(Server, RefusesASetWhoseBytesAreNoValue) {
    start();
    auto const client = panel();
    EXPECT_EQ(client->setBytes(10, program1, 2, "\1"), 3);
    EXPECT_EQ(client->setBytes(10, program1, 99, "ab"), 3);
    EXPECT_EQ(server->record().count("type=UInt16 value=\"\\x01\""), 1U);
    EXPECT_EQ(server->record().count("type=type99 value=\"ab\""), 1U);
    EXPECT_EQ(server->record().count("cause=\"not a value of its type\""), 2U);
}

}  // namespace
}  // namespace FrameSim
