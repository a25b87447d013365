#include "sims/frame/Behaviour.h"

#include "sims/frame/SwitcherBehaviour.h"

namespace FrameSim {
namespace {

class PlainBehaviour : public Behaviour {
  public:
    void start(FrameModel&) override {}
    void changed(FrameModel&, ParameterKey) override {}
    bool event(FrameModel&, EventKey, std::string_view) override { return true; }
    bool busy() const override { return false; }
    void field(FrameModel&) override {}
    double fieldRate(FrameModel const&) const override { return 50; }
};

}  // namespace

std::unique_ptr<Behaviour> makeBehaviour(std::string_view name) {
    if (name == "switcher") {
        return std::make_unique<SwitcherBehaviour>();
    }
    return std::make_unique<PlainBehaviour>();
}

}  // namespace FrameSim
