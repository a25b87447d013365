#include "xml/Settings.h"

#include <mutex>
#include <utility>

namespace FrameDriver::Tools {

Settings::Settings() : Settings(Map()) {}

Settings::Settings(Map pairs) : values(std::make_shared<Map const>(std::move(pairs))) {}

Settings::Settings(Settings const& other) : values(other.snapshot()) {}

Settings& Settings::operator=(Settings const& other) {
    if (this == &other)
        return *this;
    std::shared_ptr<Map const> next = other.snapshot();
    std::lock_guard const guard(lock);
    values.swap(next);
    return *this;
}

std::shared_ptr<Settings::Map const> Settings::snapshot() const {
    std::lock_guard const guard(lock);
    return values;
}

bool Settings::contains(std::string const& name) const { return snapshot()->count(name) > 0; }

std::string Settings::get(std::string const& name) const {
    auto const pairs = snapshot();
    auto const found = pairs->find(name);
    return found == pairs->end() ? std::string() : found->second;
}

// The next set is made outside the lock; another writer's change in the meantime is found by
// the comparison, and then it is made again.
void Settings::set(std::string const& name, std::string const& value) {
    std::shared_ptr<Map const> present;
    std::shared_ptr<Map> next;
    do {
        present = snapshot();
        next = std::make_shared<Map>(*present);
        (*next)[name] = value;
    } while (!replace(present, std::move(next)));
}

bool Settings::replace(std::shared_ptr<Map const> const& expected,
                       std::shared_ptr<Map const> next) {
    std::lock_guard const guard(lock);
    if (values != expected)
        return false;
    values.swap(next);  // what was in place goes when the lock is no longer held
    return true;
}

}  // namespace FrameDriver::Tools
