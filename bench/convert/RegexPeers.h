#pragma once

#include "bench/convert/Dictionary.h"

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace re2 {
class RE2;
}
struct hs_database;
struct hs_scratch;

/// General engines for many expressions. Both only tell *which* expressions match; the captures
/// are a second step with RE2, for each that does.
///
/// An entry becomes "^literal(.*?)literal$", any byte allowed in a gap, as in a dictionary. The
/// anchor at the start is a present: the driver's templates have none, and so it may not use one.
namespace bench {

/// Captures and results of one entry.
class Extraction {
  public:
    explicit Extraction(Entry const& entry);
    Extraction(Extraction&&) noexcept;
    ~Extraction();

    /// Appends the result, if the whole text matches.
    void apply(std::string_view text, std::list<std::string>& results) const;

  private:
    std::unique_ptr<re2::RE2> expression;
    Literals to;
};

class RegexSet {
  public:
    static constexpr std::string_view name = "RE2::Set, RE2 captures";

    RegexSet();
    ~RegexSet();
    void add(Entry const& entry);
    /// Empty, or why the expressions can't be compiled.
    std::string compile();
    /// After `compile`: what the captures need.
    void prepare();
    std::size_t convert(std::string_view text) { return results(text).size(); }

    std::list<std::string> results(std::string_view text);
    /// Texts that the set gave up on.
    std::size_t refusals() const { return refused; }

  private:
    struct Set;
    std::unique_ptr<Set> set;
    std::vector<Entry> entries;
    std::vector<Extraction> extractions;
    std::vector<int> matches;
    std::size_t refused = 0;
};

class Hyperscan {
  public:
    static constexpr std::string_view name = "Hyperscan, RE2 captures";

    Hyperscan() = default;
    ~Hyperscan();
    Hyperscan(Hyperscan const&) = delete;
    Hyperscan& operator=(Hyperscan const&) = delete;
    void add(Entry const& entry);
    /// Empty, or why the expressions can't be compiled.
    std::string compile();
    /// After `compile`: what the captures need.
    void prepare();
    std::size_t convert(std::string_view text) { return results(text).size(); }

    std::list<std::string> results(std::string_view text);
    /// Texts that the engine gave up on.
    std::size_t refusals() const { return refused; }

  private:
    hs_database* database = nullptr;
    hs_scratch* scratch = nullptr;
    std::vector<Entry> entries;
    std::vector<Extraction> extractions;
    std::vector<unsigned> matches;
    std::size_t refused = 0;
};

}  // namespace bench
