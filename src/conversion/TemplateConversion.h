#pragma once

#include "conversion/ConversionPlan.h"
#include "template/TemplateString.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace FrameDriver::Conversion {

/// An entry of a dictionary: a template that recognises a text and captures its variables, and
/// the templates that put the results together.
///
/// A value. It never changes, so copies share what it holds. Thread: any, several at once.
class TemplateConversion {
  public:
    /// Copies both. `to` may be empty; its order is that of the results.
    TemplateConversion(Template::TemplateString const& from,
                       std::vector<Template::TemplateString> const& to);
    TemplateConversion(TemplateConversion const&) = default;
    TemplateConversion& operator=(TemplateConversion const&) = default;
    virtual ~TemplateConversion() = default;

    /// A copy.
    Template::TemplateString getFrom() const { return plan->from(); }
    std::vector<Template::TemplateString> const& getTo() const { return plan->to(); }

    /// As TemplateString::matches on `from`.
    bool matches(std::string_view text) const;

    /// If `from` matches the text, appends a result for each template of `to` and answers true;
    /// otherwise leaves the results alone. `context` is only handed on to the templates.
    ///
    /// Throws std::out_of_range ("invalid string position") where the text matches by its end
    /// alone and a variable would start behind it; see TemplateString.
    bool convert(std::string_view text, Template::ContextStore* context,
                 std::vector<std::string>& results) const;

    /// What the lookup works on; lives as long as any copy of this entry.
    ConversionPlan const& getPlan() const { return *plan; }

  private:
    std::shared_ptr<ConversionPlan const> plan;
};

}  // namespace FrameDriver::Conversion
