#include "RecordingContextStore.h"

#include "template/ContextStore.h"

namespace FrameDriver::Template {
namespace {

void record(std::string_view operation, std::string_view what) {
    storeCalls().push_back(std::string(operation).append(" ").append(what));
}

}  // namespace

StoreCalls& storeCalls() {
    static StoreCalls calls;
    return calls;
}

bool ContextStore::contains(std::string_view key) const {
    record("contains", key);
    return texts.find(key) != texts.end();
}

std::string ContextStore::get(std::string_view key) const {
    record("get", key);
    auto const entry = texts.find(key);
    return entry == texts.end() ? std::string() : entry->second;
}

void ContextStore::set(std::string_view key, std::string_view text) {
    record("set", std::string(key).append("=").append(text));
    texts[std::string(key)] = text;
}

}  // namespace FrameDriver::Template
