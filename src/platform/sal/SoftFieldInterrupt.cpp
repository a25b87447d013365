#include "platform/sal/SoftFieldInterrupt.h"

#include <system_error>

namespace sal {

using std::chrono::steady_clock;

Timer::~Timer() = default;

PanelFieldInterrupt* PanelFieldInterrupt::getInstance() {
    static auto* const interrupt = new MachineFieldInterrupt;  // never destroyed
    return interrupt;
}

void SoftFieldInterrupt::operate(
    std::function<void(FieldClock&, FieldClock::Moment)> const& change) {
    std::lock_guard const guard(lock);
    change(fields, moment());
    changed();
}

void SoftFieldInterrupt::getNow(TimeStampType& now) {
    std::lock_guard const guard(lock);
    now = fields.at(moment());
}

unsigned SoftFieldInterrupt::setKt(unsigned nanoseconds) {
    unsigned result = 0;
    operate([&](FieldClock& clock, auto now) { result = clock.setKt(now, nanoseconds); });
    return result;
}

bool SoftFieldInterrupt::setClock(TimeStampType const& time, unsigned wait) {
    operate([&](FieldClock& clock, auto now) { clock.setClock(now, time, wait); });
    return true;
}

unsigned SoftFieldInterrupt::adjustKtMicro(unsigned microseconds) {
    int result = 0;
    operate([&](FieldClock& clock, auto now) {
        result = clock.trim(now, static_cast<int>(microseconds));
    });
    return static_cast<unsigned>(result);
}

bool SoftFieldInterrupt::setAdjustment(unsigned milliseconds) {
    operate([&](FieldClock& clock, auto now) { clock.setBack(now, milliseconds); });
    return true;
}

namespace {

FieldClock::Moment machineNow() { return steady_clock::now().time_since_epoch(); }

FieldClock clockAt(FieldClock::Moment now) {
    return FieldClock(now, static_cast<std::uint64_t>(now.count()));
}

}  // namespace

MachineFieldInterrupt::MachineFieldInterrupt() : SoftFieldInterrupt(clockAt(machineNow())) {}

MachineFieldInterrupt::~MachineFieldInterrupt() {
    {
        std::lock_guard const guard(lock);
        ending = true;
        turned.notify_all();
    }
    if (thread.joinable())
        thread.join();
}

FieldClock::Moment MachineFieldInterrupt::moment() { return machineNow(); }

void MachineFieldInterrupt::changed() {
    ++changes;
    turned.notify_all();
}

bool MachineFieldInterrupt::enable() {
    std::lock_guard const guard(lock);
    if (thread.joinable())
        return true;
    try {
        thread = std::thread([this] { raiseInterrupts(); });
    } catch (std::system_error const&) {
        return false;
    }
    return true;
}

void MachineFieldInterrupt::waitOnEvent() {
    std::unique_lock guard(lock);
    auto const seen = interrupts;
    raised.wait(guard, [&] { return interrupts != seen; });
}

// The boundary that it sleeps for is found anew whenever the clock is changed.
void MachineFieldInterrupt::raiseInterrupts() {
    std::unique_lock guard(lock);
    while (!ending) {
        auto const boundary = fields.nextBoundary(moment());
        auto const seen = changes;
        if (turned.wait_until(guard, steady_clock::time_point(boundary),
                              [&] { return ending || changes != seen; }))
            continue;
        ++interrupts;
        raised.notify_all();
    }
}

}  // namespace sal
