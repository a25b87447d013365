#pragma once

#include "template/decorators/CopyableDecorator.h"

namespace FrameDriver::Template {

/// The logical inputs, of 1 to 250, that are mapped to the physical source in the value: each
/// number with a space behind it, the last as well.
///
///     "LOGICAL.INPUT" number ".PHYSICAL.SOURCE"
class LogicalSourceListExtractorDecorator
    : public CopyableDecorator<LogicalSourceListExtractorDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "logicalSourceListExtractor"; }
};

/// The text ahead of the first space; the empty string if there is none, even for a non-empty
/// value: in the lists that it takes apart each element has a space behind it.
class NextElementExtractorDecorator : public CopyableDecorator<NextElementExtractorDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "nextElementExtractor"; }
};

/// The text behind the first space, else as NextElementExtractorDecorator.
class NextElementRemoverDecorator : public CopyableDecorator<NextElementRemoverDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "nextElementRemover"; }
};

}  // namespace FrameDriver::Template
