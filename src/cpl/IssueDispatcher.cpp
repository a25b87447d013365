#include "cpl/IssueDispatcher.h"

#include "cpl/DataValue.h"
#include "cpl/Issue.h"
#include "cpl/ListItemDecoder.h"
#include "cpl/ListLayouts.h"
#include "cpl/PayloadReader.h"
#include "platform/cplclient/CPLTypes.h"
#include "platform/logging/LogManager.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

namespace FrameDriver::CPL {
namespace {

/// What stands in for a value that isn't wholly inside its record.
constexpr std::uint64_t zero = 0;

/// A copy of the record's value, for the kinds that an issue owns. Others stay where they are.
void* takeValue(CplParameterMessage& message, bool complete) {
    DataTypeRow const& row = dataTypeRow(message.dataType);
    if (row.held == Form::text) {
        std::string_view const bytes(reinterpret_cast<char*>(message.value()), message.length);
        return makeText(bytes.substr(0, bytes.find('\0')));
    }
    void const* const value = complete ? message.value() : static_cast<void const*>(&zero);
    return row.owned ? copyValue(value, message.dataType) : const_cast<void*>(value);
}

}  // namespace

// A callback under way. It counts itself before it looks whether the door is shut, and `shut`
// shuts it before it counts: in this order at least one of them sees the other.
class IssueDispatcher::Visit {
  public:
    explicit Visit(IssueDispatcher& visited) : dispatcher(visited) {
        ++dispatcher.visits;
        dispatcher.visitor = std::this_thread::get_id();
    }
    Visit(Visit const&) = delete;
    Visit& operator=(Visit const&) = delete;
    ~Visit() {
        dispatcher.visitor = std::thread::id();
        --dispatcher.visits;
    }
    bool welcome() const { return !dispatcher.isShut; }

  private:
    IssueDispatcher& dispatcher;
};

void IssueDispatcher::shut() {
    isShut = true;
    while (visits != 0 && visitor.load() != std::this_thread::get_id())
        std::this_thread::yield();
}

IssueDispatcher::IssueDispatcher()
    : log(Brindlemoor::Utilities::Logging::LogManager::getInstance()->getCategory(
          "Tavrine_Frame_Driver")) {}

void IssueDispatcher::parameterUpdate(CplParameterMessage* message, void*,
                                      std::uint32_t const* callback, void*) {
    Visit const visit(*this);
    if (!visit.welcome() || !serves(callback))
        return;
    // In place, so that whatever reads the record after us finds the string's end.
    if (message->dataType == String)
        message->value()[message->length] = '\0';
    dispatchParameter(*message, false);
}

void IssueDispatcher::parameterReply(CplParameterMessage* message, void*,
                                     std::uint32_t const* callback, void*) {
    Visit const visit(*this);
    if (visit.welcome() && serves(callback) && message->serviceId == eParameterService)
        dispatchParameter(*message, true);
}

void IssueDispatcher::dispatchParameter(CplParameterMessage& message, bool marked) {
    // The text form is what reads most of a value; of a "Double" that is only its half.
    bool const complete = message.length >= sizeOf(dataTypeRow(message.dataType).written);
    if (!complete)
        log.getWarnStream() << "The value of parameter " << message.pid
                            << " is shorter than its type; it counts as 0.";
    ParameterIssue issue(message.pid, message.did, message.dataType, takeValue(message, complete),
                         0);
    if (marked)
        issue.setMarked();
    dispatch(issue);
}

void IssueDispatcher::listUpdate(CplListMessage* message, void*) {
    Visit const visit(*this);
    if (!visit.welcome() || message->serviceId != eListService || message->payloadLength == 0 ||
        message->payload == nullptr)
        return;
    PayloadReader payload(message->payload, message->payloadLength);
    std::int16_t const lid = payload.readInt16();
    std::uint16_t const number = payload.readUInt16();
    std::uint32_t const did = payload.readUInt32();
    std::span<ListField const> const fields = listFields(lid);
    for (unsigned left = message->itemCount; left != 0; --left) {
        ListItem item;
        if (!decodeListItem(payload, fields, item))
            break;
        ListIssue issue(lid, did, std::move(item), number);
        dispatch(issue);
    }
    if (payload.ranShort())
        log.getWarnStream() << "The payload of list " << lid << " ends inside its "
                            << message->itemCount << " items.";
}

// Nothing is caught: an issue on this stack ends with the exception too.
void IssueDispatcher::dispatch(Issue& issue) {
    for (IssueHandler* const handler : handlers)
        handler->handleIssue(&issue);
}

void IssueDispatcher::removeHandler(IssueHandler* handler) {
    auto const found = std::ranges::find(handlers, handler);
    if (found != handlers.end())
        handlers.erase(found);
}

}  // namespace FrameDriver::CPL
