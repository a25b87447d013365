#pragma once

#include "xml/AbstractWriter.h"
#include "xml/Settings.h"

#include <string>

namespace FrameDriver::XML {

/// Writes the settings file, the pairs in name order. Every byte that XML can hold comes back
/// from SettingsParser as it was; one that it can't (a control byte other than tab, line feed
/// and carriage return) is written as "?".
class SettingsWriter : public AbstractWriter<Tools::Settings> {
  public:
    void write(Tools::Settings value) override;
    std::string rootElementName() override;
    ~SettingsWriter() override = default;
};

}  // namespace FrameDriver::XML
