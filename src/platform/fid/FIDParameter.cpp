#include "platform/fid/FIDParameter.h"

FIDParameter::FIDParameter(std::string const& parameterName, std::string const& parameterValue)
    : name(parameterName), value(parameterValue) {}

FIDParameter::~FIDParameter() = default;
