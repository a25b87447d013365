#pragma once

#include "template/TemplateString.h"

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace FrameDriver::Conversion {

/// Makes dictionaries and texts that try a lookup: shared beginnings, literals that overlap,
/// repeat or begin one another, literals that spell a variable, empty literals, unanchored
/// literals, many variables, context strings, duplicates; and texts that match, just don't, are
/// empty, end early, or come in bursts.
///
/// The same seed gives the same. Thread: one.
class DictionaryGenerator {
  public:
    struct Entry {
        Template::TemplateString from;
        std::vector<Template::TemplateString> to;
    };
    /// What the literals are made of.
    enum class Shape { fids, issues, letters, prefixes, bytes };
    static constexpr Shape allShapes[] = {Shape::fids, Shape::issues, Shape::letters,
                                          Shape::prefixes, Shape::bytes};

    explicit DictionaryGenerator(std::uint64_t seed) : random(seed) {}

    /// Starts a dictionary of about so many entries; the old one is gone.
    std::vector<Entry> const& makeDictionary(Shape newShape, std::size_t size);
    /// A text for the dictionary, often like the one before.
    std::string makeText();

  private:
    using Pieces = std::vector<Template::SegmentPtr>;

    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random() % limit); }
    bool oneIn(std::size_t chance) { return below(chance) == 0; }
    template <typename List>
    auto const& pick(List const& list) {
        return list[below(std::size(list))];
    }

    std::string word();
    std::string literal(bool first);
    std::string dottedName();
    Template::SegmentPtr variable();
    Template::TemplateString makeFrom();
    Template::TemplateString varied(Template::TemplateString const& other);
    Template::TemplateString makeTo();
    std::string instance(Template::TemplateString const& from);
    std::string spoilt(std::string text);

    std::mt19937_64 random;
    Shape shape = Shape::letters;
    std::vector<Entry> entries;
    std::string lastText;
};

}  // namespace FrameDriver::Conversion
