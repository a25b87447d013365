#include "xml/ParsingErrorListener.h"

#include "foundation/Exceptions.h"
#include "foundation/NumberText.h"
#include "xml/XMLText.h"

#include <xercesc/sax/SAXParseException.hpp>

namespace FrameDriver::XML {
namespace {

[[noreturn]] void refuse(char const* kind, xercesc::SAXParseException const& complaint) {
    std::string text = kind;
    text += "The problem was found in ";
    text += toBytes(complaint.getSystemId());
    text += " on line number ";
    Tools::appendUInt32(text, static_cast<std::uint32_t>(complaint.getLineNumber()));
    text += " in column ";
    Tools::appendUInt32(text, static_cast<std::uint32_t>(complaint.getColumnNumber()));
    text += ". ";
    text += toBytes(complaint.getMessage());
    throw ErrorManagement::Exception::ParseException(text);
}

}  // namespace

void ParsingErrorListener::warning(xercesc::SAXParseException const& complaint) {
    refuse("A warning occurred while parsing the xml file. ", complaint);
}

void ParsingErrorListener::error(xercesc::SAXParseException const& complaint) {
    refuse("An error occurred while parsing the xml file. ", complaint);
}

void ParsingErrorListener::fatalError(xercesc::SAXParseException const& complaint) {
    refuse("A fatal error occurred while parsing the xml file. ", complaint);
}

}  // namespace FrameDriver::XML
