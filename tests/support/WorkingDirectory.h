#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <stdlib.h>
#include <string>

namespace FrameDriver::Testing {

/// An empty directory that is the process's working directory for as long as it lives.
class WorkingDirectory {
  public:
    WorkingDirectory() : before(std::filesystem::current_path()) {
        auto name = (std::filesystem::temp_directory_path() / "qfd-test-XXXXXX").native();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no directory for the test");
        root = name;
        std::filesystem::current_path(root);
    }
    ~WorkingDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(before, ignored);
        std::filesystem::remove_all(root, ignored);
    }
    WorkingDirectory(WorkingDirectory const&) = delete;
    WorkingDirectory& operator=(WorkingDirectory const&) = delete;

    std::string path() const { return root.native(); }

    void write(std::string const& name, std::string const& bytes) const {
        std::filesystem::create_directories((root / name).parent_path());
        std::ofstream(root / name, std::ios::binary) << bytes;
    }
    std::string read(std::string const& name) const {
        std::ifstream file(root / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::filesystem::path before;
    std::filesystem::path root;
};

}  // namespace FrameDriver::Testing
