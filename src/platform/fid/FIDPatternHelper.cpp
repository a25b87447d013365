#include "platform/fid/FIDPatternHelper.h"

#include <string_view>
#include <utility>

namespace {

/// Takes the first component off `rest`. `more` tells whether another one follows.
std::string_view takeComponent(std::string_view& rest, bool& more) {
    auto const dot = rest.find('.');
    more = dot != std::string_view::npos;
    auto const component = rest.substr(0, dot);
    rest.remove_prefix(more ? dot + 1 : rest.size());
    return component;
}

}  // namespace

FIDPatternHelper::FIDPatternHelper(std::string const& patternText) : pattern(patternText) {}
FIDPatternHelper::~FIDPatternHelper() = default;

bool FIDPatternHelper::matches(FIDHelper const& fid) {
    captured = FIDParameterList();
    FIDParameterList found;
    std::string_view wanted = pattern;
    std::string_view given = fid.getText();
    for (bool moreWanted = true, moreGiven = true; moreWanted || moreGiven;) {
        if (moreWanted != moreGiven)
            return false;
        auto const expected = takeComponent(wanted, moreWanted);
        auto const component = takeComponent(given, moreGiven);
        if (expected == "*")
            found.add(std::to_string(found.size() + 1), std::string(component));
        else if (expected != component)
            return false;
    }
    captured = std::move(found);
    return true;
}
