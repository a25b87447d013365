#pragma once

#include "conversion/CPLMarshaller.h"
#include "conversion/ContextMarshaller.h"
#include "conversion/DIDMarshaller.h"
#include "conversion/FIDMarshaller.h"
#include "conversion/Manifest.h"
#include "conversion/SIDMarshaller.h"
#include "conversion/TIDMarshaller.h"
#include "conversion/TemplateConversionCollection.h"
#include "cpl/CplClient.h"
#include "cpl/IssueHandler.h"
#include "driver/FrameConnectionObserver.h"
#include "driver/QFDBase.h"
#include "foundation/Clock.h"
#include "foundation/FIDHandler.h"
#include "platform/logging/LogCategory.h"
#include "template/ContextStore.h"
#include "xml/Settings.h"

#include <atomic>
#include <future>
#include <list>
#include <memory>
#include <string>

namespace FrameDriver::CPL {
class Subscription;
}

/// The driver. Joins the host's panel to the frame: each input, a FID from the panel or an issue
/// from the frame, is written as a line of text and converted by a dictionary, and each line
/// that comes out is acted on by its prefix. The driver doesn't know what any of it means.
///
/// Nothing is queued: a conversion and its sends run on the thread that brought the input, be
/// it the host's, the frame client's callback thread or the observer's. The driver takes no
/// lock of its own; see docs/threads.md for those below it.
///
/// Lifetime: `initialize` once, `deinitialize` once. The module keeps its driver to the end of
/// the process. Destroying one (tests do) waits for its observer's thread.
/// Errors: start-up never fails as a whole, each step logs what it has to do without. On the
/// road of a FID or an issue nothing is caught.
class QuillaneQFD : public QFDBase, public FrameDriver::CPL::IssueHandler, public FIDHandler {
  public:
    /// The clock serves the observer's sleeps and the time of the panel's reboot indication.
    explicit QuillaneQFD(
        FrameDriver::Tools::Clock& driverClock = FrameDriver::Tools::Clock::system());
    ~QuillaneQFD() override;

    void initialize() override;
    void deinitialize() override;

    /// The entry for every FID. Always true. Throws std::out_of_range, "invalid string
    /// position", for a name of fewer than four characters.
    bool handleFID(std::string const& name, FIDParameterList const& parameters) override;
    void handleIssue(FrameDriver::CPL::Issue* issue) override;

    // The connection's lifecycle, driven by the observer.
    ClientConnectionState getConnectionState() const { return cplClient.getConnectionState(); }
    void connectToFrame();
    void onFrameConnected();
    void subscribeToFrame();
    void disconnectFromFrame();
    void resetPanel();
    void registerFIDs();
    /// The address in use; empty if the settings have none.
    std::string getFrameAddress() const;
    std::string getVersionText() const { return versionText; }

    // What a conversion leads to.
    void processFID(std::string const& name, FIDParameterList const& parameters);
    void processIssue(FrameDriver::CPL::Issue const* issue);
    /// Acts on one result line by the part ahead of its first ":"; a line of no known kind is
    /// dropped without a word.
    void dispatchResult(std::string const& line);
    /// Dropped, not queued, until the dictionaries are loaded.
    void sendSID(std::string const& name, std::string const& value);
    void handleOwnFID(std::string const& name, FIDParameterList const& parameters);

    // Files. Each logs why it failed and leaves its target as it was.
    using Subscriptions = std::list<FrameDriver::CPL::Subscription*>;
    bool loadSettings(std::string const& path, FrameDriver::Tools::Settings& target);
    bool loadDefaultSettings();
    bool saveSettings(FrameDriver::Tools::Settings const& values, std::string const& path);
    bool loadManifest(std::string const& path, FrameDriver::Tools::Manifest& target);
    bool loadConversions(std::string const& path,
                         FrameDriver::Conversion::TemplateConversionCollection& target);
    /// The new subscriptions are the caller's, to be deleted.
    bool loadSubscriptions(std::string const& path, Subscriptions& target);
    bool loadFIDRegistration(std::string const& path, std::list<std::string>& target);

  private:
    template <typename Parser, typename Take>
    bool load(std::string const& path, char const* lastResort, Take take);

    void logBanner();
    void startXML();
    void stopXML();
    void loadConfiguration();
    void loadAllConversions();
    void openClient();
    void startObserver();
    void stopObserver();
    void convertAndDispatch(FrameDriver::Conversion::TemplateConversionCollection& conversions,
                            std::string const& text);

    // One for each kind of result line.
    struct ResultKind;
    void dispatchFID(std::string const& line);
    void dispatchFrameResult(std::string const& line);
    void dispatchSID(std::string const& line);
    void dispatchContext(std::string const& line);
    void dispatchTID(std::string const& line);
    void dispatchDFID(std::string const& line);

    // Replaced and read atomically: a FID of the driver's own may still want to pause the
    // observer while the host's thread takes it down.
    std::shared_ptr<FrameConnectionObserver> observer;
    std::future<void> observerGone;
    std::atomic<bool> stateReady{false};
    FrameDriver::Tools::Settings settings;
    FrameDriver::Tools::Manifest manifest;
    FrameDriver::Conversion::CPLMarshaller cplMarshaller;
    FrameDriver::Conversion::TemplateConversionCollection issueConversions;
    FrameDriver::Conversion::FIDMarshaller fidMarshaller;
    FrameDriver::Conversion::SIDMarshaller sidMarshaller;
    FrameDriver::Conversion::TIDMarshaller tidMarshaller;
    FrameDriver::Conversion::DIDMarshaller didMarshaller;
    FrameDriver::Conversion::TemplateConversionCollection fidConversions;
    FrameDriver::Template::ContextStore context;
    FrameDriver::Conversion::ContextMarshaller contextMarshaller;
    FrameDriver::CPL::CplClient cplClient;
    Brindlemoor::Utilities::Logging::LogCategory log;

    FrameDriver::Tools::Clock& clock;
    std::string versionText;  // written by initialize before any thread starts
};
