#include "Installation.h"
#include "cpl/Subscription.h"
#include "template/TemplateParser.h"
#include "template/VariableMap.h"
#include "xml/CPLSubscriptionListParser.h"
#include "xml/Settings.h"
#include "xml/SettingsParser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using FrameDriver::Template::TemplateParser;
using FrameDriver::Template::TemplateString;
using FrameDriver::XML::ValidationMode;
using Names = std::vector<std::string>;

constexpr char const* kinds[] = {"cplSubscriptionList", "fidRegistrationList", Installation::fids,
                                 Installation::issues, "monkeytest"};

std::set<std::string> shippedXml() {
    std::set<std::string> names;
    for (auto const& entry : fs::recursive_directory_iterator("Configuration")) {
        if (entry.path().extension() == ".xml") {
            names.insert(entry.path().string());
        }
    }
    return names;
}

TEST(ShippedFiles, EveryXmlFileIsAsItsSchemaSays) {
    ASSERT_FALSE(shippedXml().empty());
    for (auto const& name : shippedXml()) {
        SCOPED_TRACE(name);
        EXPECT_NE(Installation::read(name).find("xsi:schemaLocation="), std::string::npos);
        EXPECT_NO_THROW(FrameDriver::XML::LoadedDocument(name, ValidationMode::Schema));
    }
}

TEST(ShippedFiles, EveryXmlFileIsNamedOnceAndEveryNameIsAFile) {
    std::set<std::string> named = {"Configuration/Settings.xml",
                                   "Configuration/SimulatorManifest.xml"};
    for (auto const* const kind : kinds) {
        for (auto const& file : Installation::files(kind)) {
            EXPECT_TRUE(named.insert(fs::path(file).lexically_normal().string()).second) << file;
        }
    }
    EXPECT_EQ(named, shippedXml());
}

TEST(ShippedFiles, TheSettingsNameTheManifestAndAFrame) {
    auto const settings = FrameDriver::XML::SettingsParser().parseFile("Configuration/Settings.xml",
                                                                       ValidationMode::Schema);
    EXPECT_EQ(settings.get("Simulator Conversion Manifest"),
              "./Configuration/SimulatorManifest.xml");
    EXPECT_EQ(settings.get("Simulator Frame Address"), "127.0.0.1");
    EXPECT_EQ(settings.get("Client Name"), "Velmar Panel");
    EXPECT_EQ(settings.get("CPL Ack Timeout"), "500");
}

TEST(ShippedFiles, TheVersionFile) { EXPECT_EQ(Installation::read("Version"), "745=1.0.0\n"); }

TEST(ShippedFiles, TheStateFileEndsInALineFeed) {
    EXPECT_EQ(Installation::read("config/QISState.dsf").back(), '\n');
}

TEST(ShippedFiles, EachModuleHasAFileOfEachKind) {
    auto const modules = Installation::files("fidRegistrationList").size();
    for (auto const* const kind : {kinds[0], kinds[2], kinds[3]}) {
        auto const names = Installation::files(kind);
        EXPECT_EQ(names.size(), modules);
        EXPECT_EQ(std::count(names.begin(), names.end(), ""), 0) << kind;
    }
}

/// Everything that the panel shows of the frame must come by itself after a connection.
TEST(ShippedFiles, EverySubscriptionAsksForThePresentValueAndNoneComesTwice) {
    std::set<std::pair<int, unsigned>> seen;
    for (auto const& file : Installation::files("cplSubscriptionList")) {
        auto const list =
            FrameDriver::XML::CPLSubscriptionListParser().parseFile(file, ValidationMode::Schema);
        EXPECT_FALSE(list.empty()) << file;
        for (auto* const subscription : list) {
            std::unique_ptr<FrameDriver::CPL::Subscription> const owned(subscription);
            auto const& one = dynamic_cast<FrameDriver::CPL::ParameterSubscription&>(*owned);
            EXPECT_EQ(one.getFlag(), eSubscribeImmediate);
            EXPECT_TRUE(seen.emplace(one.getPid(), one.getDid()).second)
                << one.getPid() << " " << std::hex << one.getDid();
        }
    }
    EXPECT_EQ(seen.size(), 20U + 17 + 4 + 4 * 8 + 3 * 2 + 2 + 1 + 2 * 4 + 2);
    for (auto const& corner : {std::pair(10, 0x24000910U),
                               {11, 0x1b000010U},
                               {40, 0x18000003U},
                               {23, 0x08000031U},
                               {34, 0x03000001U},
                               {62, 0x3e000030U}}) {
        EXPECT_EQ(seen.count(corner), 1U) << corner.first << " " << std::hex << corner.second;
    }
}

/// The part of an entry's text that names the FID, with what surrounds it.
std::string headOf(std::string const& from) {
    auto const end = from.find(", data=[");
    return from.substr(0, end) + ", data=[";
}

TEST(ShippedFiles, EveryRegisteredFIDFitsTheNameOfExactlyOneEntry) {
    std::map<std::string, TemplateString> heads;
    for (auto const& entry : Installation::texts(Installation::fids)) {
        for (auto const& from : entry.from) {
            heads.emplace(headOf(from), TemplateParser::parse(headOf(from)));
        }
    }
    for (auto const& name : Installation::registeredFIDs()) {
        Names fitting;
        for (auto const& [head, pattern] : heads) {
            if (pattern.matches("FID: id=" + name + ", data=[")) {
                fitting.push_back(head);
            }
        }
        EXPECT_EQ(fitting.size(), 1U) << name << ": " << testing::PrintToString(fitting);
    }
}

TEST(ShippedFiles, NoFIDIsRegisteredTwice) {
    auto names = Installation::registeredFIDs();
    EXPECT_GT(names.size(), 500U);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

TEST(ShippedFiles, WhatTheDictionariesRaiseThemselvesIsNotRegistered) {
    for (auto const& name : Installation::registeredFIDs()) {
        EXPECT_FALSE(name.starts_with("DO.") || name.starts_with("PANEL.INIT") ||
                     name.starts_with("PANEL.CONNECTION"))
            << name;
    }
}

/// Which of several fitting entries answer depends on what was looked up before, so none of the
/// texts that an entry is made for may fit another one.
TEST(ShippedFiles, NoEntryTakesTheTextsOfAnother) {
    for (auto const* const kind : {Installation::fids, Installation::issues}) {
        auto const entries = Installation::texts(kind);
        std::vector<TemplateString> patterns;
        Names samples;
        std::regex const variable(R"(\{@[A-Za-z]+\})");
        for (auto const& entry : entries) {
            for (auto const& from : entry.from) {
                patterns.push_back(TemplateParser::parse(from));
                samples.push_back(std::regex_replace(from, variable, "1"));
            }
        }
        for (auto const& sample : samples) {
            auto const fits = [&sample](TemplateString const& one) { return one.matches(sample); };
            EXPECT_EQ(std::count_if(patterns.begin(), patterns.end(), fits), 1) << sample;
        }
    }
}

/// A "to" FID that leads nowhere is a slip. Names that are chosen at run time are left out:
/// some of their choices mean "nothing to do".
TEST(ShippedFiles, EveryFIDThatADictionaryRaisesHasAnEntry) {
    std::vector<TemplateString> patterns;
    Names raised;
    std::regex const number(R"(\{@[A-Za-z]+(\|increment)?\})");
    for (auto const* const kind : {Installation::fids, Installation::issues}) {
        for (auto const& entry : Installation::texts(kind)) {
            for (auto const& from : entry.from) {
                patterns.push_back(TemplateParser::parse(headOf(from)));
            }
            for (auto const& to : entry.to) {
                auto const head = std::regex_replace(headOf(to), number, "1");
                bool const chosen = head.find('{') != std::string::npos ||
                                    to.find("DO.COMPARE.{") != std::string::npos;
                if (to.starts_with("FID: ") && !chosen) {
                    raised.push_back(head);
                }
            }
        }
    }
    EXPECT_GT(raised.size(), 50U);
    for (auto const& head : raised) {
        auto const fits = [&head](TemplateString const& one) { return one.matches(head); };
        EXPECT_TRUE(std::any_of(patterns.begin(), patterns.end(), fits)) << head;
    }
}

}  // namespace
