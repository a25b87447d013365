#pragma once

#include "foundation/SpinLock.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace FrameDriver::Template {

/// The driver's one store of switcher state: state key to text, "VIDEO.FRAMERATE" to "25" for
/// example. Results of conversions fill it, context strings and decorators read it.
///
/// Keys and texts are bytes of any value. Thread: any, several at once. Each call locks for
/// itself and nothing holds from one call to the next, so what `contains` saw may be different
/// for a `get` that follows.
class ContextStore {
  public:
    ContextStore() = default;
    ContextStore(ContextStore const&) = delete;
    ContextStore& operator=(ContextStore const&) = delete;

    bool contains(std::string_view key) const;
    /// A copy of the key's text, the empty string for an absent key.
    std::string get(std::string_view key) const;
    /// Creates the key if it is absent.
    void set(std::string_view key, std::string_view text);

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const noexcept {
            return std::hash<std::string_view>{}(key);
        }
    };

    mutable Tools::SpinMutex lock;
    std::unordered_map<std::string, std::string, Hash, std::equal_to<>> texts;  // guarded by lock
};

}  // namespace FrameDriver::Template
