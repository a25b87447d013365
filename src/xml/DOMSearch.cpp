#include "xml/DOMSearch.h"

#include "xml/XMLText.h"

#include <xercesc/dom/DOMDocument.hpp>

namespace FrameDriver::XML {

using xercesc::DOMElement;
using xercesc::DOMNode;

DOMNode* nextBelow(DOMNode const* root, DOMNode* node) {
    if (DOMNode* const child = node->getFirstChild())
        return child;
    while (node && node != root) {
        if (DOMNode* const sibling = node->getNextSibling())
            return sibling;
        node = node->getParentNode();
    }
    return nullptr;
}

DOMElement* firstElement(DOMNode const* root, std::u16string_view tagName) {
    for (auto* node = root ? root->getFirstChild() : nullptr; node; node = nextBelow(root, node))
        if (node->getNodeType() == DOMNode::ELEMENT_NODE && node->getNodeName() == tagName)
            return static_cast<DOMElement*>(node);
    return nullptr;
}

DOMElement* onlyElement(DOMNode const* root, std::u16string_view tagName) {
    DOMElement* found = nullptr;
    std::size_t count = 0;
    forEachElement(root, tagName, [&](DOMElement& element) {
        found = &element;
        ++count;
    });
    return count == 1 ? found : nullptr;
}

void appendText(std::string& text, DOMNode const* node) {
    for (auto* part = node ? node->getFirstChild() : nullptr; part; part = nextBelow(node, part))
        if (part->getNodeType() == DOMNode::TEXT_NODE ||
            part->getNodeType() == DOMNode::CDATA_SECTION_NODE)
            appendBytes(text, part->getNodeValue());
}

std::string textOf(DOMNode const* node) {
    std::string text;
    appendText(text, node);
    return text;
}

void appendAttribute(std::string& text, DOMElement const& element, char16_t const* name) {
    appendBytes(text, element.getAttribute(name));
}

std::string attributeOf(DOMElement const& element, char16_t const* name) {
    return toBytes(element.getAttribute(name));
}

DOMElement* documentElement(xercesc::DOMDocument const* document) {
    return document ? document->getDocumentElement() : nullptr;
}

}  // namespace FrameDriver::XML
