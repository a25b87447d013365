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

/// The node behind `node` in document order, below `root`, or null.
xercesc::DOMNode* nextBelow(xercesc::DOMNode const* root, xercesc::DOMNode* node);

/// Calls `visit` with each element below `root` and the element's tag name, in one pass.
template <typename Visit>
void forEachElement(xercesc::DOMNode const* root, Visit&& visit) {
    for (auto* node = root ? root->getFirstChild() : nullptr; node; node = nextBelow(root, node))
        if (node->getNodeType() == xercesc::DOMNode::ELEMENT_NODE) {
            auto* const element = static_cast<xercesc::DOMElement*>(node);
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
