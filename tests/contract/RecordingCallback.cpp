#include "RecordingCallback.h"

#include "WireText.h"

#include <array>
#include <cstdio>
#include <string_view>

namespace {

std::string_view view(unsigned char const* bytes, std::size_t length) {
    return {reinterpret_cast<char const*>(bytes), length};
}

// Writes behind the value, as a reader of strings does; only a sanitizer would see it fail.
std::string parameterText(char const* what, CplParameterMessage& message,
                          std::uint32_t const* callback) {
    message.value()[message.length] = 0;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s %u %u %08x %u ", what, *callback, message.pid,
                  message.did, message.dataType);
    return text.data() + hex(view(message.value(), message.length)) +
           (message.serviceId == 3 ? "" : " of another service");
}

}  // namespace

void RecordingCallback::parameterUpdate(CplParameterMessage* message, void* /*second*/,
                                        std::uint32_t const* callback, void* /*fourth*/) {
    keep(parameterText("update", *message, callback));
}

void RecordingCallback::parameterReply(CplParameterMessage* message, void* /*second*/,
                                       std::uint32_t const* callback, void* /*fourth*/) {
    keep(parameterText("reply", *message, callback));
}

void RecordingCallback::listUpdate(CplListMessage* message, void* /*second*/) {
    keep("list " + std::to_string(message->itemCount) + " " +
         hex(view(message->payload, message->payloadLength)) +
         (message->serviceId == 4 ? "" : " of another service"));
}

void RecordingCallback::keep(std::string text) {
    if (onNews)
        onNews(text);
    std::lock_guard const guard(lock);
    texts.push_back(std::move(text));
    thread = std::this_thread::get_id();
    changed.notify_all();
}

std::vector<std::string> RecordingCallback::waitFor(std::size_t count) {
    std::unique_lock guard(lock);
    changed.wait_for(guard, patience, [&] { return texts.size() >= count; });
    return texts;
}

std::vector<std::string> RecordingCallback::all() {
    std::lock_guard const guard(lock);
    return texts;
}

std::thread::id RecordingCallback::lastThread() {
    std::lock_guard const guard(lock);
    return thread;
}
