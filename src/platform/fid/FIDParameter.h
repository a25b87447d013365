#pragma once

#include "platform/Visibility.h"

#include <string>

/// One parameter of a FID: a name and a value, both 8-bit text. A value type.
class QFD_PUBLIC FIDParameter {
  public:
    FIDParameter(std::string const& parameterName, std::string const& parameterValue);
    FIDParameter(FIDParameter const&) = default;
    FIDParameter(FIDParameter&&) noexcept = default;
    FIDParameter& operator=(FIDParameter const&) = default;
    FIDParameter& operator=(FIDParameter&&) noexcept = default;
    virtual ~FIDParameter();

    std::string getName() const { return name; }
    std::string getValue() const { return value; }

  private:
    friend class FIDParameterList;  // which looks at names without copying them

    std::string name;
    std::string value;
};
