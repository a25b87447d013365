#include "Studio.h"

#include "sims/frame/ModelFile.h"

using FrameSim::FrameServer;
using FrameSim::FrameServerOptions;
using PanelSim::Heard;
using PanelSim::PanelHost;

namespace FrameDriver::Testing {

Studio::Studio() = default;
Studio::~Studio() = default;

std::unique_ptr<FrameServer> Studio::makeFrame(std::string const& address) {
    FrameServerOptions options;
    options.address = address;
    options.port = 5000;
    options.model = FrameSim::sampleSwitcher();
    return std::make_unique<FrameServer>(std::move(options));
}

std::unique_ptr<PanelHost> Studio::makePanel(int index) const {
    return std::make_unique<PanelHost>(
        PanelSim::PanelHostOptions{QFD_MODULE, installation.path(), index, panelAddress.text()});
}

void Studio::startPanel() {
    panel = makePanel();
    panel->start();
}

void Studio::startBoth() {
    frame->start();
    startPanel();
    ASSERT_TRUE(shows("FRAME.CONNECTED", "ON"));
    // The last item of the lists, so all else that was asked for has come ahead of it.
    ASSERT_TRUE(reads("SOURCE16.NAME", "Remote 2"));
}

testing::AssertionResult Studio::shows(std::string const& sid, std::string const& value) {
    return meets(*panel, Heard::sid, sid, value);
}

testing::AssertionResult Studio::reads(std::string const& tid, std::string const& value) {
    return meets(*panel, Heard::tid, tid, value);
}

testing::AssertionResult Studio::meets(PanelHost& host, Heard kind, std::string const& name,
                                       std::string const& value) {
    PanelSim::Expectation const wanted{kind, name, value, {}};
    if (host.record().wait(wanted, patience))
        return testing::AssertionSuccess();
    auto const is = kind == Heard::sid ? host.record().sid(name) : host.record().tid(name);
    return testing::AssertionFailure()
           << "waited for " << PanelSim::shown(wanted) << "; it is " << is.value_or("not known");
}

void Studio::raise(std::string const& fid, Parameters parameters) {
    raise(*panel, fid, parameters);
}

void Studio::raise(PanelHost& host, std::string const& fid, Parameters parameters) {
    FIDParameterList list;
    for (auto const& [name, value] : parameters)
        list.add(name, value);
    host.raise(fid, list);
}

testing::AssertionResult Studio::frameTells(std::string_view part, std::size_t count) const {
    if (frame->record().waitFor(part, count, patience))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the frame told " << frame->record().count(part) << " of "
                                       << count << " times: " << part;
}

void Studio::operatorSets(std::int32_t pid, std::uint32_t did, std::int64_t value) const {
    auto const outcome = frame->frame().set(
        {pid, did}, 0, FrameSim::Value::ofInteger(FrameSim::DataType::UInt16, value));
    EXPECT_EQ(outcome.cause, "");
}

std::string Studio::frameValue(std::int32_t pid, std::uint32_t did) const {
    auto const value = frame->frame().value({pid, did});
    return value ? FrameSim::shownValue(*value) : "none";
}

}  // namespace FrameDriver::Testing
