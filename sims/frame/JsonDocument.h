#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace FrameSim {

/// A model file can't be used. The text has three lines: "FILE:LINE:COLUMN: CAUSE", the line of
/// the file, and a caret below the place. Lines and columns count from 1, columns in bytes.
class ModelError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// One value of a JSON text, with the place where it stands.
struct JsonNode {
    enum class Kind { null, boolean, number, string, array, object };
    struct Member;

    Kind kind = Kind::null;
    std::size_t offset = 0;  ///< of the first byte of the value in the text
    std::string text;        ///< a string as bytes; a number as it is written
    bool boolean = false;
    std::vector<JsonNode> elements;  ///< of an array
    std::vector<Member> members;     ///< of an object, in the order of the text

    /// The member of that name, or null. Only the object form has any.
    JsonNode const* find(std::string_view name) const;
};

struct JsonNode::Member {
    std::string name;
    std::size_t offset;  ///< of the name
    JsonNode value;
};

/// A JSON text, read with the place of each value, so that a reader of the file can say where
/// something is wrong that is good JSON.
///
/// A character up to U+00FF becomes one byte; one above is an error, and so are a name that
/// stands twice in one object and nesting deeper than 64.
class JsonDocument {
  public:
    /// Reads `content`; `name` is what errors call the file. Throws `ModelError`.
    JsonDocument(std::string name, std::string content);

    JsonNode const& root() const { return rootNode; }
    /// Throws the error for a place.
    [[noreturn]] void fail(std::size_t offset, std::string const& cause) const;

  private:
    std::string fileName;
    std::string content;
    JsonNode rootNode;
};

}  // namespace FrameSim
