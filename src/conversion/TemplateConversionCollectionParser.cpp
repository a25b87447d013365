#include "conversion/TemplateConversionCollectionParser.h"

#include "conversion/DictionaryForms.h"
#include "template/TemplateParser.h"
#include "xml/DOMSearch.h"

#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

namespace FrameDriver::XML {
namespace {

using Conversion::TemplateConversion;
using Template::TemplateParser;
using Template::TemplateString;
using xercesc::DOMElement;

void appendTo(std::vector<std::string>& all, std::vector<std::string> more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

/// False if the conversion hasn't exactly one `from`.
bool readTexts(DOMElement const& conversion, ConversionTexts& texts) {
    DOMElement const* from = nullptr;
    std::size_t fromCount = 0;
    std::vector<DOMElement const*> to;
    forEachElement(&conversion, [&](DOMElement const& element, std::u16string_view name) {
        if (name == u"from") {
            from = &element;
            ++fromCount;
        } else if (name == u"to") {
            to.push_back(&element);
        }
    });
    if (fromCount != 1)
        return false;
    texts.from = formTexts(*from);
    for (DOMElement const* const form : to)
        appendTo(texts.to, formTexts(*form));
    return true;
}

/// Calls `visit` with the texts of each conversion that counts. They may be moved from.
template <typename Visit>
void forEachConversion(xercesc::DOMDocument const* document, Visit&& visit) {
    forEachElement(documentElement(document), u"conversion", [&](DOMElement const& conversion) {
        ConversionTexts texts;
        if (readTexts(conversion, texts))
            visit(texts);
    });
}

std::vector<TemplateString> parseAll(std::vector<std::string> const& texts) {
    std::vector<TemplateString> templates;
    templates.reserve(texts.size());
    for (std::string const& text : texts)
        templates.push_back(TemplateParser::parse(text));
    return templates;
}

}  // namespace

Conversion::TemplateConversionCollection
TemplateConversionCollectionParser::parse(xercesc::DOMDocument* document) {
    Conversion::TemplateConversionCollection collection;
    forEachConversion(document, [&](ConversionTexts const& texts) {
        std::vector<TemplateString> const from = parseAll(texts.from);
        std::vector<TemplateString> const to = parseAll(texts.to);
        for (TemplateString const& source : from)
            collection.add(TemplateConversion(source, to));
    });
    return collection;
}

std::vector<ConversionTexts> ConversionTextsParser::parse(xercesc::DOMDocument* document) {
    std::vector<ConversionTexts> all;
    forEachConversion(document, [&](ConversionTexts& texts) { all.push_back(std::move(texts)); });
    return all;
}

}  // namespace FrameDriver::XML
