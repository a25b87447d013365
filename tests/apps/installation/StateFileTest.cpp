// The panel's clean state against what the dictionaries put out when the frame is gone.

#include "Installation.h"
#include "template/ContextStore.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using States = std::map<std::string, std::string>;
using Names = std::vector<std::string>;

/// "NONE,0-2" -> NONE 0 1 2
Names choices(std::string const& list) {
    Names values;
    std::istringstream in(list);
    for (std::string element; std::getline(in, element, ',');) {
        auto const dash = element.find('-');
        if (dash == std::string::npos) {
            values.push_back(element);
            continue;
        }
        for (int i = std::stoi(element); i <= std::stoi(element.substr(dash + 1)); ++i) {
            values.push_back(std::to_string(i));
        }
    }
    return values;
}

/// Every "[n:values]" of the line, the plain way; the file uses no other groups.
Names expanded(std::string const& line) {
    auto const open = line.find('[');
    if (open == std::string::npos) {
        return {line};
    }
    auto const colon = line.find(':', open);
    auto const close = line.find(']', open);
    Names all;
    for (auto const& choice : choices(line.substr(colon + 1, close - colon - 1))) {
        for (auto const& rest : expanded(line.substr(close + 1))) {
            all.push_back(line.substr(0, open) + choice + rest);
        }
    }
    return all;
}

States cleanState() {
    States states;
    std::istringstream in(Installation::read("config/QISState.dsf"));
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line.starts_with("//") || line.find("::") != std::string::npos) {
            continue;
        }
        for (auto const& one : expanded(line)) {
            auto const value = one.find(" VAL=");
            EXPECT_NE(value, std::string::npos) << line;
            EXPECT_TRUE(states.emplace(one.substr(0, value), one.substr(value + 5)).second) << one;
        }
    }
    return states;
}

/// The SIDs of a FID's results, those of the FIDs among them included.
void collect(FrameDriver::Conversion::TemplateConversionCollection& dictionary,
             std::string const& text, States& states) {
    FrameDriver::Template::ContextStore store;
    std::string const sid = "SID: id=";
    for (auto const& result : dictionary.convert(text, &store)) {
        if (result.starts_with("FID: ")) {
            collect(dictionary, result, states);
        } else if (result.starts_with(sid)) {
            auto const comma = result.find(", value=");
            states[result.substr(sid.size(), comma - sid.size())] = result.substr(comma + 8);
        }
    }
}

TEST(StateFile, HoldsOneSectionOfStates) {
    auto const text = Installation::read("config/QISState.dsf");
    EXPECT_NE(text.find("\n::SIDS\n"), std::string::npos);
    EXPECT_EQ(text.find("::FIDS"), std::string::npos);
}

TEST(StateFile, EveryStateThatGoesDarkIsCleanInTheSameWay) {
    auto dictionary = Installation::dictionary(Installation::fids);
    States dark;
    collect(dictionary, Installation::bytes("FID: id=PANEL.CONNECTION.LOST, data=[~"), dark);
    // crosspoints, keyers, transitions, memories, clips, the frame itself
    EXPECT_EQ(dark.size(), 469U + 18 + 18 + 202 + 10 + 3);
    auto const clean = cleanState();
    for (auto const& [name, value] : dark) {
        auto const at = clean.find(name);
        ASSERT_NE(at, clean.end()) << name;
        EXPECT_EQ(at->second, value) << name;
    }
}

}  // namespace
