// The general JSON library reads the text but keeps no places. So it is fed through an iterator
// that counts what it takes, and at each of the library's events the place of the value is
// known: the first byte behind the previous event's end that is neither blank nor punctuation.
// After a number the library has looked one byte ahead, which then is blank, punctuation or a
// closing bracket; skipping from there is right as well.
#include "sims/frame/JsonDocument.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>

namespace FrameSim {
namespace {

constexpr std::size_t deepest = 64;

class CountingIterator {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = char const*;
    using reference = char const&;

    CountingIterator(std::string const& text, std::size_t start, std::size_t* counter)
        : bytes(&text), position(start), taken(counter) {}

    reference operator*() const { return (*bytes)[position]; }
    CountingIterator& operator++() {
        *taken = ++position;
        return *this;
    }
    bool operator==(CountingIterator const& other) const { return position == other.position; }
    bool operator!=(CountingIterator const& other) const { return position != other.position; }

  private:
    std::string const* bytes;
    std::size_t position;
    std::size_t* taken;
};

class TreeBuilder {
  public:
    TreeBuilder(JsonDocument const& file, std::string const& text, JsonNode& top)
        : document(file), content(text), open{&top}, taken(0) {}

    std::size_t* counter() { return &taken; }

    bool null() { return leaf(JsonNode::Kind::null, {}); }
    bool boolean(bool on) {
        leaf(JsonNode::Kind::boolean, {});
        last->boolean = on;
        return true;
    }
    // The number is kept as it is written: the type of the parameter tells how to read it.
    bool number_integer(std::int64_t) { return number(); }
    bool number_unsigned(std::uint64_t) { return number(); }
    bool number_float(double, std::string const&) { return number(); }
    bool string(std::string& utf8) {
        std::size_t const at = nextToken();
        leaf(JsonNode::Kind::string, {});
        last->text = toBytes(utf8, at);
        return true;
    }
    bool binary(std::vector<std::uint8_t>&) { return false; }
    bool start_object(std::size_t) { return enter(JsonNode::Kind::object); }
    bool start_array(std::size_t) { return enter(JsonNode::Kind::array); }
    bool end_object() { return leave(); }
    bool end_array() { return leave(); }
    bool key(std::string& utf8) {
        std::size_t const at = nextToken();
        auto name = toBytes(utf8, at);
        if (open.back()->find(name)) {
            document.fail(at, "\"" + name + "\" stands twice in this object");
        }
        open.back()->members.push_back({std::move(name), at, {}});
        done = taken;
        return true;
    }
    /// `position` counts the bytes that have been read; the last of them is the wrong one.
    bool parse_error(std::size_t position, std::string const&,
                     nlohmann::detail::exception const& error) {
        document.fail(position == 0 ? 0 : position - 1, reason(error.what()));
    }

  private:
    /// What the library says behind the place, which it gives in a form of its own.
    static std::string reason(std::string_view what) {
        constexpr std::string_view mark = "syntax error ";
        auto const at = what.find(mark);
        return std::string(at == std::string_view::npos ? what : what.substr(at));
    }

    std::size_t nextToken() const {
        auto const at = content.find_first_not_of(" \t\r\n,:", done);
        return at == std::string::npos ? content.size() : at;
    }

    JsonNode& place() {
        JsonNode& parent = *open.back();
        if (parent.kind == JsonNode::Kind::array) {
            return parent.elements.emplace_back();
        }
        // The top itself is the only one that is open without being a container.
        return parent.kind == JsonNode::Kind::object ? parent.members.back().value : parent;
    }

    bool leaf(JsonNode::Kind kind, std::string text) {
        std::size_t const at = nextToken();
        last = &place();
        last->kind = kind;
        last->offset = at;
        last->text = std::move(text);
        done = taken;
        return true;
    }

    bool number() {
        std::size_t const at = nextToken();
        std::size_t const end = content.find_first_not_of("+-.0123456789eE", at);
        return leaf(JsonNode::Kind::number, content.substr(at, end - at));
    }

    bool enter(JsonNode::Kind kind) {
        std::size_t const at = nextToken();
        if (open.size() > deepest) {
            document.fail(at, "nested deeper than " + std::to_string(deepest));
        }
        leaf(kind, {});
        open.push_back(last);
        return true;
    }

    bool leave() {
        open.pop_back();
        done = taken;
        return true;
    }

    /// Latin-1 out of the UTF-8 that the library has checked.
    std::string toBytes(std::string_view utf8, std::size_t at) const {
        std::string bytes;
        for (std::size_t i = 0; i < utf8.size(); ++i) {
            unsigned const lead = static_cast<unsigned char>(utf8[i]);
            if (lead < 0x80) {
                bytes.push_back(utf8[i]);
            } else if (lead <= 0xc3) {
                unsigned const next = static_cast<unsigned char>(utf8[++i]);
                bytes.push_back(static_cast<char>((lead << 6U) | (next & 0x3fU)));
            } else {
                document.fail(at, "the text has a character above U+00FF, which no byte holds");
            }
        }
        return bytes;
    }

    JsonDocument const& document;
    std::string const& content;
    std::vector<JsonNode*> open;  // the way from the top to the innermost open container
    JsonNode* last = nullptr;
    std::size_t taken;     // bytes that the library has read
    std::size_t done = 0;  // where the previous event ended
};

}  // namespace

JsonNode const* JsonNode::find(std::string_view name) const {
    auto const at = std::find_if(members.begin(), members.end(),
                                 [name](Member const& member) { return member.name == name; });
    return at == members.end() ? nullptr : &at->value;
}

JsonDocument::JsonDocument(std::string name, std::string bytes)
    : fileName(std::move(name)), content(std::move(bytes)) {
    TreeBuilder builder(*this, content, rootNode);
    CountingIterator const first(content, 0, builder.counter());
    CountingIterator const end(content, content.size(), builder.counter());
    nlohmann::json::sax_parse(first, end, &builder);
}

void JsonDocument::fail(std::size_t offset, std::string const& cause) const {
    std::size_t const at = std::min(offset, content.size());
    auto const before = content.begin() + static_cast<std::ptrdiff_t>(at);
    auto const line = 1 + std::count(content.begin(), before, '\n');
    std::size_t const start = at == 0 ? 0 : content.rfind('\n', at - 1) + 1;
    std::size_t const end = std::min(content.find('\n', at), content.size());
    std::string const text = content.substr(start, end - start);
    throw ModelError(fileName + ":" + std::to_string(line) + ":" + std::to_string(at - start + 1) +
                     ": " + cause + "\n" + text + "\n" + std::string(at - start, ' ') + "^");
}

}  // namespace FrameSim
