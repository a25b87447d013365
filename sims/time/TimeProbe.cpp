#include "sims/time/TimeProbe.h"

#include "sims/time/FieldTime.h"
#include "sims/time/TimeService.h"

namespace TimeSim {
namespace {

/// This machine's clock as a panel would tell it, with fields of its own.
FieldTime stamp(Moment now) {
    constexpr std::int64_t field = 20000000;
    auto const since = now.count() % field;
    return {static_cast<std::uint64_t>(now.count() - since),
            static_cast<std::uint32_t>(since / 1000)};
}

}  // namespace

TimeProbe::TimeProbe(std::string const& host, std::uint16_t port)
    : socket(DatagramSocket::asking(host, port)) {}

std::optional<TimeSample> TimeProbe::ask(std::chrono::nanoseconds timeOut) {
    auto const now = steadyNow();
    auto const request = stamp(now);
    // A datagram that can't be sent is one that isn't answered.
    socket.send(writeRequest(request));
    auto sample = await(request, now + timeOut);
    if (sample) {
        sample->sent = now;
    }
    return sample;
}

void TimeProbe::pause(std::chrono::nanoseconds time) { await(std::nullopt, steadyNow() + time); }

std::optional<TimeSample> TimeProbe::await(std::optional<FieldTime> request, Moment until) {
    for (;;) {
        auto const datagram = socket.receive();
        auto const now = steadyNow();
        if (datagram) {
            auto const reply = readReply(datagram->bytes);
            if (request && reply && reply->echo == *request) {
                return TimeSample{{}, now, reply->frame};
            }
            ++strayCount;
        }
        if (now >= until) {
            return std::nullopt;
        }
        if (!datagram) {
            awaitReadable(socket.handle(), -1, until - now);
        }
    }
}

}  // namespace TimeSim
