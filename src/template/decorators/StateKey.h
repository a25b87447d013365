#pragma once

#include "foundation/NumberText.h"
#include "template/ContextStore.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string>
#include <string_view>

namespace FrameDriver::Template {

/// A state key put together from texts and numbers (in decimal), to ask a ContextStore with. It
/// lives on the stack: only a key of more than 240 characters allocates.
class StateKey {
  public:
    template <typename... Pieces>
    explicit StateKey(Pieces const&... pieces) {
        text.reserve(inPlace);
        (append(pieces), ...);
    }
    StateKey(StateKey const&) = delete;
    StateKey& operator=(StateKey const&) = delete;

    void append(std::string_view piece) { text += piece; }
    void append(std::int32_t number) {
        std::string digits;  // short enough to stay inside the object
        Tools::appendInt32(digits, number);
        text += digits;
    }

    // Implicit, so that a key stands where a text does.
    // NOLINTNEXTLINE(google-explicit-constructor)
    operator std::string_view() const { return text; }

  private:
    static constexpr std::size_t inPlace = 240;

    std::array<std::byte, inPlace + 16> room;
    std::pmr::monotonic_buffer_resource pool{room.data(), room.size()};
    std::pmr::string text{&pool};
};

/// Whether the store has the key, and with exactly this text.
inline bool holds(ContextStore const& store, std::string_view key, std::string_view text) {
    // An absent key reads as the empty text, so only an empty one needs the second look.
    return store.get(key) == text && (!text.empty() || store.contains(key));
}

/// The signed number at the key; 0 if there is none.
inline std::int32_t numberAt(ContextStore const& store, std::string_view key) {
    return Tools::int32Or(store.get(key), 0);
}

}  // namespace FrameDriver::Template
