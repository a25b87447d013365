#pragma once

#include "platform/cplclient/CPLTypes.h"

#include <cstdint>
#include <span>
#include <string_view>

/// The words of the CPL text forms, the same in both directions.
namespace FrameDriver::Conversion {

struct Keyword {
    std::int32_t value;
    std::string_view word;
};

inline constexpr Keyword setFlagWords[] = {
    {eSetAbsolute, "absolute"}, {eSetRelative, "relative"}, {eSetDetent, "detent"},
    {eSetDefault, "default"},   {eSetToggle, "toggle"},     {eSetFactoryDefault, "factory default"},
};
inline constexpr std::string_view invalidSetFlagWord = "invalid";
/// No flag of the frame's; passed on, and the frame's answer isn't looked at.
inline constexpr std::int32_t invalidSetFlag = 99;

inline constexpr Keyword subscriptionFlagWords[] = {
    {eSubscribeImmediate, "immediate"},
    {eSubscribeReplace, "replace"},
    {eSubscribeAppend, "append"},
    {eSubscribeUpdate, "update"},
};

constexpr std::string_view wordOf(std::span<Keyword const> words, std::int32_t value,
                                  std::string_view otherwise) {
    for (Keyword const& keyword : words)
        if (keyword.value == value)
            return keyword.word;
    return otherwise;
}

constexpr std::int32_t valueOf(std::span<Keyword const> words, std::string_view word,
                               std::int32_t otherwise) {
    for (Keyword const& keyword : words)
        if (keyword.word == word)
            return keyword.value;
    return otherwise;
}

}  // namespace FrameDriver::Conversion
