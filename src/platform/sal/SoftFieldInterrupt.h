#pragma once

#include "platform/Visibility.h"
#include "platform/sal/FieldClock.h"
#include "platform/sal/PanelFieldInterrupt.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

namespace sal {

/// A field interrupt on a `FieldClock`. Where the moments come from, and what an interrupt is,
/// the derived class says.
class QFD_PUBLIC SoftFieldInterrupt : public PanelFieldInterrupt {
  public:
    void getNow(TimeStampType& now) override;
    unsigned setKt(unsigned nanoseconds) override;
    bool setClock(TimeStampType const& time, unsigned wait) override;
    unsigned adjustKtMicro(unsigned microseconds) override;
    bool setAdjustment(unsigned milliseconds) override;

    /// Has `change` look at the clock or change it, at the moment `now`: its drift and phase
    /// are nobody's business but a test's.
    void operate(std::function<void(FieldClock& clock, FieldClock::Moment now)> const& change);

  protected:
    explicit SoftFieldInterrupt(FieldClock fieldClock) : fields(fieldClock) {}

    virtual FieldClock::Moment moment() = 0;
    /// The clock has been changed; called with the lock held.
    virtual void changed() {}

    std::mutex lock;
    FieldClock fields;  // guarded by lock
};

/// The field interrupt by the machine's steady clock, with a thread that raises it. The clock
/// shows the steady clock's time until it is set.
class QFD_PUBLIC MachineFieldInterrupt : public SoftFieldInterrupt {
  public:
    MachineFieldInterrupt();
    /// Ends the thread. Nobody may be waiting.
    ~MachineFieldInterrupt() override;

    bool enable() override;
    void waitOnEvent() override;

  private:
    FieldClock::Moment moment() override;
    void changed() override;
    void raiseInterrupts();

    std::condition_variable turned;  // the clock was changed, or is to end
    std::condition_variable raised;  // an interrupt
    std::uint64_t interrupts = 0;    // guarded by lock
    std::uint64_t changes = 0;       // guarded by lock
    bool ending = false;             // guarded by lock
    std::thread thread;              // guarded by lock but in the destructor
};

}  // namespace sal
