// The stand-in for the closed client library: the calls of the contract on top of one
// connection at a time.
#include "platform/cplclient/CPLClient.h"

#include "platform/cplclient/CallbackThread.h"
#include "platform/cplclient/ClientTimings.h"
#include "platform/cplclient/Connection.h"
#include "platform/cplclient/wire/ByteWriter.h"
#include "platform/cplclient/wire/Messages.h"
#include "platform/logging/LogManager.h"

#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <memory>
#include <mutex>
#include <system_error>

namespace {

enum WireTag : std::uint16_t {
    tagShort,
    tagInt,
    tagUShort,
    tagUInt,
    tagBool,
    tagFloat,
    tagText = 7
};

auto log() {
    return Brindlemoor::Utilities::Logging::LogManager::getInstance()->getCategory("CPLClient");
}

/// Runs what starts a thread; false, and a line in the log, if there is none to be had.
bool hasThread(auto start) {
    try {
        start();
        return true;
    } catch (std::system_error const& error) {
        log().getErrorStream() << "no thread is to be had: " << error.code().message();
        return false;
    }
}

bool readableAddress(std::string const& text) {
    in_addr parsed{};
    return text.empty() || inet_pton(AF_INET, text.c_str(), &parsed) == 1;
}

std::string fieldsOf(DeviceEventListItem const& item) {
    std::string bytes;
    cplwire::ByteWriter out(bytes);
    out.u32(item.markInTime);
    out.terminated(item.clipName);
    return bytes;
}

std::string fieldsOf(CameraSourceListItem const& item) {
    std::string bytes;
    cplwire::ByteWriter out(bytes);
    auto const number = [&](std::uint32_t value) { out.u16(static_cast<std::uint16_t>(value)); };
    number(item.cameraId);
    out.terminated(item.cameraName);
    out.terminated(item.headType);
    number(item.aspectRatio);
    number(item.videoMode);
    for (bool const flag :
         {item.connected, item.colorBarsEnabled, item.autoIrisEnabled, item.autoBlackEnabled})
        out.u8(flag);
    number(item.filter);
    number(item.sceneFile);
    for (bool const flag : {item.redTally, item.yellowTally, item.greenTally})
        out.u8(flag);
    number(item.suiteId);
    return bytes;
}

}  // namespace

ClientTimings& timingsOfNewClients() {
    static ClientTimings timings;
    return timings;
}

struct CPLClient::Impl {
    explicit Impl(std::string const& clientName) : name(clientName) {}

    // Opens, connects, disconnects and closes one at a time.
    std::mutex lifecycle;
    ConnectionEnds ends;  // guarded by lifecycle: the local end

    std::mutex lock;  // held for a look only, guards the three below
    std::string name;
    bool isOpen = false;  // written under both locks
    std::shared_ptr<Connection> connection;

    std::atomic<int> sendTimeOut{500};
    std::atomic<ClientConnectionState> state{eNotConnected};
    ClientTimings const timings = timingsOfNewClients();
    std::shared_ptr<CallbackThread> callbacks =
        std::make_shared<CallbackThread>(timings.queueBytes);

    std::string currentName() {
        std::lock_guard const guard(lock);
        return name;
    }

    std::shared_ptr<Connection> replaceConnection(std::shared_ptr<Connection> next) {
        std::lock_guard const guard(lock);
        std::swap(connection, next);
        return next;
    }

    // The lifecycle lock is held.
    bool drop() {
        auto const last = replaceConnection(nullptr);
        if (last)
            last->close();
        callbacks->clear();
        state = eNotConnected;
        return last != nullptr;
    }

    template <typename Message>
    Status request(Message const& message) {
        std::unique_lock guard(lock);
        auto const held = connection;
        auto const without = isOpen ? eStatusNotConnected : eStatusClosed;
        guard.unlock();
        if (!held)
            return without;
        return held->request(message, std::chrono::milliseconds(sendTimeOut.load()));
    }

    Status set(PIDType pid, unsigned did, eCpl2SetType flag, WireTag tag, std::string_view value) {
        return request(cplwire::Set{pid, did, flag, tag, value});
    }

    Status setNumber(PIDType pid, unsigned did, eCpl2SetType flag, WireTag tag, auto append) {
        std::string bytes;  // four bytes at most: no allocation
        append(cplwire::ByteWriter(bytes));
        return set(pid, did, flag, tag, bytes);
    }
};

CPLClient::CPLClient(std::string const& name) : impl(std::make_unique<Impl>(name)) {}

CPLClient::~CPLClient() {
    close();
    impl->callbacks->end();
}

void CPLClient::setName(std::string const& name) {
    std::lock_guard const guard(impl->lock);
    impl->name = name;
}

void CPLClient::setSendTimeOut(int const& milliseconds) { impl->sendTimeOut = milliseconds; }

bool CPLClient::open(char const* host, unsigned short const& port) const {
    std::lock_guard const turn(impl->lifecycle);
    std::string const address = host ? host : "";
    if (impl->isOpen)
        return false;
    if (!readableAddress(address)) {
        log().getErrorStream() << "the local address '" << address << "' can't be read";
        return false;
    }
    if (!hasThread([this] { impl->callbacks->start(); }))
        return false;
    std::lock_guard const guard(impl->lock);
    impl->ends.localHost = address;
    impl->ends.localPort = port;
    impl->isOpen = true;
    return true;
}

bool CPLClient::connect(char const* host, unsigned short const& port) const {
    std::lock_guard const turn(impl->lifecycle);
    if (!impl->isOpen || impl->state != eNotConnected)
        return false;
    auto ends = impl->ends;
    ends.host = host ? host : "";
    ends.port = port;
    auto const fresh = std::make_shared<Connection>(impl->timings, impl->callbacks, impl->state);
    if (!fresh->open(ends, impl->currentName()))
        return false;
    // In this order: who sees the state "connected" can send.
    impl->replaceConnection(fresh);
    if (hasThread([&] { fresh->start(); }))
        return true;
    impl->drop();
    return false;
}

bool CPLClient::disconnect() const {
    std::lock_guard const turn(impl->lifecycle);
    return impl->drop();
}

bool CPLClient::close() const {
    std::lock_guard const turn(impl->lifecycle);
    {
        std::lock_guard const guard(impl->lock);
        if (!impl->isOpen)
            return false;
        impl->isOpen = false;
    }
    impl->drop();
    impl->callbacks->stop();
    return true;
}

ClientConnectionState CPLClient::getConnectionState() const { return impl->state; }

unsigned short CPLClient::registerCallback(boost::shared_ptr<CCallback> callback,
                                           long const& /*word*/) const {
    return impl->callbacks->add(std::move(callback));
}

void CPLClient::unregisterCallback(unsigned short const& identifier) {
    impl->callbacks->remove(identifier);
}

Status CPLClient::subscribe(PIDType const& pid, unsigned int const& did,
                            unsigned short const& callback, eSubscribeFlags const& flag,
                            unsigned short const& /*word*/, short const& /*other*/) const {
    return impl->request(cplwire::SubscribeParameter{pid, did, callback, flag});
}

Status CPLClient::subscribe(eListIDType const& lid, unsigned short const& number,
                            unsigned int const& did, unsigned short const& callback,
                            eSubscribeFlags const& flag, unsigned short const& /*word*/,
                            short const& /*other*/) const {
    return impl->request(cplwire::SubscribeList{lid, number, did, callback, flag});
}

Status CPLClient::subscribe(std::vector<std::pair<PIDType, unsigned int>> const& parameters,
                            unsigned short const& callback, eSubscribeFlags const& flag,
                            unsigned short const& /*word*/, short const& /*other*/) const {
    cplwire::SubscribeBatch batch{callback, flag, {}};
    batch.parameters.assign(parameters.begin(), parameters.end());
    return impl->request(batch);
}

Status CPLClient::cancelSubscriptions(eUnsubscribeFlags const& flags,
                                      eCplServiceIDType const& service,
                                      unsigned short const& /*word*/) const {
    return impl->request(cplwire::Cancel{flags, service});
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      bool const& value, unsigned short const& /*word*/) const {
    return impl->setNumber(pid, did, flag, tagBool, [&](auto out) { out.u8(value); });
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      short const& value, unsigned short const& /*word*/) const {
    return impl->setNumber(pid, did, flag, tagShort,
                           [&](auto out) { out.u16(static_cast<std::uint16_t>(value)); });
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      unsigned short const& value, unsigned short const& /*word*/) const {
    return impl->setNumber(pid, did, flag, tagUShort, [&](auto out) { out.u16(value); });
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      int const& value, unsigned short const& /*word*/) const {
    return impl->setNumber(pid, did, flag, tagInt, [&](auto out) { out.i32(value); });
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      unsigned int const& value, unsigned short const& /*word*/) const {
    return impl->setNumber(pid, did, flag, tagUInt, [&](auto out) { out.u32(value); });
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      float const& value, unsigned short const& /*word*/) const {
    return impl->setNumber(pid, did, flag, tagFloat, [&](auto out) { out.f32(value); });
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      char const* value, unsigned short const& /*word*/) const {
    return impl->set(pid, did, flag, tagText, value ? value : "");
}

Status CPLClient::event(EIDType const& eid, unsigned int const& did, void* data, short const& size,
                        unsigned short const& /*word*/) const {
    auto const length = data && size > 0 ? static_cast<std::size_t>(size) : 0;
    return impl->request(cplwire::Event{eid, did, {static_cast<char const*>(data), length}});
}

Status CPLClient::setList(eListItemAction const& action, eListIDType const& lid,
                          unsigned int const& did, unsigned short const& number,
                          DeviceEventListItem const& item, unsigned short const& /*word*/) {
    return impl->request(cplwire::SetList{action, lid, did, number, item.itemId, fieldsOf(item)});
}

Status CPLClient::setList(eListItemAction const& action, eListIDType const& lid,
                          unsigned int const& did, unsigned short const& number,
                          CameraSourceListItem const& item, unsigned short const& /*word*/) {
    return impl->request(cplwire::SetList{action, lid, did, number, item.itemId, fieldsOf(item)});
}
