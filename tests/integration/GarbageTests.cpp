// A frame, or whoever stands in its place, that sends what makes no sense.

#include "Studio.h"
#include "SwitcherTruth.h"

#include <string>
#include <vector>

namespace FrameDriver::Testing {
namespace {

using FrameSim::Garbage;
using Lines = std::vector<std::string>;

class Nonsense : public Studio {
  protected:
    /// Back by itself, and right.
    void expectReturn(int connection) {
        ASSERT_TRUE(frameTells("#" + std::to_string(connection) + " < hello"));
        EXPECT_EQ(lastingLies(frame->frame(), panel->record(), patience), Lines());
    }

    LogCapture client{"CPLClient"};
};

TEST_F(Nonsense, EndsTheConnectionWithOneLineEachTime) {
    struct Row {
        Garbage kind;
        char const* line;
    };
    // Random bytes begin with a length that is almost never possible.
    constexpr Row rows[] = {
        {Garbage::random, "warning: connection lost: a message of impossible length"},
        {Garbage::length, "warning: connection lost: a message of impossible length"},
        {Garbage::version, "warning: connection lost: a message that makes no sense"},
        {Garbage::type, "warning: connection lost: a message that makes no sense"},
    };
    startBoth();
    EXPECT_EQ(client.take(), Lines());
    int connection = 1;
    for (auto const& row : rows) {
        SCOPED_TRACE(row.line);
        ASSERT_EQ(frame->sendGarbage(row.kind), 1U);
        expectReturn(++connection);
        EXPECT_EQ(client.take(), Lines{row.line});
    }
}

TEST_F(Nonsense, AFrameOfAnotherVersionIsTriedAgainWithOneLineAnAttempt) {
    frame->welcomeVersion(2);
    frame->start();
    startPanel();
    std::string const line = "info: no connection to " + frameAddress.text() +
                             ":5000: that is no frame of this protocol's version";
    ASSERT_TRUE(client.waitFor(line, 2, patience));
    frame->welcomeVersion({});
    ASSERT_TRUE(shows("FRAME.CONNECTED", "ON"));
    auto const attempts = frame->record().count(" < hello");
    EXPECT_EQ(client.take(), Lines(attempts - 1, line));
}

TEST_F(Nonsense, InTheMiddleOfAShowLeavesNothingWrong) {
    startBoth();
    raise("ME1.PST.SRC5");
    frame->sendGarbage(Garbage::random);
    raise("ME1.CUT");
    raise("ME1.KEY1.TOGGLE");
    operatorSets(40, 0x18000001, 9);
    expectReturn(2);
}

}  // namespace
}  // namespace FrameDriver::Testing
