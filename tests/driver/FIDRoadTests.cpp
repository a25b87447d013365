// From a FID or an issue to what comes of it, through dictionaries from files.
#include "DriverFixture.h"
#include "cpl/Issue.h"
#include "foundation/Exceptions.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace FrameDriver::Testing;
using FrameDriver::ErrorManagement::Exception::IllegalArgumentException;

namespace {

std::string const closing = "\222";

class FIDRoad : public DriverFixture {
  protected:
    /// Starts a driver whose FID dictionary has just these conversions.
    void loadWith(std::string const& fidConversions, std::string const& issueConversions = "") {
        writeInstallation();
        writeFIDs("FIDs.xml", "<fid>KNOWN</fid><fid>A(1-2).INC</fid>");
        writeDictionary("FIDs-to-frame.xml", fidConversions);
        writeDictionary("Issues-to-panel.xml", issueConversions);
        load();
        sinks.take();
        frame().takeCalls();
        log.take();
    }
};

/// A conversion from the FID of that name with that parameter.
std::string echo(std::string const& name, std::string const& parameter) {
    return "<conversion><from xsi:type=\"fid\"><id>" + name + "</id><parameter name=\"" +
           parameter + "\">{@v}</parameter></from>" + "<to xsi:type=\"sid\"><id>" + parameter +
           "</id><value>{@v}</value></to></conversion>";
}

std::string conversion(std::string const& from, std::string const& to) {
    return "<conversion>" + from + to + "</conversion>";
}

std::string const fromKnown = "<from xsi:type=\"fid\"><id>KNOWN</id></from>";

}  // namespace

TEST_F(FIDRoad, TheSourceOfAnIncrementIsToldByItsWidget) {
    loadWith(echo("X.INC", "SOURCE"));
    struct {
        std::uint16_t widget;
        char const* source;
    } const rows[] = {{110, "KNOB"},     {307, "TRIM"}, {310, "KNOB"}, {510, "KNOB"},
                      {611, "JOYSTICK"}, {710, "KNOB"}, {910, "KNOB"}};
    for (auto const& row : rows) {
        SCOPED_TRACE(row.widget);
        FIDParameterList list;
        list.setSourceWidget({row.widget, 0});
        driver->handleFID("X.INC", list);
        EXPECT_EQ(sinks.take(), (Lines{std::string("SID SOURCE = ") + row.source}));
    }
}

TEST_F(FIDRoad, OtherWidgetsAddNoSource) {
    loadWith("");
    for (int const widget : {0, 109, 111, 308, 309, 65535}) {
        SCOPED_TRACE(widget);
        FIDParameterList list;
        list.setSourceWidget({static_cast<std::uint16_t>(widget), 0});
        driver->handleFID("X.INC", list);
        EXPECT_EQ(log.take(),
                  (Lines{"debug: No conversion found for: FID: id=X.INC, data=[" + closing}));
    }
}

TEST_F(FIDRoad, OnlyTheEndOfTheNameCountsForTheSource) {
    loadWith("");
    FIDParameterList list;
    list.setSourceWidget({307, 0});
    for (auto const* name : {"X.INC.Y", "X.inc", "XINC", "X.INCR"}) {
        driver->handleFID(name, list);
        EXPECT_EQ(log.take(), (Lines{std::string("debug: No conversion found for: FID: id=") +
                                     name + ", data=[" + closing}));
    }
}

TEST_F(FIDRoad, TheParameterACStaysWithThePanel) {
    loadWith("");
    auto const list = listOf({{"AC", "1"}, {"VAL", "2"}, {"AC", "3"}});
    EXPECT_TRUE(driver->handleFID("KNOWN", list));
    EXPECT_EQ(log.take(),
              (Lines{"debug: No conversion found for: FID: id=KNOWN, data=[VAL=2" + closing}));
    EXPECT_EQ(list.size(), 3U);
}

TEST_F(FIDRoad, ASourceThatThePanelSentStaysAndASecondOneIsAdded) {
    loadWith("");
    auto list = listOf({{"SOURCE", "MINE"}});
    list.setSourceWidget({611, 0});
    driver->handleFID("X.INC", list);
    EXPECT_EQ(log.take(), (Lines{"debug: No conversion found for: FID: id=X.INC, "
                                 "data=[SOURCE=MINE, SOURCE=JOYSTICK" +
                                 closing}));
}

TEST_F(FIDRoad, ANameThatIsTooShortIsTheCallersFault) {
    loadWith("");
    for (auto const* name : {"", "ABC"}) {
        try {
            driver->handleFID(name, {});
            ADD_FAILURE() << "nothing was thrown for '" << name << "'";
        } catch (std::out_of_range const& error) {
            EXPECT_STREQ(error.what(), "invalid string position");
        }
    }
    EXPECT_TRUE(driver->handleFID("ABCD", {}));
}

TEST_F(FIDRoad, OnlyRegisteredFIDsEnterFromTheHost) {
    loadWith(echo("KNOWN", "a") + echo("UNKNOWN", "a"));
    functions().handleFID("UNKNOWN", listOf({{"a", "1"}}));
    EXPECT_EQ(sinks.take(), Lines{});
    functions().handleFID("KNOWN", listOf({{"a", "1"}}));
    EXPECT_EQ(sinks.take(), (Lines{"SID a = 1"}));
}

TEST_F(FIDRoad, EachKindOfResultLineGoesToItsOwner) {
    loadWith(conversion(
        fromKnown,
        "<to xsi:type=\"sid\"><id>S</id><value>1, 2=3</value></to>"
        "<to xsi:type=\"tid\"><id>T</id><parameter>text</parameter></to>"
        "<to xsi:type=\"context\"><name>KEY</name><value>kept</value></to>"
        "<to xsi:type=\"cplSetMessage\"><paramId>10</paramId><deviceId><EncodingType>08"
        "</EncodingType><MEIdType>1</MEIdType><KeyerIDType>2</KeyerIDType>"
        "<eEMemLevel>0</eEMemLevel></deviceId><data datatype=\"UInt16\">7</data>"
        "<flag>absolute</flag></to>"
        "<to xsi:type=\"cplSendEventMessage\"><eventId>40</eventId><deviceId><EncodingType>03"
        "</EncodingType><MEIdType>1</MEIdType></deviceId></to>"
        "<to xsi:type=\"cplParameterSubscription\"><paramId>20</paramId><deviceId>"
        "<EncodingType>62</EncodingType><SuiteIDType>0</SuiteIDType></deviceId>"
        "<flag>immediate</flag></to>"
        "<to xsi:type=\"cplListSubscription\"><listId>12</listId><listNumber>1</listNumber>"
        "<deviceId><EncodingType>62</EncodingType><SuiteIDType>0</SuiteIDType></deviceId>"
        "<flag>update</flag></to>"
        "<to xsi:type=\"cplBatchSubscription\"><subscription><paramId>(1-2)</paramId><deviceId>"
        "<EncodingType>62</EncodingType><SuiteIDType>1</SuiteIDType></deviceId></subscription>"
        "</to>"
        "<to xsi:type=\"cplSetListMessage\"><listId>6</listId><deviceId><EncodingType>62"
        "</EncodingType><SuiteIDType>0</SuiteIDType></deviceId><number>1</number>"
        "<action>2</action><item><itemId>9</itemId><status>1</status><nextItemId>0</nextItemId>"
        "<parameter name=\"Clip Name\" datatype=\"String\">take 1</parameter></item></to>"
        "<to xsi:type=\"sid\"><id>C</id><value>{$context:KEY}</value></to>"));
    driver->handleFID("KNOWN", {});
    EXPECT_EQ(sinks.take(), (Lines{"SID S = 1, 2=3", "TID T = text", "SID C = INVALID"}));
    EXPECT_EQ(frame().takeCalls(),
              (Lines{"set<unsigned short>(pid=10, did=8000021, flag=0, value=7, 0)",
                     "event(eid=40, did=3000001, data=[], size=0, 0)",
                     "subscribe(pid=20, did=62000000, callback=1, flag=1, 0, 0)",
                     "subscribe(lid=12, number=1, did=62000000, callback=1, flag=4, 0, 0)",
                     "subscribe([1:62000001, 2:62000001], callback=1, flag=3, 0, 0)",
                     "setList(action=2, lid=6, did=62000000, number=1, "
                     "DeviceEventListItem{itemId=9, clipName=\"take 1\", markInTime=0}, 0)"}));
    driver->handleFID("KNOWN", {});
    EXPECT_EQ(sinks.take().back(), "SID C = kept");
}

TEST_F(FIDRoad, AFIDThatADictionaryMakesGoesRoundWithoutTheStepsForPanels) {
    loadWith(conversion(fromKnown, "<to xsi:type=\"fid\"><id>MADE.INC</id>"
                                   "<parameter name=\"AC\">1</parameter></to>") +
             echo("MADE.INC", "AC"));
    FIDParameterList list;
    list.setSourceWidget({307, 0});
    driver->handleFID("KNOWN", list);
    EXPECT_EQ(sinks.take(), (Lines{"SID AC = 1"}));
}

TEST_F(FIDRoad, AMalformedFIDIsToldAndGoesOn) {
    loadWith("");
    auto const line = "FID: id=MADE, data=[a=1" + closing + "2" + closing;
    testing::internal::CaptureStdout();
    driver->dispatchResult(line);
    auto const printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(printed, "fidMessageString=" + line + "  end=25 other=23\n");
    EXPECT_EQ(log.take(), (Lines{"error: AWESOME-" + line,
                                 "debug: No conversion found for: FID: id=MADE, data=[a=1" +
                                     closing + "2" + closing}));
}

TEST_F(FIDRoad, LinesOfNoKnownKindAreDroppedWithoutAWord) {
    loadWith("");
    for (auto const* line :
         {"", ":", "FIDX: id=A, data=[", "sid: id=A, value=1", "SID : id=A, value=1", "nonsense",
          "Parameter Issue: pid=1, did=[EncodingType=62, SuiteIDType=0\222, flag=absolute",
          "List Issue: lid=1"})
        driver->dispatchResult(line);
    EXPECT_EQ(sinks.take(), Lines{});
    EXPECT_EQ(frame().takeCalls(), Lines{});
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(FIDRoad, APrefixNeedsNoColon) {
    loadWith("");
    driver->dispatchResult("Send Event Message");
    EXPECT_EQ(frame().takeCalls().size(), 1U);
}

TEST_F(FIDRoad, AnUnknownDFIDIsIgnored) {
    loadWith("");
    driver->dispatchResult("DFID: id=NOT.MINE, data=[a=1" + closing);
    EXPECT_EQ(sinks.take(), Lines{});
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(FIDRoad, StatesBeforeTheDictionariesAreLoadedAreDroppedNotQueued) {
    configuration().setStateSink(&sinks);
    driver->dispatchResult("SID: id=EARLY, value=1");
    driver->dispatchResult("TID: id=EARLY, parameter=1");
    EXPECT_EQ(sinks.take(), (Lines{"TID EARLY = 1"}));
    writeInstallation();
    load();
    EXPECT_EQ(sinks.take(), (Lines{"SID LOADED = "}));
    driver->dispatchResult("SID: id=LATE, value=1");
    EXPECT_EQ(sinks.take(), (Lines{"SID LATE = 1"}));
}

TEST_F(FIDRoad, AnIssueEndsAtThePanelAndAtTheFrame) {
    loadWith("", conversion("<from xsi:type=\"cplParameterIssue\"><paramId>10</paramId><deviceId>"
                            "<EncodingType>62</EncodingType><SuiteIDType>0</SuiteIDType>"
                            "</deviceId><data datatype=\"UInt16\">{@v}</data>"
                            "<flag>absolute</flag></from>",
                            "<to xsi:type=\"sid\"><id>VALUE</id><value>{@v}</value></to>"
                            "<to xsi:type=\"cplSetMessage\"><paramId>11</paramId><deviceId>"
                            "<EncodingType>62</EncodingType><SuiteIDType>0</SuiteIDType>"
                            "</deviceId><data datatype=\"Bool\">true</data>"
                            "<flag>absolute</flag></to>"));
    auto record = ParameterRecord::of<std::uint16_t>(10, 0x62000000, 2, 77);
    ASSERT_TRUE(frame().parameterUpdate(record));
    EXPECT_EQ(sinks.take(), (Lines{"SID VALUE = 77"}));
    EXPECT_EQ(frame().takeCalls(),
              (Lines{"set<bool>(pid=11, did=62000000, flag=0, value=true, 0)"}));
}

TEST_F(FIDRoad, AnIssueWithoutAnEntryIsToldAtDebugLevelAlone) {
    loadWith("");
    auto record = ParameterRecord::of<std::uint16_t>(10, 0x62000000, 2, 77);
    ASSERT_TRUE(frame().parameterUpdate(record));
    EXPECT_EQ(log.take(),
              (Lines{"debug: No conversion found for: Parameter Issue: pid=10, "
                     "did=[EncodingType=62, SuiteIDType=0" +
                     closing + ", data=[type=UInt16, value=77" + closing + ", flag=absolute"}));
    EXPECT_EQ(sinks.take(), Lines{});
}

TEST_F(FIDRoad, AnIssueThatCouldNotBeMadeIsPassedOver) {
    loadWith("");
    driver->handleIssue(nullptr);
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(FIDRoad, AnIssuesMessageGoesOutOnTheThreadThatBroughtTheIssue) {
    loadWith("", conversion("<from xsi:type=\"cplParameterIssue\"><paramId>10</paramId><deviceId>"
                            "<EncodingType>62</EncodingType><SuiteIDType>0</SuiteIDType>"
                            "</deviceId><data datatype=\"UInt16\">{@v}</data>"
                            "<flag>absolute</flag></from>",
                            "<to xsi:type=\"cplSetMessage\"><paramId>11</paramId><deviceId>"
                            "<EncodingType>62</EncodingType><SuiteIDType>0</SuiteIDType>"
                            "</deviceId><data datatype=\"Bool\">true</data></to>"));
    std::thread::id sender;
    frame().onCall([&](std::string const&) { sender = std::this_thread::get_id(); });
    auto record = ParameterRecord::of<std::uint16_t>(10, 0x62000000, 2, 77);
    std::thread callbacks([&] { frame().parameterUpdate(record); });
    auto const bringer = callbacks.get_id();
    callbacks.join();
    frame().onCall(nullptr);
    EXPECT_EQ(frame().takeCalls().size(), 1U);
    EXPECT_EQ(sender, bringer);
}

TEST_F(FIDRoad, AnExceptionReachesTheCaller) {
    class Thrower : public RecordingSinks {
        void setText(std::string const&, std::string const&) override {
            throw std::runtime_error("no display");
        }
    } thrower;
    loadWith(conversion(fromKnown, "<to xsi:type=\"tid\"><id>T</id></to>"));
    configuration().setStateSink(&thrower);
    EXPECT_THROW(functions().handleFID("KNOWN", {}), std::runtime_error);
    configuration().setStateSink(&sinks);
    driver->handleFID("KNOWN", {});  // nothing stays locked
    EXPECT_EQ(sinks.take().size(), 1U);
}

// Kept: the client's lock stays taken behind a value of a kind that can't be sent, so such a
// driver can't even be closed any more.
TEST_F(FIDRoad, AValueThatCannotBeSentReachesTheCallerToo) {
    static std::vector<std::unique_ptr<QuillaneQFD>>* const broken =
        new std::vector<std::unique_ptr<QuillaneQFD>>;
    for (auto const* line : {"Set Message",  // needs no colon to be one
                             "Set Message: 10, did=[EncodingType=62, SuiteIDType=0\222, "
                             "data=[type=UInt8, value=7\222"}) {
        SCOPED_TRACE(line);
        broken->push_back(std::make_unique<QuillaneQFD>());
        try {
            broken->back()->dispatchResult(line);
            ADD_FAILURE() << "nothing was thrown";
        } catch (IllegalArgumentException const& error) {
            EXPECT_EQ(error.getMessage(),
                      "The set message provided carries data of an unknown type.");
        }
    }
}

TEST_F(FIDRoad, WithoutAFunctionObjectStatesAndTextsAreDropped) {
    class Headless : public QuillaneQFD {
      public:
        Headless() {
            delete functions;
            functions = nullptr;
            configuration->setFunctions(nullptr);
        }
    } headless;
    EXPECT_EQ(headless.queryInterface(1100), nullptr);
    auto& settings = dynamic_cast<IQFDConfiguration&>(*headless.queryInterface(1201));
    settings.setStateSink(&sinks);
    settings.setFunctionSink(&sinks);
    headless.dispatchResult("TID: id=T, parameter=1");
    headless.dispatchResult("SID: id=S, value=1");
    EXPECT_EQ(sinks.take(), Lines{});
}
