#pragma once

#include "foundation/NumberText.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Labelled numbers for the log lines of the messages.
namespace FrameDriver::CPL {

inline void appendSigned(std::string& out, std::string_view label, std::int32_t value) {
    out += label;
    Tools::appendInt32(out, value);
}

inline void appendUnsigned(std::string& out, std::string_view label, std::uint32_t value) {
    out += label;
    Tools::appendUInt32(out, value);
}

inline void appendHex(std::string& out, std::string_view label, std::uint32_t value) {
    out += label;
    Tools::appendHex32(out, value);
}

}  // namespace FrameDriver::CPL
