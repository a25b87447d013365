#include "conversion/GroupNode.h"

#include <functional>
#include <mutex>
#include <string>
#include <utility>

namespace FrameDriver::Conversion {

namespace {

// Most groups have one or two children and get by without a table of their keys.
constexpr std::size_t fewChildren = 8;

GroupNode* asGroup(AbstractNode* node) {
    return node && node->getType() == AbstractNode::groupType ? static_cast<GroupNode*>(node)
                                                              : nullptr;
}

std::size_t hashOf(std::string_view printed) { return std::hash<std::string_view>()(printed); }

}  // namespace

GroupNode::GroupNode(std::unique_ptr<Template::Segment> keySegment, std::int32_t nodeLevel)
    : AbstractNode(groupType, nodeLevel), key(std::move(keySegment)) {}

GroupNode::~GroupNode() {
    std::lock_guard const guard(lock);
    children.clear();
}

void GroupNode::add(TemplateConversion const& conversion) {
    auto const from = conversion.getPlan().from().getSegments();
    add(conversion, {from.data(), from.size()});
}

void GroupNode::add(TemplateConversion const& conversion, Segments segments) {
    std::lock_guard const guard(lock);
    if (segments.size() == static_cast<std::size_t>(getLevel()))
        addLeaf(conversion);
    else
        addGroup(conversion, segments);
}

void GroupNode::addLeaf(TemplateConversion const& conversion) {
    if (leaf)
        return;
    auto node = std::make_unique<LeafNode>(conversion, getLevel() + 1);
    auto* const added = node.get();
    children.push_back(std::move(node));
    leaf = added;
}

void GroupNode::addGroup(TemplateConversion const& conversion, Segments segments) {
    auto const& segment = *segments[static_cast<std::size_t>(getLevel())];
    auto const printed = segment.toString();
    auto* target = findGroup(printed);
    if (!target)
        target = appendGroup(segment, printed);
    target->add(conversion, segments);
}

GroupNode* GroupNode::findGroup(std::string_view printed) const {
    if (groups) {
        auto const [first, last] = groups->equal_range(hashOf(printed));
        for (auto entry = first; entry != last; ++entry) {
            if (entry->second->key->toString() == printed)
                return entry->second;
        }
        return nullptr;
    }
    for (auto const& child : children) {
        auto* const group = asGroup(child.get());
        if (group && group->key && group->key->toString() == printed)
            return group;
    }
    return nullptr;
}

GroupNode* GroupNode::appendGroup(Template::Segment const& segment, std::string_view printed) {
    std::unique_ptr<Template::Segment> copy(segment.clone());
    auto node = std::make_unique<GroupNode>(std::move(copy), getLevel() + 1);
    auto* const added = node.get();
    if (!groups && children.size() >= fewChildren) {
        groups = std::make_unique<Groups>();
        for (auto const& child : children) {
            if (auto* const group = asGroup(child.get()))
                groups->emplace(hashOf(group->key->toString()), group);
        }
    }
    children.push_back(std::move(node));
    if (groups)
        groups->emplace(hashOf(printed), added);
    return added;
}

void GroupNode::collect(std::string_view text, Candidates& candidates, std::size_t position) const {
    std::lock_guard const guard(lock);
    for (auto const& child : children) {
        auto const* const group = asGroup(child.get());
        if (!group) {
            candidates.push_back(static_cast<LeafNode const&>(*child).getConversion());
            continue;
        }
        auto const found = group->key->find(text, position);
        if (found != Template::Segment::notFound)
            group->collect(text, candidates, found);
    }
}

GroupNode::Children GroupNode::clear() {
    std::lock_guard const guard(lock);
    leaf = nullptr;
    groups.reset();
    return std::exchange(children, {});
}

}  // namespace FrameDriver::Conversion
