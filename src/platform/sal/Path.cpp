#include "platform/sal/Path.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace sal {

Path::Path(std::string text) : pathText(std::move(text)) {}
Path::~Path() = default;

Path Path::getCurrentWorkingDirPath() {
    std::error_code error;
    auto const directory = std::filesystem::current_path(error);
    return Path(error ? std::string() : directory.string());
}

}  // namespace sal
