#include "sims/frame/ClientSession.h"

#include "platform/cplclient/CPLTypes.h"
#include "sims/frame/WireValue.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace FrameSim {
namespace {

constexpr std::size_t readSize = 65536;
// A list goes out in messages of about this length: far below the protocol's bound, so that one
// more item always fits.
constexpr std::size_t payloadSize = 65536;
constexpr std::chrono::milliseconds arrivalCheck{1};
constexpr Lane connectionLane{Lane::Kind::connection};

/// A value that came with a set, as a line shows it: by its type, or as the bytes it has.
LineField::Content shownBytes(std::optional<Value> const& value, std::string_view bytes) {
    return value ? lineContent(*value) : LineField::Content(std::string(bytes));
}

void addFault(Line& line, std::string_view fault) {
    if (!fault.empty()) {
        line.add("fault", Word{std::string(fault)});
    }
}

}  // namespace

ClientSession::ClientSession(SessionServices& server, std::uint32_t id,
                             ListenPort::Accepted accepted, TimePoint now)
    : services(server),
      number(id),
      socket(std::move(accepted.socket)),
      peer(std::move(accepted.peer)),
      connectedAt(now),
      silent(services.faults.mute) {
    services.record.add(Line{.client = number, .what = "connected"}.add("from", Word{peer}));
}

std::optional<TimePoint> ClientSession::nextDue() const {
    if (silent) {
        return std::nullopt;
    }
    return ending ? endCheck : held.nextDue();
}

Line ClientSession::summary() const {
    Line line{.client = number, .what = "panel"};
    line.add("name", name).add("from", Word{peer});
    line.number("parameters", static_cast<std::int64_t>(parameters.size()));
    line.number("lists", static_cast<std::int64_t>(lists.size()));
    return line;
}

void ClientSession::readSome() {
    if (!wantsToRead()) {
        close("closed by the panel");
        return;
    }
    std::string bytes;
    auto const transfer = receive(socket.get(), bytes, readSize);
    if (transfer.closed) {
        close(transfer.reason.empty() ? "closed by the panel" : "lost: " + transfer.reason);
        return;
    }
    splitter.feed(std::string_view(bytes).substr(0, fromPanel.pass(bytes)));
    handleAll();
    if (fromPanel.isCut()) {
        writeSome(std::chrono::steady_clock::now());
        endIfCut();
    }
}

void ClientSession::handleAll() {
    while (isOpen() && wantsToRead() && services.faults.mayRead()) {
        auto const message = splitter.next();
        if (!message) {
            break;
        }
        auto const type = std::to_string(static_cast<int>(message->type));
        if (!(welcomed ? handle(*message) : handleFirst(*message)) && isOpen()) {
            close("garbage: message of type " + type);
        }
        services.publish(services.frame.takeChanges());
        happening.client = number;
        services.notice(std::exchange(happening, {}));
    }
    if (isOpen() && splitter.broken()) {
        close("garbage: message of impossible length");
    }
}

bool ClientSession::handleFirst(cplwire::RawMessage const& message) {
    auto const hello = message.type == cplwire::Type::Hello
                           ? cplwire::decode<cplwire::Hello>(message.body)
                           : std::nullopt;
    if (!hello || hello->magicNumber != cplwire::magic) {
        return false;
    }
    name = hello->name;
    happening.kind = Happening::Kind::hello;
    services.record.add(received("hello").add("version", hello->protocolVersion).add("name", name));
    if (hello->protocolVersion != cplwire::version) {
        std::string const reason = "this frame speaks version " + std::to_string(cplwire::version);
        send(cplwire::Refusal{cplwire::version, reason}, sent("refusal").add("reason", reason),
             connectionLane, message.sequence);
        writeSome(TimePoint::max());
        close("another version of the protocol");
        return true;
    }
    welcomed = true;
    splitter.setLimit(cplwire::maximumLength);
    auto const version = services.faults.welcomeVersion.value_or(cplwire::version);
    send(cplwire::Welcome{version, services.name},
         sent("welcome").add("version", version).add("name", services.name), connectionLane,
         message.sequence);
    return true;
}

template <typename Message>
bool ClientSession::take(cplwire::RawMessage const& message) {
    auto const decoded = cplwire::decode<Message>(message.body);
    if (decoded) {
        on(*decoded, message.sequence);
    }
    return decoded.has_value();
}

bool ClientSession::handle(cplwire::RawMessage const& message) {
    using cplwire::Type;
    switch (message.type) {
    case Type::Set:
        return take<cplwire::Set>(message);
    case Type::Event:
        return take<cplwire::Event>(message);
    case Type::SetList:
        return take<cplwire::SetList>(message);
    case Type::SubscribeParameter:
        return take<cplwire::SubscribeParameter>(message);
    case Type::SubscribeList:
        return take<cplwire::SubscribeList>(message);
    case Type::SubscribeBatch:
        return take<cplwire::SubscribeBatch>(message);
    case Type::Cancel:
        return take<cplwire::Cancel>(message);
    case Type::Ping:
        return take<cplwire::Ping>(message);
    case Type::Pong:
        return take<cplwire::Pong>(message);
    case Type::Bye:
        return take<cplwire::Bye>(message);
    default:
        return false;
    }
}

void ClientSession::on(cplwire::Set const& message, std::uint32_t sequence) {
    auto const value = valueFromBytes(message.dataType, message.value);
    happening = {Happening::Kind::set, number, message.pid, message.did};
    auto line = received("set");
    line.number("pid", message.pid).device(message.did).number("flag", message.flag);
    line.add("type", Word{typeName(message.dataType)});
    line.add("value", shownBytes(value, message.value));
    services.record.add(std::move(line));
    acknowledge(sequence, value
                              ? services.frame.set({message.pid, message.did}, message.flag, *value)
                              : Outcome{eStatusRefused, "not a value of its type"});
}

void ClientSession::on(cplwire::Event const& message, std::uint32_t sequence) {
    happening = {Happening::Kind::event, number, message.eid, message.did};
    auto line = received("event");
    line.number("eid", message.eid).device(message.did).add("data", std::string(message.data));
    services.record.add(std::move(line));
    acknowledge(sequence, services.frame.event({message.eid, message.did}, message.data));
}

void ClientSession::on(cplwire::SetList const& message, std::uint32_t sequence) {
    auto const* layout = findListLayout(message.lid);
    auto const fields = layout ? readFields(*layout, message.fields) : std::nullopt;
    happening = {Happening::Kind::setlist, number, message.lid, message.did};
    auto line = received("setlist");
    line.number("action", message.action).number("lid", message.lid);
    line.number("number", message.number).device(message.did).number("itemId", message.itemId);
    for (std::size_t i = 0; fields && i < fields->size(); ++i) {
        line.add((*layout)[i].name, lineContent((*fields)[i]));
    }
    services.record.add(std::move(line));
    acknowledge(sequence,
                services.frame.writeList(message.action, {message.lid, message.number, message.did},
                                         message.itemId, message.fields));
}

void ClientSession::on(cplwire::SubscribeParameter const& message, std::uint32_t sequence) {
    happening = {Happening::Kind::subscribe, number, message.pid, message.did};
    auto line = received("subscribe");
    line.number("pid", message.pid).device(message.did);
    line.number("flag", message.flag).number("callback", message.callback);
    services.record.add(std::move(line));
    std::vector<ParameterChange> present;
    acknowledge(sequence,
                subscribe({{message.pid, message.did}}, message.callback, message.flag, present));
    for (auto const& each : present) {
        sendUpdate(message.callback, each);
    }
}

void ClientSession::on(cplwire::SubscribeBatch const& message, std::uint32_t sequence) {
    happening = {Happening::Kind::subscribe, number, 0, 0};
    auto line = received("subscribe");
    line.number("batch", static_cast<std::int64_t>(message.parameters.size()));
    line.number("flag", message.flag).number("callback", message.callback);
    services.record.add(std::move(line));
    std::vector<ParameterChange> present;
    acknowledge(sequence, subscribe(message.parameters, message.callback, message.flag, present));
    for (auto const& each : present) {
        sendUpdate(message.callback, each);
    }
}

/// A subscription starts with what there is now. Changes that are still to be told must go out
/// before that, to those who have subscribed already: so both are taken in one look.
Outcome ClientSession::subscribe(std::vector<std::pair<std::int32_t, std::uint32_t>> const& wanted,
                                 std::uint16_t callback, std::int32_t flag,
                                 std::vector<ParameterChange>& present) {
    std::size_t missing = 0;
    services.publish(services.frame.takeChanges([&](FrameModel const& model) {
        for (auto const& [pid, did] : wanted) {
            auto const* parameter = model.find(ParameterKey{pid, did});
            if (parameter) {
                present.push_back({{pid, did}, parameter->value});
            } else {
                ++missing;
            }
        }
    }));
    if (!beginSubscription(flag)) {
        present.clear();
        return {eStatusRefused, "no such flag"};
    }
    for (auto const& each : present) {
        parameters[each.key].insert(callback);
    }
    if (flag == eSubscribeUpdate) {
        present.clear();
    }
    return missing == 0 ? Outcome{}
                        : Outcome{eStatusRefused, "no such parameter: " + std::to_string(missing)};
}

void ClientSession::on(cplwire::SubscribeList const& message, std::uint32_t sequence) {
    happening = {Happening::Kind::subscribe, number, message.lid, message.did};
    auto line = received("subscribe");
    line.number("lid", message.lid).number("number", message.number).device(message.did);
    line.number("flag", message.flag).number("callback", message.callback);
    services.record.add(std::move(line));
    ListKey const key{message.lid, message.number, message.did};
    std::optional<std::vector<ListItem>> present;
    services.publish(services.frame.takeChanges([&](FrameModel const& model) {
        if (auto const* list = model.find(key)) {
            present = list->items;
        }
    }));
    if (!present || !beginSubscription(message.flag)) {
        acknowledge(sequence, {eStatusRefused, present ? "no such flag" : "no such list"});
        return;
    }
    lists.insert(key);
    acknowledge(sequence, {});
    if (message.flag != eSubscribeUpdate) {
        tellItems(key, *present);
    }
}

/// False if the flag is none. "Replace" ends all other subscriptions.
bool ClientSession::beginSubscription(std::int32_t flag) {
    if (flag == eSubscribeReplace) {
        parameters.clear();
        lists.clear();
    }
    return flag >= eSubscribeImmediate && flag <= eSubscribeUpdate;
}

void ClientSession::on(cplwire::Cancel const& message, std::uint32_t sequence) {
    happening.kind = Happening::Kind::cancel;
    auto line = received("cancel");
    line.number("flags", message.flags).number("service", message.service);
    services.record.add(std::move(line));
    bool const known = message.service == eParameterService || message.service == eListService;
    if (message.flags != eUnsubscribeAll || !known) {
        acknowledge(sequence, {eStatusRefused, "no such service or flags"});
        return;
    }
    if (message.service == eParameterService) {
        parameters.clear();
    } else {
        lists.clear();
    }
    acknowledge(sequence, {});
}

void ClientSession::on(cplwire::Ping const&, std::uint32_t sequence) {
    happening.kind = Happening::Kind::ping;
    services.record.add(received("ping"));
    send(cplwire::Pong{}, sent("pong"), connectionLane, sequence);
}

void ClientSession::on(cplwire::Pong const&, std::uint32_t) {
    services.record.add(received("pong"));
}

void ClientSession::on(cplwire::Bye const&, std::uint32_t) {
    services.record.add(received("bye"));
    close("bye");
}

void ClientSession::acknowledge(std::uint32_t sequence, Outcome const& outcome) {
    auto line = sent("ack");
    line.number("status", outcome.status);
    if (!outcome.good()) {
        line.add("cause", outcome.cause);
    }
    send(cplwire::Acknowledge{outcome.status}, std::move(line),
         {Lane::Kind::acknowledgement, sequence}, sequence);
}

void ClientSession::tell(Change const& change) {
    if (auto const* parameter = std::get_if<ParameterChange>(&change)) {
        tellParameter(*parameter);
    } else if (auto const& list = std::get<ListChange>(change); lists.contains(list.key)) {
        tellItems(list.key, list.items);
    }
}

void ClientSession::tellParameter(ParameterChange const& change) {
    auto const at = parameters.find(change.key);
    if (at == parameters.end()) {
        return;
    }
    for (auto const callback : at->second) {
        sendUpdate(callback, change);
    }
}

void ClientSession::sendUpdate(std::uint16_t callback, ParameterChange const& change) {
    auto line = sent("update");
    line.number("pid", change.key.pid).device(change.key.did).value(change.value);
    line.number("callback", callback);
    std::string bytes = valueBytes(change.value);
    addFault(line, services.faults.spoil(Damage::What::values, bytes));
    cplwire::ParameterUpdate update;
    update.callback = callback;
    update.pid = static_cast<std::uint16_t>(change.key.pid);
    update.did = change.key.did;
    update.dataType = static_cast<std::uint16_t>(change.value.type);
    update.value = bytes;
    send(update, std::move(line), {Lane::Kind::parameter, change.key.pid, change.key.did});
}

void ClientSession::tellItems(ListKey key, std::vector<ListItem> const& items) {
    std::string payload;
    std::uint16_t count = 0;
    for (auto const& item : items) {
        if (count == 0) {
            appendListHead(payload, key.lid, key.number, key.did);
        }
        appendItem(payload, item);
        ++count;
        bool const full = payload.size() >= payloadSize;
        if (full || &item == &items.back()) {
            sendItems(key, count, payload, count == 1 ? &item : nullptr);
            payload.clear();
            count = 0;
        }
    }
}

void ClientSession::sendItems(ListKey key, std::uint16_t count, std::string& payload,
                              ListItem const* single) {
    auto line = sent("list");
    line.number("lid", key.lid).number("number", key.number).device(key.did);
    line.number("items", count);
    if (single) {
        addItem(line, key.lid, *single);
    }
    addFault(line, services.faults.spoil(Damage::What::lists, payload));
    send(cplwire::ListUpdate{count, payload}, std::move(line),
         {Lane::Kind::list, (std::int64_t{key.lid} << 16U) | key.number, key.did});
}

Line ClientSession::received(std::string_view what) const {
    return {number, Direction::received, std::string(what)};
}

Line ClientSession::sent(std::string_view what) const {
    return {number, Direction::sent, std::string(what)};
}

template <typename Message>
void ClientSession::send(Message const& message, Line line, Lane lane, std::uint32_t sequence) {
    if (!isOpen() || ending) {
        return;
    }
    std::string bytes;
    if (!cplwire::encode(bytes, message, sequence)) {
        close("a message of " + line.what + " is longer than the protocol allows");
        return;
    }
    deliver(std::move(bytes), std::move(line), lane);
}

void ClientSession::deliver(std::string bytes, Line line, Lane lane) {
    services.faults.deliver(held, lane, std::move(bytes), std::move(line),
                            std::chrono::steady_clock::now());
    // A burst is no proof that a panel doesn't read: first see what the system takes.
    if (waitingBytes() > services.queueLimit) {
        writeSome(std::chrono::steady_clock::now());
    }
    if (isOpen() && waitingBytes() > services.queueLimit) {
        close("does not read: more than " + std::to_string(services.queueLimit) +
              " bytes are waiting");
    }
}

void ClientSession::writeSome(TimePoint now) {
    if (!isOpen() || silent || !services.faults.mayWrite()) {
        return;
    }
    while (auto delivery = held.takeDue(now)) {
        commit(std::move(*delivery));
    }
    endIfCut();
    if (!wantsToWrite()) {
        finishCut(now);
        return;
    }
    auto const transfer = transmit(socket.get(), std::string_view(outbox).substr(taken));
    if (transfer.closed) {
        close("lost: " + transfer.reason);
        return;
    }
    taken += transfer.count;
    if (taken >= outbox.size() / 2) {
        outbox.erase(0, std::exchange(taken, 0));
    }
    finishCut(now);
}

void ClientSession::commit(Delivery delivery) {
    auto const passed = toPanel.pass(delivery.bytes);
    if (passed == 0) {
        return;  // the cut lies ahead of it
    }
    if (passed < delivery.bytes.size()) {
        delivery.line.number("cut", static_cast<std::int64_t>(passed));
    }
    outbox.append(delivery.bytes, 0, passed);
    services.record.add(std::move(delivery.line));
}

void ClientSession::endIfCut() {
    if (toPanel.isCut() || fromPanel.isCut()) {
        ending = true;
        held.clear();
    }
}

/// Closes a connection that has been cut. To close with bytes on their way, or unread ones here,
/// could destroy what has not arrived yet: so it waits for the former and takes the latter.
void ClientSession::finishCut(TimePoint now) {
    if (!ending || taken < outbox.size()) {
        return;
    }
    if (hasUnsent(socket.get())) {
        endCheck = now + arrivalCheck;
        return;
    }
    std::string unread;
    while (receive(socket.get(), unread, readSize).count > 0) {
        unread.clear();
    }
    bool const there = toPanel.isCut();
    auto const& place = *(there ? toPanel : fromPanel).cut();
    close("cut at byte " + std::to_string(place.byte) + " of message " +
          std::to_string(place.message) + (there ? " to the panel" : " from the panel"));
}

void ClientSession::goOn(TimePoint now) {
    silent = services.faults.mute && silent;
    connectedAt = now;
    handleAll();
}

bool ClientSession::cutAt(Cut const& place) {
    auto& meter = place.way == Way::toPanel ? toPanel : fromPanel;
    if (!isOpen() || ending || !meter.cutAt(place.message, place.byte)) {
        return false;
    }
    meter.pass({});  // it may be right here
    endIfCut();
    return true;
}

void ClientSession::sendGarbage(std::string bytes) {
    if (isOpen() && !ending) {
        auto line = sent("garbage");
        line.number("bytes", static_cast<std::int64_t>(bytes.size()));
        deliver(std::move(bytes), std::move(line), connectionLane);
    }
}

ConnectionCount ClientSession::crossed() const {
    return {number, isOpen(), toPanel.crossed(), fromPanel.crossed()};
}

Holding ClientSession::holding(FrameModel const& model) const {
    Holding all{.client = number, .name = name};
    for (auto const& [key, callbacks] : parameters) {
        if (auto const* parameter = model.find(key)) {
            all.parameters.push_back({key, parameter->value});
        }
    }
    for (auto const& key : lists) {
        if (auto const* list = model.find(key)) {
            all.lists.emplace_back(key, list->items);
        }
    }
    return all;
}

void ClientSession::sayBye() {
    if (welcomed) {
        writeSome(TimePoint::max());  // the last message is the last, whatever was late
        send(cplwire::Bye{}, sent("bye"), connectionLane);
        writeSome(TimePoint::max());
    }
}

void ClientSession::close(std::string const& reason) {
    if (!isOpen()) {
        return;
    }
    // Told first, so that whoever sees the connection end can find the line.
    services.record.add(Line{.client = number, .what = "closed"}.add("reason", reason));
    socket.close();
    held.clear();
    outbox.clear();
    taken = 0;
}

}  // namespace FrameSim
