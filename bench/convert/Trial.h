#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace bench {

/// Runs `step` in a process of its own, which is ended when its time is over: something that may
/// take hours or all memory can be tried so. Empty if `step` gave the empty text in time, or else
/// its text, or what went wrong.
std::string tryOut(std::function<std::string()> const& step, std::chrono::seconds limit);

}  // namespace bench
