#pragma once

#include "platform/Visibility.h"

#include <string>

namespace sal {

/// A path of the panel's file system, as text. A value type; any thread.
class QFD_PUBLIC Path {
  public:
    explicit Path(std::string text);
    Path(Path const&) = default;
    Path& operator=(Path const&) = default;
    ~Path();

    /// The process's working directory, without a separator at its end. An empty path if the
    /// system can't tell.
    static Path getCurrentWorkingDirPath();

    std::string const& text() const { return pathText; }

  private:
    std::string pathText;
};

}  // namespace sal
