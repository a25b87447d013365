#pragma once

#include "template/Segment.h"
#include "template/SegmentDecorator.h"

#include <memory>
#include <vector>

namespace FrameDriver::Template {

/// A named gap in a template. In a text that is taken apart it captures raw text; in a text that
/// is put together it gives the captured text, through its decorators.
///
///     printed = "{@" name { "|" decorator } "}"
class Variable : public Segment {
  public:
    /// The name without its "@"; it may be empty.
    explicit Variable(std::string_view variableName);
    /// Deep: the decorators are cloned.
    Variable(Variable const& other);
    Variable& operator=(Variable const&) = delete;

    Variable* clone() const override;
    bool isVariable() const override { return true; }
    std::uint32_t length() const override { return 0; }
    bool occursIn(std::string_view, std::size_t) const override { return true; }
    /// The given position: a variable is found anywhere.
    std::size_t find(std::string_view, std::size_t position) const override { return position; }
    /// The captured text, decorated. A variable without a captured text shows as "{@name}" and
    /// runs no decorator.
    std::string evaluate(VariableMap const& variables, ContextStore* context) const override;
    std::string toString() const override;
    void appendTo(std::string& out, VariableMap const& variables,
                  ContextStore* context) const override;

    /// The decorator added first is applied first. Only while the template is being built.
    void addDecorator(std::unique_ptr<SegmentDecorator> decorator);
    std::string getName() const { return name; }
    /// The same without a copy; lives as long as the variable.
    std::string_view nameText() const { return name; }

  protected:
    /// Each decorator in turn replaces the running value; without decorators it is unchanged.
    std::string applyDecorators(std::string const& value, ContextStore* context) const;
    /// As `applyDecorators`, at the end of `out`; a value without decorators isn't copied twice.
    void appendDecorated(std::string& out, std::string const& value, ContextStore* context) const;

    std::vector<std::unique_ptr<SegmentDecorator>> decorators;
    std::string name;
};

}  // namespace FrameDriver::Template
