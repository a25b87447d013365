#pragma once

#include "template/TemplateString.h"
#include "template/Variable.h"

namespace FrameDriver::Template {

/// The text of a state key. The key is a template of its own, with variables and context strings
/// to any depth. In a text that is taken apart it counts as a variable by the name of its key's
/// source text.
///
///     printed = "{$context:" name "}"     (decorators are not shown)
class ContextString : public Variable {
  public:
    /// Parses the key's source text, the part behind "$context:". Throws what
    /// TemplateParser::parse throws.
    explicit ContextString(std::string_view keySource);
    /// Named by the key's printed form.
    explicit ContextString(TemplateString key);

    /// Keeps the name.
    ContextString* clone() const override;
    /// The key's text, or "INVALID" if the store doesn't have it; decorated in both cases.
    std::string evaluate(VariableMap const& variables, ContextStore* context) const override;
    std::string toString() const override;
    void appendTo(std::string& out, VariableMap const& variables,
                  ContextStore* context) const override;

  private:
    TemplateString keyTemplate;
};

}  // namespace FrameDriver::Template
