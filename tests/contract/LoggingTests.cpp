#include "Gate.h"
#include "platform/logging/LogManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <locale>
#include <ostream>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace Brindlemoor::Utilities::Logging;
using Texts = std::vector<std::string>;

LogManager& manager() { return *LogManager::getInstance(); }

/// Each test has categories of its own name, each time, since the log is the process's.
class Logging : public ::testing::Test {
  protected:
    Logging()
        : name(nextName()),
          category(manager().getCategory(name)),
          sink(manager().addSink([this](LogLine const& line) { keep(line); })) {}
    ~Logging() override {
        manager().removeSink(sink);
        manager().setDefaultLevel(LogLevel::Info);
    }

    static std::string nextName() {
        static int count = 0;
        return "Category" + std::to_string(++count);
    }

    void keep(LogLine const& line) {
        if (line.category == name)
            lines.push_back(std::to_string(static_cast<int>(line.level)) + " " + line.text);
    }

    std::string const name;
    LogCategory category;
    Texts lines;
    LogManager::SinkId sink;
};

void writeAll(LogCategory const& category) {
    category.getDebugStream() << "debug";
    category.getInfoStream() << "info";
    category.getWarnStream() << "warning";
    category.getErrorStream() << "error";
}

TEST_F(Logging, AnExpressionIsALine) {
    category.getInfoStream() << "a=" << 1 << ", b=" << 2.5F << std::string("\x92 ") << 'c' << true
                             << std::hex << 255;
    EXPECT_EQ(lines, Texts{"1 a=1, b=2.5\x92 c1ff"});
}

TEST_F(Logging, AStreamThatIsntWrittenToLeavesNoLine) {
    category.getErrorStream();
    EXPECT_EQ(lines, Texts{});
    category.getErrorStream() << "";
    EXPECT_EQ(lines, Texts{"3 "});
}

TEST_F(Logging, LevelsBelowTheCategorysAreDropped) {
    writeAll(category);
    EXPECT_EQ(lines, (Texts{"1 info", "2 warning", "3 error"}));
    lines.clear();
    manager().setLevel(name, LogLevel::Error);
    writeAll(category);
    EXPECT_EQ(lines, Texts{"3 error"});
    lines.clear();
    manager().setLevel(name, LogLevel::Off);
    writeAll(category);
    EXPECT_EQ(lines, Texts{});
    manager().setLevel(name, LogLevel::Debug);
    writeAll(category);
    EXPECT_EQ(lines.size(), 4U);
}

TEST_F(Logging, TheDefaultLevelIsForCategoriesWithoutOneOfTheirOwn) {
    manager().setLevel(name + "Own", LogLevel::Error);
    manager().setDefaultLevel(LogLevel::Debug);
    std::atomic<int> others{0};
    auto const counter = manager().addSink([&](LogLine const& line) {
        others += line.category == name + "Own" || line.category == name + "New";
    });
    writeAll(category);
    EXPECT_EQ(lines.size(), 4U);
    writeAll(manager().getCategory(name + "Own"));
    EXPECT_EQ(others, 1);
    writeAll(manager().getCategory(name + "New"));
    EXPECT_EQ(others, 5);
    manager().removeSink(counter);
}

struct CountsItsTexts {
    int& count;
    friend std::ostream& operator<<(std::ostream& out, CountsItsTexts const& counter) {
        ++counter.count;
        return out << "counted";
    }
};

TEST_F(Logging, WhatIsDroppedIsntFormatted) {
    int count = 0;
    category.getDebugStream() << CountsItsTexts{count};
    EXPECT_EQ(count, 0);
    category.getInfoStream() << CountsItsTexts{count};
    EXPECT_EQ(count, 1);
    EXPECT_EQ(lines, Texts{"1 counted"});
}

TEST_F(Logging, ThereIsOneCategoryOfAName) {
    EXPECT_EQ(&manager().getCategory(name), &manager().getCategory(name));
    EXPECT_EQ(category.getName(), name);
    LogCategory const copy = category;
    manager().setLevel(name, LogLevel::Off);
    copy.getErrorStream() << "x";
    EXPECT_EQ(lines, Texts{});
}

TEST_F(Logging, NumbersLookTheSameInAnyLocale) {
    struct German : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    auto const before = std::locale::global(std::locale(std::locale::classic(), new German));
    category.getInfoStream() << 1234567 << " " << 0.5;
    std::locale::global(before);
    EXPECT_EQ(lines, Texts{"1 1234567 0.5"});
}

TEST_F(Logging, WhatASinkThrowsIsSwallowed) {
    auto const thrower =
        manager().addSink([](LogLine const&) { throw std::runtime_error("sink"); });
    auto const odd = manager().addSink([](LogLine const&) { throw 5; });
    category.getInfoStream() << "x";
    manager().removeSink(thrower);
    manager().removeSink(odd);
    EXPECT_EQ(lines, Texts{"1 x"});
}

TEST_F(Logging, ASinkMayAskForACategory) {
    auto const asker = manager().addSink([this](LogLine const&) { manager().getCategory(name); });
    category.getInfoStream() << "x";
    manager().removeSink(asker);
    EXPECT_EQ(lines, Texts{"1 x"});
}

TEST_F(Logging, RemovingASinkWaitsForACallThatRuns) {
    Gate inside;
    Gate goOn;
    std::atomic<bool> running{false};
    auto const slow = manager().addSink([&](LogLine const&) {
        running = true;
        inside.open();
        goOn.wait();
        running = false;
    });
    auto writing = std::async(std::launch::async, [&] { category.getInfoStream() << "x"; });
    ASSERT_TRUE(inside.wait());
    Gate about;
    auto removing = std::async(std::launch::async, [&] {
        about.open();
        manager().removeSink(slow);
        return running.load();
    });
    ASSERT_TRUE(about.wait());
    goOn.open();
    EXPECT_FALSE(removing.get());
    writing.get();
    category.getInfoStream() << "y";  // would block for ever at a closed gate, were it still called
    EXPECT_EQ(lines, (Texts{"1 x", "1 y"}));
}

TEST_F(Logging, LinesOfSeveralThreadsComeOneAtATime) {
    constexpr int each = 500;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 4; ++writer)
        writers.emplace_back([this, writer] {
            for (int i = 0; i < each; ++i)
                category.getInfoStream() << "writer " << writer << " line " << i;
        });
    for (auto& writer : writers)
        writer.join();
    ASSERT_EQ(lines.size(), 4U * each);
    int next[4] = {};
    for (auto const& line : lines) {
        int const writer = line[9] - '0';
        EXPECT_EQ(line,
                  "1 writer " + std::to_string(writer) + " line " + std::to_string(next[writer]++));
    }
}

TEST_F(Logging, LevelsSinksAndCategoriesMayChangeWhileOthersWrite) {
    std::atomic<bool> stop{false};
    std::atomic<int> written{0};
    auto write = std::async(std::launch::async, [&] {
        for (; !stop; ++written)
            manager().getCategory(name + "/" + std::to_string(written % 10)).getErrorStream()
                << written;
    });
    for (int round = 0; round < 200 || written < 200; ++round) {
        std::atomic<bool> mine{true};
        auto const other = manager().addSink([&](LogLine const&) { EXPECT_TRUE(mine); });
        manager().setLevel(name + "/" + std::to_string(round % 10),
                           round % 2 == 0 ? LogLevel::Off : LogLevel::Debug);
        manager().setDefaultLevel(round % 2 == 0 ? LogLevel::Debug : LogLevel::Info);
        manager().removeSink(other);
        mine = false;
    }
    stop = true;
    write.get();
    EXPECT_EQ(lines, Texts{});
}

std::string contents(std::filesystem::path const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::regex const lineForm(
    R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} (debug  |info   |warning|error  ) ([^:]*): ([^\n]*)\n)");

class LogFile : public Logging {
  protected:
    LogFile() : directory(freshDirectory()) {}
    ~LogFile() override { std::filesystem::remove_all(directory); }

    static std::filesystem::path freshDirectory() {
        auto form = (std::filesystem::temp_directory_path() / "qfd-log-XXXXXX").string();
        if (!mkdtemp(form.data()))
            throw std::runtime_error("no directory");
        return form;
    }

    std::filesystem::path const directory;
};

TEST_F(LogFile, ALineHasTimeLevelCategoryAndText) {
    auto const path = directory / "log";
    auto const file = manager().addRotatingFile(path.string(), 100000, 1);
    manager().setLevel(name, LogLevel::Debug);
    category.getDebugStream() << "SID: id=A, data=[1\x92";
    category.getWarnStream() << "100% {} \xff";
    manager().removeSink(file);
    category.getWarnStream() << "too late";
    auto const text = contents(path);
    std::smatch first;
    ASSERT_TRUE(std::regex_search(text, first, lineForm, std::regex_constants::match_continuous));
    EXPECT_EQ(first[1], "debug  ");
    EXPECT_EQ(first[2], name);
    EXPECT_EQ(first[3], "SID: id=A, data=[1\x92");
    auto const rest = first.suffix().str();
    std::smatch second;
    ASSERT_TRUE(std::regex_match(rest, second, lineForm));
    EXPECT_EQ(second[1], "warning");
    EXPECT_EQ(second[3], "100% {} \xff");
}

TEST_F(LogFile, RollsOverAndKeepsSoManyOlderOnes) {
    auto const file = manager().addRotatingFile((directory / "log.txt").string(), 1000, 2);
    for (int i = 0; i < 100; ++i)
        category.getInfoStream() << "line " << i;
    manager().removeSink(file);
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(directory)) {
        names.push_back(entry.path().filename().string());
        EXPECT_LE(entry.file_size(), 1000U);
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Texts{"log.1.txt", "log.2.txt", "log.txt"}));
    EXPECT_NE(contents(directory / "log.txt").find(": line 99\n"), std::string::npos);
}

TEST_F(LogFile, AFileThatCantBeWrittenIsTold) {
    auto const path = (directory / "missing\n").string() + std::string(300, 'x');
    try {
        manager().addRotatingFile(path, 1000, 1);
        FAIL() << "no exception";
    } catch (std::runtime_error const& error) {
        std::string const text = error.what();
        EXPECT_EQ(text.substr(0, 14 + path.size()), "can't log to " + path + ":");
        EXPECT_NE(text.find("File name too long"), std::string::npos) << text;
    }
}

TEST_F(LogFile, TheConsoleIsTheStandardErrorStream) {
    ::testing::internal::CaptureStderr();
    auto const console = manager().addConsole();
    category.getErrorStream() << "loud\x92";
    manager().removeSink(console);
    auto const text = ::testing::internal::GetCapturedStderr();
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(text, parts, lineForm)) << text;
    EXPECT_EQ(parts[3], "loud\x92");
}

}  // namespace
