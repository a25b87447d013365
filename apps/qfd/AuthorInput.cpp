#include "AuthorInput.h"

#include "foundation/Exceptions.h"
#include "xml/XMLUtilities.h"

#include <exception>
#include <iostream>
#include <memory>

using FrameDriver::ErrorManagement::Exception::Exception;
using FrameDriver::ErrorManagement::Exception::IllegalArgumentException;

namespace qfd {

void forEachText(std::vector<std::string> const& texts,
                 std::function<void(std::string_view, std::size_t)> const& each) {
    std::size_t count = 0;
    for (auto const& text : texts)
        each(text, ++count);
    if (!texts.empty())
        return;
    for (std::string line; std::getline(std::cin, line);)
        each(line, ++count);
}

std::string currentExceptionText() {
    try {
        throw;
    } catch (Exception const& error) {
        return error.getMessage();
    } catch (std::exception const& error) {
        return error.what();
    } catch (IllegalArgumentException* error) {  // the hexadecimal reader's way
        std::unique_ptr<IllegalArgumentException> const owned(error);
        return owned->getMessage();
    } catch (...) {
        return "an exception of unknown type";
    }
}

void fillContext(FrameDriver::Template::ContextStore& store,
                 std::vector<std::string> const& pairs) {
    for (auto const& pair : pairs) {
        auto const equals = pair.find('=');
        if (equals == std::string::npos)
            throw InputError("--context '" + pair + "': it is KEY=VALUE");
        store.set(pair.substr(0, equals), pair.substr(equals + 1));
    }
}

std::string onOneLine(std::string_view result) {
    std::string line;
    line.reserve(result.size());
    for (char const byte : result) {
        if (byte == '\n')
            line += "\\x0a";
        else if (byte == '\\')
            line += "\\x5c";
        else
            line += byte;
    }
    return line;
}

XMLLibrary::XMLLibrary() {
    try {
        FrameDriver::XML::startXMLUtilities();
    } catch (Exception const& error) {
        throw InputError(error.getMessage());
    }
}

XMLLibrary::~XMLLibrary() {
    try {
        FrameDriver::XML::stopXMLUtilities();
    } catch (...) {  // the program ends; there is nobody left to tell
    }
}

}  // namespace qfd
