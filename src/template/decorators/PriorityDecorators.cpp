#include "template/decorators/PriorityDecorators.h"

#include "foundation/NumberText.h"
#include "template/decorators/StateKey.h"

#include <array>
#include <utility>

namespace FrameDriver::Template {
namespace {

constexpr std::int32_t keyCount = 6;
constexpr std::int32_t nowhere = -1;

/// The place, from 0, that the priority at a state key stands for. An absent, unreadable or
/// impossible one is none.
std::int32_t placeAt(ContextStore const& store, std::string_view key) {
    std::int32_t const priority = numberAt(store, key);
    return priority >= 1 && priority <= keyCount ? priority - 1 : nowhere;
}

/// Which key has which place, and the other way round.
struct KeyOrder {
    std::array<std::int32_t, keyCount> order{};
    std::array<std::int32_t, keyCount> position{};

    void put(std::int32_t key, std::int32_t place) {
        position[static_cast<std::size_t>(key)] = place;
        if (place != nowhere)
            order[static_cast<std::size_t>(place)] = key;
    }

    /// Those between the new place and the key's own move back by one. `position` stays that of
    /// before all moves: each move goes up to where its key stood then.
    void moveForward(std::int32_t key, std::int32_t place) {
        if (place == nowhere)
            return;
        std::int32_t carried = key;
        for (auto slot = place; slot <= position[static_cast<std::size_t>(key)]; ++slot)
            std::swap(carried, order[static_cast<std::size_t>(slot)]);
    }

    std::int32_t packed() const {
        std::int32_t number = 0;
        for (auto key = order.rbegin(); key != order.rend(); ++key)
            number = number * 16 + *key;
        return number;
    }
};

}  // namespace

PriorityCombinerDecorator::PriorityCombinerDecorator(std::string lastKeyPart)
    : keyPart(std::move(lastKeyPart)) {}

std::string PriorityCombinerDecorator::decorate(std::string const& value,
                                                ContextStore* context) const {
    KeyOrder keys;
    for (std::int32_t key = 0; key < keyCount; ++key)
        keys.put(key,
                 placeAt(*context, StateKey(value, ".TRANSI.KEY", key + 1, ".PRIORITY.", keyPart)));
    for (std::int32_t key = 0; key < keyCount; ++key)
        keys.moveForward(key, placeAt(*context, StateKey(value, ".TRANSI.KEY", key + 1,
                                                         ".PRIORITY.", keyPart, ".NEW")));
    std::string result;
    Tools::appendInt32(result, keys.packed());
    return result;
}

std::string PriorityExtractorDecorator::decorate(std::string const& value, ContextStore*) const {
    auto digits = static_cast<std::uint32_t>(Tools::int32Or(value, 0));
    std::string places;
    for (char place = '1'; place <= '8'; ++place, digits >>= 4) {
        if (static_cast<std::int32_t>(digits & 0xF) + 1 == priority)
            places += place;
    }
    return places;
}

}  // namespace FrameDriver::Template
