#include "xml/AbstractWriter.h"

#include "xml/XMLText.h"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/util/IOException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <cstdio>
#include <memory>

namespace FrameDriver::XML {
namespace {

using xercesc::IOException;
using xercesc::XMLExcepts;

// A single format is written, so the layer has no parameter for this.
constexpr char16_t const* formatNamespace = u"FrameDriver/Settings";

xercesc::DOMImplementationLS& implementation() {
    // The registry knows it by the name of its feature, and its two faces are one object.
    auto* const found = xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
    return *static_cast<xercesc::DOMImplementationLS*>(found);
}

struct Release {
    void operator()(xercesc::DOMLSOutput* output) const { output->release(); }
};

void serializeTo(xercesc::XMLFormatTarget& target, xercesc::DOMLSSerializer& serializer,
                 xercesc::DOMDocument& document) {
    std::unique_ptr<xercesc::DOMLSOutput, Release> const output(implementation().createLSOutput());
    output->setByteStream(&target);
    if (!serializer.write(&document, output.get()))
        ThrowXML(IOException, XMLExcepts::File_CouldNotWriteToFile);
}

// The library's own file target closes its file without a look at the result, so a full disk
// would pass for a success.
void writeBytes(std::string const& path, void const* bytes, std::size_t size) {
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (!file)
        ThrowXML1(IOException, XMLExcepts::File_CouldNotOpenFile, widen(path).c_str());
    bool const written = std::fwrite(bytes, 1, size, file) == size;
    if (std::fclose(file) != 0 || !written)
        ThrowXML(IOException, XMLExcepts::File_CouldNotWriteToFile);
}

}  // namespace

xercesc::DOMLSSerializer* createSerializer() {
    xercesc::DOMLSSerializer* const serializer = implementation().createLSSerializer();
    xercesc::DOMConfiguration* const configuration = serializer->getDomConfig();
    configuration->setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true);
    configuration->setParameter(xercesc::XMLUni::fgDOMWRTDiscardDefaultContent, true);
    return serializer;
}

xercesc::DOMDocument* createDocument(std::string const& rootElementName) {
    auto* const creator = xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
    return creator->createDocument(formatNamespace, widen(rootElementName).c_str(), nullptr);
}

void serialize(xercesc::DOMLSSerializer& serializer, xercesc::DOMDocument& document,
               std::string const& path) {
    xercesc::MemBufFormatTarget target;
    serializeTo(target, serializer, document);
    writeBytes(path, target.getRawBuffer(), target.getLen());
}

void release(xercesc::DOMDocument* document) {
    if (document)
        document->release();
}

void release(xercesc::DOMLSSerializer* serializer) {
    if (serializer)
        serializer->release();
}

}  // namespace FrameDriver::XML
