#include "xml/SettingsParser.h"

#include "xml/DOMSearch.h"

#include <utility>

namespace FrameDriver::XML {

Tools::Settings SettingsParser::parse(xercesc::DOMDocument* document) {
    Tools::Settings::Map pairs;
    forEachElement(documentElement(document), u"setting", [&](xercesc::DOMElement& setting) {
        pairs[textOf(firstElement(&setting, u"name"))] = textOf(firstElement(&setting, u"value"));
    });
    return Tools::Settings(std::move(pairs));
}

}  // namespace FrameDriver::XML
