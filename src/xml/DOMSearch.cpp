#include "xml/DOMSearch.h"

#include "xml/XMLText.h"

#include <xercesc/dom/DOMDocument.hpp>

namespace FrameDriver::XML {

using xercesc::DOMElement;
using xercesc::DOMNode;

void WalkBelow::advance() {
    if (DOMNode* const child = current->getFirstChild()) {
        if (depth < remembered)
            parents[depth] = current;
        ++depth;
        current = child;
        return;
    }
    for (;;) {
        if (DOMNode* const sibling = current->getNextSibling()) {
            current = sibling;
            return;
        }
        if (depth == 0)
            break;
        current = parentOfCurrent();
        --depth;
    }
    current = nullptr;
}

DOMNode* WalkBelow::parentOfCurrent() const {
    return depth <= remembered ? parents[depth - 1] : current->getParentNode();
}

DOMElement* firstElement(DOMNode const* root, std::u16string_view tagName) {
    for (WalkBelow walk(root); walk.node(); walk.advance())
        if (walk.node()->getNodeType() == DOMNode::ELEMENT_NODE &&
            walk.node()->getNodeName() == tagName)
            return static_cast<DOMElement*>(walk.node());
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
    for (WalkBelow walk(node); walk.node(); walk.advance()) {
        auto const type = walk.node()->getNodeType();
        if (type == DOMNode::TEXT_NODE || type == DOMNode::CDATA_SECTION_NODE)
            appendBytes(text, walk.node()->getNodeValue());
    }
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
