#pragma once

#include "template/decorators/StateKey.h"

#include <cstdint>

namespace FrameDriver::Template::Format {

/// What a kind shows where the store has no video standard.
inline constexpr char const* noStandard = "INV";

/// The video standard in force, as the store has it at this moment.
struct VideoRate {
    std::int32_t number = 0;           // as stored; 999 if it is no number
    std::int32_t framesPerSecond = 0;  // 24, 25 or 30
};

/// False, and `rate` untouched, if the store has none.
inline bool readRate(ContextStore const& store, VideoRate& rate) {
    constexpr std::string_view key = "VIDEO.FRAMERATE";
    if (!store.contains(key))
        return false;
    std::int32_t const number = Tools::int32Or(store.get(key), 999);
    switch (number) {
    case 24:
    case 48:
        rate = {number, 24};
        break;
    case 25:
    case 50:
        rate = {number, 25};
        break;
    default:
        rate = {number, 30};
    }
    return true;
}

/// A number with at least two digits. A sign takes the place of a digit: -5 is "-5".
inline void appendTwoDigits(std::string& out, std::int64_t number) {
    if (number >= 0 && number < 10)
        out += '0';
    Tools::appendInt64(out, number);
}

}  // namespace FrameDriver::Template::Format
