#include "driver/VersionFile.h"

#include <cstdio>
#include <memory>
#include <optional>

namespace {

struct VersionLine {
    std::string buildNumber;
    std::string printedVersion;
};

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::optional<VersionLine> readLine(std::FILE* file) {
    char number[256];
    char version[256];
    if (std::fscanf(file, "%255[^=]=%255[^\r\n]", number, version) < 2)
        return std::nullopt;
    return VersionLine{number, version};
}

}  // namespace

std::string readVersionText(std::string const& path, std::string_view compiledBuildNumber,
                            Brindlemoor::Utilities::Logging::LogCategory const& log) {
    std::string mismatch = "BUDDY BUILD";
    std::unique_ptr<std::FILE, CloseFile> const file(std::fopen(path.c_str(), "r"));
    if (!file) {
        log.getInfoStream() << "Failed to open version file '" << path << "'";
        return mismatch;
    }
    auto const line = readLine(file.get());
    if (!line) {
        log.getWarnStream() << "Failed to parse version file";
        return mismatch;
    }
    log.getInfoStream() << "From version file: buildNum: '" << line->buildNumber
                        << "', printedVersion: '" << line->printedVersion << "'";
    if (line->buildNumber != compiledBuildNumber) {
        log.getWarnStream() << "Compiled in Build Number '" << compiledBuildNumber
                            << "' and Version File Build Number '" << line->buildNumber
                            << "' are not equal";
        return mismatch;
    }
    return line->printedVersion.substr(0, line->printedVersion.find('z'));
}
