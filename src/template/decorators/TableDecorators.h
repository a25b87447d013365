#pragma once

#include "template/decorators/CopyableDecorator.h"

#include <functional>
#include <map>
#include <string>

namespace FrameDriver::Template {

/// Translates by a table of the dictionary's own. A value that isn't in it gives the default; if
/// there is none, the value itself.
///
///     printed = "enum:" [ key "=>" text { "," key "=>" text } ]     (in key order, no default)
class EnumerationDecorator : public CopyableDecorator<EnumerationDecorator> {
  public:
    using Mapping = std::map<std::string, std::string, std::less<>>;

    explicit EnumerationDecorator(Mapping table);
    EnumerationDecorator(Mapping table, std::string textOtherwise);

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override;

  private:
    Mapping mapping;
    bool hasDefault;
    std::string defaultValue;
};

/// The name of a background bus: "0" to "3" are "BGDA" to "BGDD", "4" is "UTIL1", and anything
/// else "UTIL2".
class BackgroundEnumToNameDecorator : public CopyableDecorator<BackgroundEnumToNameDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "backgroundEnumToName"; }
};

/// The number of a background bus by the last character of its name: "A" to "D" are "0" to "3",
/// "1" is "4", and anything else "5". So it doesn't take back what BackgroundEnumToNameDecorator
/// gives: panels send the single characters.
class BackgroundNameToEnumDecorator : public CopyableDecorator<BackgroundNameToEnumDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "backgroundNameToEnum"; }
};

/// "NONE" for exactly "65535", the frame's number for no machine; any other value unchanged.
class LogicalMachineDecorator : public CopyableDecorator<LogicalMachineDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "logicalMachineNumber"; }
};

}  // namespace FrameDriver::Template
