#include "tests/support/cplclient/RecordedClient.h"

#include "platform/cplclient/CPLClient.h"

#include <boost/shared_ptr.hpp>

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace FrameDriver::Testing {

struct RecordedClient::State {
    using Callbacks = std::vector<std::pair<unsigned short, boost::shared_ptr<CCallback>>>;

    std::string name;
    mutable std::mutex mutex;
    mutable std::condition_variable recorded;
    std::vector<std::string> lines;
    std::map<std::string, int> results;
    std::function<void(std::string const&)> hook;
    ClientConnectionState connection = eNotConnected;
    Callbacks callbacks;
    unsigned short lastIdentifier = 0;

    /// Keeps the line and gives the operation's result.
    int record(std::string const& operation, std::string const& arguments, int usual) {
        std::string const line = operation + "(" + arguments + ")";
        int result = usual;
        std::function<void(std::string const&)> toCall;
        {
            std::lock_guard const guard(mutex);
            lines.push_back(line);
            // Overloads print their type; results are per operation.
            auto const found = results.find(operation.substr(0, operation.find('<')));
            if (found != results.end())
                result = found->second;
            toCall = hook;
        }
        recorded.notify_all();
        if (toCall)
            toCall(line);
        return result;
    }

    Callbacks present() const {
        std::lock_guard const guard(mutex);
        return callbacks;
    }
};

namespace {

std::mutex& allMutex() {
    static std::mutex mutex;
    return mutex;
}

std::vector<RecordedClient*>& allClients() {
    static std::vector<RecordedClient*> clients;
    return clients;
}

template <typename Call>
bool deliver(RecordedClient::State& state, unsigned short identifier, Call call) {
    auto const callbacks = state.present();
    for (auto const& [own, callback] : callbacks) {
        std::uint32_t const named = identifier == 0 ? own : identifier;
        call(*callback, &named);
    }
    return !callbacks.empty();
}

}  // namespace

RecordedClient::RecordedClient(std::string const& clientName) : state(std::make_unique<State>()) {
    state->name = clientName;
    std::lock_guard const guard(allMutex());
    allClients().push_back(this);
}

RecordedClient::~RecordedClient() {
    std::lock_guard const guard(allMutex());
    std::erase(allClients(), this);
}

std::vector<RecordedClient*> RecordedClient::all() {
    std::lock_guard const guard(allMutex());
    return allClients();
}

RecordedClient& RecordedClient::latest() {
    std::lock_guard const guard(allMutex());
    if (allClients().empty())
        throw std::logic_error("there is no CPLClient");
    return *allClients().back();
}

std::string const& RecordedClient::name() const { return state->name; }

std::vector<std::string> RecordedClient::calls() const {
    std::lock_guard const guard(state->mutex);
    return state->lines;
}

std::vector<std::string> RecordedClient::takeCalls() {
    std::lock_guard const guard(state->mutex);
    return std::exchange(state->lines, {});
}

bool RecordedClient::waitForCall(std::string const& line,
                                 std::chrono::milliseconds patience) const {
    std::unique_lock guard(state->mutex);
    return state->recorded.wait_for(guard, patience,
                                    [&] { return std::ranges::count(state->lines, line) > 0; });
}

bool RecordedClient::waitForCalls(std::size_t count, std::chrono::milliseconds patience) const {
    std::unique_lock guard(state->mutex);
    return state->recorded.wait_for(guard, patience, [&] { return state->lines.size() >= count; });
}

void RecordedClient::setResult(std::string const& operation, int result) {
    std::lock_guard const guard(state->mutex);
    state->results[operation] = result;
}

void RecordedClient::setConnectionState(ClientConnectionState connection) {
    std::lock_guard const guard(state->mutex);
    state->connection = connection;
}

void RecordedClient::onCall(std::function<void(std::string const&)> hook) {
    std::lock_guard const guard(state->mutex);
    state->hook = std::move(hook);
}

std::vector<unsigned short> RecordedClient::callbacks() const {
    std::vector<unsigned short> identifiers;
    for (auto const& [identifier, callback] : state->present())
        identifiers.push_back(identifier);
    return identifiers;
}

bool RecordedClient::parameterUpdate(ParameterRecord& record, unsigned short identifier) {
    return deliver(*state, identifier, [&](CCallback& callback, std::uint32_t const* named) {
        callback.parameterUpdate(record.message(), nullptr, named, nullptr);
    });
}

bool RecordedClient::parameterReply(ParameterRecord& record, unsigned short identifier) {
    return deliver(*state, identifier, [&](CCallback& callback, std::uint32_t const* named) {
        callback.parameterReply(record.message(), nullptr, named, nullptr);
    });
}

bool RecordedClient::listUpdate(ListRecord& record) {
    return deliver(*state, 0, [&](CCallback& callback, std::uint32_t const*) {
        callback.listUpdate(record.message(), nullptr);
    });
}

}  // namespace FrameDriver::Testing

using FrameDriver::Testing::RecordedClient;

struct CPLClient::Impl {
    RecordedClient recorded;

    explicit Impl(std::string const& name) : recorded(name) {}

    RecordedClient::State& state() { return recorded.hidden(); }

    bool answer(std::string const& operation, std::string const& arguments) {
        return state().record(operation, arguments, 1) != 0;
    }
    Status status(std::string const& operation, std::string const& arguments) {
        return static_cast<Status>(state().record(operation, arguments, eStatusOk));
    }
    void connection(ClientConnectionState value) { recorded.setConnectionState(value); }
};

namespace {

std::string quoted(char const* text) {
    return text == nullptr ? "null" : "\"" + std::string(text) + "\"";
}

template <typename... Parts>
std::string join(Parts const&... parts) {
    std::ostringstream out;
    out << std::boolalpha;
    (out << ... << parts);
    return out.str();
}

std::string hex(unsigned int number) {
    std::ostringstream out;
    out << std::hex << number;
    return out.str();
}

std::string subscriptionTail(unsigned short callback, eSubscribeFlags flag, unsigned short word,
                             short other) {
    return join("callback=", callback, ", flag=", flag, ", ", word, ", ", other);
}

template <typename T>
std::string setArguments(PIDType pid, unsigned int did, eCpl2SetType flag, T const& value,
                         unsigned short word) {
    return join("pid=", pid, ", did=", hex(did), ", flag=", flag, ", value=", value, ", ", word);
}

std::string itemText(DeviceEventListItem const& item) {
    return join("DeviceEventListItem{itemId=", item.itemId, ", clipName=\"", item.clipName,
                "\", markInTime=", item.markInTime, "}");
}

std::string itemText(CameraSourceListItem const& item) {
    return join("CameraSourceListItem{itemId=", item.itemId, ", cameraId=", item.cameraId,
                ", cameraName=\"", item.cameraName, "\", headType=\"", item.headType,
                "\", aspectRatio=", item.aspectRatio, ", videoMode=", item.videoMode,
                ", connected=", item.connected, ", colorBarsEnabled=", item.colorBarsEnabled,
                ", autoIrisEnabled=", item.autoIrisEnabled,
                ", autoBlackEnabled=", item.autoBlackEnabled, ", filter=", item.filter,
                ", sceneFile=", item.sceneFile, ", redTally=", item.redTally,
                ", yellowTally=", item.yellowTally, ", greenTally=", item.greenTally,
                ", suiteId=", item.suiteId, "}");
}

template <typename Item>
std::string setListArguments(eListItemAction action, eListIDType lid, unsigned int did,
                             unsigned short number, Item const& item, unsigned short word) {
    return join("action=", action, ", lid=", lid, ", did=", hex(did), ", number=", number, ", ",
                itemText(item), ", ", word);
}

}  // namespace

CPLClient::CPLClient(std::string const& name) : impl(std::make_unique<Impl>(name)) {}
CPLClient::~CPLClient() = default;

void CPLClient::setName(std::string const& name) { impl->answer("setName", quoted(name.c_str())); }

void CPLClient::setSendTimeOut(int const& milliseconds) {
    impl->answer("setSendTimeOut", join(milliseconds));
}

bool CPLClient::open(char const* host, unsigned short const& port) const {
    return impl->answer("open", join(quoted(host), ", ", port));
}

bool CPLClient::connect(char const* host, unsigned short const& port) const {
    bool const connected = impl->answer("connect", join(quoted(host), ", ", port));
    if (connected)
        impl->connection(eConnected);
    return connected;
}

bool CPLClient::disconnect() const {
    impl->connection(eNotConnected);
    return impl->answer("disconnect", "");
}

bool CPLClient::close() const {
    impl->connection(eNotConnected);
    return impl->answer("close", "");
}

ClientConnectionState CPLClient::getConnectionState() const {
    std::lock_guard const guard(impl->state().mutex);
    return impl->state().connection;
}

unsigned short CPLClient::registerCallback(boost::shared_ptr<CCallback> callback,
                                           long const& word) const {
    RecordedClient::State& state = impl->state();
    unsigned short identifier;
    {
        std::lock_guard const guard(state.mutex);
        identifier = ++state.lastIdentifier;
        state.callbacks.emplace_back(identifier, std::move(callback));
    }
    state.record("registerCallback", join(word), 0);
    return identifier;
}

void CPLClient::unregisterCallback(unsigned short const& identifier) {
    RecordedClient::State& state = impl->state();
    {
        std::lock_guard const guard(state.mutex);
        std::erase_if(state.callbacks,
                      [&](auto const& entry) { return entry.first == identifier; });
    }
    state.record("unregisterCallback", join(identifier), 0);
}

Status CPLClient::subscribe(PIDType const& pid, unsigned int const& did,
                            unsigned short const& callback, eSubscribeFlags const& flag,
                            unsigned short const& word, short const& other) const {
    return impl->status("subscribe", join("pid=", pid, ", did=", hex(did), ", ",
                                          subscriptionTail(callback, flag, word, other)));
}

Status CPLClient::subscribe(eListIDType const& lid, unsigned short const& number,
                            unsigned int const& did, unsigned short const& callback,
                            eSubscribeFlags const& flag, unsigned short const& word,
                            short const& other) const {
    return impl->status("subscribe", join("lid=", lid, ", number=", number, ", did=", hex(did),
                                          ", ", subscriptionTail(callback, flag, word, other)));
}

Status CPLClient::subscribe(std::vector<std::pair<PIDType, unsigned int>> const& parameters,
                            unsigned short const& callback, eSubscribeFlags const& flag,
                            unsigned short const& word, short const& other) const {
    std::string pairs;
    for (auto const& [pid, did] : parameters)
        pairs += join(pairs.empty() ? "" : ", ", pid, ":", hex(did));
    return impl->status("subscribe",
                        join("[", pairs, "], ", subscriptionTail(callback, flag, word, other)));
}

Status CPLClient::cancelSubscriptions(eUnsubscribeFlags const& flags,
                                      eCplServiceIDType const& service,
                                      unsigned short const& word) const {
    return impl->status("cancelSubscriptions",
                        join("flags=", flags, ", service=", service, ", ", word));
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      bool const& value, unsigned short const& word) const {
    return impl->status("set<bool>", setArguments(pid, did, flag, value, word));
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      short const& value, unsigned short const& word) const {
    return impl->status("set<short>", setArguments(pid, did, flag, value, word));
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      unsigned short const& value, unsigned short const& word) const {
    return impl->status("set<unsigned short>", setArguments(pid, did, flag, value, word));
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      int const& value, unsigned short const& word) const {
    return impl->status("set<int>", setArguments(pid, did, flag, value, word));
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      unsigned int const& value, unsigned short const& word) const {
    return impl->status("set<unsigned int>", setArguments(pid, did, flag, value, word));
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      float const& value, unsigned short const& word) const {
    return impl->status("set<float>", setArguments(pid, did, flag, value, word));
}

Status CPLClient::set(PIDType const& pid, unsigned int const& did, eCpl2SetType const& flag,
                      char const* value, unsigned short const& word) const {
    return impl->status("set<char const*>", setArguments(pid, did, flag, quoted(value), word));
}

Status CPLClient::event(EIDType const& eid, unsigned int const& did, void* data, short const& size,
                        unsigned short const& word) const {
    std::string bytes;
    for (int i = 0; i < size; ++i) {
        unsigned const byte = static_cast<unsigned char const*>(data)[i];
        bytes += (i == 0 ? "" : " ") + std::string(byte < 0x10 ? "0" : "") + hex(byte);
    }
    return impl->status("event", join("eid=", eid, ", did=", hex(did), ", data=[", bytes,
                                      "], size=", size, ", ", word));
}

Status CPLClient::setList(eListItemAction const& action, eListIDType const& lid,
                          unsigned int const& did, unsigned short const& number,
                          DeviceEventListItem const& item, unsigned short const& word) {
    return impl->status("setList", setListArguments(action, lid, did, number, item, word));
}

Status CPLClient::setList(eListItemAction const& action, eListIDType const& lid,
                          unsigned int const& did, unsigned short const& number,
                          CameraSourceListItem const& item, unsigned short const& word) {
    return impl->status("setList", setListArguments(action, lid, did, number, item, word));
}
