#pragma once

#include "xml/LocatedDocument.h"

#include <cstdint>
#include <string>
#include <vector>

/// Telling the author of a dictionary what the driver won't tell. The driver's own reader passes
/// over whatever it doesn't understand; this one says what that is, and where. It changes
/// nothing in what the driver does with the file.
namespace FrameDriver::XML {

struct DictionaryFinding {
    enum Severity {
        passedOver,  ///< the driver loads the file, and does something else than it says
        fatal        ///< the driver loses the whole file, or its link to the frame
    };

    Severity severity;
    FilePosition position;  ///< the start of the element that it is about
    std::string cause;      ///< a sentence without a full stop
    std::string line;       ///< the line of the file
};

/// Everything that is found in the dictionary at `path`, in the file's order; nothing after a
/// file that isn't well-formed. Found is:
///
///     a file that can't be read or isn't well-formed
///     a conversion without a `from` or with several, or with the same `from` as an earlier one
///     a form without a type or of an unknown one
///     fields that are unknown, that stand twice, or that hold elements; missing attributes
///     ranges that can't be read, are empty, or are overlooked
///     device identifiers of unknown encoding or with unknown fields
///     types of values, and flags, that don't exist
///     templates that can't be read, words that are no decorators, "{$abc}", missing braces
///
/// Throws std::runtime_error if the XML library isn't running.
std::vector<DictionaryFinding> checkDictionary(std::string const& path);

/// The finding as compilers show theirs, with the line and a mark below the place:
///
///     text = path [ ":" line ":" column ] ": " ( "error" | "warning" ) ": " cause "\n"
///            [ line "\n" mark "\n" ]
std::string toText(std::string const& path, DictionaryFinding const& finding);

}  // namespace FrameDriver::XML
