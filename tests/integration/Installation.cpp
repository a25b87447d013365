#include "Installation.h"

#include <filesystem>
#include <stdexcept>

namespace fs = std::filesystem;

namespace FrameDriver::Testing {
namespace {

constexpr char const* settingsFile = "Configuration/Settings.xml";

std::string document(std::string const& root, std::string const& space, std::string const& schema,
                     std::string const& elements) {
    return "<" + root + " xmlns=\"FrameDriver/" + space +
           "\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
           "xsi:schemaLocation=\"FrameDriver/" +
           space + " " + schema + "\">\n" + elements + "</" + root + ">\n";
}

}  // namespace

Installation::Installation(std::string const& frameAddress) {
    fs::copy(QFD_INSTALLATION, path(), fs::copy_options::recursive);
    setFrameAddress(frameAddress);
}

void Installation::remove(std::string const& name) const {
    if (!fs::remove(fs::path(path()) / name))
        throw std::runtime_error("there is no " + name);
}

void Installation::setSetting(std::string_view name, std::string_view value) const {
    auto content = read(settingsFile);
    auto const key = content.find("<name>" + std::string(name) + "</name>");
    if (key == std::string::npos)
        throw std::runtime_error("no setting " + std::string(name));
    auto const begin = content.find("<value>", key) + 7;
    write(settingsFile, content.replace(begin, content.find("</value>", key) - begin, value));
}

void Installation::setFrameAddress(std::string const& address) const {
    setSetting("Simulator Frame Address", address);
}

void Installation::setTimeOut(int time) const {
    setSetting("CPL Ack Timeout", std::to_string(time));
}

void Installation::useDictionaries(std::string const& toFrame, std::string const& toPanel,
                                   std::string const& fids,
                                   std::string const& subscriptions) const {
    write("Configuration/SimulatorManifest.xml",
          document("manifest", "Manifest", "./Schemas/Manifest.xsd",
                   "<moduleConfiguration>\n"
                   "<cplSubscriptionList>./Configuration/Own/Subs.xml</cplSubscriptionList>\n"
                   "<fidRegistrationList>./Configuration/Own/Fids.xml</fidRegistrationList>\n"
                   "<fidToCPLDictionary>./Configuration/Own/ToFrame.xml</fidToCPLDictionary>\n"
                   "<issueToSIDDictionary>./Configuration/Own/ToPanel.xml</issueToSIDDictionary>\n"
                   "</moduleConfiguration>\n"));
    auto const dictionary = [](std::string const& elements) {
        return document("dictionary", "Dictionary", "../Schemas/Dictionary.xsd", elements);
    };
    write("Configuration/Own/ToFrame.xml", dictionary(toFrame));
    write("Configuration/Own/ToPanel.xml", dictionary(toPanel));
    write("Configuration/Own/Fids.xml", document("fidRegistrationList", "FIDRegistration",
                                                 "../Schemas/FIDRegistrationList.xsd", fids));
    write("Configuration/Own/Subs.xml",
          document("subscriptionList", "Subscriptions", "../Schemas/CPLSubscriptionList.xsd",
                   subscriptions));
}

}  // namespace FrameDriver::Testing
