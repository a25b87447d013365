// Everything that drives the driver at once, and a stop in the middle of it.
#include "DriverFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

using namespace FrameDriver::Testing;

namespace {

// Enough to outlast the stop, and a bound for the memory that the records take.
constexpr int mostRounds = 20000;

class Concurrency : public DriverFixture {
  protected:
    void loadInstallation() {
        writeInstallation();
        writeFIDs("FIDs.xml", "<fid>KNOWN</fid>");
        writeSubscriptions("Subscriptions.xml",
                           "<subscription xsi:type=\"parameterSubscription\"><paramId>10</paramId>"
                           "<deviceId>0x62000000</deviceId></subscription>");
        writeDictionary("FIDs-to-frame.xml",
                        "<conversion><from xsi:type=\"fid\"><id>KNOWN</id>"
                        "<parameter name=\"v\">{@v}</parameter></from>"
                        "<to xsi:type=\"context\"><name>KEY</name><value>{@v}</value></to>"
                        "<to xsi:type=\"fid\"><id>ROUND</id></to></conversion>"
                        "<conversion><from xsi:type=\"fid\"><id>ROUND</id></from>"
                        "<to xsi:type=\"sid\"><id>FID</id><value>{$context:KEY}</value></to>"
                        "<to xsi:type=\"cplSendEventMessage\"><eventId>40</eventId></to>"
                        "</conversion>");
        writeDictionary("Issues-to-panel.xml",
                        "<conversion><from xsi:type=\"cplParameterIssue\"><paramId>10</paramId>"
                        "<deviceId><EncodingType>62</EncodingType><SuiteIDType>0</SuiteIDType>"
                        "</deviceId><data datatype=\"UInt16\">{@v}</data><flag>absolute</flag>"
                        "</from><to xsi:type=\"fid\"><id>ROUND</id></to></conversion>");
        load();
        sinks.take();
        frame().takeCalls();
    }
    void deliverFIDs() {
        auto const list = listOf({{"v", "1"}});
        for (int round = 0; round < mostRounds && !stopped; ++round, ++delivered)
            functions().handleFID("KNOWN", list);
    }
    /// Those that the driver takes: none any more once its client is closed.
    void deliverIssues() {
        for (int round = 0; round < mostRounds && !stopped; ++round) {
            auto record = ParameterRecord::of<std::uint16_t>(10, 0x62000000, 2, 77);
            delivered += frame().parameterUpdate(record);
        }
    }

    std::atomic<bool> stopped{false};
    std::atomic<int> delivered{0};
};

}  // namespace

TEST_F(Concurrency, NothingIsLostBetweenHostFrameAndObserverThoughTheDriverStops) {
    loadInstallation();
    std::vector<std::thread> threads;
    for (int host = 0; host < 2; ++host)
        threads.emplace_back([&] { deliverFIDs(); });
    threads.emplace_back([&] { deliverIssues(); });
    for (int pass = 0; pass < 6; ++pass) {  // connect, sequence, lost, and again
        frame().setConnectionState(pass % 3 == 2 ? eConnectionLost : eConnected);
        clock.next();
        clock.next();
    }
    clock.release();
    configuration().unload();
    stopped = true;
    for (auto& thread : threads)
        thread.join();
    auto const lines = sinks.take();
    auto const made = std::count_if(lines.begin(), lines.end(), [](std::string const& line) {
        return line == "SID FID = 1" || line == "SID FID = INVALID";
    });
    EXPECT_GT(delivered, 0);
    EXPECT_EQ(made, delivered);
    auto const calls = frame().takeCalls();
    auto const events = std::count_if(calls.begin(), calls.end(), [](std::string const& call) {
        return call.starts_with("event(");
    });
    EXPECT_EQ(events, delivered);
}
