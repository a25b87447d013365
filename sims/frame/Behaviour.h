#pragma once

#include "sims/frame/FrameModel.h"

#include <memory>
#include <string_view>

namespace FrameSim {

/// What a frame makes of its input, beside keeping values: how one thing leads to another.
/// Thread: one at a time; `Frame` guards it together with the model.
class Behaviour {
  public:
    virtual ~Behaviour() = default;

    /// Once, before anyone sees the model: brings what is derived in line with the rest.
    virtual void start(FrameModel& model) = 0;
    /// A panel or an operator has given this parameter another value.
    virtual void changed(FrameModel& model, ParameterKey key) = 0;
    /// An event that the model has, its data of the right size. False refuses it.
    virtual bool event(FrameModel& model, EventKey key, std::string_view data) = 0;

    /// Whether something is under way that goes on by itself.
    virtual bool busy() const = 0;
    /// One field of video has passed. Called while `busy`.
    virtual void field(FrameModel& model) = 0;
    /// Fields in a second.
    virtual double fieldRate(FrameModel const& model) const = 0;
};

/// By the name that stands in the model; "none" takes every event and does nothing.
std::unique_ptr<Behaviour> makeBehaviour(std::string_view name);

}  // namespace FrameSim
