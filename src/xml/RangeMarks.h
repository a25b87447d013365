#pragma once

#include "foundation/Exceptions.h"
#include "foundation/TextSearch.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace FrameDriver::XML {

/// Where the marks of a range stand in a text: open bracket, "-", close bracket. What isn't there
/// is `npos`, which the cuts take as it is.
struct RangeMarks {
    RangeMarks(std::string_view text, std::size_t openAt, char closing)
        : open(openAt), close(text.find(closing, openAt)), dash(text.find('-', openAt)) {}

    /// The bounds, without the first `skip` characters behind the bracket and the dash.
    std::string_view lower(std::string_view text, std::size_t skip) const {
        return Tools::cut(text, open + skip, dash - (open + skip));
    }
    std::string_view upper(std::string_view text, std::size_t skip) const {
        return Tools::cut(text, dash + skip, close - (dash + skip));
    }
    bool isClosed() const { return close != std::string_view::npos; }

    std::size_t open;
    std::size_t close;
    std::size_t dash;
};

/// Bounds what one text may stand for. More replacements than this are a slip of the pen, and
/// would take the panel's memory or its time: the largest real range is a 16-bit field.
class RangeBudget {
  public:
    /// Throws IllegalArgumentException "A range stands for too many texts.".
    void take(std::uint64_t numbers) {
        if (numbers > left)
            throw ErrorManagement::Exception::IllegalArgumentException(
                "A range stands for too many texts.");
        left -= numbers;
    }

  private:
    std::uint64_t left = std::uint64_t{1} << 20;
};

}  // namespace FrameDriver::XML
