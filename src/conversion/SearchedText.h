#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace FrameDriver::Conversion {

/// A text that many literals are sought in: a copy with room behind its end, so that a search may
/// look at a fixed number of places at once and never cares where the text ends. Meant to be kept
/// and filled anew with each text. Thread: one.
class SearchedText {
  public:
    SearchedText() = default;
    explicit SearchedText(std::string_view text) { assign(text); }

    void assign(std::string_view text);

    std::string_view view() const { return {bytes.data(), length}; }
    char const* data() const { return bytes.data(); }
    std::size_t size() const { return length; }
    bool empty() const { return length == 0; }

    /// As `view().find(literal, position)`. The texts have some hundred bytes, and the first byte
    /// of a literal (a blank, a comma) may occur everywhere in them.
    std::size_t find(std::string_view literal, std::size_t position) const;

  private:
    std::vector<char> bytes;
    std::size_t length = 0;
};

}  // namespace FrameDriver::Conversion
