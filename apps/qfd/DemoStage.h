#pragma once

#include <string>

namespace qfd {

/// What a demo runs on: a copy of an installation, with the frame's address in its settings set
/// to a loopback address whose port 5000 is free. Gone with the object.
class DemoStage {
  public:
    /// Throws InputError.
    explicit DemoStage(std::string const& installation);
    ~DemoStage();
    DemoStage(DemoStage const&) = delete;
    DemoStage& operator=(DemoStage const&) = delete;

    std::string const& directory() const { return copy; }
    std::string const& frameAddress() const { return frame; }
    std::string const& panelAddress() const { return panel; }

  private:
    void fill(std::string const& installation);
    void clear() const;

    std::string copy;
    std::string frame;
    std::string panel;
};

}  // namespace qfd
