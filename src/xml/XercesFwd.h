#pragma once

#include <xercesc/util/XercesDefs.hpp>

/// The names that the layer's headers need of Xerces-C, so that their users don't pull in the
/// whole DOM.
XERCES_CPP_NAMESPACE_BEGIN
class DOMDocument;
class DOMElement;
class DOMLSSerializer;
class DOMNode;
XERCES_CPP_NAMESPACE_END
