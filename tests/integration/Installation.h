#pragma once

#include "tests/support/WorkingDirectory.h"

#include <string>
#include <string_view>

namespace FrameDriver::Testing {

/// A copy of the sample installation, for one test to spoil. It is the working directory.
class Installation : public WorkingDirectory {
  public:
    explicit Installation(std::string const& frameAddress);

    void remove(std::string const& name) const;
    void setFrameAddress(std::string const& address) const;
    /// In milliseconds.
    void setTimeOut(int time) const;
    /// Leaves one module, whose four files lie in "Configuration/Own". Elements only: roots and
    /// namespaces are added.
    void useDictionaries(std::string const& toFrame, std::string const& toPanel,
                         std::string const& fids, std::string const& subscriptions) const;

  private:
    void setSetting(std::string_view name, std::string_view value) const;
};

}  // namespace FrameDriver::Testing
