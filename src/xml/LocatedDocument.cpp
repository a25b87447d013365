#include "xml/LocatedDocument.h"

#include "xml/ByteFileSource.h"
#include "xml/XMLText.h"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLException.hpp>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <vector>

// The library tells where a start tag ends, also as an offset in the file. Where it begins is
// found by going back from there to the last "<", which can't stand inside a tag.

namespace FrameDriver::XML {
namespace {

FilePosition filePosition(XMLFileLoc line, XMLFileLoc column) {
    return {static_cast<std::uint32_t>(line), static_cast<std::uint32_t>(column)};
}

/// The first of the complaints, thrown.
class Listener : public xercesc::ErrorHandler {
  public:
    void warning(xercesc::SAXParseException const& complaint) override { refuse(complaint); }
    void error(xercesc::SAXParseException const& complaint) override { refuse(complaint); }
    void fatalError(xercesc::SAXParseException const& complaint) override { refuse(complaint); }
    void resetErrors() override {}

  private:
    [[noreturn]] static void refuse(xercesc::SAXParseException const& complaint) {
        throw LocatedDocument::Complaint{
            filePosition(complaint.getLineNumber(), complaint.getColumnNumber()),
            toBytes(complaint.getMessage())};
    }
};

bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// The offsets at which the lines begin.
std::vector<std::size_t> lineStartsOf(std::string_view bytes) {
    std::vector<std::size_t> starts{0};
    for (std::size_t place = 0; (place = bytes.find('\n', place)) != bytes.npos;)
        starts.push_back(++place);
    return starts;
}

std::string contentOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct TagEnd {
    FilePosition position;
    std::size_t offset;  // in the file, unless the element comes out of an entity
};

}  // namespace

class LocatedDocument::Parser : public xercesc::XercesDOMParser {
  public:
    void startElement(xercesc::XMLElementDecl const& declaration, unsigned int uri,
                      XMLCh const* prefix, xercesc::RefVectorOf<xercesc::XMLAttr> const& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override {
        XercesDOMParser::startElement(declaration, uri, prefix, attributes, attributeCount, isEmpty,
                                      isRoot);
        auto const* const locator = getScanner()->getLocator();
        tagEnds[getCurrentNode()] = {
            filePosition(locator->getLineNumber(), locator->getColumnNumber()),
            static_cast<std::size_t>(getScanner()->getSrcOffset())};
    }

    std::unordered_map<xercesc::DOMNode const*, TagEnd> tagEnds;
};

LocatedDocument::LocatedDocument(std::string const& path)
    : bytes(contentOf(path)), lineStarts(lineStartsOf(bytes)), parser(std::make_unique<Parser>()) {
    try {
        parse(path);
    } catch (Complaint const& complaint) {
        firstComplaint = complaint;
    } catch (xercesc::XMLException const& exception) {
        firstComplaint = Complaint{{}, toBytes(exception.getMessage())};
    } catch (xercesc::DOMException const& exception) {
        firstComplaint = Complaint{{}, toBytes(exception.getMessage())};
    }
}

LocatedDocument::~LocatedDocument() = default;

void LocatedDocument::parse(std::string const& path) {
    Listener listener;
    ByteFileResolver resolver;
    parser->setErrorHandler(&listener);
    parser->setXMLEntityResolver(&resolver);
    parser->setValidationScheme(xercesc::XercesDOMParser::Val_Never);
    parser->setDoNamespaces(false);
    parser->setDoSchema(false);
    parser->setCalculateSrcOfs(true);
    parser->parse(ByteFileSource(widen(path)));
}

xercesc::DOMDocument* LocatedDocument::get() const {
    return firstComplaint ? nullptr : parser->getDocument();
}

FilePosition LocatedDocument::positionOf(xercesc::DOMElement const& element) const {
    auto const found = parser->tagEnds.find(&element);
    if (found == parser->tagEnds.end())
        return {};
    auto const& [position, offset] = found->second;
    if (offset == 0 || offset > bytes.size() || bytes[offset - 1] != '>')
        return position;
    return positionAt(bytes.rfind('<', offset - 1));
}

FilePosition LocatedDocument::positionAt(std::size_t offset) const {
    auto const behind = std::upper_bound(lineStarts.begin(), lineStarts.end(), offset);
    std::size_t const start = *std::prev(behind);
    std::string_view const ahead = std::string_view(bytes).substr(start, offset - start);
    std::u16string_view const encoding = parser->getDocument()->getInputEncoding();
    auto const within =
        encoding == u"UTF-8" ? std::count_if(ahead.begin(), ahead.end(), continuesCharacter) : 0;
    return {static_cast<std::uint32_t>(behind - lineStarts.begin()),
            static_cast<std::uint32_t>(ahead.size()) - static_cast<std::uint32_t>(within) + 1};
}

std::string LocatedDocument::line(std::uint32_t number) const {
    if (number == 0 || number > lineStarts.size())
        return "";
    std::string_view line = std::string_view(bytes).substr(lineStarts[number - 1]);
    line = line.substr(0, line.find('\n'));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return std::string(line);
}

}  // namespace FrameDriver::XML
