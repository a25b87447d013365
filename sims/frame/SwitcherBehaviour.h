#pragma once

#include "sims/frame/Behaviour.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace FrameSim {

/// The small switcher of docs/formats/sample-switcher.md: cut, auto transition and lever, tally,
/// memory. It finds out by the model how many M/Es, keyers and sources there are; what a model
/// leaves out just stays without effect.
class SwitcherBehaviour : public Behaviour {
  public:
    void start(FrameModel& model) override;
    void changed(FrameModel& model, ParameterKey key) override;
    bool event(FrameModel& model, EventKey key, std::string_view data) override;
    bool busy() const override;
    void field(FrameModel& model) override;
    double fieldRate(FrameModel const& model) const override;

  private:
    /// An M/E, and the auto transition that may be running in it.
    struct MixEffects {
        std::uint32_t number;
        std::uint32_t keyers;
        bool running = false;
        std::int64_t from = 0;   ///< lever position at the start
        std::int64_t to = 0;     ///< the end that it goes to
        std::int64_t total = 0;  ///< fields
        std::int64_t done = 0;
    };
    using Register = std::vector<std::pair<ParameterKey, Value>>;

    MixEffects* find(std::uint32_t did);
    static void swap(FrameModel& model, MixEffects const& me);
    static void finish(FrameModel& model, MixEffects& me);
    static void stop(FrameModel& model, MixEffects& me);
    static void startAuto(FrameModel& model, MixEffects& me);
    static void advance(FrameModel& model, MixEffects& me);
    static void leverMoved(FrameModel& model, MixEffects& me);
    bool transition(FrameModel& model, EventKey key);

    bool memory(FrameModel& model, EventKey key, std::string_view data);
    bool store(FrameModel& model, std::uint16_t number);
    bool recall(FrameModel& model, std::uint16_t number);
    bool copy(FrameModel& model, std::uint16_t source, std::uint16_t target);
    static void listRegister(FrameModel& model, std::uint16_t number);

    void deriveTally(FrameModel& model) const;
    void collectOnAir(FrameModel const& model, MixEffects const& me,
                      std::vector<bool>& onAir) const;

    std::vector<MixEffects> mixEffects;
    std::size_t sources = 0;
    std::map<std::uint16_t, Register> registers;
};

}  // namespace FrameSim
