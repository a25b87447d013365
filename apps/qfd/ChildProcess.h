#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace qfd {

/// Another program that talks in lines, started by this one. What it writes on standard error
/// goes where ours goes.
///
/// Thread: one owner; `onLine` is called on a thread of this object's own, line by line.
class ChildProcess {
  public:
    using OnLine = std::function<void(std::string_view)>;

    /// Throws InputError, with the system's reason, if it can't be started.
    ChildProcess(std::vector<std::string> const& command, OnLine onLine);
    /// Kills it if it is still running.
    ~ChildProcess();
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    /// Its process number; another one's as soon as it has ended.
    int id() const { return pid; }
    /// A line to its standard input; ignored if it has ended.
    void send(std::string_view line);
    /// Ends its standard input and waits for it; its exit code, or 128 and the signal's number.
    int finish();
    /// SIGKILL: it gets no chance to say goodbye.
    void kill();

  private:
    void readLines();
    int wait();

    OnLine const hear;
    int pid = -1;
    int input = -1;
    int output = -1;
    std::thread reader;
};

}  // namespace qfd
