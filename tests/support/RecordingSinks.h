#pragma once

#include "platform/host/IFunctionSink.h"
#include "platform/host/IStateSink.h"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace FrameDriver::Testing {

/// Both of the host's sinks; what they hear is kept as lines: "SID name = value",
/// "TID name = value", "FID name param=value ...". Thread: any.
class RecordingSinks : public IStateSink, public IFunctionSink {
  public:
    virtual ~RecordingSinks() = default;

    void setState(std::string const& name, std::string const& value) override {
        keep("SID " + name + " = " + value);
    }
    void setStateNumber(std::string const& name, float value) override {
        keep("number " + name + " = " + std::to_string(value));
    }
    void reservedState2(void*, void*) override { keep("slot 2"); }
    void reservedState3(void*, void*) override { keep("slot 3"); }
    void reservedState4(void*) override { keep("slot 4"); }
    void setText(std::string const& name, std::string const& value) override {
        keep("TID " + name + " = " + value);
    }
    void sendFunction(std::string const& name, FIDParameterList const& parameters) override {
        auto line = "FID " + name;
        for (auto const& each : parameters)
            line += " " + each.getName() + "=" + each.getValue();
        keep(line);
    }

    std::vector<std::string> lines() const {
        std::lock_guard const guard(lock);
        return kept;
    }
    /// The lines so far, which are forgotten.
    std::vector<std::string> take() {
        std::lock_guard const guard(lock);
        return std::exchange(kept, {});
    }

  private:
    void keep(std::string line) {
        std::lock_guard const guard(lock);
        kept.push_back(std::move(line));
    }

    mutable std::mutex lock;
    std::vector<std::string> kept;
};

}  // namespace FrameDriver::Testing
