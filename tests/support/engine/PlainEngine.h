#pragma once

#include "template/ContextStore.h"
#include "template/TemplateString.h"

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace FrameDriver::Conversion {

/// The lookup of conversions done plainly: every child of every group is asked, every template
/// is matched by its own operations, lists are copied. Slow, and obviously right; the driver's
/// own must give the same answers in the same order. Thread: one.
class PlainEngine {
  public:
    using TemplateString = Template::TemplateString;

    PlainEngine() = default;
    PlainEngine(PlainEngine const&) = delete;
    PlainEngine& operator=(PlainEngine const&) = delete;

    void add(TemplateString const& from, std::vector<TemplateString> const& to);

    /// What TemplateConversionCollection::convert answers, exceptions included.
    std::vector<std::string> convert(std::string const& text, Template::ContextStore* context);

    /// The sizes of the kept lists, the newest first.
    std::vector<std::size_t> recentSizes() const;

  private:
    struct Entry {
        TemplateString from;
        std::vector<TemplateString> to;
    };
    using Candidates = std::vector<Entry const*>;
    struct Node {
        Template::Segment const* key = nullptr;       // null: the root, or a leaf
        Entry const* entry = nullptr;                 // of a leaf
        std::vector<std::unique_ptr<Node>> children;  // in order of first insertion
        std::map<std::string, Node*> groups;          // the same by printed key
        bool hasLeaf = false;
    };

    static void collect(Node const& node, std::string const& text, std::size_t position,
                        Candidates& candidates);

    std::deque<Entry> entries;
    Node root;
    std::deque<Candidates> recent;
};

}  // namespace FrameDriver::Conversion
