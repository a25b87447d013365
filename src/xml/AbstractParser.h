#pragma once

#include "xml/LibraryUse.h"
#include "xml/XercesFwd.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace FrameDriver::XML {

/// Whether a file is checked against the schema that it names in its `xsi:schemaLocation`. The
/// numbers are those of the library's validation schemes. `None` looks at well-formedness
/// alone, and takes prefixes for a part of the name.
enum class ValidationMode : std::int32_t { None = 0, Schema = 2 };

/// The file at a path, read; the document goes with it, and keeps the XML library up.
class LoadedDocument {
  public:
    /// Throws what AbstractParser::parseFile throws.
    LoadedDocument(std::string const& path, ValidationMode validationMode);
    ~LoadedDocument();

    xercesc::DOMDocument* get() const;

  private:
    struct Loader;
    std::optional<LibraryUse> use;
    std::unique_ptr<Loader> loader;
};

/// To be called in a handler: throws what AbstractParser::parseFile throws for the exception
/// that is being handled.
[[noreturn]] void throwParseException(std::string const& path);

/// Turns an XML file into a `T`. Concrete parsers live with the format that they read, have no
/// fields, and are made on the stack of whoever loads. Nothing is shared between two of them;
/// thread: any.
template <typename T>
class AbstractParser {
  public:
    virtual ~AbstractParser() = default;

    /// Reads a document whose document element may have any name: elements are found by their
    /// tag names, at any depth. The document stays the caller's.
    virtual T parse(xercesc::DOMDocument* document) = 0;

    /// The file at `path` (bytes, taken as they are, relative to the working directory) read and
    /// passed through `parse`. Whatever goes wrong ends in a ParseException:
    ///
    ///     the parser complains       the listener's text (ParsingErrorListener)
    ///     the library gives up       "A problem occurred while parsing the xml file " path ": "
    ///                                and the library's message
    ///     anything else at all       "An unforeseen problem has occurred while parsing the xml
    ///                                file " path
    ///
    /// The last covers numbers that `parse` can't read, and an XML library that isn't running.
    T parseFile(std::string const& path, ValidationMode validationMode) {
        LoadedDocument const document(path, validationMode);
        try {
            return parse(document.get());
        } catch (...) {
            throwParseException(path);
        }
    }
};

}  // namespace FrameDriver::XML
