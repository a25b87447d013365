#pragma once

#include <chrono>

/// How long a test waits for what must come.
inline constexpr std::chrono::seconds patience{30};
