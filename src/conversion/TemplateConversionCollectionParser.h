#pragma once

#include "conversion/TemplateConversionCollection.h"
#include "xml/AbstractParser.h"

#include <string>
#include <vector>

namespace FrameDriver::XML {

/// Reads a conversion dictionary, in mode `None`: every `conversion`, at any depth, with
/// exactly one `from` (otherwise it is passed over) and any number of `to`, in the typed forms
/// of DictionaryForms.h.
///
/// A form stands for as many templates as its ranges make (DictionaryRange.h). Each template of
/// the `from` becomes an entry of its own with the templates of all `to`: N of the one and M of
/// the others give N entries with M outputs each. A `to` of unknown type is left out, and a
/// `from` of unknown type makes no entry; neither is reported.
///
/// What the expansion and Template::TemplateParser throw passes through.
class TemplateConversionCollectionParser
    : public AbstractParser<Conversion::TemplateConversionCollection> {
  public:
    ~TemplateConversionCollectionParser() override = default;

    Conversion::TemplateConversionCollection parse(xercesc::DOMDocument* document) override;
};

/// The texts of a conversion's templates, for whoever wants to see what the file's forms come to.
struct ConversionTexts {
    std::vector<std::string> from;
    std::vector<std::string> to;
};

/// Reads a conversion dictionary as TemplateConversionCollectionParser does, up to the texts
/// that it would take for templates.
class ConversionTextsParser : public AbstractParser<std::vector<ConversionTexts>> {
  public:
    ~ConversionTextsParser() override = default;

    std::vector<ConversionTexts> parse(xercesc::DOMDocument* document) override;
};

}  // namespace FrameDriver::XML
