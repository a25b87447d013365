#pragma once

#include <xercesc/sax/ErrorHandler.hpp>

namespace FrameDriver::XML {

/// Turns every complaint of the parser into a ParseException, warnings too, so that a document
/// with any complaint at all never reaches its reader. The text:
///
///     text      = kind "The problem was found in " system id " on line number " line
///                 " in column " column ". " message
///     kind      = ( "A warning" | "An error" | "A fatal error" )
///                 " occurred while parsing the xml file. "
///
/// Line and column are unsigned decimal numbers of 32 bits.
class ParsingErrorListener : public xercesc::ErrorHandler {
  public:
    ~ParsingErrorListener() override = default;

    [[noreturn]] void warning(xercesc::SAXParseException const& complaint) override;
    [[noreturn]] void error(xercesc::SAXParseException const& complaint) override;
    [[noreturn]] void fatalError(xercesc::SAXParseException const& complaint) override;
    void resetErrors() override {}
};

}  // namespace FrameDriver::XML
