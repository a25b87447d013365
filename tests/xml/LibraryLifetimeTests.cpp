#include "XMLFiles.h"
#include "foundation/Exceptions.h"
#include "xml/LibraryLifetime.h"
#include "xml/LibraryUse.h"
#include "xml/XMLText.h"

#include <gtest/gtest.h>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>

#include <stdexcept>
#include <vector>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::DisposalException;
using ErrorManagement::Exception::InitializationException;

std::vector<std::string> calls;

void recordInitialize() { calls.emplace_back("initialize"); }
void recordTerminate() { calls.emplace_back("terminate"); }
void failUnexplained() { throw std::runtime_error("secret"); }

// Its message begins with "u": 117, behind the end of both literals.
[[noreturn]] void failExplained() {
    ThrowXML1(xercesc::RuntimeException, xercesc::XMLExcepts::File_CouldNotOpenFile, u"x");
}

class Lifetime : public ::testing::Test {
  protected:
    Lifetime() { calls.clear(); }

    LibraryLifetime lifetime{recordInitialize, recordTerminate};
};

using Calls = std::vector<std::string>;

TEST_F(Lifetime, AStopTakesTheLibraryDownWhenNobodyUsesIt) {
    lifetime.start();
    EXPECT_TRUE(lifetime.enter());
    lifetime.leave(false);
    EXPECT_EQ(calls, (Calls{"initialize"}));
    lifetime.stop();
    EXPECT_EQ(calls, (Calls{"initialize", "terminate"}));
}

TEST_F(Lifetime, TheLastOneOutTakesItDownAfterAStop) {
    lifetime.start();
    EXPECT_TRUE(lifetime.enter());
    EXPECT_TRUE(lifetime.enter());
    lifetime.stop();
    lifetime.leave(false);
    EXPECT_EQ(calls, (Calls{"initialize"}));
    lifetime.leave(false);
    EXPECT_EQ(calls, (Calls{"initialize", "terminate"}));
}

TEST_F(Lifetime, NobodyComesInAfterTheLastStopAlthoughSomeoneIsStillInside) {
    EXPECT_FALSE(lifetime.enter());
    lifetime.start();
    EXPECT_TRUE(lifetime.enter());
    lifetime.stop();
    EXPECT_FALSE(lifetime.enter());
    lifetime.leave(false);
    EXPECT_FALSE(lifetime.enter());
}

TEST_F(Lifetime, AStartWhileSomeoneIsStillInsideKeepsIt) {
    lifetime.start();
    EXPECT_TRUE(lifetime.enter());
    lifetime.stop();
    lifetime.start();
    EXPECT_TRUE(lifetime.enter());
    lifetime.leave(false);
    lifetime.leave(false);
    EXPECT_EQ(calls, (Calls{"initialize"}));
    lifetime.stop();
    EXPECT_EQ(calls, (Calls{"initialize", "terminate"}));
}

TEST_F(Lifetime, ItRunsWhileThereAreMoreStartsThanStops) {
    lifetime.start();
    lifetime.start();
    lifetime.stop();
    EXPECT_TRUE(lifetime.enter());
    lifetime.leave(false);
    lifetime.stop();
    EXPECT_FALSE(lifetime.enter());
    EXPECT_EQ(calls, (Calls{"initialize", "initialize", "terminate", "terminate"}));
}

TEST_F(Lifetime, AStopTooManyDoesNothing) {
    lifetime.stop();
    lifetime.start();
    EXPECT_TRUE(lifetime.enter());
    lifetime.leave(false);
    EXPECT_EQ(calls, (Calls{"initialize"}));
}

TEST_F(Lifetime, SomeoneWhoLeavesWithAnExceptionLeavesTheStopToTheNextOneOut) {
    lifetime.start();
    EXPECT_TRUE(lifetime.enter());
    lifetime.stop();
    lifetime.leave(true);
    EXPECT_EQ(calls, (Calls{"initialize"}));
    lifetime.start();
    lifetime.stop();
    EXPECT_EQ(calls, (Calls{"initialize", "terminate"}));
}

TEST_F(Lifetime, AFailedStartDoesntCount) {
    LibraryLifetime failing(failUnexplained, recordTerminate);
    EXPECT_THROW(failing.start(), InitializationException);
    EXPECT_FALSE(failing.enter());
    failing.stop();
    EXPECT_EQ(calls, Calls{});
}

TEST_F(Lifetime, AFailedLateStopIsNobodysAnyMore) {
    LibraryLifetime failing(recordInitialize, failUnexplained);
    failing.start();
    EXPECT_TRUE(failing.enter());
    failing.stop();
    failing.leave(false);
    EXPECT_FALSE(failing.enter());
}

TEST_F(Lifetime, FailuresThatAreNotTheLibrarysHaveTextsOfTheirOwn) {
    LibraryLifetime failing(failUnexplained, failUnexplained);
    EXPECT_EQ(thrownText<InitializationException>([&] { failing.start(); }),
              "An unknown problem occurred while initializing the xml utility tools.");
    LibraryLifetime stuck(recordInitialize, failUnexplained);
    stuck.start();
    EXPECT_EQ(thrownText<DisposalException>([&] { stuck.stop(); }),
              "An unknown problem has occurred while disposing of the xml utility tools.");
}

TEST_F(Lifetime, TheLibrarysMessageShiftsTheTextAndDoesntShow) {
    XMLScope const xml;  // the library's exceptions need it
    LibraryLifetime failing(failExplained, failExplained);
    EXPECT_EQ(thrownText<InitializationException>([&] { failing.start(); }), "");
    LibraryLifetime stuck(recordInitialize, failExplained);
    stuck.start();
    EXPECT_EQ(thrownText<DisposalException>([&] { stuck.stop(); }), "");
}

TEST(ExplainedFailure, StartsWhereTheFirstByteOfTheMessagePoints) {
    std::string const literal = "A problem occurred while initializing the xml utility tools: ";
    ASSERT_EQ(literal.size(), 61u);
    struct Row {
        char const* what;
        std::string message;
        std::string text;
    };
    Row const rows[] = {
        {"no message", "", literal},
        {"10", "\n", "occurred while initializing the xml utility tools: "},
        {"32", " message", "izing the xml utility tools: "},
        {"58", ":", "s: "},
        {"60, the last byte", "<", " "},
        {"61, the literal's end", "=", ""},
        {"65, behind it", "A message", ""},
        {"127, the farthest", "\x7f", ""},
        {"-128, ahead of it", "\x80", literal},
        {"-1, ahead of it", "\xff", literal},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(explainedFailure(literal, row.message), row.text);
    }
}

TEST(LibraryUse, FailsWithoutTheLibraryAndSaysSo) {
    EXPECT_EQ(thrownText<std::runtime_error>([] { LibraryUse const use; }),
              "The XML library is not running.");
}

TEST(LibraryUse, IsNoneOfTheDriversFailures) {
    try {
        LibraryUse const use;
        FAIL() << "nothing was thrown";
    } catch (ErrorManagement::Exception::Exception const&) {
        FAIL() << "loaders would log its text";
    } catch (std::runtime_error const&) {
    }
}

TEST(XMLUtilities, StartAndStopAsOftenAsOneLikes) {
    for (int round = 0; round < 3; ++round) {
        startXMLUtilities();
        startXMLUtilities();
        stopXMLUtilities();
        LibraryUse const use;
        stopXMLUtilities();
    }
    stopXMLUtilities();
    EXPECT_THROW(LibraryUse(), std::runtime_error);
}

}  // namespace
}  // namespace FrameDriver::XML
