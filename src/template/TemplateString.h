#pragma once

#include "template/Segment.h"

#include <string>
#include <string_view>
#include <vector>

namespace FrameDriver::Template {

/// A parsed template: literal text and variables in turn. Backwards it recognises a text and
/// captures its variables (`matches`, then `extractVariables` on the same text); forwards it
/// puts a text together (`evaluate`).
///
/// Immutable once loaded, and then for any thread, several at once. `matches`,
/// `extractVariables` and `evaluate` allocate nothing but their results.
///
/// A null entry among the segments (the parser leaves one for "$" words that mean nothing)
/// stays until the first copy and counts for nothing meanwhile: a template that holds one
/// behaves as its copy.
class TemplateString {
  public:
    /// Matches every text.
    TemplateString() = default;
    /// Takes the segments over; no copies are made.
    explicit TemplateString(std::vector<Segment*> const& pieces);
    /// Deep, without null entries.
    TemplateString(TemplateString const& other);
    TemplateString& operator=(TemplateString const& other);
    TemplateString(TemplateString&&) noexcept = default;
    TemplateString& operator=(TemplateString&&) noexcept = default;
    virtual ~TemplateString() = default;
    /// As the constructor from pointers.
    static TemplateString of(std::vector<SegmentPtr> pieces);

    std::string evaluate(VariableMap const& variables, ContextStore* context) const;
    /// As `evaluate`, at the end of `out`.
    void appendTo(std::string& out, VariableMap const& variables, ContextStore* context) const;

    /// Whether the text has the template's shape. Text ahead of the first literal is allowed,
    /// text behind a last literal is not.
    ///
    /// Where the last segment is literal, only the position reached counts, even after a literal
    /// that wasn't found: the empty text, and a text that is used up at the failure, match. Kept:
    /// the dictionaries in use depend on it.
    bool matches(std::string_view text) const;

    /// What each variable captures. A variable ends where the segment behind it is found first
    /// in the whole text, so it is empty where that one stands ahead of it or is a variable too;
    /// the last one reaches to the end. The first capture of a name stays.
    ///
    /// Throws std::out_of_range ("invalid string position") if the text doesn't have the shape
    /// and a variable would start behind its end.
    VariableMap extractVariables(std::string_view text) const;

    /// As a dictionary would write it.
    std::string toString() const;
    /// The segments in text order, null entries included; they stay the template's.
    std::vector<Segment*> getSegments() const;

  private:
    std::vector<SegmentPtr> segments;  // in text order
    std::size_t sizeHint = 0;          // what a result is likely to need
};

}  // namespace FrameDriver::Template
