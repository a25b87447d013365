#pragma once

#include "conversion/SearchedText.h"
#include "template/TemplateString.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace FrameDriver::Conversion {

/// A dictionary entry in the form that the lookup works on: one block of memory that holds the
/// pieces of `from`, the steps that put the results together, and the bytes of both. It answers
/// exactly what the templates themselves would, with one search per literal where they need two,
/// and without a map of variables unless a decorator or a context string asks for one.
///
/// Immutable. Thread: any, several at once.
class ConversionPlan {
  public:
    /// Where a variable's text stands in the text that was taken apart.
    struct Capture {
        std::size_t begin;
        std::size_t size;
    };
    /// Scratch of the caller, reused from text to text.
    using Captures = std::vector<Capture>;

    enum class Match {
        no,
        yes,       ///< the captures are filled
        byEndOnly  ///< a literal is missing, yet the rule of a last literal lets the text pass
    };

    static std::shared_ptr<ConversionPlan const>
    make(Template::TemplateString const& from, std::vector<Template::TemplateString> const& to);

    ConversionPlan(ConversionPlan const&) = delete;
    ConversionPlan& operator=(ConversionPlan const&) = delete;
    ~ConversionPlan() = default;
    /// The block is larger than the class.
    static void operator delete(void* block) { ::operator delete(block); }

    /// As TemplateString::matches on `from`.
    Match match(SearchedText const& text, Captures& captures) const;
    /// As TemplateConversion::convert.
    bool convert(SearchedText const& text, Template::ContextStore* context,
                 std::vector<std::string>& results, Captures& captures) const;
    /// The results for a text whose match was `match` with these captures.
    void evaluate(Match match, SearchedText const& text, Captures const& captures,
                  Template::ContextStore* context, std::vector<std::string>& results) const;

    /// As the walk of the lookup tree goes on behind the piece ahead of `piece`, which was found
    /// at `position`: whether each further literal is found at or behind its predecessor.
    bool continues(std::size_t piece, SearchedText const& text, std::size_t position) const;

    std::size_t pieceCount() const { return pieces; }
    bool isLiteral(std::size_t piece) const { return pieceAt(piece).literal; }
    /// The bytes of a literal piece.
    std::string_view literal(std::size_t piece) const { return bytesOf(pieceAt(piece)); }

    Template::TemplateString const& from() const { return source->from; }
    std::vector<Template::TemplateString> const& to() const { return source->to; }

  private:
    // A segment of `from`. A variable's bytes are its name.
    struct Piece {
        std::uint32_t begin;
        std::uint32_t size;
        bool literal;
    };
    // A step towards a result.
    struct Step {
        enum class Kind : std::uint32_t { literal, capture, segment, end };
        Kind kind;
        std::uint32_t begin;  // of the literal's bytes; the number of the capture or the segment
        std::uint32_t size;   // of the literal; what a segment's text is likely to need
    };
    // What the plan was made of.
    struct Source {
        Template::TemplateString from;
        std::vector<Template::TemplateString> to;
        std::vector<Template::Segment const*> segments;  // those of `to` that are asked themselves
    };
    class Builder;
    struct Result;

    explicit ConversionPlan(Builder& builder);

    Piece const* piecesBegin() const { return reinterpret_cast<Piece const*>(this + 1); }
    Step const* stepsBegin() const { return reinterpret_cast<Step const*>(piecesBegin() + pieces); }
    char const* bytes() const { return reinterpret_cast<char const*>(stepsBegin() + steps); }
    Piece const& pieceAt(std::size_t piece) const { return piecesBegin()[piece]; }
    std::string_view bytesOf(Piece const& piece) const {
        return {bytes() + piece.begin, piece.size};
    }
    bool endsInLiteral() const { return pieces != 0 && pieceAt(pieces - 1).literal; }
    bool mayEnd(SearchedText const& text) const;
    void evaluateTemplates(std::string_view text, Template::ContextStore* context,
                           std::vector<std::string>& out) const;

    static std::uint64_t markOf(char lastByte) {
        return std::uint64_t(1) << (static_cast<unsigned char>(lastByte) % 64);
    }

    std::uint64_t innerEnds = 0;  // marks of the last bytes of all literals but a final one
    std::uint32_t pieces = 0;
    std::uint32_t variables = 0;
    std::uint32_t results = 0;
    std::uint32_t steps = 0;
    std::unique_ptr<Source const> source;
    // The pieces, the steps and the bytes follow in the same block.
};

}  // namespace FrameDriver::Conversion
