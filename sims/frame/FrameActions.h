#pragma once

#include "sims/frame/CommandWords.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

namespace FrameSim {

class FrameServer;

/// Something done to the frame, for the panel of that number where it is about "this" one.
/// Throws a `std::runtime_error` whose text is the cause if it can't be done.
using Action = std::function<void(FrameServer&, std::uint32_t client)>;

/// What can be typed and what can stand in a scenario is the same.
struct ActionSyntax {
    std::string_view name;
    std::string_view arguments;
    /// Takes the arguments off the words, all of them. Throws `CommandError`.
    Action (*read)(CommandWords& words);
    std::string_view help;
};

/// All there are. Valid for the life of the program. Thread: any.
std::span<ActionSyntax const> frameActions();
/// Null if there is none of that name.
ActionSyntax const* findAction(std::string_view name);

}  // namespace FrameSim
