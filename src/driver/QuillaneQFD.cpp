#include "driver/QuillaneQFD.h"

#include "cpl/Issue.h"
#include "foundation/TextSearch.h"
#include "platform/logging/LogManager.h"

#include <array>
#include <string_view>

using Brindlemoor::Utilities::Logging::LogManager;
using FrameDriver::Conversion::TemplateConversionCollection;
using FrameDriver::Tools::cut;

namespace {

struct SourceOfWidget {
    unsigned widget;
    char const* source;
};

// Which controls turn, by the widget's number alone. The gaps are the panel's.
constexpr std::array<SourceOfWidget, 7> incrementSources{{{110, "KNOB"},
                                                          {307, "TRIM"},
                                                          {310, "KNOB"},
                                                          {510, "KNOB"},
                                                          {611, "JOYSTICK"},
                                                          {710, "KNOB"},
                                                          {910, "KNOB"}}};

void addSource(FIDParameterList& parameters, UniqueWidgetID widget) {
    for (auto const& row : incrementSources)
        if (row.widget == widget.widget) {
            parameters.add("SOURCE", row.source);
            return;
        }
}

}  // namespace

QuillaneQFD::QuillaneQFD(FrameDriver::Tools::Clock& driverClock,
                         FrameDriver::Tools::Clock* timeClientClock)
    : log(LogManager::getInstance()->getCategory("Tavrine_Frame_Driver")),
      clock(driverClock),
      clockOfTime(timeClientClock) {}

QuillaneQFD::~QuillaneQFD() {
    monkeyTest.stop(nullptr);
    monkeyTest.waitUntilEnded(boost::posix_time::pos_infin);
    if (auto const running = std::atomic_exchange(&observer, {}))
        running->stop(nullptr);
    if (observerGone.valid())
        observerGone.wait();
    if (timeClient.exchange(nullptr))
        destroyTimeClient();
    cplClient.cancelAllSubscriptions();
    cplClient.close();
    cplClient.stopIssues();
}

bool QuillaneQFD::handleFID(std::string const& name, FIDParameterList const& parameters) {
    FIDParameterList copy(parameters);
    copy.removeParameter("AC");
    if (cut(name, name.size() - 4) == ".INC")
        addSource(copy, parameters.getSourceWidget());
    processFID(name, copy);
    return true;
}

void QuillaneQFD::processFID(std::string const& name, FIDParameterList const& parameters) {
    convertAndDispatch(fidConversions, fidMarshaller.marshal(name, parameters));
}

void QuillaneQFD::handleIssue(FrameDriver::CPL::Issue* issue) { processIssue(issue); }

// An issue that could not be made for want of memory arrives as null, and is passed over.
void QuillaneQFD::processIssue(FrameDriver::CPL::Issue const* issue) {
    if (issue)
        convertAndDispatch(issueConversions, cplMarshaller.marshal(issue));
}

void QuillaneQFD::convertAndDispatch(TemplateConversionCollection& conversions,
                                     std::string const& text) {
    auto const lines = conversions.convert(text, &context);
    if (lines.empty())
        log.getDebugStream() << "No conversion found for: " << text;
    for (auto const& line : lines)
        dispatchResult(line);
}

void QuillaneQFD::sendSID(std::string const& name, std::string const& value) {
    if (stateReady && functions)
        functions->setState(name, value);
}
