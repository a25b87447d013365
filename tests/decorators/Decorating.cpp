#include "Decorating.h"

#include "template/TemplateParser.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

TemplateString parseWord(std::string_view word) {
    return TemplateParser::parse(std::string("{@x|").append(word).append("}"));
}

}  // namespace

void fill(ContextStore& store, State const& state) {
    for (auto const& [key, text] : state)
        store.set(key, text);
}

std::string decorate(std::string_view word, std::string_view value, ContextStore& store) {
    return parseWord(word).evaluate({{"x", std::string(value)}}, &store);
}

std::string decorate(std::string_view word, std::string_view value, State const& state) {
    ContextStore store;
    fill(store, state);
    return decorate(word, value, store);
}

std::string printed(std::string_view word) {
    std::string const text = parseWord(word).toString();
    return text.substr(4, text.size() - 5);  // between "{@x|" and "}"
}

void expectRows(std::string_view word, State const& state, std::vector<Row> const& rows) {
    for (auto const& [value, result] : rows) {
        SCOPED_TRACE(std::string(word) + " on " + testing::PrintToString(value));
        EXPECT_EQ(decorate(word, value, state), result);
    }
}

void expectRows(std::string_view word, std::vector<Row> const& rows) { expectRows(word, {}, rows); }

}  // namespace FrameDriver::Template
