#include "template/PlainString.h"

namespace FrameDriver::Template {

PlainString::PlainString(std::string_view literal)
    : text(literal), size(static_cast<std::uint32_t>(literal.size())) {}

PlainString* PlainString::clone() const { return new PlainString(*this); }

bool PlainString::occursIn(std::string_view source, std::size_t position) const {
    return find(source, position) != notFound;
}

std::size_t PlainString::find(std::string_view source, std::size_t position) const {
    return source.find(text, position);
}

std::string PlainString::evaluate(VariableMap const&, ContextStore*) const { return text; }

void PlainString::appendTo(std::string& out, VariableMap const&, ContextStore*) const {
    out += text;
}

}  // namespace FrameDriver::Template
