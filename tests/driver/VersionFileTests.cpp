#include "driver/VersionFile.h"
#include "platform/logging/LogManager.h"
#include "tests/support/LogCapture.h"
#include "tests/support/WorkingDirectory.h"

#include <gtest/gtest.h>

using namespace FrameDriver::Testing;
using Lines = std::vector<std::string>;

namespace {

struct Row {
    char const* name;
    std::string content;
    char const* build;
    std::string version;
    Lines log;
};

std::string fromFile(std::string const& number, std::string const& version) {
    return "info: From version file: buildNum: '" + number + "', printedVersion: '" + version + "'";
}

std::string notEqual(std::string const& compiled, std::string const& read) {
    return "warning: Compiled in Build Number '" + compiled + "' and Version File Build Number '" +
           read + "' are not equal";
}

std::string const unparsed = "warning: Failed to parse version file";

}  // namespace

TEST(VersionFile, GivesTheVersionOfThisBuildOrNone) {
    auto const& category = Brindlemoor::Utilities::Logging::LogManager::getInstance()->getCategory(
        "Tavrine_Frame_Driver");
    WorkingDirectory directory;
    std::string const longText(300, 'v');
    Row const rows[] = {
        {"good", "745=1.0.0\n", "745", "1.0.0", {fromFile("745", "1.0.0")}},
        {"cut before the first z", "745=12.3z7", "745", "12.3", {fromFile("745", "12.3z7")}},
        {"all of it behind a z", "745=z", "745", "", {fromFile("745", "z")}},
        {"line end of the other kind", "745=12\r\nmore", "745", "12", {fromFile("745", "12")}},
        {"a version with =", "745=a=b", "745", "a=b", {fromFile("745", "a=b")}},
        {"another build",
         "745=12.3",
         "746",
         "BUDDY BUILD",
         {fromFile("745", "12.3"), notEqual("746", "745")}},
        {"another build isn't cut",
         "745=12.3z7",
         "746",
         "BUDDY BUILD",
         {fromFile("745", "12.3z7"), notEqual("746", "745")}},
        {"blank counts",
         "745 =1",
         "745",
         "BUDDY BUILD",
         {fromFile("745 ", "1"), notEqual("745", "745 ")}},
        {"no =", "745 1.0.0", "745", "BUDDY BUILD", {unparsed}},
        {"empty", "", "745", "BUDDY BUILD", {unparsed}},
        {"nothing before =", "=1", "745", "BUDDY BUILD", {unparsed}},
        {"nothing behind =", "745=", "745", "BUDDY BUILD", {unparsed}},
        {"only so much is read",
         "745=" + longText,
         "745",
         longText.substr(0, 255),
         {fromFile("745", longText.substr(0, 255))}},
        {"too long ahead of =", std::string(256, '7') + "=1", "745", "BUDDY BUILD", {unparsed}},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture log;
        directory.write("Version", row.content);
        EXPECT_EQ(readVersionText("Version", row.build, category), row.version);
        EXPECT_EQ(log.lines(), row.log);
    }
}

TEST(VersionFile, ThatIsMissingIsToldByItsPath) {
    auto const& category = Brindlemoor::Utilities::Logging::LogManager::getInstance()->getCategory(
        "Tavrine_Frame_Driver");
    LogCapture log;
    EXPECT_EQ(readVersionText("/nowhere/Version", "745", category), "BUDDY BUILD");
    EXPECT_EQ(log.lines(), (Lines{"info: Failed to open version file '/nowhere/Version'"}));
}
