#pragma once

#include "platform/Visibility.h"

#include <string>

/// The host's object for state that goes to the panel. The order of the operations is part of
/// the interface.
///
/// Ownership: the host's; it must live until the module is gone.
/// Thread: called from the host's own threads, from the frame client's callback thread, from
/// the connection observer and from the monkey test, several at once.
class QFD_PUBLIC IStateSink {
  public:
    /// A SID: the state `name` now has the value `value`. Bytes, copied by the host.
    virtual void setState(std::string const& name, std::string const& value) = 0;
    /// A state given as a number. The driver never calls this, nor the three that follow.
    virtual void setStateNumber(std::string const& name, float value) = 0;
    virtual void reservedState2(void* first, void* second) = 0;
    virtual void reservedState3(void* first, void* second) = 0;
    virtual void reservedState4(void* first) = 0;
    /// A TID: the text display `name` now reads `value`. Bytes, copied by the host.
    virtual void setText(std::string const& name, std::string const& value) = 0;

  protected:
    ~IStateSink() = default;  // not deleted through this interface, and not one of its slots
};
