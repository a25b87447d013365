#pragma once

#include <stdexcept>
#include <string>

namespace FrameDriver::ErrorManagement::Exception {

/// The root of the driver's failures: one text and nothing else. Thrown by value and caught by
/// reference (FrameDriver::Tools::hexStringToUInt32 throws a pointer and says so).
///
/// The text stands in `getMessage` and in `what` alike, but a default `Exception` has an empty
/// `what`. Thread: one, from the throw to the end of the handler.
class Exception : public std::runtime_error {
  public:
    Exception() : std::runtime_error(""), message("An unknown exception has occurred.") {}

    std::string getMessage() const { return message; }

  protected:
    explicit Exception(std::string const& text) : std::runtime_error(text), message(text) {}

  private:
    std::string message;
};

class IllegalArgumentException : public Exception {
  public:
    IllegalArgumentException() : Exception("An illegal argument exception occurred.") {}
    explicit IllegalArgumentException(std::string const& text) : Exception(text) {}
};

/// Stands ready; nothing in the driver throws it.
class IllegalOperationException : public Exception {
  public:
    IllegalOperationException() : Exception("An illegal operation exception occurred.") {}
    explicit IllegalOperationException(std::string const& text) : Exception(text) {}
};

/// The XML library failed to start.
class InitializationException : public Exception {
  public:
    InitializationException() : Exception("An initialization exception occurred.") {}
    explicit InitializationException(std::string const& text) : Exception(text) {}
};

/// The XML library failed to stop.
class DisposalException : public Exception {
  public:
    DisposalException() : Exception("A disposal exception occurred.") {}
    explicit DisposalException(std::string const& text) : Exception(text) {}
};

class XMLException : public Exception {
  public:
    XMLException() : Exception("An XML exception occurred.") {}
    explicit XMLException(std::string const& text) : Exception(text) {}
};

/// A file could not be read as XML, or breaks its schema.
class ParseException : public XMLException {
  public:
    ParseException() : XMLException("A parse exception occurred.") {}
    explicit ParseException(std::string const& text) : XMLException(text) {}
};

}  // namespace FrameDriver::ErrorManagement::Exception
