#pragma once

#include "xml/LibraryUse.h"
#include "xml/XercesFwd.h"

#include <string>

namespace FrameDriver::XML {

/// The steps of a writer that don't depend on what is written.
xercesc::DOMLSSerializer* createSerializer();
xercesc::DOMDocument* createDocument(std::string const& rootElementName);
/// Throws what AbstractWriter::writeFile throws.
void serialize(xercesc::DOMLSSerializer& serializer, xercesc::DOMDocument& document,
               std::string const& path);
/// Null is passed over.
void release(xercesc::DOMDocument* document);
void release(xercesc::DOMLSSerializer* serializer);

/// Turns a `T` into an XML file. One writer, one thread; two writers have nothing in common.
///
/// Making one throws std::runtime_error if the XML library isn't running, and keeps the library
/// up while it lives.
template <typename T>
class AbstractWriter : private LibraryUse {
  public:
    AbstractWriter() : LibraryUse(exceptionsLeave), serializer(createSerializer()) {}
    AbstractWriter(AbstractWriter const&) = delete;
    AbstractWriter& operator=(AbstractWriter const&) = delete;

    /// Writes `value` to the file at `path` (bytes, taken as they are), pretty-printed, in UTF-8
    /// and with an XML declaration. An existing file is replaced, and stays as it is when it
    /// can't be opened for writing. Failure is an exception of the XML library, which is the
    /// caller's to catch.
    void writeFile(std::string const& path, T const& value) {
        release(document);
        document = nullptr;
        document = createDocument(rootElementName());
        write(value);
        serialize(*serializer, *document, path);
    }

    /// Fills `document`, which holds an empty root element.
    virtual void write(T value) = 0;
    virtual std::string rootElementName() = 0;
    virtual ~AbstractWriter() {
        release(document);
        release(serializer);
    }

  protected:
    xercesc::DOMDocument* document = nullptr;  ///< owned; in the namespace "FrameDriver/Settings"
    xercesc::DOMLSSerializer* serializer;      ///< owned
};

}  // namespace FrameDriver::XML
