// The driver's files. Every loader has one shape: parse on the stack, take the result over,
// and turn whatever goes wrong into one log line.
#include "conversion/ManifestParser.h"
#include "conversion/TemplateConversionCollectionParser.h"
#include "cpl/Subscription.h"
#include "driver/QuillaneQFD.h"
#include "foundation/Exceptions.h"
#include "tools/MonkeyTestParser.h"
#include "xml/CPLSubscriptionListParser.h"
#include "xml/FIDRegistrationListParser.h"
#include "xml/SettingsKeys.h"
#include "xml/SettingsParser.h"
#include "xml/SettingsWriter.h"

#include <functional>
#include <utility>

using FrameDriver::Conversion::TemplateConversionCollection;
using FrameDriver::ErrorManagement::Exception::IllegalArgumentException;
using FrameDriver::ErrorManagement::Exception::XMLException;
using FrameDriver::Tools::Manifest;
using FrameDriver::Tools::Settings;
using namespace FrameDriver::XML;
namespace SettingsKeys = FrameDriver::Tools::SettingsKeys;

namespace {

// True if `step` came through; otherwise one line says why.
template <typename Step>
bool logFailure(Brindlemoor::Utilities::Logging::LogCategory const& log, char const* lastResort,
                Step step) {
    try {
        step();
        return true;
    } catch (IllegalArgumentException const& error) {
        log.getErrorStream() << error.getMessage();
    } catch (XMLException const& error) {
        log.getErrorStream() << error.getMessage();
    } catch (...) {
        log.getErrorStream() << lastResort;
    }
    return false;
}

template <typename Parser>
constexpr ValidationMode modeOf = ValidationMode::Schema;
// A dictionary isn't checked against a schema: the forms' own silent rules are all there is.
template <>
constexpr ValidationMode modeOf<TemplateConversionCollectionParser> = ValidationMode::None;
// Nor is a monkey test.
template <>
constexpr ValidationMode modeOf<MonkeyTestParser> = ValidationMode::None;

/// Nothing that a loader knows how to tell.
struct LastResort {};

constexpr char unforeseen[] = "An unforeseen problem has occurred while parsing the xml file ";

}  // namespace

template <typename Parser, typename Take>
bool QuillaneQFD::load(std::string const& path, char const* lastResort, Take take) {
    return logFailure(log, lastResort, [&] {
        Parser parser;
        take(parser.parseFile(path, modeOf<Parser>));
    });
}

bool QuillaneQFD::loadSettings(std::string const& path, Settings& target) {
    return load<SettingsParser>(path, "An unhandled exception occurred while loading settings.",
                                [&](Settings&& result) { target = result; });
}

bool QuillaneQFD::loadManifest(std::string const& path, Manifest& target) {
    return load<ManifestParser>(path, "An unhandled exception occurred while loading a manifest.",
                                [&](Manifest&& result) { target = std::move(result); });
}

bool QuillaneQFD::loadConversions(std::string const& path, TemplateConversionCollection& target) {
    return load<TemplateConversionCollectionParser>(
        path, "An unhandled exception occurred while loading conversions.",
        [&](TemplateConversionCollection&& result) { target.merge(result); });
}

// Sorted by address, so the order of subscriptions carries no meaning.
bool QuillaneQFD::loadSubscriptions(std::string const& path, Subscriptions& target) {
    return load<CPLSubscriptionListParser>(
        path, "An unhandled exception occurred while loading subscriptions.",
        [&](Subscriptions&& result) {
            result.sort(std::less<>());
            target.merge(result, std::less<>());
        });
}

bool QuillaneQFD::loadFIDRegistration(std::string const& path, std::list<std::string>& target) {
    return load<FIDRegistrationListParser>(
        path, "An unhandled exception occurred while loading an fid registration list",
        [&](std::list<std::string>&& result) {
            result.sort();
            target.merge(result);
        });
}

// What no parser foresees, a bound that is no number above all, has a second line here: that is the
// one that authors of monkey tests look for.
bool QuillaneQFD::loadMonkeyTest(std::string const& path) {
    constexpr char lastResort[] = "An unhandled exception occurred while loading a monkey test.";
    return logFailure(log, lastResort, [&] {
        try {
            monkeyTest.addGenerators(MonkeyTestParser().parseFile(path, modeOf<MonkeyTestParser>));
        } catch (XMLException const& error) {
            if (!error.getMessage().starts_with(unforeseen))
                throw;
            log.getErrorStream() << error.getMessage();
            throw LastResort();
        }
    });
}

bool QuillaneQFD::loadDefaultSettings() {
    for (auto const& [key, value] : SettingsKeys::defaults)
        settings.set(key, value);
    return saveSettings(settings, SettingsKeys::settingsPath);
}

bool QuillaneQFD::saveSettings(Settings const& values, std::string const& path) {
    return logFailure(log, "An unhandled exception occurred while saving settings.", [&] {
        SettingsWriter writer;
        writer.writeFile(path, values);
    });
}
