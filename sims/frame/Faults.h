#pragma once

#include "sims/frame/FrameModel.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace FrameSim {

/// A fault that can't be had: the text says why.
class FaultError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Which way a message goes.
enum class Way { toPanel, fromPanel };

/// Where a connection ends: when exactly `byte` bytes of its message number `message` have
/// crossed, and all messages of that way before it. Messages of either way are counted for
/// themselves, from 1 (the greeting); byte 0 is the boundary ahead of a message. A byte at or
/// behind the message's end is its end.
///
/// What the frame has answered to the messages before a cut of `Way::fromPanel` still goes out.
struct Cut {
    Way way = Way::toPanel;
    std::size_t message = 1;
    std::size_t byte = 0;
    std::uint32_t client = 0;  ///< 0 is the next one that connects
};

/// What has crossed one way of a connection: in whole messages, and in bytes. To the panel that
/// is what the frame has given to its socket; a panel that doesn't read may have got less.
struct Crossed {
    static constexpr std::size_t lengthsKept = 4096;

    std::size_t messages = 0;
    std::size_t bytes = 0;
    std::vector<std::uint32_t> lengths;  ///< in bytes with the prefix, of the first messages
};

struct ConnectionCount {
    std::uint32_t client;
    bool open;
    Crossed toPanel;
    Crossed fromPanel;
};

/// How late things go out: each by a time between the two, chosen by the plan's seed.
struct Delay {
    enum class Order {
        kept,              ///< everything is late, and stays in order
        acknowledgements,  ///< only they are late, and whatever follows passes them
        shuffled,          ///< only what belongs together stays in order: see `Lane`
    };
    std::chrono::milliseconds least{0};
    std::chrono::milliseconds most{0};
    Order order = Order::kept;
};

/// Spoils the next payloads of a sort; the message around them stays well formed.
struct Damage {
    enum class How { truncate, corrupt };
    enum class What { values, lists };

    How how = How::truncate;
    What what = What::values;
    std::size_t count = 1;  ///< of the next payloads; 0 ends it
    /// The payload's new length, or the byte that is changed; by the plan's seed if not given.
    /// A payload that has no such byte is left alone and not counted.
    std::optional<std::size_t> byte = {};
};

/// Bytes that no frame sends.
enum class Garbage {
    random,   ///< 64 bytes by the plan's seed
    length,   ///< a message of four gigabytes begins
    version,  ///< a welcome by another version of the protocol
    type,     ///< a message of a type that there isn't
};

/// Many value changes. Of one parameter, which takes one value after the other of its range, or
/// of all that may be written, in turn; without the consequences of a set.
struct Flood {
    std::uint32_t perSecond = 0;  ///< 0 ends it
    std::chrono::milliseconds time{0};
    std::optional<ParameterKey> parameter = {};
};

/// What a frame is like when it comes back.
struct Restart {
    std::optional<FrameModel> model = {};      ///< the state stays as it is without one
    std::vector<ParameterChange> values = {};  ///< assigned past all rules but type and range
    std::chrono::milliseconds away{0};         ///< connections are refused for so long
};

/// All that the frame holds of what one panel has subscribed to, in the order of the keys.
struct Holding {
    std::uint32_t client = 0;
    std::string name;  ///< the panel's
    std::vector<ParameterChange> parameters = {};
    std::vector<std::pair<ListKey, std::vector<ListItem>>> lists = {};

    /// As `FrameModel::dump` has them. A list without items has no line.
    std::vector<Line> lines() const;
};

}  // namespace FrameSim
