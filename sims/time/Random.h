#pragma once

#include <cstdint>

namespace TimeSim {

/// Numbers by chance that are the same on every machine: what they are made from decides them.
/// (The standard library's distributions differ from one library to the next.)
constexpr std::uint64_t scrambled(std::uint64_t number) {
    number += 0x9E3779B97F4A7C15U;
    number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
    number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
    return number ^ (number >> 31U);
}

/// From 0 to just under 1.
constexpr double fraction(std::uint64_t seed, std::uint64_t first, std::uint64_t second) {
    auto const bits = scrambled(scrambled(scrambled(seed) ^ first) ^ second);
    return static_cast<double>(bits >> 11U) * 0x1p-53;
}

}  // namespace TimeSim
