#pragma once

#include "xml/XMLUtilities.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <stdlib.h>
#include <string>

namespace FrameDriver::XML {

/// The XML library, started and stopped.
class XMLScope {
  public:
    XMLScope() { startXMLUtilities(); }
    ~XMLScope() { stopXMLUtilities(); }
    XMLScope(XMLScope const&) = delete;
    XMLScope& operator=(XMLScope const&) = delete;
};

/// A directory of the test's own, gone with it.
class ScratchDirectory {
  public:
    ScratchDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "qfd-xml-XXXXXX").native();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no scratch directory");
        root = name;
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }
    ScratchDirectory(ScratchDirectory const&) = delete;
    ScratchDirectory& operator=(ScratchDirectory const&) = delete;

    std::string path(std::string const& name) const { return root + '/' + name; }
    /// Writes the file and returns its path.
    std::string write(std::string const& name, std::string const& bytes) const {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

    std::string root;
};

inline std::string readFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The text of the exception of type `E` that `action` throws; a text that says so if it throws
/// none.
template <typename E, typename Action>
std::string thrownText(Action&& action) {
    try {
        action();
    } catch (E const& exception) {
        return exception.what();
    }
    return "nothing was thrown";
}

}  // namespace FrameDriver::XML
