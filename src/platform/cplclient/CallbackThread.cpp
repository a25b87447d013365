#include "platform/cplclient/CallbackThread.h"

#include "platform/cplclient/CPLTypes.h"
#include "platform/cplclient/ValueBytes.h"
#include "platform/cplclient/wire/Messages.h"
#include "platform/logging/LogManager.h"

#include <cstring>
#include <exception>
#include <new>
#include <utility>

using Brindlemoor::Utilities::Logging::LogManager;

namespace {

// A burst's worth of buffers of the common size is kept; more and larger ones are given back.
constexpr std::size_t mostSpares = 64;
constexpr std::size_t largestSpare = 4096;

constexpr std::size_t mostCallbacks = 1000;  // the driver has one

}  // namespace

void CallbackThread::start() {
    std::lock_guard const guard(lock);
    std::thread([self = shared_from_this(), ownTurn = turn + 1] { self->run(ownTurn); }).detach();
    ++turn;
    ++live;
}

void CallbackThread::stop() {
    {
        std::lock_guard const guard(lock);
        if (turn % 2 == 0)
            return;
        ++turn;
        queue.clear();
        queuedBytes = 0;
    }
    arrived.notify_all();
}

void CallbackThread::end() {
    stop();
    Callbacks last;  // dies outside the lock
    std::unique_lock guard(lock);
    if (caller != std::this_thread::get_id())
        ended.wait(guard, [this] { return live == 0; });
    last.swap(callbacks);
}

std::uint16_t CallbackThread::add(boost::shared_ptr<CCallback> callback) {
    std::lock_guard const guard(lock);
    if (!callback || callbacks.size() >= mostCallbacks)
        return noCallback;
    while (nextIdentifier == 0 || nextIdentifier == noCallback ||
           callbacks.contains(nextIdentifier))
        ++nextIdentifier;
    callbacks.emplace(nextIdentifier, std::move(callback));
    return nextIdentifier++;
}

void CallbackThread::remove(std::uint16_t identifier) {
    boost::shared_ptr<CCallback> last;  // dies outside the lock
    std::lock_guard const guard(lock);
    auto const found = callbacks.find(identifier);
    if (found == callbacks.end())
        return;
    last = std::move(found->second);
    callbacks.erase(found);
}

CallbackThread::News CallbackThread::takeSpare() {
    std::lock_guard const guard(lock);
    if (spares.empty())
        return {};
    auto spare = std::move(spares.back());
    spares.pop_back();
    return spare;
}

void CallbackThread::keepSpare(News&& news) {
    if (spares.size() < mostSpares && news.bytes.capacity() <= largestSpare)
        spares.push_back(std::move(news));
}

bool CallbackThread::push(cplwire::ParameterUpdate const& update, bool isReply) {
    auto news = takeSpare();
    news.kind = isReply ? News::Kind::Reply : News::Kind::Update;
    news.callback = update.callback;
    CplParameterMessage header{};
    header.serviceId = eParameterService;
    header.pid = update.pid;
    header.did = update.did;
    header.length = static_cast<std::uint16_t>(update.value.size());
    header.dataType = update.dataType;
    // One byte more than the value, always: a string is closed in place.
    news.bytes.assign(sizeof header + update.value.size() + 1, 0);
    std::memcpy(news.bytes.data(), &header, sizeof header);
    toMachineOrder(update.dataType, update.value, news.bytes.data() + sizeof header);
    return enqueue(std::move(news));
}

bool CallbackThread::push(cplwire::ListUpdate const& update) {
    auto news = takeSpare();
    news.kind = News::Kind::List;
    news.itemCount = update.itemCount;
    news.bytes.assign(update.payload.begin(), update.payload.end());
    return enqueue(std::move(news));
}

bool CallbackThread::enqueue(News&& news) {
    {
        std::lock_guard const guard(lock);
        if (turn % 2 == 0)
            return true;
        if (queuedBytes + news.cost() > limit)
            return false;
        queuedBytes += news.cost();
        queue.push_back(std::move(news));
    }
    arrived.notify_one();
    return true;
}

void CallbackThread::clear() {
    std::lock_guard const guard(lock);
    queue.clear();
    queuedBytes = 0;
}

// A thread of an earlier turn may still be in its last callback: calls come one at a time, so
// the new one waits for it.
void CallbackThread::run(unsigned ownTurn) {
    std::unique_lock guard(lock);
    ended.wait(guard, [&] { return live == 1 || turn != ownTurn; });
    while (waitForNews(guard, ownTurn)) {
        auto news = takeNext();
        if (news.kind == News::Kind::List)
            deliverToAll(guard, news, ownTurn);
        else if (auto const target = callbacks.find(news.callback); target != callbacks.end())
            call(guard, news, target);
        keepSpare(std::move(news));
    }
    --live;
    ended.notify_all();
}

CallbackThread::News CallbackThread::takeNext() {
    auto news = std::move(queue.front());
    queue.pop_front();
    queuedBytes -= news.cost();
    return news;
}

bool CallbackThread::waitForNews(std::unique_lock<std::mutex>& guard, unsigned ownTurn) {
    arrived.wait(guard, [&] { return turn != ownTurn || !queue.empty(); });
    return turn == ownTurn;
}

// A list names no registration: everybody hears of it. During a call the map may change.
void CallbackThread::deliverToAll(std::unique_lock<std::mutex>& guard, News& news,
                                  unsigned ownTurn) {
    for (auto next = callbacks.begin(); next != callbacks.end() && turn == ownTurn;) {
        auto const identifier = next->first;
        call(guard, news, next);
        next = callbacks.upper_bound(identifier);
    }
}

void CallbackThread::call(std::unique_lock<std::mutex>& guard, News& news,
                          Callbacks::iterator registered) {
    auto target = registered->second;
    caller = std::this_thread::get_id();
    guard.unlock();
    try {
        deliver(news, *target);
    } catch (std::exception const& error) {
        LogManager::getInstance()->getCategory("CPLClient").getErrorStream()
            << "an exception left a callback: " << error.what();
    } catch (...) {
        LogManager::getInstance()->getCategory("CPLClient").getErrorStream()
            << "an exception of unknown type left a callback";
    }
    target.reset();
    guard.lock();
    caller = {};
}

void CallbackThread::deliver(News& news, CCallback& target) {
    if (news.kind == News::Kind::List) {
        CplListMessage message{};
        message.serviceId = eListService;
        message.itemCount = news.itemCount;
        message.payload = news.bytes.data();
        message.payloadLength = static_cast<std::uint32_t>(news.bytes.size());
        target.listUpdate(&message, nullptr);
        return;
    }
    auto* const message = std::launder(reinterpret_cast<CplParameterMessage*>(news.bytes.data()));
    std::uint32_t const identifier = news.callback;
    if (news.kind == News::Kind::Reply)
        target.parameterReply(message, nullptr, &identifier, nullptr);
    else
        target.parameterUpdate(message, nullptr, &identifier, nullptr);
}
