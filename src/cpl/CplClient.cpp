#include "cpl/CplClient.h"

#include "cpl/DataValue.h"
#include "cpl/ListItemStructures.h"
#include "cpl/Message.h"
#include "cpl/SendEventMessage.h"
#include "cpl/SetListMessage.h"
#include "cpl/SetMessage.h"
#include "cpl/Subscription.h"
#include "foundation/Exceptions.h"
#include "platform/logging/LogManager.h"

#include <boost/make_shared.hpp>

#include <cstring>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace FrameDriver::CPL {
namespace {

constexpr eListIDType deviceEventList{6};
constexpr eListIDType cameraSourceList{32};

/// A 0 for a message without a value.
template <typename T>
T const& valueOf(SetMessage const& message) {
    static constexpr T none{};
    return message.getData() == nullptr ? none : *static_cast<T const*>(message.getData());
}

// A "Double" goes this way too, and its first four bytes are what counts.
float floatOf(SetMessage const& message) {
    float value = 0;
    if (message.getData() != nullptr)
        std::memcpy(&value, message.getData(), sizeof value);
    return value;
}

}  // namespace

// The lock isn't fair: a thread that sends one message behind the other has it back before a
// thread that spins and yields looks again. Each send on a slow frame keeps it for up to the
// time-out, and a host that stops its driver would wait for as long as anybody sends.
class CplClient::Turn {
  public:
    explicit Turn(CplClient& owner) : guard(owner.lock, std::defer_lock) {
        ++owner.turns;
        guard.lock();
        --owner.turns;
    }

  private:
    std::unique_lock<Tools::SpinMutex> guard;
};

CplClient::CplClient() : CplClient("") {}

// The library's name is fixed; `clientName` reaches it with `open` alone.
CplClient::CplClient(std::string const& name)
    : clientName(name),
      client("cplclient"),
      dispatcher(boost::make_shared<IssueDispatcher>()),
      log(Brindlemoor::Utilities::Logging::LogManager::getInstance()->getCategory(
          "Tavrine_Frame_Driver")) {}

void CplClient::setClientName(std::string const& name) {
    std::lock_guard const guard(lock);
    clientName = name;
}

void CplClient::setSendTimeOut(int milliseconds) { client.setSendTimeOut(milliseconds); }

void CplClient::addIssueHandler(IssueHandler* handler) {
    std::lock_guard const guard(lock);
    dispatcher->addHandler(handler);
}

bool CplClient::open(char const* host, unsigned short port) {
    std::lock_guard const guard(lock);
    client.setName(clientName);
    client.open(host, port);
    dispatcher->setCallbackId(client.registerCallback(dispatcher, 0));
    return true;
}

bool CplClient::connect(char const* host, unsigned short port) {
    Turn const turn(*this);
    return client.connect(host, port);
}

bool CplClient::disconnect() {
    Turn const turn(*this);
    bool const result = client.disconnect();
    log.getInfoStream() << "CPL client disconnect";
    return result;
}

void CplClient::close() {
    Turn const turn(*this);
    client.unregisterCallback(dispatcher->getCallbackId());
    client.close();
}

ClientConnectionState CplClient::getConnectionState() const { return client.getConnectionState(); }

void CplClient::cancelAllSubscriptions() {
    std::lock_guard const guard(lock);
    client.cancelSubscriptions(eUnsubscribeAll, eParameterService, 0);
}

// No guard: after an exception the lock stays held, see the header.
void CplClient::send(Message const* message) {
    while (turns.load(std::memory_order_relaxed) != 0)
        std::this_thread::yield();
    lock.lock();
    switch (message->getType()) {
    case eSendEventMessage:
        sendEvent(static_cast<SendEventMessage const&>(*message));
        break;
    case eSetMessage:
        sendSet(static_cast<SetMessage const&>(*message));
        break;
    case eSubscription:
        subscribe(static_cast<Subscription const&>(*message));
        break;
    case eSetListMessage:
        sendSetList(static_cast<SetListMessage const&>(*message));
        break;
    default:
        break;
    }
    lock.unlock();
}

void CplClient::sendEvent(SendEventMessage const& message) const {
    client.event(message.getEid(), message.getDid(), message.getData(),
                 static_cast<short>(message.getSize()), 0);
}

void CplClient::sendSet(SetMessage const& message) const {
    auto const set = [&](auto const& value) {
        client.set(message.getPid(), message.getDid(), message.getFlag(), value, 0);
    };
    switch (dataTypeRow(message.getDataType()).sent) {
    case Form::int16:
        return set(valueOf<short>(message));
    case Form::int32:
        return set(valueOf<int>(message));
    case Form::uint16:
        return set(valueOf<unsigned short>(message));
    case Form::uint32:
        return set(valueOf<unsigned int>(message));
    case Form::boolean:
        return set(valueOf<bool>(message));
    case Form::float32:
        return set(floatOf(message));
    case Form::text:
        return set(static_cast<char const*>(message.getData()));
    default:
        throw ErrorManagement::Exception::IllegalArgumentException(
            "The set message provided carries data of an unknown type.");
    }
}

void CplClient::sendSetList(SetListMessage const& message) {
    auto const setList = [&](auto const& item) {
        client.setList(message.getAction(), message.getLid(), message.getDid(), message.getNumber(),
                       item, 0);
    };
    if (message.getLid() == deviceEventList)
        setList(toDeviceEventListItem(message.viewItem()));
    else if (message.getLid() == cameraSourceList)
        setList(toCameraSourceListItem(message.viewItem()));
}

bool CplClient::subscribe(Subscription const& subscription) const {
    switch (subscription.getKind()) {
    case eParameterSubscription:
        return subscribeParameter(static_cast<ParameterSubscription const&>(subscription));
    case eListSubscription:
        return subscribeList(static_cast<ListSubscription const&>(subscription));
    case eBatchSubscription:
        return subscribeBatch(static_cast<BatchSubscription const&>(subscription));
    default:
        return false;
    }
}

bool CplClient::subscribeParameter(ParameterSubscription const& subscription) const {
    return client.subscribe(subscription.getPid(), subscription.getDid(),
                            dispatcher->getCallbackId(), subscription.getFlag(), 0, 0) == eStatusOk;
}

bool CplClient::subscribeList(ListSubscription const& subscription) const {
    return client.subscribe(subscription.getLid(), subscription.getNumber(), subscription.getDid(),
                            dispatcher->getCallbackId(), subscription.getFlag(), 0, 0) == eStatusOk;
}

// Whatever the batch's own flag says, its parameters come beside the client's other ones.
bool CplClient::subscribeBatch(BatchSubscription const& batch) const {
    std::vector<std::pair<PIDType, unsigned int>> parameters;
    parameters.reserve(batch.viewSubscriptions().size());
    for (Subscription const* const member : batch.viewSubscriptions()) {
        if (member == nullptr || member->getKind() != eParameterSubscription)
            continue;
        auto const& parameter = static_cast<ParameterSubscription const&>(*member);
        parameters.emplace_back(parameter.getPid(), parameter.getDid());
    }
    return client.subscribe(parameters, dispatcher->getCallbackId(), eSubscribeAppend, 0, 0) ==
           eStatusOk;
}

}  // namespace FrameDriver::CPL
