#include "conversion/ManifestParser.h"

#include "xml/DOMSearch.h"

#include <string>
#include <string_view>

namespace FrameDriver::XML {
namespace {

using Tools::Manifest;

struct File {
    std::u16string_view tagName;
    void (Manifest::*add)(std::string const& name);
    bool addsEmptyNames;
};

constexpr File files[] = {
    {u"cplSubscriptionList", &Manifest::addCplSubscriptionList, true},
    {u"fidRegistrationList", &Manifest::addFidRegistrationList, true},
    {u"fidToCPLDictionary", &Manifest::addFidToCPLDictionary, true},
    {u"issueToSIDDictionary", &Manifest::addIssueToSIDDictionary, true},
    {u"monkeytest", &Manifest::addMonkeyTest, false},
};

}  // namespace

Manifest ManifestParser::parse(xercesc::DOMDocument* document) {
    Manifest manifest;
    forEachElement(documentElement(document), u"moduleConfiguration",
                   [&](xercesc::DOMElement& module) {
                       for (File const& file : files) {
                           std::string const name = textOf(onlyElement(&module, file.tagName));
                           if (!name.empty() || file.addsEmptyNames)
                               (manifest.*file.add)(name);
                       }
                   });
    return manifest;
}

}  // namespace FrameDriver::XML
