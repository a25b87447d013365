#pragma once

#include "xml/AbstractParser.h"
#include "xml/Settings.h"

namespace FrameDriver::XML {

/// Reads the settings file, in mode `Schema`.
///
///     <setting> <name> text </name> <value> text </value> </setting>
///
/// The first `name` and the first `value` below a `setting` count, and a missing one is the
/// empty text. Of two settings with one name the later counts.
class SettingsParser : public AbstractParser<Tools::Settings> {
  public:
    ~SettingsParser() override = default;

    Tools::Settings parse(xercesc::DOMDocument* document) override;
};

}  // namespace FrameDriver::XML
