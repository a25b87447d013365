#include "conversion/DictionaryTemplateCheck.h"

#include "template/DecoratorTable.h"

#include <cstddef>
#include <utility>

// A reading of its own of the template language, by what an author means and not by what the
// parser does with it: a group ends at its own brace, and bars count outside nested groups only.

namespace FrameDriver::XML {
namespace {

constexpr std::size_t none = std::string_view::npos;
constexpr std::string_view contextWord = "$context";

std::string quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

bool isVariable(std::string_view token) { return token.starts_with('@') || token.starts_with('$'); }

/// The brace that closes the one at `open`, or none.
std::size_t closingBrace(std::string_view text, std::size_t open) {
    std::size_t depth = 0;
    for (std::size_t place = open; place < text.size(); ++place) {
        if (text[place] == '{')
            ++depth;
        else if (text[place] == '}' && --depth == 0)
            return place;
    }
    return none;
}

/// Cuts at the bars outside nested groups; empty words vanish.
std::vector<std::string_view> wordsOf(std::string_view token) {
    std::vector<std::string_view> words;
    std::size_t start = 0;
    std::size_t depth = 0;
    for (std::size_t place = 0; place <= token.size(); ++place) {
        bool const ends = place == token.size() || (token[place] == '|' && depth == 0);
        if (ends && place > start)
            words.push_back(token.substr(start, place - start));
        if (ends)
            start = place + 1;
        else if (token[place] == '{')
            ++depth;
        else if (token[place] == '}' && depth > 0)
            --depth;
    }
    return words;
}

class TemplateCheck {
  public:
    void check(std::string_view text) {
        while (!text.empty()) {
            std::size_t const open = text.find('{');
            checkOuterText(text.substr(0, open));
            if (open == none)
                return;
            std::size_t const close = closingBrace(text, open);
            if (close == none)
                return report("the \"{\" of " + quoted(text.substr(open)) +
                              " is never closed, and what stands behind it comes twice");
            checkGroup(text.substr(open + 1, close - open - 1));
            text.remove_prefix(close + 1);
        }
    }

    std::vector<std::string> causes;

  private:
    void report(std::string cause) { causes.push_back(std::move(cause)); }

    void checkOuterText(std::string_view text) {
        if (isVariable(text))
            report(quoted(text) + " is taken for a variable although it stands outside braces");
        if (text.find('}') != none)
            report("the \"}\" in " + quoted(text) + " closes nothing and is taken as text");
    }

    void checkGroup(std::string_view token) {
        if (token.empty())
            return;  // the parser refuses it
        if (!isVariable(token))
            return report(quoted('{' + std::string(token) + '}') +
                          " is taken as text, without its braces");
        auto const words = wordsOf(token);
        checkName(words.front());
        for (std::size_t word = 1; word < words.size(); ++word)
            checkDecorator(words[word]);
    }

    void checkName(std::string_view word) {
        if (word.starts_with('@'))
            return;
        if (!word.starts_with(contextWord))
            return report(quoted('{' + std::string(word) + '}') +
                          " means nothing and is left out of the template");
        std::string_view const key = word.substr(contextWord.size());
        if (!key.empty() && key.front() != ':')
            report(quoted(word) + " has no \":\" behind \"$context\", and loses a character");
        check(key.substr(key.empty() ? 0 : 1));
    }

    void checkDecorator(std::string_view word) {
        if (isVariable(word))
            return report(quoted(word) + " is a second name, and takes the place of the first");
        for (auto const& row : Template::decoratorTable())
            if (word.starts_with(row.keyword))
                return checkKnown(row, word);
        report(quoted(word) + " is no decorator and is ignored");
    }

    /// A "format" of unknown kind says of itself that it does nothing.
    void checkKnown(Template::DecoratorRow const& row, std::string_view word) {
        if (row.keyword != "format")
            return;
        if (row.make(word)->toString() == "format:none")
            report(quoted(word) + " is no known format, and leaves the value as it is");
    }
};

}  // namespace

std::vector<std::string> checkTemplate(std::string_view text) {
    TemplateCheck check;
    check.check(text);
    return std::move(check.causes);
}

}  // namespace FrameDriver::XML
