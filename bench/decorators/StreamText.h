#pragma once

#include <sstream>
#include <string>

namespace FrameDriver::Template::Bench {

/// 0 for what is no number.
template <typename Number>
Number read(std::string const& text, std::ios_base& (*base)(std::ios_base&) = std::dec) {
    std::istringstream stream(text);
    Number number{};
    stream >> base >> number;
    return stream.fail() ? Number{} : number;
}

template <typename... Pieces>
std::string print(Pieces const&... pieces) {
    std::ostringstream stream;
    (stream << ... << pieces);
    return stream.str();
}

}  // namespace FrameDriver::Template::Bench
