#include "conversion/GroupNode.h"
#include "template/TemplateParser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace FrameDriver::Conversion {
namespace {

using Template::TemplateParser;
using Texts = std::vector<std::string>;

/// The tree on lines of its own: level, key or leaf, indented by the level.
void print(AbstractNode const& node, std::string& out) {
    out.append(static_cast<std::size_t>(node.getLevel()), ' ');
    out.append(std::to_string(node.getLevel())).append(" ");
    if (node.getType() == AbstractNode::leafType) {
        auto const& leaf = static_cast<LeafNode const&>(node);
        out.append("leaf ").append(leaf.getConversion()->getFrom().toString()).append("\n");
        return;
    }
    auto const& group = static_cast<GroupNode const&>(node);
    out.append(group.getKey() ? group.getKey()->toString() : "root").append("\n");
    for (auto const& child : group.getChildren())
        print(*child, out);
}

class Tree : public ::testing::Test {
  protected:
    void add(std::string const& from) {
        root.add({TemplateParser::parse(from), {TemplateParser::parse(from)}});
    }
    std::string printed() const {
        std::string out;
        print(root, out);
        return out;
    }
    Texts collect(std::string const& text) const {
        GroupNode::Candidates candidates;
        root.collect(text, candidates, 0);
        Texts names;
        for (auto const* candidate : candidates)
            names.push_back(candidate->getFrom().toString());
        return names;
    }

    GroupNode root{nullptr, 0};
};

TEST_F(Tree, PathsSpellTheSegments) {
    add("A{@x}B");
    add("A{@y}");
    add("A{@x}");
    add("");
    EXPECT_EQ(printed(), "0 root\n"
                         " 1 A\n"
                         "  2 {@x}\n"
                         "   3 B\n"
                         "    4 leaf A{@x}B\n"
                         "   3 leaf A{@x}\n"
                         "  2 {@y}\n"
                         "   3 leaf A{@y}\n"
                         " 1 leaf \n");
}

TEST_F(Tree, ASecondEntryOfTheSameSegmentsIsDropped) {
    add("A{@x}");
    add("A{@x}");
    EXPECT_EQ(printed(), "0 root\n 1 A\n  2 {@x}\n   3 leaf A{@x}\n");
}

TEST_F(Tree, ManyChildrenKeepTheirOrderAndTheirKeys) {
    std::string expected = "0 root\n";
    for (int i = 0; i < 100; ++i) {
        auto const name = std::string("N").append(std::to_string(i));
        add(name);
        expected.append(" 1 ").append(name).append("\n  2 leaf ").append(name).append("\n");
    }
    for (int i = 99; i >= 0; --i)
        add(std::string("N").append(std::to_string(i)));
    EXPECT_EQ(printed(), expected);
}

TEST_F(Tree, DecoratorsThatPrintAlikeAreTheSameKey) {
    add("A{@x|currentClipLength}1");
    add("A{@x|isEmpty}2");
    EXPECT_EQ(root.getChildren().size(), 1U);
    auto const& group = static_cast<GroupNode const&>(*root.getChildren().front());
    EXPECT_EQ(group.getChildren().size(), 1U);
}

TEST_F(Tree, TheWalkSeeksALiteralWhereItsPredecessorWasFound) {
    add("AB{@x}B");  // passes with one "B"; the entry's own match decides
    add("B{@x}A");
    EXPECT_EQ(collect("AB"), Texts{"AB{@x}B"});
    EXPECT_EQ(collect("BA"), Texts{"B{@x}A"});
}

TEST_F(Tree, ClearHandsTheChildrenOut) {
    add("A{@x}");
    auto const children = root.clear();
    EXPECT_EQ(printed(), "0 root\n");
    ASSERT_EQ(children.size(), 1U);
    EXPECT_EQ(children.front()->getLevel(), 1);
    add("A{@x}");
    EXPECT_EQ(printed(), "0 root\n 1 A\n  2 {@x}\n   3 leaf A{@x}\n");
}

}  // namespace
}  // namespace FrameDriver::Conversion
