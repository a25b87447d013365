#pragma once

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace FrameDriver::Template::Bench {

/// Switcher state as a plain map; what it would cost to lock is left out.
using PlainState = std::map<std::string, std::string>;

/// A decorator's work done the obvious way: a string stream for every number that is read or
/// printed and for every key that is put together.
struct StreamPeer {
    std::string_view word;
    std::string_view value;
    std::string (*decorate)(std::string const& value, PlainState& state);
};

std::span<StreamPeer const> numberPeers();
std::span<StreamPeer const> timePeers();
std::span<StreamPeer const> statePeers();

/// What both sides find in the state.
PlainState sampleState();

}  // namespace FrameDriver::Template::Bench
