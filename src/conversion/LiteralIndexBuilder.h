#pragma once

#include "conversion/LiteralIndex.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// How a LiteralIndex is made, and what its making and its asking must do alike.
namespace FrameDriver::Conversion {

/// The place of a pair of bytes in the marks of the index. Several pairs share one.
std::size_t pairMark(char const* bytes);

/// The token that begins at `begin`: up to and with the separator, or one byte for the separator
/// LiteralIndex::oneByte. Empty if there is none.
std::string_view tokenOf(std::string_view bytes, std::size_t begin, int separator);

/// Where the slot of a token is sought first, and what tells it from its neighbours.
struct TokenHash {
    explicit TokenHash(std::string_view token);

    std::uint32_t place;
    std::uint32_t tag;
};

/// Chooses the byte whose tokens make the least crowded buckets, and of equals the one with the
/// shortest tokens.
class SeparatorChoice {
  public:
    SeparatorChoice();

    /// Starts anew.
    void clear();
    /// What stands in one of the literals behind the bytes that all have in common.
    void sample(std::string_view rest);
    int best();

  private:
    // The tokens that one separator would make of the samples.
    struct Tally {
        std::vector<std::size_t> hashes;
        std::size_t bytes = 0;
    };
    // The squares of the sizes of the buckets are what a look-up may have to go through.
    struct Cost {
        std::size_t crowd;
        std::size_t bytes;
        auto operator<=>(Cost const&) const = default;
    };
    Cost costOf(Tally& tally) const;

    std::array<Tally, 256> tallies;  // by separator
    Tally singleBytes;
    std::size_t samples = 0;
};

class LiteralIndexBuilder {
  public:
    explicit LiteralIndexBuilder(LiteralIndex& target) : index(target) {}

    /// Fills all but the literals, which are there.
    void build();

  private:
    using Members = std::vector<std::uint32_t>;  // literals
    using Node = LiteralIndex::Node;

    std::string_view literal(std::uint32_t member) const { return index.literals[member]; }
    std::vector<Members> families() const;
    std::uint32_t addNode(Members members, std::size_t begin);
    std::size_t commonEnd(Members const& members, std::size_t begin) const;
    void addBranches(Node& node, Members const& members);
    int chooseSeparator(Members const& members, std::size_t begin);
    std::uint32_t targetOf(Members const& part, std::size_t begin);
    void fillSlot(Node const& node, std::string_view token, std::uint32_t target);

    LiteralIndex& index;
    SeparatorChoice separators;
};

}  // namespace FrameDriver::Conversion
