// A host ends without closing anything: the library's threads are still at work while the
// process's static objects go.
#include "Gate.h"
#include "RecordingCallback.h"
#include "ScriptedFrame.h"
#include "platform/cplclient/CPLClient.h"
#include "platform/logging/LogManager.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>

namespace {

struct Held {
    ScriptedFrame frame;
    CPLClient client{"exiting"};
    Gate busy;
};

Held* held = nullptr;  // keeps it all reachable

[[noreturn]] void exitInTheMiddleOfTraffic() {
    held = new Held;
    auto const callback = boost::make_shared<RecordingCallback>();
    callback->onNews = [](std::string const&) {
        held->busy.open();
        held->client.set(PIDType(1), contractDid, eSetAbsolute, 1, 0);
        Brindlemoor::Utilities::Logging::LogManager::getInstance()
                ->getCategory("CPLClient")
                .getWarnStream()
            << "still here";
    };
    held->frame.listen();
    held->client.open("127.0.0.1", 0);
    held->client.connect("127.0.0.1", held->frame.port());
    auto const id = held->client.registerCallback(callback, 0);
    held->client.subscribe(PIDType(1), contractDid, id, eSubscribeUpdate, 0, 0);
    std::thread([] {
        while (held->client.set(PIDType(1), contractDid, eSetAbsolute, 2, 0) == eStatusOk)
            ;
    }).detach();
    held->busy.wait();
    std::exit(0);
}

TEST(ExitDeathTest, ThreadsMayRunOnWhileTheProcessEnds) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    for (int round = 0; round < 5; ++round)
        EXPECT_EXIT(exitInTheMiddleOfTraffic(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
