#pragma once

#include <xercesc/dom/DOMElement.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Finding one's way in a document. Elements are known by their tag names as written, prefix
/// included, and found at any depth in document order. Nothing here changes the document or
/// takes memory from it. Thread: the document's.
namespace FrameDriver::XML {

/// Goes through all that is below a node, in document order. The document must not change
/// meanwhile.
class WalkBelow {
  public:
    /// At the first node below `root`. Null has nothing below it.
    explicit WalkBelow(xercesc::DOMNode const* root)
        : current(root ? root->getFirstChild() : nullptr) {}

    /// Null at the end.
    xercesc::DOMNode* node() const { return current; }
    /// To the next one; only while there is a `node`.
    void advance();

  private:
    xercesc::DOMNode* parentOfCurrent() const;

    // The library finds a parent through a cast that takes longer than all else here. So the way
    // back is remembered, as far as dictionaries go; below that the library is asked.
    static constexpr std::size_t remembered = 8;
    xercesc::DOMNode* parents[remembered];
    std::size_t depth = 0;  // levels between the root and the current node
    xercesc::DOMNode* current;
};

/// Calls `visit` with each element below `root` and the element's tag name, in one pass.
template <typename Visit>
void forEachElement(xercesc::DOMNode const* root, Visit&& visit) {
    for (WalkBelow walk(root); walk.node(); walk.advance())
        if (walk.node()->getNodeType() == xercesc::DOMNode::ELEMENT_NODE) {
            auto* const element = static_cast<xercesc::DOMElement*>(walk.node());
            visit(*element, std::u16string_view(element->getTagName()));
        }
}

/// The same, for the elements of one tag name.
template <typename Visit>
void forEachElement(xercesc::DOMNode const* root, std::u16string_view tagName, Visit&& visit) {
    forEachElement(root, [&](xercesc::DOMElement& element, std::u16string_view name) {
        if (name == tagName)
            visit(element);
    });
}

/// The first of them, or null.
xercesc::DOMElement* firstElement(xercesc::DOMNode const* root, std::u16string_view tagName);

/// The one of them, or null if there is none or more than one.
xercesc::DOMElement* onlyElement(xercesc::DOMNode const* root, std::u16string_view tagName);

/// All text below the node, comments and processing instructions left out, one byte a
/// character. Null gives the empty text.
std::string textOf(xercesc::DOMNode const* node);
void appendText(std::string& text, xercesc::DOMNode const* node);

/// The attribute of that name as written, prefix included; the empty text if it is absent.
std::string attributeOf(xercesc::DOMElement const& element, char16_t const* name);
void appendAttribute(std::string& text, xercesc::DOMElement const& element, char16_t const* name);

/// The document element, or null.
xercesc::DOMElement* documentElement(xercesc::DOMDocument const* document);

}  // namespace FrameDriver::XML
