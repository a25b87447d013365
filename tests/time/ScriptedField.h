#pragma once

#include "foundation/Clock.h"
#include "platform/sal/PanelFieldInterrupt.h"
#include "time/FrameLink.h"
#include "time/NetworkConnection.h"
#include "time/TimeClient.h"
#include "time/TimeDatagram.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <deque>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace FrameDriver::Testing {

using Lines = std::vector<std::string>;

inline std::string shown(TimeStampType const& stamp) {
    return std::to_string(stamp.fieldTime) + "+" + std::to_string(stamp.fieldOffset);
}

/// All that a scripted client does to its surroundings, in order.
struct Record {
    void add(std::string text) { calls.push_back(std::move(text)); }
    Lines take() { return std::exchange(calls, {}); }
    Lines calls;
};

/// A field clock that shows what the test says.
class ScriptedInterrupt : public sal::PanelFieldInterrupt {
  public:
    explicit ScriptedInterrupt(Record& record) : calls(record) {}

    bool setAdjustment(unsigned milliseconds) override {
        calls.add("setAdjustment(" + std::to_string(milliseconds) + ")");
        return true;
    }
    bool enable() override {
        calls.add("enable");
        return true;
    }
    void waitOnEvent() override { calls.add("waitOnEvent"); }
    /// The last of `readings` stays.
    void getNow(TimeStampType& now) override {
        now = readings.front();
        if (readings.size() > 1)
            readings.pop_front();
    }
    unsigned setKt(unsigned period) override {
        calls.add("setKt(" + std::to_string(period) + ")");
        return period / 1000000;
    }
    bool setClock(TimeStampType const& time, unsigned wait) override {
        calls.add("setClock(" + shown(time) + ", " + std::to_string(wait) + ")");
        return true;
    }
    unsigned adjustKtMicro(unsigned microseconds) override {
        calls.add("adjustKtMicro(" + std::to_string(static_cast<int>(microseconds)) + ")");
        return microseconds;
    }

    std::deque<TimeStampType> readings{{0, 0}};

  private:
    Record& calls;
};

/// A connection whose answers are written down ahead.
class ScriptedConnection : public commsconns::NetworkConnection {
  public:
    explicit ScriptedConnection(Record& record) : NetworkConnection(false), calls(record) {}

    struct Answer {
        std::int32_t status = 1;
        TimeStampType frame{};
        int echoOff = 0;  ///< added to the echoed fieldOffset
        std::size_t size = 28;
    };

    std::int32_t open() override {
        calls.add("open");
        if (openError)
            throw std::runtime_error("no socket");
        return openResult;
    }
    void close() override { calls.add("close"); }
    void stop() override {}
    bool isReadable() override { return false; }
    bool isOpen() override { return true; }
    std::int32_t read(char* buffer, std::size_t const& capacity, std::size_t& bytesRead) override {
        calls.add("read");
        if (onRead)
            onRead();
        auto const answer = next();
        bytesRead = 0;
        if (answer.status != 1)
            return answer.status;
        auto const echo = TimeDatagram::reply(sent).echo;
        TimeStampType const echoed{
            echo.fieldTime,
            static_cast<std::uint32_t>(echo.fieldOffset + static_cast<unsigned>(answer.echoOff))};
        std::string bytes(28, '\0');
        auto const request = TimeDatagram::request(echoed);
        std::copy(request.begin(), request.begin() + 16, bytes.begin());
        std::memcpy(&bytes[16], &answer.frame.fieldTime, 8);
        std::memcpy(&bytes[24], &answer.frame.fieldOffset, 4);
        bytesRead = std::min(answer.size, capacity);
        bytes.copy(buffer, bytesRead);
        return 1;
    }
    std::int32_t write(char const* buffer, std::size_t const& length,
                       std::size_t& bytesWritten) override {
        calls.add("write");
        if (writeError)
            throw std::runtime_error("no route");
        bytesWritten = writeResult == 1 ? length : 0;
        std::copy(buffer, buffer + length, sent.begin());
        return writeResult;
    }
    void setLocalEndpoint(Address const&, std::uint16_t) override {}
    void setLocalEndpoint(char const* host, unsigned short const& port) override {
        calls.add(std::string("local ") + host + ":" + std::to_string(port));
    }
    std::string getLocalAddress() override { return "0.0.0.0"; }
    void setLocalPort(unsigned short const&) override {}
    std::uint16_t getLocalPort() override { return 0; }
    void setRemoteEndpoint(Address const&, std::uint16_t) override {}
    void setRemoteEndpoint(char const* host, unsigned short const& port) override {
        calls.add(std::string("remote ") + host + ":" + std::to_string(port));
    }
    std::string getRemoteAddress() override { return "0.0.0.0"; }
    void setRemotePort(unsigned short const&) override {}
    std::uint16_t getRemotePort() override { return 0; }
    TimeDuration getReceiveTimeOut() override { return {}; }
    void setReceiveTimeOut(TimeDuration const& timeOut) override {
        calls.add("receive time-out " + std::to_string(timeOut.total_microseconds()));
    }
    TimeDuration getSendTimeOut() override { return {}; }
    void setSendTimeOut(TimeDuration const&) override {}
    std::int32_t read(unsigned char*, std::size_t const&, std::size_t&) override { return -4; }
    std::int32_t write(unsigned char const*, std::size_t const&, std::size_t&) override {
        return -4;
    }

    /// The answers to come; then time-outs.
    std::deque<Answer> answers;
    std::function<void()> onRead;
    std::int32_t openResult = 0;
    bool openError = false;
    std::int32_t writeResult = 1;
    bool writeError = false;
    TimeDatagram::Bytes sent{};

  private:
    Answer next() {
        if (answers.empty())
            return {0, {}, 0, 28};
        auto const answer = answers.front();
        answers.pop_front();
        return answer;
    }

    Record& calls;
};

/// Sleeps no time, and leaves a line for each sleep.
class ScriptedClock : public Tools::Clock {
  public:
    explicit ScriptedClock(Record& record) : calls(record) {}
    void sleep(std::chrono::microseconds duration) override {
        calls.add("sleep " + std::to_string(duration.count() / 1000));
        if (onSleep)
            onSleep(duration.count() / 1000);
    }
    std::tm localTime() override { return {}; }
    std::function<void(long milliseconds)> onSleep;

  private:
    Record& calls;
};

class ScriptedLink : public FrameLink {
  public:
    ClientConnectionState getConnectionState() const override { return state; }
    std::string getFrameAddress() const override { return address; }
    ClientConnectionState state = eConnected;
    std::string address = "10.0.0.2";
};

/// The client with its inside open to a test.
class OpenTimeClient : public timeClient {
  public:
    using timeClient::doRound;
    using timeClient::mState;
    using timeClient::timeClient;
};

}  // namespace FrameDriver::Testing
