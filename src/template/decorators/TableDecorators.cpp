#include "template/decorators/TableDecorators.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

namespace FrameDriver::Template {
namespace {

struct Row {
    std::string_view value;
    std::string_view result;
};

constexpr std::array<Row, 5> backgroundNames{
    {{"0", "BGDA"}, {"1", "BGDB"}, {"2", "BGDC"}, {"3", "BGDD"}, {"4", "UTIL1"}}};

constexpr std::array<Row, 5> backgroundNumbers{
    {{"A", "0"}, {"B", "1"}, {"C", "2"}, {"D", "3"}, {"1", "4"}}};

std::string lookUp(std::span<Row const> rows, std::string_view value, std::string_view otherwise) {
    auto const row = std::ranges::find(rows, value, &Row::value);
    return std::string(row == rows.end() ? otherwise : row->result);
}

}  // namespace

EnumerationDecorator::EnumerationDecorator(Mapping table)
    : mapping(std::move(table)), hasDefault(false) {}

EnumerationDecorator::EnumerationDecorator(Mapping table, std::string textOtherwise)
    : mapping(std::move(table)), hasDefault(true), defaultValue(std::move(textOtherwise)) {}

std::string EnumerationDecorator::decorate(std::string const& value, ContextStore*) const {
    auto const entry = mapping.find(value);
    if (entry != mapping.end())
        return entry->second;
    return hasDefault ? defaultValue : value;
}

std::string EnumerationDecorator::toString() const {
    std::string text = "enum:";
    for (char const* separator = ""; auto const& [key, result] : mapping) {
        text.append(separator).append(key).append("=>").append(result);
        separator = ",";
    }
    return text;
}

std::string BackgroundEnumToNameDecorator::decorate(std::string const& value, ContextStore*) const {
    return lookUp(backgroundNames, value, "UTIL2");
}

std::string BackgroundNameToEnumDecorator::decorate(std::string const& value, ContextStore*) const {
    return lookUp(backgroundNumbers, value, "5");
}

std::string LogicalMachineDecorator::decorate(std::string const& value, ContextStore*) const {
    return value == "65535" ? "NONE" : value;
}

}  // namespace FrameDriver::Template
