#pragma once

#include "Patience.h"
#include "tests/support/LogCapture.h"

#include <string>
#include <vector>

/// The client library's log lines for as long as this lives, "level: text" each.
class LogLines {
  public:
    std::vector<std::string> all() const { return log.lines(); }
    bool waitFor(std::string const& line) const { return log.waitFor(line, 1, patience); }
    bool waitForCount(std::size_t count) const { return log.waitForCount(count, patience); }
    /// Waits for any line.
    std::string waitForOne() const { return waitForCount(1) ? all().front() : "none"; }

  private:
    FrameDriver::Testing::LogCapture log{"CPLClient"};
};
