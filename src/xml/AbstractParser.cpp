#include "xml/AbstractParser.h"

#include "foundation/Exceptions.h"
#include "xml/ByteFileSource.h"
#include "xml/LibraryUse.h"
#include "xml/ParsingErrorListener.h"
#include "xml/XMLText.h"

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/framework/URLInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/XMLException.hpp>

#include <memory>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::IllegalArgumentException;
using ErrorManagement::Exception::ParseException;

std::unique_ptr<xercesc::InputSource> sourceOf(std::string const& path) {
    std::u16string const name = widen(path);
    if (isURL(name))
        return std::make_unique<xercesc::URLInputSource>(xercesc::XMLURL(name.c_str()));
    return std::make_unique<ByteFileSource>(name);
}

void configure(xercesc::XercesDOMParser& parser, ValidationMode validationMode) {
    bool const schema = validationMode == ValidationMode::Schema;
    parser.setValidationScheme(validationMode != ValidationMode::None
                                   ? xercesc::XercesDOMParser::Val_Auto
                                   : xercesc::XercesDOMParser::Val_Never);
    parser.setDoNamespaces(schema);
    parser.setDoSchema(schema);
}

ParseException problem(std::string const& path, char16_t const* message) {
    return ParseException("A problem occurred while parsing the xml file " + path + ": " +
                          toBytes(message));
}

ParseException unforeseen(std::string const& path) {
    return ParseException("An unforeseen problem has occurred while parsing the xml file " + path);
}

}  // namespace

// The listener goes first and the resolver last.
struct LoadedDocument::Loader {
    ByteFileResolver resolver;
    xercesc::XercesDOMParser parser{nullptr};
    ParsingErrorListener listener;
};

LoadedDocument::LoadedDocument(std::string const& path, ValidationMode validationMode) {
    try {
        use.emplace();
        loader = std::make_unique<Loader>();
        loader->parser.setErrorHandler(&loader->listener);
        loader->parser.setXMLEntityResolver(&loader->resolver);
        configure(loader->parser, validationMode);
        loader->parser.parse(*sourceOf(path));
    } catch (...) {
        throwParseException(path);
    }
}

LoadedDocument::~LoadedDocument() = default;

xercesc::DOMDocument* LoadedDocument::get() const { return loader->parser.getDocument(); }

void throwParseException(std::string const& path) {
    try {
        throw;
    } catch (xercesc::XMLException const& exception) {
        throw problem(path, exception.getMessage());
    } catch (xercesc::DOMException const& exception) {
        throw problem(path, exception.getMessage());
    } catch (ParseException const& exception) {
        throw ParseException(exception);
    } catch (IllegalArgumentException const* exception) {
        delete exception;  // hexadecimal numbers that can't be read come this way
        throw unforeseen(path);
    } catch (...) {
        throw unforeseen(path);
    }
}

}  // namespace FrameDriver::XML
