#include "sims/frame/StreamMeter.h"

#include "platform/cplclient/wire/Wire.h"

#include <algorithm>

namespace FrameSim {

std::size_t StreamMeter::pass(std::string_view bytes) {
    std::size_t passed = 0;
    while (!reached) {
        auto const rest = bytes.substr(passed);
        // Asked even if nothing is left: the cut may be right here, ahead of a message.
        auto const some = passSome(rest);
        passed += some;
        if (some == 0) {
            break;
        }
    }
    count.bytes += passed;
    return passed;
}

/// A piece that doesn't reach beyond the message under way, or beyond its prefix.
std::size_t StreamMeter::passSome(std::string_view bytes) {
    if (lost) {
        return bytes.size();
    }
    bool const inPrefix = done < cplwire::prefixSize;
    auto const piece =
        untilCut(std::min(bytes.size(), inPrefix ? cplwire::prefixSize - done : length - done));
    for (std::size_t i = 0; inPrefix && i < piece; ++i) {
        length = (length << 8U) | static_cast<unsigned char>(bytes[i]);
    }
    done += piece;
    if (inPrefix && done == cplwire::prefixSize) {
        lost = length < cplwire::headerSize || length > cplwire::maximumLength;
        length += cplwire::prefixSize;
    } else if (!inPrefix && done == length) {
        endMessage();
    }
    return piece;
}

std::size_t StreamMeter::untilCut(std::size_t wanted) {
    if (!place || place->message != count.messages + 1) {
        return wanted;
    }
    auto const left = place->byte > done ? place->byte - done : 0;
    reached = left <= wanted;
    return std::min(wanted, left);
}

void StreamMeter::endMessage() {
    ++count.messages;
    if (count.lengths.size() < Crossed::lengthsKept) {
        count.lengths.push_back(static_cast<std::uint32_t>(length));
    }
    length = 0;
    done = 0;
    reached = reached || (place && place->message <= count.messages);
}

bool StreamMeter::cutAt(std::size_t message, std::size_t byte) {
    auto const present = count.messages + 1;
    if (lost || reached || message < present || (message == present && byte < done)) {
        return false;
    }
    place = Cut{.message = message, .byte = byte};
    return true;
}

}  // namespace FrameSim
