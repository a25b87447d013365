#include "tests/support/engine/PlainEngine.h"

namespace FrameDriver::Conversion {

void PlainEngine::add(TemplateString const& from, std::vector<TemplateString> const& to) {
    auto const& entry = entries.emplace_back(Entry{from, to});
    auto* node = &root;
    for (auto const* segment : entry.from.getSegments()) {
        auto*& group = node->groups[segment->toString()];
        if (!group) {
            group = node->children.emplace_back(std::make_unique<Node>()).get();
            group->key = segment;
        }
        node = group;
    }
    if (node->hasLeaf)
        return;
    node->hasLeaf = true;
    node->children.emplace_back(std::make_unique<Node>())->entry = &entry;
}

void PlainEngine::collect(Node const& node, std::string const& text, std::size_t position,
                          Candidates& candidates) {
    for (auto const& child : node.children) {
        if (child->entry) {
            candidates.push_back(child->entry);
            continue;
        }
        auto const found = child->key->find(text, position);
        if (found != Template::Segment::notFound)
            collect(*child, text, found, candidates);
    }
}

std::vector<std::string> PlainEngine::convert(std::string const& text,
                                              Template::ContextStore* context) {
    Candidates candidates;
    bool kept = false;
    for (auto const& list : recent) {
        if (!list.empty() && list.front()->from.matches(text)) {
            candidates = list;
            kept = true;
            break;
        }
    }
    if (!kept) {
        collect(root, text, 0, candidates);
        recent.push_front(candidates);
        if (recent.size() > 5)
            recent.pop_back();
    }
    std::vector<std::string> results;
    for (auto const* entry : candidates) {
        if (!entry->from.matches(text))
            continue;
        auto const variables = entry->from.extractVariables(text);
        for (auto const& result : entry->to)
            results.push_back(result.evaluate(variables, context));
    }
    return results;
}

std::vector<std::size_t> PlainEngine::recentSizes() const {
    std::vector<std::size_t> sizes;
    for (auto const& list : recent)
        sizes.push_back(list.size());
    return sizes;
}

}  // namespace FrameDriver::Conversion
