#pragma once

#include "platform/Visibility.h"
#include "platform/sal/TimeStampType.h"
#include "platform/sal/Timer.h"

namespace sal {

/// The panel's field clock, and the interrupt at each of its field boundaries. All that follows
/// the video, from the blinking of lamps to the reading of levers, goes by this interrupt.
///
/// The clock counts fields: each lasts the period, apart from the trim, and `fieldTime` goes up
/// by the period from one boundary to the next.
///
/// Thread: safe for concurrent use, while the interrupt runs.
class QFD_PUBLIC PanelFieldInterrupt : public Timer {
  public:
    /// The process's one field clock. It is never destroyed: threads that read it may run to the
    /// very end of the process.
    static PanelFieldInterrupt* getInstance();

    /// Turns the interrupt on; it stays on. False if that can't be done.
    virtual bool enable() = 0;
    /// Blocks until the next interrupt. Without `enable` that never comes.
    virtual void waitOnEvent() = 0;
    virtual void getNow(TimeStampType& now) = 0;

    /// Sets the period, in nanoseconds, from the running field on; any trim ends. The result is
    /// the period now in force, in whole milliseconds: periods that can't be kept (below a
    /// millisecond or above a second) change nothing.
    virtual unsigned setKt(unsigned nanoseconds) = 0;
    /// Sets the clock. It shows `time` at this moment, and the next interrupt but those of the
    /// whole fields before it comes `wait` microseconds from now. Both are cut to whole
    /// microseconds, and the clock takes them for the middle of the one that they stand for.
    /// What the two leave of a field is put right by the wait: the boundary at its end is the
    /// nearest whole number of periods after `time.fieldTime`. Always true here.
    virtual bool setClock(TimeStampType const& time, unsigned wait) = 0;
    /// From the running field on, each lasts so many microseconds longer than the period, so
    /// that the clock goes slower; the next trim takes this one's place. The parameter is a
    /// signed number. The result is the trim in force, signed too: no field gets shorter than
    /// half the period or longer than one and a half.
    virtual unsigned adjustKtMicro(unsigned microseconds) = 0;
};

}  // namespace sal
