// The worked example of the installation's README, done as it says.

#include "Installation.h"
#include "template/ContextStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using FrameDriver::XML::ValidationMode;

struct Block {
    std::string language;  // what stands behind the fence
    std::string file;      // the last one named ahead of it
    std::string text;
};

/// The fenced blocks, without their indentation.
std::vector<Block> blocks(std::string const& markdown) {
    std::vector<Block> result;
    std::istringstream in(markdown);
    std::string line;
    std::string file;
    bool inside = false;
    std::size_t indentation = 0;
    while (std::getline(in, line)) {
        auto const fence = line.find("```");
        if (fence != std::string::npos) {
            if (!inside) {
                result.push_back({line.substr(fence + 3), file, ""});
                indentation = fence;
            }
            inside = !inside;
        } else if (inside) {
            result.back().text += line.substr(std::min(indentation, line.size())) + "\n";
        } else if (auto const name = line.find("`Configuration/"); name != std::string::npos) {
            file = line.substr(name + 1, line.find('`', name + 1) - name - 1);
        }
    }
    return result;
}

void replaceAll(std::string& text, std::string const& what, std::string const& with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
        text.replace(at, what.size(), with);
    }
}

/// A copy of the installation, with the blocks of the README put into its files, to work in.
class ReadmeExample : public testing::Test {
  protected:
    ReadmeExample() : readme(blocks(Installation::read("README.md"))) {
        std::string name = (fs::temp_directory_path() / "installation-XXXXXX").string();
        directory = mkdtemp(name.data());
        fs::copy(INSTALLATION "/Configuration", directory / "Configuration",
                 fs::copy_options::recursive);
        fs::current_path(directory);
        for (auto const& block : readme) {
            if (block.language == "xml") {
                insert(block);
            }
        }
    }
    ~ReadmeExample() override {
        fs::current_path(INSTALLATION);
        fs::remove_all(directory);
    }

    /// Ahead of the root's end tag.
    static void insert(Block const& block) {
        auto content = Installation::read(block.file);
        content.insert(content.rfind("</"), block.text);
        std::ofstream(block.file, std::ios::binary) << content;
    }

    void expectConversions(std::string const& language, char const* kind) {
        for (auto const& block : readme) {
            if (block.language == language) {
                expectConversion(block.text, kind);
                ++conversions;
            }
        }
    }

    /// The first line is the text, what is indented below it the results.
    static void expectConversion(std::string text, char const* kind) {
        replaceAll(text, "<0x92>", "\222");
        std::istringstream in(text);
        std::string source;
        std::getline(in, source);
        std::vector<std::string> expected;
        for (std::string line; std::getline(in, line);) {
            expected.push_back(line.substr(4));
        }
        FrameDriver::Template::ContextStore store;
        EXPECT_EQ(Installation::dictionary(kind).convert(source, &store), expected);
    }

    std::vector<Block> const readme;
    fs::path directory;
    int conversions = 0;
};

TEST_F(ReadmeExample, ItsPiecesGoIntoFourFilesThatStayValid) {
    std::map<std::string, int> files;
    for (auto const& block : readme) {
        if (block.language == "xml") {
            ++files[block.file];
            EXPECT_NO_THROW(FrameDriver::XML::LoadedDocument(block.file, ValidationMode::Schema))
                << block.file;
        }
    }
    EXPECT_EQ(files, (std::map<std::string, int>{{"Configuration/Transition/Fids.xml", 1},
                                                 {"Configuration/Transition/Subscriptions.xml", 1},
                                                 {"Configuration/Transition/ToFrame.xml", 1},
                                                 {"Configuration/Transition/ToPanel.xml", 1}}));
}

TEST_F(ReadmeExample, ItsTextsConvertAsItSays) {
    expectConversions("convert fid", Installation::fids);
    expectConversions("convert issue", Installation::issues);
    EXPECT_EQ(conversions, 2);
}

TEST_F(ReadmeExample, TheButtonTurnsWhatTheFrameReported) {
    FrameDriver::Template::ContextStore store;
    store.set("ME2.REVERSE", "ON");
    auto const results = Installation::dictionary(Installation::fids)
                             .convert(Installation::bytes("FID: id=ME2.REVERSE, data=[~"), &store);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_NE(results.front().find("value=0\222"), std::string::npos) << results.front();
}

}  // namespace
