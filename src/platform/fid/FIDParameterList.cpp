#include "platform/fid/FIDParameterList.h"

#include <algorithm>

FIDParameterList::FIDParameterList() = default;
FIDParameterList::~FIDParameterList() = default;

void FIDParameterList::add(std::string const& name, std::string const& value) {
    parameters.emplace_back(name, value);
}

void FIDParameterList::add(FIDParameter const& parameter) { parameters.push_back(parameter); }

bool FIDParameterList::getValue(std::string const& name, std::string& value) const {
    auto const found = std::find_if(parameters.begin(), parameters.end(),
                                    [&](auto const& each) { return each.name == name; });
    if (found == parameters.end())
        return false;
    value = found->value;
    return true;
}

bool FIDParameterList::removeParameter(std::string const& name) {
    return std::erase_if(parameters, [&](auto const& each) { return each.name == name; }) != 0;
}
