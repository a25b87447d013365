#include "template/ContextStore.h"

#include <mutex>

namespace FrameDriver::Template {

bool ContextStore::contains(std::string_view key) const {
    std::lock_guard guard(lock);
    return texts.find(key) != texts.end();
}

std::string ContextStore::get(std::string_view key) const {
    std::lock_guard guard(lock);
    auto const entry = texts.find(key);
    return entry == texts.end() ? std::string() : entry->second;
}

void ContextStore::set(std::string_view key, std::string_view text) {
    std::lock_guard guard(lock);
    auto const entry = texts.find(key);
    if (entry == texts.end())
        texts.emplace(key, text);
    else
        entry->second = text;
}

}  // namespace FrameDriver::Template
