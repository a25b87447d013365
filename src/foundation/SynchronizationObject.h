#pragma once

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <string>
#include <utility>

/// The root of the events. The order of the virtual operations is part of the design.
class SynchronizationObject {
  public:
    virtual ~SynchronizationObject() = default;
    /// Waits at most `duration`; true if the object was signalled meanwhile.
    virtual bool wait(boost::posix_time::time_duration const& duration) = 0;
    /// Looks without waiting; false if there is nothing to look at.
    virtual bool tryWait() = 0;

    std::string const& getName() const { return name; }

  protected:
    explicit SynchronizationObject(std::string objectName) : name(std::move(objectName)) {}
    SynchronizationObject(SynchronizationObject const&) = default;
    SynchronizationObject& operator=(SynchronizationObject const&) = default;

  private:
    std::string name;
};
