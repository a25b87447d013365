#include "conversion/LiteralIndex.h"

#include "conversion/LiteralIndexBuilder.h"

#include <cstring>

// The method.
//
// The literals of a dictionary begin alike ("FID: id=" and a name, say) and soon differ. Those
// with the same first two bytes are a family. What a family has in common at its start is sought
// in the text, normally found at the very front, and sought again behind each place, since a
// template isn't anchored. At each place the family's tree is asked which of its literals stand
// there.
//
// A node of the tree holds literals that are alike up to some byte. It compares the bytes that
// its parent didn't, reports the literal that ends there, and cuts a token from the text: up to
// and with a separator, a byte that was chosen when the tree was built so that as few literals
// as possible share a token. The hash of the token leads to the only literal that has it, which
// is compared in full, or to the node of the several that do. Literals that have no such
// separator are a node of their own, which is asked too. Where no byte separates well the token
// is a single byte; that splits any set.
//
// A hash only leads somewhere. What is there compares its bytes with the text, so that tokens
// with equal hashes do no harm: each is tried.
//
// If there are many families, seeking the start of each would cost too much. Then the text is
// gone through byte by byte, and the tree, a single one now, is asked wherever two bytes stand
// with which some literal begins.

namespace FrameDriver::Conversion {

namespace {

bool standsAt(char const* place, char const* bytes, std::size_t size) {
    return std::memcmp(place, bytes, size) == 0;
}

}  // namespace

LiteralIndex::LiteralIndex(std::vector<std::string_view> allLiterals)
    : literals(std::move(allLiterals)) {
    LiteralIndexBuilder(*this).build();
}

void LiteralIndex::find(SearchedText const& text, std::size_t position,
                        std::vector<Hit>& hits) const {
    if (manyStarts)
        findByPair(text, position, hits);
    else
        findByStart(text, position, hits);
}

void LiteralIndex::findByStart(SearchedText const& text, std::size_t position,
                               std::vector<Hit>& hits) const {
    for (auto const root : roots) {
        std::string_view const start(nodes[root].sample, nodes[root].end);
        auto offset = text.find(start, position);
        for (; offset != std::string_view::npos; offset = text.find(start, offset + 1))
            visit(root, text.view().substr(offset), offset, hits);
    }
}

void LiteralIndex::findByPair(SearchedText const& text, std::size_t position,
                              std::vector<Hit>& hits) const {
    for (auto offset = position; offset + 1 < text.size(); ++offset) {
        if (pairs[pairMark(text.data() + offset)])
            visit(roots.front(), text.view().substr(offset), offset, hits);
    }
}

// `rest` is the text from `offset` on.
void LiteralIndex::visit(std::uint32_t number, std::string_view rest, std::size_t offset,
                         std::vector<Hit>& hits) const {
    auto const& node = nodes[number];
    if (rest.size() < node.end ||
        !standsAt(rest.data() + node.begin, node.sample + node.begin, node.end - node.begin))
        return;
    if (node.ending != none)
        hits.push_back({node.ending, offset});
    if (node.rest != none)
        visit(node.rest, rest, offset, hits);
    if (node.branches)
        visitToken(node, rest, offset, hits);
}

void LiteralIndex::visitToken(Node const& node, std::string_view rest, std::size_t offset,
                              std::vector<Hit>& hits) const {
    auto const token = tokenOf(rest, node.end, node.separator);
    if (token.empty())
        return;
    TokenHash const hash(token);
    for (auto place = hash.place;; ++place) {
        auto const& slot = slots[node.firstSlot + (place & node.slotMask)];
        if (slot.target == none)
            return;
        if (slot.tag != hash.tag)
            continue;
        if (slot.target >= literals.size())
            visit(slot.target - static_cast<std::uint32_t>(literals.size()), rest, offset, hits);
        else if (auto const literal = literals[slot.target];
                 rest.size() >= literal.size() &&
                 standsAt(rest.data() + node.end, literal.data() + node.end,
                          literal.size() - node.end))
            hits.push_back({slot.target, offset});
    }
}

}  // namespace FrameDriver::Conversion
