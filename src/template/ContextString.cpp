#include "template/ContextString.h"

#include "template/ContextStore.h"
#include "template/TemplateParser.h"

#include <utility>

namespace FrameDriver::Template {

namespace {

// A text that is there is never empty but in the rarest case, so one look answers mostly. The
// empty answer is the store's for an absent key too; then the key's presence decides.
std::string textOf(std::string_view key, ContextStore const& context) {
    auto text = context.get(key);
    if (!text.empty())
        return text;
    return context.contains(key) ? context.get(key) : "INVALID";
}

}  // namespace

ContextString::ContextString(std::string_view keySource)
    : Variable(keySource), keyTemplate(TemplateParser::parse(keySource)) {}

ContextString::ContextString(TemplateString key)
    : Variable(key.toString()), keyTemplate(std::move(key)) {}

ContextString* ContextString::clone() const { return new ContextString(*this); }

std::string ContextString::evaluate(VariableMap const& variables, ContextStore* context) const {
    std::string text;
    ContextString::appendTo(text, variables, context);
    return text;
}

void ContextString::appendTo(std::string& out, VariableMap const& variables,
                             ContextStore* context) const {
    // The key is put together at the end of the result and taken off again: no string of its own.
    auto const start = out.size();
    keyTemplate.appendTo(out, variables, context);
    auto const text = textOf(std::string_view(out).substr(start), *context);
    out.resize(start);
    appendDecorated(out, text, context);
}

std::string ContextString::toString() const { return "{$context:" + name + "}"; }

}  // namespace FrameDriver::Template
