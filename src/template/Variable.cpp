#include "template/Variable.h"

#include <utility>

namespace FrameDriver::Template {

Variable::Variable(std::string_view variableName) : name(variableName) {}

Variable::Variable(Variable const& other) : Segment(other), name(other.name) {
    decorators.reserve(other.decorators.size());
    for (auto const& decorator : other.decorators)
        decorators.emplace_back(decorator->clone());
}

Variable* Variable::clone() const { return new Variable(*this); }

std::string Variable::evaluate(VariableMap const& variables, ContextStore* context) const {
    std::string text;
    Variable::appendTo(text, variables, context);
    return text;
}

void Variable::appendTo(std::string& out, VariableMap const& variables,
                        ContextStore* context) const {
    auto const captured = variables.find(name);
    if (captured == variables.end())
        out.append("{@").append(name).append("}");
    else
        appendDecorated(out, captured->second, context);
}

std::string Variable::toString() const {
    auto text = "{@" + name;
    for (auto const& decorator : decorators)
        text.append("|").append(decorator->toString());
    return text.append("}");
}

void Variable::addDecorator(std::unique_ptr<SegmentDecorator> decorator) {
    decorators.push_back(std::move(decorator));
}

std::string Variable::applyDecorators(std::string const& value, ContextStore* context) const {
    if (decorators.empty())
        return value;
    auto running = decorators.front()->decorate(value, context);
    for (std::size_t i = 1; i < decorators.size(); ++i)
        running = decorators[i]->decorate(running, context);
    return running;
}

void Variable::appendDecorated(std::string& out, std::string const& value,
                               ContextStore* context) const {
    if (decorators.empty())
        out += value;
    else
        out += applyDecorators(value, context);
}

}  // namespace FrameDriver::Template
