#pragma once

#include "conversion/SearchedText.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace FrameDriver::Conversion {

/// Answers which of many literals occur in a text, and where first, in the time of what occurs
/// and not of what exists. The method stands in the source.
///
/// Immutable. Thread: any, several at once.
class LiteralIndex {
  public:
    /// A literal has at least so many bytes.
    static constexpr std::size_t smallestLiteral = 2;
    /// The separator that makes every byte a token.
    static constexpr int oneByte = -1;

    struct Hit {
        std::uint32_t literal;  ///< its place among those given to the constructor
        std::size_t offset;     ///< where it stands

        bool operator<(Hit const& other) const {
            return literal != other.literal ? literal < other.literal : offset < other.offset;
        }
    };

    /// The literals are pairwise different, and their bytes outlive this.
    explicit LiteralIndex(std::vector<std::string_view> allLiterals);

    /// Appends a hit for each place at or behind `position` at which a literal stands, in no
    /// order.
    void find(SearchedText const& text, std::size_t position, std::vector<Hit>& hits) const;

  private:
    friend class LiteralIndexBuilder;

    static constexpr std::uint32_t none = UINT32_MAX;

    struct Node {
        char const* sample = nullptr;  // the bytes of any literal below
        std::uint32_t begin = 0;       // its bytes [begin, end) are common to all below; those
        std::uint32_t end = 0;         // ahead of `begin` were compared on the way here
        std::uint32_t ending = none;   // the literal that ends at `end`
        std::uint32_t rest = none;     // the node of those without the separator
        std::uint32_t firstSlot = 0;
        std::uint32_t slotMask = 0;
        int separator = oneByte;  // the byte that closes the token behind `end`
        bool branches = false;    // whether there are tokens, and slots for them
    };
    // A bucket of tokens with one hash.
    struct Slot {
        std::uint32_t tag = 0;
        std::uint32_t target = none;  // a literal, or the number of literals plus that of a node
    };

    void findByStart(SearchedText const& text, std::size_t position, std::vector<Hit>& hits) const;
    void findByPair(SearchedText const& text, std::size_t position, std::vector<Hit>& hits) const;
    void visit(std::uint32_t number, std::string_view text, std::size_t offset,
               std::vector<Hit>& hits) const;
    void visitToken(Node const& node, std::string_view text, std::size_t offset,
                    std::vector<Hit>& hits) const;

    std::vector<std::string_view> literals;
    std::vector<Node> nodes;
    std::vector<Slot> slots;
    std::vector<std::uint32_t> roots;  // nodes
    bool manyStarts = false;           // one root then, and the marks of the first byte pairs
    std::bitset<4096> pairs;
};

}  // namespace FrameDriver::Conversion
