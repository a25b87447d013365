#include "platform/cplclient/wire/MessageSplitter.h"

#include "platform/cplclient/wire/ByteReader.h"

namespace cplwire {

// What was taken is dropped here and not in `next`, so that bodies stay valid between two feeds.
void MessageSplitter::feed(std::string_view bytes) {
    buffer.erase(0, start);
    start = 0;
    if (!isBroken)
        buffer.append(bytes);
}

std::optional<RawMessage> MessageSplitter::next() {
    auto const rest = std::string_view(buffer).substr(start);
    if (isBroken || rest.size() < prefixSize)
        return std::nullopt;
    std::size_t const length = ByteReader(rest).u32();
    if (length < headerSize || length > limit) {
        isBroken = true;
        return std::nullopt;
    }
    if (rest.size() < prefixSize + length)
        return std::nullopt;
    ByteReader message(rest.substr(prefixSize, length));
    auto const type = static_cast<Type>(message.u8());
    auto const sequence = message.u32();
    start += prefixSize + length;
    return RawMessage{type, sequence, message.bytes(message.left())};
}

}  // namespace cplwire
