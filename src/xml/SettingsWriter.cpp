#include "xml/SettingsWriter.h"

#include "xml/XMLText.h"

#include <xercesc/dom/DOM.hpp>

namespace FrameDriver::XML {
namespace {

constexpr char16_t const* settingsNamespace = u"FrameDriver/Settings";

struct Attribute {
    char16_t const* name;
    char16_t const* value;
};

// "pfx" is declared and never used: files in the field have it, and so has ours.
constexpr Attribute rootAttributes[] = {
    {u"xmlns:xsi", u"http://www.w3.org/2001/XMLSchema-instance"},
    {u"xmlns:pfx", u"FrameDriver/Settings"},
    {u"xsi:schemaLocation", u"FrameDriver/Settings ./Schemas/Settings.xsd"},
};

xercesc::DOMElement* textElement(xercesc::DOMDocument& document, char16_t const* tagName,
                                 std::string const& text) {
    auto* const element = document.createElementNS(settingsNamespace, tagName);
    element->appendChild(document.createTextNode(toXMLText(text).c_str()));
    return element;
}

}  // namespace

void SettingsWriter::write(Tools::Settings value) {
    auto* const root = document->getDocumentElement();
    for (Attribute const& attribute : rootAttributes)
        root->setAttribute(attribute.name, attribute.value);
    for (auto const& [name, text] : value) {
        auto* const nameElement = textElement(*document, u"name", name);
        auto* const valueElement = textElement(*document, u"value", text);
        auto* const setting = document->createElementNS(settingsNamespace, u"setting");
        setting->appendChild(nameElement);
        setting->appendChild(valueElement);
        root->appendChild(setting);
    }
}

std::string SettingsWriter::rootElementName() { return "settings"; }

}  // namespace FrameDriver::XML
