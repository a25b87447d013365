#pragma once

#include "conversion/AbstractNode.h"
#include "conversion/LeafNode.h"
#include "conversion/TemplateConversion.h"
#include "foundation/SpinLock.h"
#include "template/Segment.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace FrameDriver::Conversion {

/// An inner node of the lookup tree. The path from the root to a leaf spells the segments of the
/// entry's `from` template: a group at level L + 1 stands for the segment at index L of every
/// template below it. Two segments are the same exactly if they print the same; the first comer
/// is the key.
///
/// A group has at most one leaf, for the template that ends here. An entry whose place is taken
/// is dropped without a word.
///
/// Thread: any; a group's lock is held while its subtree is changed or walked, so the locks are
/// taken from the root downwards.
class GroupNode : public AbstractNode {
  public:
    using Children = std::vector<std::unique_ptr<AbstractNode>>;
    using Candidates = std::vector<TemplateConversion const*>;

    /// The root has no key.
    GroupNode(std::unique_ptr<Template::Segment> keySegment, std::int32_t nodeLevel);
    ~GroupNode() override;

    /// Files the entry below this group; `from` must have at least as many segments as `level`.
    /// Takes the same time however many children there are.
    void add(TemplateConversion const& conversion);

    /// Appends the entries below this group that may match the text, depth first and the
    /// children in order of first insertion. A literal is sought from where its predecessor was
    /// found, not from that one's end: the walk may pass too many entries, and none too few of
    /// those that match with all their literals found.
    ///
    /// This walk defines which candidates a text has and in what order. LookupIndex gives the
    /// same answer without looking at every child.
    void collect(std::string_view text, Candidates& candidates, std::size_t position) const;

    /// Empties the group. The children are not destroyed but handed out.
    [[nodiscard]] Children clear();

    /// In order of first insertion, groups and the leaf in one list. Only while nothing is added.
    Children const& getChildren() const { return children; }
    /// Null on the root.
    Template::Segment const* getKey() const { return key.get(); }

  private:
    using Segments = std::span<Template::Segment const* const>;

    void add(TemplateConversion const& conversion, Segments segments);
    void addLeaf(TemplateConversion const& conversion);
    void addGroup(TemplateConversion const& conversion, Segments segments);
    GroupNode* findGroup(std::string_view printed) const;
    GroupNode* appendGroup(Template::Segment const& segment, std::string_view printed);

    Children children;
    std::unique_ptr<Template::Segment> key;
    mutable Tools::SpinRecursiveMutex lock;

    // Beside the ordered children: the leaf, and the groups by the hash of their printed key.
    LeafNode* leaf = nullptr;
    using Groups = std::unordered_multimap<std::size_t, GroupNode*>;
    std::unique_ptr<Groups> groups;  // null while there are only a few
};

}  // namespace FrameDriver::Conversion
