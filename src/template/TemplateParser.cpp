#include "template/TemplateParser.h"

#include "foundation/TextSearch.h"
#include "template/ContextString.h"
#include "template/DecoratorTable.h"
#include "template/PlainString.h"
#include "template/Variable.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// The language has three levels, each cut by a rule of its own that knows nothing of the others:
// a template at its braces into tokens, a variable token at its bars into words, a decorator word
// into its arguments (by its maker). So the bars inside a nested context key are cut too, and
// `mendKey` puts them back.

namespace FrameDriver::Template {

namespace {

using Decorators = std::vector<std::unique_ptr<SegmentDecorator>>;
using Words = std::vector<std::string_view>;

constexpr std::string_view contextWord = "$context";
constexpr auto npos = std::string_view::npos;

// The brace that closes the one ahead of `position`, or npos.
std::size_t closingBrace(std::string_view text, std::size_t position) {
    for (int depth = 1; (position = text.find_first_of("{}", position)) != npos; ++position) {
        depth += text[position] == '{' ? 1 : -1;
        if (depth == 0)
            return position;
    }
    return npos;
}

std::vector<std::string_view> tokenise(std::string_view text) {
    std::vector<std::string_view> tokens;
    for (auto open = text.find('{'); open != npos; open = text.find('{')) {
        if (open != 0)
            tokens.push_back(text.substr(0, open));
        text.remove_prefix(open + 1);
        auto const close = closingBrace(text, 0);
        tokens.push_back(text.substr(0, close));
        // The contents of an unclosed brace come a second time, as the text that goes on.
        if (close != npos)
            text.remove_prefix(close + 1);
    }
    if (!text.empty())
        tokens.push_back(text);
    return tokens;
}

// The index of the last word but the first that holds a "}", or 0.
std::size_t lastClosingWord(Words const& words) {
    for (auto index = words.size(); index-- > 1;) {
        if (words[index].find('}') != npos)
            return index;
    }
    return 0;
}

// Puts the bars back that the cut took out of the key of the "$context" word at `current`, and
// moves `current` to the last word taken. The count is that of the words up to the closing one
// from the first word of the token, so it is right only if the "$context" word is the first.
std::string mendKey(Words const& words, std::size_t& current) {
    std::string key(words[current]);
    if (key.find('{') == std::string::npos)
        return key;
    for (auto count = lastClosingWord(words); count > 0 && current + 1 < words.size(); --count)
        key.append("|").append(words[++current]);
    return key;
}

void addDecorator(Decorators& decorators, std::string_view word) {
    for (auto const& row : decoratorTable()) {
        if (word.starts_with(row.keyword)) {
            decorators.push_back(row.make(word));
            return;
        }
    }
}

// Null if the base word is neither a variable nor a context string.
std::unique_ptr<Variable> makeVariable(std::string_view base) {
    if (base.starts_with('@'))
        return std::make_unique<Variable>(base.substr(1));
    if (base.starts_with(contextWord)) {
        // The character behind the word is taken for the colon, whatever it is.
        return std::make_unique<ContextString>(Tools::cut(base, contextWord.size() + 1));
    }
    return nullptr;
}

SegmentPtr parseVariable(std::string_view token) {
    std::string base = "UNDEFINED";
    Decorators decorators;
    auto const words = Tools::split(token, "|");
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i].starts_with('@'))
            base = words[i];
        else if (words[i].starts_with(contextWord))
            base = mendKey(words, i);
        else
            addDecorator(decorators, words[i]);
    }
    auto variable = makeVariable(base);
    for (auto& decorator : decorators) {
        if (variable)
            variable->addDecorator(std::move(decorator));
    }
    return variable;
}

SegmentPtr parseToken(std::string_view token) {
    if (token.empty())
        Tools::throwInvalidPosition();
    if (token.front() == '@' || token.front() == '$')
        return parseVariable(token);
    return std::make_unique<PlainString>(token);
}

}  // namespace

TemplateString TemplateParser::parse(std::string_view text) {
    std::vector<SegmentPtr> segments;
    for (auto const token : tokenise(text))
        segments.push_back(parseToken(token));
    return TemplateString::of(std::move(segments));
}

}  // namespace FrameDriver::Template
