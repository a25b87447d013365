#include "conversion/LiteralIndexBuilder.h"

#include <algorithm>
#include <bit>
#include <bitset>
#include <functional>
#include <numeric>
#include <unordered_map>
#include <utility>

namespace FrameDriver::Conversion {

namespace {

// Seeking a start costs some nanoseconds, going through a text byte by byte about a hundred.
constexpr std::size_t manyFamilies = 8;

// Enough to tell a good separator from a bad one.
constexpr std::size_t sampleSize = 256;

// In the order of their first member.
template <typename KeyOf>
std::vector<std::vector<std::uint32_t>> split(std::vector<std::uint32_t> const& members,
                                              KeyOf keyOf) {
    std::vector<std::vector<std::uint32_t>> parts;
    std::unordered_map<std::string_view, std::size_t> places;
    for (auto const member : members) {
        auto const [place, isNew] = places.try_emplace(keyOf(member), parts.size());
        if (isNew)
            parts.emplace_back();
        parts[place->second].push_back(member);
    }
    return parts;
}

}  // namespace

std::size_t pairMark(char const* bytes) {
    auto const first = static_cast<unsigned char>(bytes[0]);
    auto const second = static_cast<unsigned char>(bytes[1]);
    return (first * 61U + second) % 4096U;
}

std::string_view tokenOf(std::string_view bytes, std::size_t begin, int separator) {
    if (begin >= bytes.size())
        return {};
    if (separator == LiteralIndex::oneByte)
        return bytes.substr(begin, 1);
    auto const end = bytes.find(static_cast<char>(separator), begin);
    return end == std::string_view::npos ? std::string_view()
                                         : bytes.substr(begin, end + 1 - begin);
}

TokenHash::TokenHash(std::string_view token) {
    auto const hash = static_cast<std::uint64_t>(std::hash<std::string_view>()(token));
    place = static_cast<std::uint32_t>(hash);
    tag = static_cast<std::uint32_t>((hash * 0x9e3779b97f4a7c15U) >> 32);
}

SeparatorChoice::SeparatorChoice() = default;

void SeparatorChoice::clear() {
    for (auto& tally : tallies) {
        tally.hashes.clear();
        tally.bytes = 0;
    }
    singleBytes.hashes.clear();
    samples = 0;
}

void SeparatorChoice::sample(std::string_view rest) {
    ++samples;
    singleBytes.hashes.push_back(static_cast<unsigned char>(rest.front()));
    std::bitset<256> seen;
    std::uint64_t hash = 0xcbf29ce484222325U;  // FNV-1a, one step per byte
    for (std::size_t i = 0; i < rest.size(); ++i) {
        auto const byte = static_cast<unsigned char>(rest[i]);
        hash = (hash ^ byte) * 0x100000001b3U;
        if (seen[byte])
            continue;
        seen.set(byte);
        tallies[byte].hashes.push_back(static_cast<std::size_t>(hash));
        tallies[byte].bytes += i + 1;
    }
}

SeparatorChoice::Cost SeparatorChoice::costOf(Tally& tally) const {
    auto& hashes = tally.hashes;
    auto const without = samples - hashes.size();
    Cost cost{without * without, tally.bytes};
    std::sort(hashes.begin(), hashes.end());
    for (auto first = hashes.begin(); first != hashes.end();) {
        auto const last = std::upper_bound(first, hashes.end(), *first);
        auto const size = static_cast<std::size_t>(last - first);
        cost.crowd += size * size;
        first = last;
    }
    return cost;
}

int SeparatorChoice::best() {
    auto choice = LiteralIndex::oneByte;
    singleBytes.bytes = samples;
    auto lowest = costOf(singleBytes);
    for (std::size_t separator = 0; separator < tallies.size(); ++separator) {
        if (tallies[separator].hashes.empty())
            continue;
        auto const cost = costOf(tallies[separator]);
        if (cost < lowest) {
            lowest = cost;
            choice = static_cast<int>(separator);
        }
    }
    return choice;
}

void LiteralIndexBuilder::build() {
    auto const parts = families();
    if (parts.size() <= manyFamilies) {
        for (auto const& family : parts)
            index.roots.push_back(addNode(family, 0));
        return;
    }
    index.manyStarts = true;
    Members all;
    for (auto const& family : parts) {
        all.insert(all.end(), family.begin(), family.end());
        index.pairs.set(pairMark(literal(family.front()).data()));
    }
    index.roots.push_back(addNode(all, 0));
}

std::vector<LiteralIndexBuilder::Members> LiteralIndexBuilder::families() const {
    Members all(index.literals.size());
    std::iota(all.begin(), all.end(), 0U);
    return split(all, [&](std::uint32_t member) {
        return literal(member).substr(0, LiteralIndex::smallestLiteral);
    });
}

// `members` have their first `begin` bytes in common.
std::uint32_t LiteralIndexBuilder::addNode(Members members, std::size_t begin) {
    auto const number = static_cast<std::uint32_t>(index.nodes.size());
    index.nodes.emplace_back();
    Node node;
    node.sample = literal(members.front()).data();
    node.begin = static_cast<std::uint32_t>(begin);
    auto const end = commonEnd(members, begin);
    node.end = static_cast<std::uint32_t>(end);
    auto const ending = std::find_if(members.begin(), members.end(),
                                     [&](auto member) { return literal(member).size() == end; });
    if (ending != members.end()) {
        node.ending = *ending;
        members.erase(ending);
    }
    if (!members.empty())
        addBranches(node, members);
    index.nodes[number] = node;
    return number;
}

std::size_t LiteralIndexBuilder::commonEnd(Members const& members, std::size_t begin) const {
    auto const sample = literal(members.front());
    auto end = sample.size();
    for (auto const member : members) {
        auto const other = literal(member);
        end = std::min(end, other.size());
        auto const differ =
            std::mismatch(sample.begin() + begin, sample.begin() + end, other.begin() + begin);
        end = static_cast<std::size_t>(differ.first - sample.begin());
    }
    return end;
}

void LiteralIndexBuilder::addBranches(Node& node, Members const& members) {
    node.branches = true;
    node.separator = chooseSeparator(members, node.end);
    auto const parts = split(members, [&](std::uint32_t member) {
        return tokenOf(literal(member), node.end, node.separator);
    });
    auto const size = std::bit_ceil(2 * parts.size());
    node.firstSlot = static_cast<std::uint32_t>(index.slots.size());
    node.slotMask = static_cast<std::uint32_t>(size - 1);
    index.slots.resize(index.slots.size() + size);
    for (auto const& part : parts) {
        auto const token = tokenOf(literal(part.front()), node.end, node.separator);
        if (token.empty())
            node.rest = addNode(part, node.end);
        else
            fillSlot(node, token, targetOf(part, node.end));
    }
}

std::uint32_t LiteralIndexBuilder::targetOf(Members const& part, std::size_t begin) {
    if (part.size() == 1)
        return part.front();
    return static_cast<std::uint32_t>(index.literals.size()) + addNode(part, begin);
}

void LiteralIndexBuilder::fillSlot(Node const& node, std::string_view token, std::uint32_t target) {
    TokenHash const hash(token);
    auto place = hash.place & node.slotMask;
    while (index.slots[node.firstSlot + place].target != LiteralIndex::none)
        place = (place + 1) & node.slotMask;
    index.slots[node.firstSlot + place] = {hash.tag, target};
}

int LiteralIndexBuilder::chooseSeparator(Members const& members, std::size_t begin) {
    auto const stride = (members.size() + sampleSize - 1) / sampleSize;
    separators.clear();
    for (std::size_t i = 0; i < members.size(); i += stride)
        separators.sample(literal(members[i]).substr(begin));
    return separators.best();
}

}  // namespace FrameDriver::Conversion
