#pragma once

#include "template/Segment.h"

namespace FrameDriver::Template {

/// Literal text.
class PlainString : public Segment {
  public:
    explicit PlainString(std::string_view literal);

    PlainString* clone() const override;
    bool isVariable() const override { return false; }
    /// The text's size.
    std::uint32_t length() const override { return size; }
    bool occursIn(std::string_view source, std::size_t position) const override;
    /// The first occurrence of the whole text.
    std::size_t find(std::string_view source, std::size_t position) const override;
    /// The text; both arguments are ignored.
    std::string evaluate(VariableMap const& variables, ContextStore* context) const override;
    /// The text, unchanged: "{" and "}" that stood around it in the source don't come back.
    std::string toString() const override { return text; }
    void appendTo(std::string& out, VariableMap const& variables,
                  ContextStore* context) const override;

  private:
    std::string text;
    std::uint32_t size;
};

}  // namespace FrameDriver::Template
