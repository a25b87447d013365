#pragma once

#include "conversion/CandidateCache.h"
#include "conversion/GroupNode.h"
#include "conversion/LiteralIndex.h"
#include "conversion/SearchedText.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace FrameDriver::Conversion {

/// The walk of the lookup tree (GroupNode::collect) without looking at every child: the same
/// candidates in the same order, in the time of what matches and not of what exists. The method
/// stands in the source.
///
/// Describes the tree as it was at construction; the tree's leaves must outlive this. Thread:
/// one at a time.
class LookupIndex {
  public:
    explicit LookupIndex(GroupNode const& root);

    /// Appends the candidates for the text.
    void collect(SearchedText const& text, CandidateCache::List& candidates);

  private:
    struct Group;

    // A child of a group.
    struct Branch {
        ConversionPlan const* plan;  // of the first leaf below
        Group const* group;          // null: that leaf is the only one
        std::uint32_t ordinal;       // its place among the children
        std::uint32_t next;  // the first piece of the plan that this child doesn't stand for
        bool sought;         // whether it is a literal, the piece ahead of `next`
        std::string_view literal() const { return plan->literal(next - 1); }
    };
    using Branches = std::vector<Branch>;

    // The branches of a group, both lists in the order of the children.
    struct Group {
        Branches listed;                    // asked one by one
        Branches indexed;                   // literals, found through the index
        std::optional<LiteralIndex> index;  // of `indexed`
    };

    Group const& addGroup(GroupNode const& node);
    std::optional<Branch> branchOf(AbstractNode const& node);
    static void indexLiterals(Group& group);

    void walk(Group const& group, SearchedText const& text, std::size_t position,
              CandidateCache::List& candidates);
    void ask(Branch const& branch, SearchedText const& text, std::size_t position,
             CandidateCache::List& candidates);
    void follow(Branch const& branch, SearchedText const& text, std::size_t position,
                CandidateCache::List& candidates);

    std::deque<Group> groups;             // the root first; addresses stay
    std::vector<LiteralIndex::Hit> hits;  // scratch of the walk, used as a stack
};

}  // namespace FrameDriver::Conversion
