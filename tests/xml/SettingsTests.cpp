#include "xml/Settings.h"
#include "xml/SettingsKeys.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace FrameDriver::Tools {
namespace {

using Map = Settings::Map;

Map contentOf(Settings const& settings) { return {settings.begin(), settings.end()}; }

TEST(Settings, AreEmptyAtFirst) {
    Settings const settings;
    EXPECT_TRUE(settings.begin() == settings.end());
    EXPECT_FALSE(settings.contains(""));
}

TEST(Settings, GetOfAnUnknownNameIsEmptyAndAddsNothing) {
    Settings settings;
    EXPECT_EQ(settings.get("Client Name"), "");
    EXPECT_FALSE(settings.contains("Client Name"));
    EXPECT_EQ(contentOf(settings), Map{});
}

TEST(Settings, ContainsTellsAnEmptyValueFromNone) {
    Settings settings;
    settings.set("a", "");
    EXPECT_TRUE(settings.contains("a"));
    EXPECT_EQ(settings.get("a"), "");
}

TEST(Settings, SetInsertsAndReplaces) {
    Settings settings;
    settings.set("a", "1");
    settings.set("b", "2");
    settings.set("a", "3");
    EXPECT_EQ(contentOf(settings), (Map{{"a", "3"}, {"b", "2"}}));
}

TEST(Settings, NamesAreComparedExactlyAndOrderedByTheirBytes) {
    Settings settings;
    for (char const* name : {"b", "B", "a", "\xe9", "a ", ""})
        settings.set(name, name);
    std::vector<std::string> names;
    for (auto const& [name, value] : settings)
        names.push_back(name);
    EXPECT_EQ(names, (std::vector<std::string>{"", "B", "a", "a ", "b", "\xe9"}));
}

TEST(Settings, AWalkStaysOnTheSetThatItBeganWith) {
    Settings settings(Map{{"a", "1"}, {"b", "2"}});
    Map walked;
    for (auto const& [name, value] : settings) {
        settings.set("a", "changed");
        settings.set(name + "!", "new");
        walked[name] = value;
    }
    EXPECT_EQ(walked, (Map{{"a", "1"}, {"b", "2"}}));
    EXPECT_EQ(contentOf(settings),
              (Map{{"a", "changed"}, {"a!", "new"}, {"b", "2"}, {"b!", "new"}}));
}

TEST(Settings, ACopyGoesItsOwnWay) {
    Settings settings(Map{{"a", "1"}});
    Settings copy = settings;
    copy.set("a", "2");
    EXPECT_EQ(settings.get("a"), "1");
    settings = copy;
    EXPECT_EQ(settings.get("a"), "2");
    settings.set("a", "3");
    EXPECT_EQ(copy.get("a"), "2");
}

TEST(Settings, AssignmentToItselfKeepsTheContent) {
    Settings settings(Map{{"a", "1"}});
    Settings const& same = settings;
    settings = same;
    EXPECT_EQ(settings.get("a"), "1");
}

TEST(Settings, ReadersSeeOneWholeSetOrTheOther) {
    Settings const left(Map{{"a", "left"}, {"b", "left"}});
    Settings const right(Map{{"a", "right"}, {"b", "right"}});
    Settings settings = left;
    std::atomic<bool> done{false};
    std::vector<std::thread> readers;
    for (int thread = 0; thread < 2; ++thread)
        readers.emplace_back([&] {
            while (!done) {
                Map const seen = contentOf(settings);
                ASSERT_EQ(seen.at("a"), seen.at("b"));
                ASSERT_FALSE(settings.get("a").empty());
            }
        });
    for (int round = 0; round < 2000; ++round)
        settings = round % 2 ? left : right;
    done = true;
    for (std::thread& reader : readers)
        reader.join();
}

TEST(Settings, NoWritersChangeIsLost) {
    Settings settings;
    std::vector<std::thread> writers;
    for (int thread = 0; thread < 4; ++thread)
        writers.emplace_back([&settings, thread] {
            for (int i = 0; i < 100; ++i)
                settings.set(std::to_string(thread) + "." + std::to_string(i), "");
        });
    for (std::thread& writer : writers)
        writer.join();
    EXPECT_EQ(contentOf(settings).size(), 400u);
}

TEST(SettingsKeys, DefaultsAreWrittenInThisOrder) {
    std::vector<std::pair<std::string, std::string>> const expected{
        {"Client Name", "Velmar Panel"},
        {"FrameDriver Conversion Manifest", "./Configuration/FrameDriverManifest.xml"},
        {"Initial State File Path", "./Configuration/InitialState.xml"},
        {"Log File Path", "./Logs/qfd.log"},
        {"Simulator Conversion Manifest", "./Configuration/SimulatorManifest.xml"},
        {"Simulator Frame Address", "127.0.0.1"}};
    EXPECT_EQ((std::vector<std::pair<std::string, std::string>>(SettingsKeys::defaults.begin(),
                                                                SettingsKeys::defaults.end())),
              expected);
}

}  // namespace
}  // namespace FrameDriver::Tools
