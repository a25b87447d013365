#pragma once

#include "xml/AbstractParser.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace FrameDriver::XML {

/// A place in a file. Both count from 1; 0 is "not known". A column is a character.
struct FilePosition {
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

/// A file read in mode `None`, with the places of its elements: for those who tell authors what
/// is wrong with a file. The driver's own loaders don't need that and don't pay for it.
///
/// The XML library must run; the object keeps it up. One object, one thread.
class LocatedDocument {
  public:
    struct Complaint {
        FilePosition position;
        std::string message;
    };

    /// Throws std::runtime_error if the XML library isn't running.
    explicit LocatedDocument(std::string const& path);
    ~LocatedDocument();
    LocatedDocument(LocatedDocument const&) = delete;
    LocatedDocument& operator=(LocatedDocument const&) = delete;

    /// What the parser complained about first; the document is then of no use.
    std::optional<Complaint> const& complaint() const { return firstComplaint; }
    /// Null after a complaint.
    xercesc::DOMDocument* get() const;

    /// Where the element's start tag begins.
    FilePosition positionOf(xercesc::DOMElement const& element) const;
    /// The line as it stands in the file, without its end; empty if there is none.
    std::string line(std::uint32_t number) const;

  private:
    class Parser;
    void parse(std::string const& path);
    FilePosition positionAt(std::size_t offset) const;

    LibraryUse use;
    std::string bytes;                    // of the file
    std::vector<std::size_t> lineStarts;  // their offsets
    std::unique_ptr<Parser> parser;
    std::optional<Complaint> firstComplaint;
};

}  // namespace FrameDriver::XML
