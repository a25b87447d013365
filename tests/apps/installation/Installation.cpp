#include "Installation.h"

#include "conversion/ManifestParser.h"
#include "xml/FIDRegistrationListParser.h"
#include "xml/XMLUtilities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>

namespace {

using FrameDriver::Tools::Manifest;
using FrameDriver::XML::ValidationMode;

/// Starts the XML library and goes to the installation, where the files' names hold.
class Environment : public testing::Environment {
  public:
    void SetUp() override {
        FrameDriver::XML::startXMLUtilities();
        std::filesystem::current_path(INSTALLATION);
    }
    void TearDown() override { FrameDriver::XML::stopXMLUtilities(); }
};

[[maybe_unused]] auto* const environment = testing::AddGlobalTestEnvironment(new Environment);

}  // namespace

namespace Installation {

std::string read(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in) << path;
    return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::string> files(std::string const& kind) {
    static std::map<std::string, std::vector<std::string> (Manifest::*)() const> const getters = {
        {"cplSubscriptionList", &Manifest::getCplSubscriptionLists},
        {"fidRegistrationList", &Manifest::getFidRegistrationLists},
        {fids, &Manifest::getFidToCPLDictionaries},
        {issues, &Manifest::getIssueToSIDDictionaries},
        {"monkeytest", &Manifest::getMonkeyTests}};
    auto const manifest = FrameDriver::XML::ManifestParser().parseFile(
        "Configuration/SimulatorManifest.xml", ValidationMode::Schema);
    return (manifest.*getters.at(kind))();
}

FrameDriver::Conversion::TemplateConversionCollection dictionary(std::string const& kind) {
    FrameDriver::Conversion::TemplateConversionCollection all;
    for (auto const& file : files(kind)) {
        all.merge(FrameDriver::XML::TemplateConversionCollectionParser().parseFile(
            file, ValidationMode::None));
    }
    return all;
}

std::vector<FrameDriver::XML::ConversionTexts> texts(std::string const& kind) {
    std::vector<FrameDriver::XML::ConversionTexts> all;
    for (auto const& file : files(kind)) {
        auto const some =
            FrameDriver::XML::ConversionTextsParser().parseFile(file, ValidationMode::None);
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

std::vector<std::string> registeredFIDs() {
    std::vector<std::string> names;
    for (auto const& file : files("fidRegistrationList")) {
        auto const some =
            FrameDriver::XML::FIDRegistrationListParser().parseFile(file, ValidationMode::Schema);
        names.insert(names.end(), some.begin(), some.end());
    }
    return names;
}

std::string bytes(std::string text) {
    std::replace(text.begin(), text.end(), '~', '\222');
    return text;
}

}  // namespace Installation
