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
#include "time/FrameLink.h"
#include "time/TimeClient.h"
#include "tools/MonkeyTestRunner.h"
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
/// the process. Destroying one (tests do) waits for its observer's, its time client's and its
/// monkey's threads. Errors: start-up never fails as a whole, each step logs what it has to do
/// without. On the road of a FID or an issue nothing is caught.
class QuillaneQFD : public QFDBase,
                    public FrameDriver::CPL::IssueHandler,
                    public FIDHandler,
                    public FrameLink {
  public:
    /// The clock serves the observer's sleeps and the time of the panel's reboot indication; the
    /// other one the time client's sleeps, which are the machine's if there is none.
    explicit QuillaneQFD(
        FrameDriver::Tools::Clock& driverClock = FrameDriver::Tools::Clock::system(),
        FrameDriver::Tools::Clock* timeClientClock = nullptr);
    ~QuillaneQFD() override;

    void initialize() override;
    void deinitialize() override;

    /// The entry for every FID. Always true. Throws std::out_of_range, "invalid string
    /// position", for a name of fewer than four characters.
    bool handleFID(std::string const& name, FIDParameterList const& parameters) override;
    void handleIssue(FrameDriver::CPL::Issue* issue) override;

    // The connection's lifecycle, driven by the observer.
    ClientConnectionState getConnectionState() const override {
        return cplClient.getConnectionState();
    }
    void connectToFrame();
    void onFrameConnected();
    void subscribeToFrame();
    void disconnectFromFrame();
    void resetPanel();
    void registerFIDs();
    /// The address in use; empty if the settings have none.
    std::string getFrameAddress() const override;
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
    /// Loads the monkey's files, each time again, and starts it; or asks it to end and goes on.
    void enableMonkeyTest(bool enable);

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
    bool loadMonkeyTest(std::string const& path);

  private:
    template <typename Parser, typename Take>
    bool load(std::string const& path, char const* lastResort, Take take);

    void logBanner();
    void startXML();
    void stopXML();
    void loadConfiguration();
    void loadAllConversions();
    std::string localAddress() const;
    void openClient();
    void startObserver();
    void stopObserver();
    void createClientOfTime();
    void startClientOfTime();
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

    // One for each FID of the driver's own.
    struct OwnFID;
    void setFrameAddress(std::string const& name, FIDParameterList const& parameters);
    void returnMemoryRecall(std::string const& name, FIDParameterList const& parameters);
    void switchMonkeyTest(std::string const& name, FIDParameterList const& parameters);

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
    FrameDriver::Tools::MonkeyTestRunner monkeyTest;
    Brindlemoor::Utilities::Logging::LogCategory log;

    // The process's one, if this driver made it; it goes with the process, or with this driver.
    std::atomic<::timeClient*> timeClient{nullptr};
    TimedSyncEvent timeClientStarted{60000};

    FrameDriver::Tools::Clock& clock;
    FrameDriver::Tools::Clock* const clockOfTime;
    std::string versionText;  // written by initialize before any thread starts
};
