#include "conversion/LookupIndex.h"

#include <algorithm>

// The method.
//
// Which entries are candidates, and in what order, is defined by the depth-first walk of the
// tree: the children of a group in order of first insertion, each literal at its earliest place
// at or behind that of its predecessor. The index keeps the walk and saves the looking around.
//
// A group with many literal children asks a LiteralIndex which of them stand in the text. The
// answers, sorted by the children's order, are merged with the few children that are asked one
// by one (variables, the leaf, and the literals of a small group), so that the order is kept.
//
// Most branches hold a single entry. Such a branch isn't walked through its nodes: the entry's
// own plan knows the literals that are still to come, all in one block of memory. This is the
// same, since the only entry of a branch is the one that made its nodes. Where several entries
// share a group, the group's key is that of the first comer, and so that of the first leaf below:
// a literal "{@x}" and a variable that prints so share a branch, and the first one's kind decides
// how it is found.

namespace FrameDriver::Conversion {

namespace {

// Asking so many literals one by one takes no longer than asking an index.
constexpr std::size_t fewLiterals = 6;

// Null if the subtree is empty.
LeafNode const* firstLeaf(AbstractNode const& node) {
    auto const* current = &node;
    while (current->getType() == AbstractNode::groupType) {
        auto const& children = static_cast<GroupNode const*>(current)->getChildren();
        if (children.empty())
            return nullptr;
        current = children.front().get();
    }
    return static_cast<LeafNode const*>(current);
}

bool holdsOneLeaf(AbstractNode const& node) {
    auto const* current = &node;
    while (current->getType() == AbstractNode::groupType) {
        auto const& children = static_cast<GroupNode const*>(current)->getChildren();
        if (children.size() != 1)
            return false;
        current = children.front().get();
    }
    return true;
}

}  // namespace

LookupIndex::LookupIndex(GroupNode const& root) { addGroup(root); }

LookupIndex::Group const& LookupIndex::addGroup(GroupNode const& node) {
    auto& group = groups.emplace_back();
    std::uint32_t ordinal = 0;
    for (auto const& child : node.getChildren()) {
        if (auto branch = branchOf(*child)) {
            branch->ordinal = ordinal++;
            group.listed.push_back(*branch);
        }
    }
    indexLiterals(group);
    return group;
}

std::optional<LookupIndex::Branch> LookupIndex::branchOf(AbstractNode const& node) {
    auto const* const leaf = firstLeaf(node);
    if (!leaf)
        return std::nullopt;
    auto const& plan = leaf->getConversion()->getPlan();
    auto const level = static_cast<std::uint32_t>(node.getLevel());
    if (node.getType() == AbstractNode::leafType)
        return Branch{&plan, nullptr, 0, level - 1, false};
    auto const* const below =
        holdsOneLeaf(node) ? nullptr : &addGroup(static_cast<GroupNode const&>(node));
    return Branch{&plan, below, 0, level, plan.isLiteral(level - 1)};
}

void LookupIndex::indexLiterals(Group& group) {
    auto const indexable = [](Branch const& branch) {
        return branch.sought && branch.literal().size() >= LiteralIndex::smallestLiteral;
    };
    auto& listed = group.listed;
    auto const count = std::count_if(listed.begin(), listed.end(), indexable);
    if (static_cast<std::size_t>(count) > fewLiterals) {
        std::copy_if(listed.begin(), listed.end(), std::back_inserter(group.indexed), indexable);
        std::erase_if(listed, indexable);
        std::vector<std::string_view> literals;
        for (auto const& branch : group.indexed)
            literals.push_back(branch.literal());
        group.index.emplace(std::move(literals));
    }
    listed.shrink_to_fit();
    group.indexed.shrink_to_fit();
}

void LookupIndex::collect(SearchedText const& text, CandidateCache::List& candidates) {
    hits.clear();
    walk(groups.front(), text, 0, candidates);
}

void LookupIndex::walk(Group const& group, SearchedText const& text, std::size_t position,
                       CandidateCache::List& candidates) {
    auto listed = group.listed.begin();
    if (group.index) {
        auto const base = hits.size();
        group.index->find(text, position, hits);
        auto const end = hits.size();
        std::sort(hits.begin() + static_cast<std::ptrdiff_t>(base), hits.end());
        for (auto i = base; i < end; ++i) {
            auto const hit = hits[i];  // a copy: the walk below uses the same stack
            if (i > base && hits[i - 1].literal == hit.literal)
                continue;  // only the earliest place counts
            auto const& branch = group.indexed[hit.literal];
            for (; listed != group.listed.end() && listed->ordinal < branch.ordinal; ++listed)
                ask(*listed, text, position, candidates);
            follow(branch, text, hit.offset, candidates);
        }
        hits.resize(base);
    }
    for (; listed != group.listed.end(); ++listed)
        ask(*listed, text, position, candidates);
}

void LookupIndex::ask(Branch const& branch, SearchedText const& text, std::size_t position,
                      CandidateCache::List& candidates) {
    auto const found = branch.sought ? text.find(branch.literal(), position) : position;
    if (found != std::string_view::npos)
        follow(branch, text, found, candidates);
}

void LookupIndex::follow(Branch const& branch, SearchedText const& text, std::size_t position,
                         CandidateCache::List& candidates) {
    if (branch.group)
        walk(*branch.group, text, position, candidates);
    else if (branch.plan->continues(branch.next, text, position))
        candidates.push_back(branch.plan);
}

}  // namespace FrameDriver::Conversion
