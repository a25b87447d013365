#pragma once

#include <cstdint>

namespace FrameSim {

/// Something that a panel has done and the frame has dealt with, its answer not yet sent.
struct Happening {
    enum class Kind {
        none,
        connect,
        hello,
        set,
        event,
        setlist,
        subscribe,
        cancel,
        ping,
        close,
    };
    Kind kind = Kind::none;
    std::uint32_t client = 0;
    std::int32_t id = 0;  ///< of a set, event, setlist, or subscription to a single thing
    std::uint32_t did = 0;
};

}  // namespace FrameSim
