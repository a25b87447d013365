#include "xml/FIDRegistrationListParser.h"

#include "xml/DOMSearch.h"
#include "xml/RangeExpansion.h"

namespace FrameDriver::XML {

std::list<std::string> FIDRegistrationListParser::parse(xercesc::DOMDocument* document) {
    std::list<std::string> names;
    forEachElement(documentElement(document), u"fid", [&](xercesc::DOMElement& fid) {
        names.splice(names.end(), expandRange(textOf(&fid), '(', ')', 0));
    });
    return names;
}

}  // namespace FrameDriver::XML
