#pragma once

#include "Gate.h"
#include "LogLines.h"
#include "RecordingCallback.h"
#include "ScriptedFrame.h"
#include "platform/cplclient/CPLClient.h"
#include "platform/cplclient/ClientTimings.h"

#include <boost/make_shared.hpp>
#include <boost/smart_ptr/weak_ptr.hpp>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

/// A stand-in client before a scripted frame. The client is made with the first call, so a test
/// sets times and scripts before.
class StandInTest : public ::testing::Test {
  protected:
    using Texts = std::vector<std::string>;
    static constexpr char const* here = "127.0.0.1";

    ~StandInTest() override {
        made.reset();
        timings = ClientTimings();
    }

    /// Ends the client and the frame at the end of a test, ahead of everything of the test's own
    /// that was declared before it and that a script or a callback looks at.
    class Ending {
      public:
        explicit Ending(StandInTest& whole) : test(whole) {}
        ~Ending() {
            test.made.reset();
            test.frame.stop();
        }
        Ending(Ending const&) = delete;
        Ending& operator=(Ending const&) = delete;

      private:
        StandInTest& test;
    };

    /// Holds the first call into `heard` up, until `goOn` is opened.
    void holdFirst() {
        heard->onNews = [this](std::string const&) {
            inside.open();
            goOn.wait();
        };
    }

    CPLClient& client() {
        if (!made) {
            made = std::make_unique<CPLClient>("stand-in");
            made->open(here, 0);
        }
        return *made;
    }
    bool connect() { return client().connect(here, frame.port()); }
    void listenAndConnect() {
        frame.listen();
        ASSERT_TRUE(connect());
    }
    unsigned short enroll(boost::shared_ptr<RecordingCallback> const& target) {
        return client().registerCallback(target, 0);
    }
    unsigned short enroll() { return enroll(heard); }
    Status setNumber(int value) {
        return client().set(PIDType(2), contractDid, eSetAbsolute, value, 0);
    }
    static cplwire::ParameterUpdate update(unsigned short callback, std::uint16_t pid,
                                           std::string_view value = {"\0\0\0\1", 4}) {
        return {callback, pid, contractDid, 1, value};
    }

    ClientTimings& timings = timingsOfNewClients();
    LogLines log;
    Gate inside;  // see holdFirst
    Gate goOn;
    ScriptedFrame frame;
    boost::shared_ptr<RecordingCallback> heard = boost::make_shared<RecordingCallback>();
    std::unique_ptr<CPLClient> made;
};
