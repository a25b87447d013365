#include "xml/ByteFileSource.h"

#include "xml/XMLText.h"

#include <xercesc/util/BinFileInputStream.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLURL.hpp>

#include <filesystem>
#include <memory>
#include <system_error>

namespace FrameDriver::XML {
namespace {

using xercesc::XMLPlatformUtils;

std::u16string workingDirectory() {
    std::error_code ignored;
    return widen(std::filesystem::current_path(ignored).native());
}

/// The directory of `baseId` with `path` behind it.
std::u16string besides(char16_t const* baseId, std::u16string const& path) {
    XMLCh* woven = XMLPlatformUtils::weavePaths(baseId, path.c_str());
    std::u16string result = woven;
    XMLPlatformUtils::fgMemoryManager->deallocate(woven);
    return result;
}

std::u16string withoutDots(std::u16string path) {
    XMLPlatformUtils::removeDotSlash(path.data());
    return path.c_str();
}

std::u16string absolute(std::u16string const& path, char16_t const* baseId) {
    if (!XMLPlatformUtils::isRelative(path.c_str()))
        return withoutDots(path);
    if (baseId && *baseId)
        return besides(baseId, path);
    std::u16string full = withoutDots(workingDirectory() + u'/' + path);
    XMLPlatformUtils::removeDotDotSlash(full.data());
    return full.c_str();
}

}  // namespace

ByteFileSource::ByteFileSource(std::u16string const& path, char16_t const* baseId) {
    setSystemId(absolute(path, baseId).c_str());
}

// A directory can be opened and not read. The library would say the same, but lose memory over
// a failure in the first block.
xercesc::BinInputStream* ByteFileSource::makeStream() const {
    std::string const path = toBytes(getSystemId());
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        ThrowXML(xercesc::XMLPlatformUtilsException,
                 xercesc::XMLExcepts::File_CouldNotReadFromFile);
    auto stream = std::make_unique<xercesc::BinFileInputStream>(path.c_str());
    return stream->getIsOpen() ? stream.release() : nullptr;
}

xercesc::InputSource* ByteFileResolver::resolveEntity(xercesc::XMLResourceIdentifier* identifier) {
    char16_t const* const systemId = identifier->getSystemId();
    if (!systemId || !*systemId || isURL(systemId, identifier->getBaseURI()))
        return nullptr;
    return new ByteFileSource(systemId, identifier->getBaseURI());
}

bool isURL(std::u16string const& path, char16_t const* baseId) {
    xercesc::XMLURL url;
    if (!baseId || !*baseId)
        return xercesc::XMLURL::parse(path.c_str(), url) && !url.isRelative();
    return url.setURL(baseId, path.c_str(), url) && !url.isRelative();
}

}  // namespace FrameDriver::XML
