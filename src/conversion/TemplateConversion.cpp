#include "conversion/TemplateConversion.h"

namespace FrameDriver::Conversion {

TemplateConversion::TemplateConversion(Template::TemplateString const& from,
                                       std::vector<Template::TemplateString> const& to)
    : plan(ConversionPlan::make(from, to)) {}

bool TemplateConversion::matches(std::string_view text) const {
    ConversionPlan::Captures captures;
    return plan->match(SearchedText(text), captures) != ConversionPlan::Match::no;
}

bool TemplateConversion::convert(std::string_view text, Template::ContextStore* context,
                                 std::vector<std::string>& results) const {
    ConversionPlan::Captures captures;
    return plan->convert(SearchedText(text), context, results, captures);
}

}  // namespace FrameDriver::Conversion
