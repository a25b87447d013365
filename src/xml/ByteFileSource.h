#pragma once

#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>

#include <string>

/// Files by the bytes of their names. Left to itself the library passes a name through the
/// process's locale on its way to the file system, where it may come to harm.
namespace FrameDriver::XML {

/// A file of the local system, or one below `baseId` if it is relative and `baseId` isn't
/// empty, or else below the working directory. Its system identifier is what the library would
/// have made of it, one character a byte.
class ByteFileSource : public xercesc::InputSource {
  public:
    explicit ByteFileSource(std::u16string const& path, char16_t const* baseId = nullptr);
    ~ByteFileSource() override = default;

    /// Null if the file can't be opened.
    xercesc::BinInputStream* makeStream() const override;
};

/// Finds what a document refers to, its schema above all.
class ByteFileResolver : public xercesc::XMLEntityResolver {
  public:
    ~ByteFileResolver() override = default;

    /// A new ByteFileSource, or null, which leaves it to the library, for a URL.
    xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* identifier) override;
};

/// Whether the library takes `path` for a URL and not for a file's name.
bool isURL(std::u16string const& path, char16_t const* baseId = nullptr);

}  // namespace FrameDriver::XML
