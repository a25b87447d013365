#pragma once

#include <stdexcept>

namespace FrameSim {

/// The server can't be started: "cannot listen on ADDRESS:PORT: the system's reason".
class StartError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace FrameSim
