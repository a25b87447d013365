// How the frame's field time is asked for, and what is made of it.
//
// A sample is three stamps: the panel's clock at the request (t1), the frame's at its reply (t2),
// and the panel's when the reply is there (t3). Half of t3 - t1 is taken for the way back, so that
// the frame's clock now is t2 and that half; where the two ways take different times, the panel's
// clock is off by half of the difference.
//
// The frame's field is measured by asking every 2 ms until a reply shows another boundary than
// the first one. If more than one boundary went by in between, the length is out of range, and
// the measurement begins anew.
//
// The arithmetic is in whole microseconds, each division cut towards zero, as panels and frames
// in use expect of each other.
#include "time/ConnectionExceptions.h"
#include "time/TimeClient.h"
#include "time/TimeDatagram.h"

#include <algorithm>
#include <exception>

namespace {

constexpr int roundsPerSample = 10;
constexpr unsigned measurementsPerLinkCheck = 100;
constexpr std::uint32_t shortestKt = 15000000;  // themselves out of range
constexpr std::uint32_t longestKt = 25000000;

// Microseconds from one stamp to another, cut to 32 bits like all that is reckoned with here: the
// frame's numbers may be anything.
std::int32_t microseconds(TimeStampType const& from, TimeStampType const& to) {
    auto const fields = static_cast<std::int64_t>(to.fieldTime - from.fieldTime) / 1000;
    auto const offsets = std::int64_t{to.fieldOffset} - std::int64_t{from.fieldOffset};
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(fields + offsets));
}

std::uint64_t gap(std::uint64_t one, std::uint64_t other) {
    return std::max(one, other) - std::min(one, other);
}

}  // namespace

std::int32_t timeClient::getSample(TimeStampType& t1, TimeStampType& t2, TimeStampType& t3) {
    TimeStampType stamp;
    bool send = true;
    for (int round = 0; round < roundsPerSample && !abandoned; ++round) {
        if (send) {
            mFieldInterrupt->getNow(stamp);
            if (!sendRequest(stamp))
                return -1;
        }
        TimeDatagram::Bytes datagram{};
        std::size_t bytesRead = 0;
        auto const status = mConnection->read(datagram.data(), datagram.size(), bytesRead);
        send = status != commsconns::Status::done;
        if (send) {
            mLog.getErrorStream() << "Packet read not successful: packetReadStatus=" << status
                                  << " bytesRead=" << bytesRead;
            sleep(6);
            continue;
        }
        auto const reply = TimeDatagram::reply(datagram);
        // Anything else is late or cut: the reply to this request may be behind it.
        if (bytesRead == datagram.size() && reply.echo.fieldOffset == stamp.fieldOffset) {
            mFieldInterrupt->getNow(t3);
            t1 = reply.echo;
            t2 = reply.frame;
            return 0;
        }
    }
    return -1;
}

// After a write that threw, the reading finds out that there is no reply.
bool timeClient::sendRequest(TimeStampType const& stamp) {
    auto const datagram = TimeDatagram::request(stamp);
    std::size_t bytesWritten = 0;
    try {
        if (mConnection->write(datagram.data(), datagram.size(), bytesWritten) ==
            commsconns::Status::done)
            return true;
        mLog.getErrorStream() << "TimeKeeper can't write on UDP port";
        return false;
    } catch (std::exception const&) {
        mLog.getErrorStream()
            << "An error occurred while the TimeClient connection wrote a message to the server.";
        return true;
    }
}

void timeClient::initTime() {
    if (!waitForFirstSample())
        return;
    TimeStampType t1, t2, t3;
    for (unsigned count = 0; !abandoned; ++count) {
        if (count == measurementsPerLinkCheck) {
            checkLink();
            count = 0;
        }
        if (getSample(t1, t2, t3) != 0)
            continue;
        measureField(t1, t2, t3);
        if (shortestKt < mKt && mKt < longestKt)
            return setPanelClock(t1, t2, t3);
        mLog.getInfoStream() << "mKt is out of range " << mKt;
        sleep(100);
    }
}

// False only if the client is to go.
bool timeClient::waitForFirstSample() {
    TimeStampType t1, t2, t3;
    if (getSample(t1, t2, t3) == 0)
        return true;
    mLog.getWarnStream() << "First getSample failed in initTime";
    while (!abandoned) {
        sleep(1000);
        if (getSample(t1, t2, t3) == 0)
            return true;
    }
    return false;
}

void timeClient::checkLink() {
    if (mDriver->getConnectionState() == eConnected)
        return;
    mLog.getWarnStream() << "WARNING: briefly lost UDP link at " << mFrameAddress << " on port "
                         << mPort;
    mConnection->setRemoteEndpoint(mFrameAddress.c_str(), mPort);
}

// A sample that fails counts as a boundary at 0, which is out of range as a rule.
void timeClient::measureField(TimeStampType& t1, TimeStampType& frame, TimeStampType& t3) {
    auto const first = frame.fieldTime;
    bool answered = true;
    while (answered && frame.fieldTime == first) {
        sleep(2);
        answered = getSample(t1, frame, t3) == 0;
    }
    if (!answered)
        frame.fieldTime = 0;
    mKt = static_cast<std::uint32_t>(frame.fieldTime - first);
}

void timeClient::setPanelClock(TimeStampType const& t1, TimeStampType frame,
                               TimeStampType const& t3) {
    if (mKt == mLastKt)
        return;
    mLastKt = mKt;
    auto const milliseconds = mFieldInterrupt->setKt(mKt);
    mLog.getInfoStream() << "Field period set to " << mKt << " mKtms=" << milliseconds;
    auto offset = frame.fieldOffset + static_cast<std::uint32_t>(microseconds(t1, t3) / 2);
    // Kept: meant to step into the next field, it holds an offset against an absolute time, and
    // so fires for a frame that has just begun to count, or for an offset below zero.
    auto const next = frame.fieldTime + mKt;
    auto const extended =
        static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(offset)});
    if (extended > next / 1000) {
        frame.fieldTime = next;
        offset -= mKt / 1000;
    }
    frame.fieldOffset = offset;
    mFieldInterrupt->setClock(frame, mKt / 500 - offset);
}

std::int32_t timeClient::adjustClock() {
    TimeStampType t1, t2, t3;
    if (getSample(t1, t2, t3) != 0)
        return -1;
    auto const field = static_cast<std::int32_t>(mKt / 1000);
    if (field == 0 || gap(t3.fieldTime, t2.fieldTime) / mKt != 0)
        return -1;
    auto const ahead = microseconds(t2, t3);
    auto const adjustment = std::max(ahead, 0);
    addToAverage(adjustment);
    auto const setAdj = mRunAverage / 1000;
    auto const microAdjust = ahead / 1000 / 2;
    mLog.getInfoStream() << "t3-t2=" << ahead << "  (fields=" << ahead / field << ")"
                         << "  - adjustment=" << adjustment << " - mRunAverage=" << mRunAverage
                         << " ~setAdj(" << setAdj << ")  microAdjust=" << microAdjust;
    mFieldInterrupt->setAdjustment(static_cast<unsigned>(setAdj));
    auto const result = mFieldInterrupt->adjustKtMicro(static_cast<unsigned>(microAdjust));
    mLog.getInfoStream() << "microAdjustment=" << result;
    return 0;
}

void timeClient::addToAverage(std::int32_t adjustment) {
    mRunAverage = static_cast<std::int32_t>((std::int64_t{mRunAverage} + adjustment) / 2);
    if (mRunAverage > mMaxAverage) {
        ++mOutOfBoundsCount;
        mRunAverage = mMaxAverage;
    } else if (mRunAverage < mMinAverage) {
        ++mOutOfBoundsCount;
        mRunAverage = mMinAverage;
    } else if (mOutOfBoundsCount > 0) {
        --mOutOfBoundsCount;
    }
}
