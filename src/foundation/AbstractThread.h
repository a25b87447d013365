#pragma once

#include <boost/thread/thread.hpp>

#include <string>

/// A named thread that isn't started yet. The order of the virtual operations is part of the
/// design.
class AbstractThread {
  public:
    explicit AbstractThread(std::string threadName);
    AbstractThread(AbstractThread const&) = delete;
    AbstractThread& operator=(AbstractThread const&) = delete;
    /// Gives the thread up without waiting for it.
    virtual ~AbstractThread();

    /// What the thread does. Empty here.
    virtual void run() {}
    /// Empty, and nothing calls it.
    virtual void finish() {}

    std::string const& getName() const { return name; }

  protected:
    boost::thread thread;  // not-a-thread until started

  private:
    std::string name;
};
