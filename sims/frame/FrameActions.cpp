#include "sims/frame/FrameActions.h"

#include "platform/cplclient/CPLTypes.h"
#include "sims/frame/FrameServer.h"
#include "sims/frame/ModelFile.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace FrameSim {
namespace {

using std::chrono::milliseconds;

constexpr std::int32_t cutEvent = 40;
constexpr std::int32_t autoEvent = 41;
constexpr std::uint32_t firstMixEffects = 0x03000000;
constexpr std::int64_t longestTime = 600000;
constexpr std::int64_t mostPerSecond = 1000000;
constexpr std::uint32_t thisClient = 0xffffffff;

std::string shownKey(ParameterKey key) {
    return "pid=" + std::to_string(key.pid) + " did=" + shownDevice(key.did);
}

void check(Outcome const& outcome) {
    if (!outcome.good()) {
        throw CommandError("refused: " + outcome.cause);
    }
}

void require(bool good, std::string const& cause) {
    if (!good) {
        throw CommandError(cause);
    }
}

milliseconds time(CommandWords& words, std::string_view name) {
    return milliseconds(words.number(name, 0, longestTime));
}

/// One of a row of words, by its place in the row.
template <std::size_t count>
std::size_t choice(CommandWords& words, std::array<std::string_view, count> const& all) {
    std::string names(all[0]);
    for (std::size_t i = 1; i < count; ++i) {
        names.append(i + 1 < count ? ", " : " or ").append(all[i]);
    }
    auto const given = words.word(names);
    auto const found = std::find(all.begin(), all.end(), given);
    if (found == all.end()) {
        words.fail("it must be " + names + ", not '" + std::string(given) + "'");
    }
    return static_cast<std::size_t>(found - all.begin());
}

/// A panel's number, or the one that the action is about.
std::uint32_t client(CommandWords& words) {
    if (words.nextIs("this")) {
        words.word("CLIENT");
        return thisClient;
    }
    return static_cast<std::uint32_t>(words.number("CLIENT", 1, thisClient - 1));
}

std::uint32_t optionalClient(CommandWords& words) { return words.empty() ? 0 : client(words); }

std::uint32_t meant(std::uint32_t given, std::uint32_t present) {
    require(given != thisClient || present != 0, "no panel has caused it, so there is no 'this'");
    return given == thisClient ? present : given;
}

/// A value as it was typed; what type it has to be says the frame.
struct TypedValue {
    ParameterKey key;
    std::string text;
    bool isQuoted;

    /// `type` is the parameter's, if there is one.
    Value by(std::optional<DataType> type) const {
        require(type.has_value(), "there is no parameter " + shownKey(key));
        auto bytes = isQuoted && *type == DataType::String ? unquoted(text) : std::optional(text);
        require(bytes.has_value(), "the quoted text isn't whole: " + text);
        auto value = readValue(*type, *bytes);
        require(value.has_value(), "'" + *bytes + "' is no " + typeName(static_cast<int>(*type)));
        return std::move(*value);
    }
};

TypedValue typed(ParameterKey key, std::string_view text) {
    return {key, std::string(text), text.front() == '"'};
}

Action readSet(CommandWords& words) {
    auto const key = words.parameter();
    auto const text = words.empty() ? words.word("VALUE") : words.tail();
    return [value = typed(key, text)](FrameServer& server, std::uint32_t) {
        auto& frame = server.frame();
        check(frame.set(value.key, eSetAbsolute, value.by(frame.typeOf(value.key))));
    };
}

Action eventOf(EventKey key, std::string data) {
    return [key, bytes = std::move(data)](FrameServer& server, std::uint32_t) {
        check(server.frame().event(key, bytes));
    };
}

Action readEvent(CommandWords& words) {
    std::int32_t const eid = words.number16("EID");
    auto const did = words.device();
    return eventOf({eid, did}, words.hexadecimal());
}

Action mixEffectsEvent(CommandWords& words, std::int32_t eid) {
    auto const me = words.empty() ? 1 : words.number("ME", 1, 16);
    return eventOf({eid, firstMixEffects + static_cast<std::uint32_t>(me - 1)}, {});
}

Action readCut(CommandWords& words) { return mixEffectsEvent(words, cutEvent); }

Action readAuto(CommandWords& words) { return mixEffectsEvent(words, autoEvent); }

Action readList(CommandWords& words) {
    return [key = words.list()](FrameServer& server, std::uint32_t) {
        require(server.sendList(key), "there is no list lid=" + std::to_string(key.lid) +
                                          " number=" + std::to_string(key.number) +
                                          " did=" + shownDevice(key.did));
    };
}

Action readRefuse(CommandWords& words) {
    return [on = words.onOrOff()](FrameServer& server, std::uint32_t) { server.refuse(on); };
}

Action readMute(CommandWords& words) {
    return [on = words.onOrOff()](FrameServer& server, std::uint32_t) { server.mute(on); };
}

Action delayed(CommandWords& words, Delay delay) {
    if (delay.most < delay.least) {
        words.fail("MOST must not be less than MS");
    }
    return [delay](FrameServer& server, std::uint32_t) { server.delay(delay); };
}

Action readDelay(CommandWords& words) {
    auto const least = time(words, "MS");
    auto const most = words.empty() ? least : time(words, "MOST");
    return delayed(words, {least, most, Delay::Order::kept});
}

Action readDelayAcks(CommandWords& words) {
    auto const least = time(words, "MS");
    auto const most = words.empty() ? least : time(words, "MOST");
    return delayed(words, {least, most, Delay::Order::acknowledgements});
}

Action readShuffle(CommandWords& words) {
    return delayed(words, {milliseconds(0), time(words, "MS"), Delay::Order::shuffled});
}

Action readFreeze(CommandWords&) {
    return [](FrameServer& server, std::uint32_t) { server.freeze(true); };
}

Action readThaw(CommandWords&) {
    return [](FrameServer& server, std::uint32_t) { server.freeze(false); };
}

Action readDisconnect(CommandWords&) {
    return [](FrameServer& server, std::uint32_t) { server.disconnect(); };
}

Action readHeal(CommandWords&) {
    return [](FrameServer& server, std::uint32_t) { server.heal(); };
}

Action readBreak(CommandWords& words) {
    Cut place;
    place.way = choice<2>(words, {"to", "from"}) == 0 ? Way::toPanel : Way::fromPanel;
    place.message = static_cast<std::size_t>(words.number("MESSAGE", 1, 1000000000));
    place.byte = words.number32("BYTE");
    place.client = optionalClient(words);
    return [place](FrameServer& server, std::uint32_t present) {
        Cut cut = place;
        cut.client = meant(place.client, present);
        require(server.cut(cut), "that place is past");
    };
}

Action damaged(CommandWords& words, Damage::How how) {
    Damage damage;
    damage.how = how;
    damage.what =
        choice<2>(words, {"values", "lists"}) == 0 ? Damage::What::values : Damage::What::lists;
    if (!words.empty()) {
        damage.count = static_cast<std::size_t>(words.number("COUNT", 0, 1000000000));
    }
    if (!words.empty()) {
        damage.byte = words.number32("BYTE");
    }
    return [damage](FrameServer& server, std::uint32_t) { server.damage(damage); };
}

Action readTruncate(CommandWords& words) { return damaged(words, Damage::How::truncate); }

Action readCorrupt(CommandWords& words) { return damaged(words, Damage::How::corrupt); }

Action readGarbage(CommandWords& words) {
    auto const kind =
        static_cast<Garbage>(choice<4>(words, {"random", "length", "version", "type"}));
    return [kind, given = optionalClient(words)](FrameServer& server, std::uint32_t present) {
        require(server.sendGarbage(kind, meant(given, present)) != 0, "there is no such panel");
    };
}

Action readVersion(CommandWords& words) {
    std::optional<std::uint16_t> number;
    if (words.nextIs("off")) {
        words.word("VERSION");
    } else {
        number = words.number16("VERSION");
    }
    return [number](FrameServer& server, std::uint32_t) { server.welcomeVersion(number); };
}

Action readSeed(CommandWords& words) {
    return
        [seed = words.number32("SEED")](FrameServer& server, std::uint32_t) { server.seed(seed); };
}

Action readFlood(CommandWords& words) {
    Flood flood;
    flood.perSecond = static_cast<std::uint32_t>(words.number("PER-SECOND", 0, mostPerSecond));
    flood.time = time(words, "MS");
    if (!words.empty()) {
        flood.parameter = words.parameter();
    }
    return [flood](FrameServer& server, std::uint32_t) {
        auto const known = !flood.parameter || server.frame().typeOf(*flood.parameter);
        require(known, "there is no such parameter");
        server.flood(flood);
    };
}

Action readOperate(CommandWords& words) {
    auto const rate = static_cast<std::uint32_t>(words.number("PER-SECOND", 0, mostPerSecond));
    auto const seed = words.empty() ? 1U : words.number32("SEED");
    return [rate, seed](FrameServer& server, std::uint32_t) { server.operate(rate, seed); };
}

std::shared_ptr<FrameModel const> readModelWord(CommandWords& words) {
    try {
        auto const path = words.word("FILE");
        return std::make_shared<FrameModel const>(readModelFile(std::string(path)));
    } catch (ModelError const& error) {
        std::string const text = error.what();
        words.fail(text.substr(0, text.find('\n')));
    }
}

std::optional<DataType> typeIn(FrameModel const& model, ParameterKey key) {
    auto const* parameter = model.find(key);
    return parameter ? std::optional(parameter->value.type) : std::nullopt;
}

Action readRestart(CommandWords& words) {
    milliseconds away{0};
    std::shared_ptr<FrameModel const> model;
    std::vector<TypedValue> values;
    if (!words.empty() && !words.nextIs("model") && !words.nextIs("set")) {
        away = time(words, "MS");
    }
    if (words.nextIs("model")) {
        words.word("model");
        model = readModelWord(words);
    }
    while (words.nextIs("set")) {
        words.word("set");
        auto const key = words.parameter();
        values.push_back(typed(key, words.wordOrQuoted("VALUE")));
    }
    return [away, model, values](FrameServer& server, std::uint32_t) {
        Restart restart{.model = {}, .values = {}, .away = away};
        if (model) {
            restart.model = *model;
        }
        for (auto const& each : values) {
            auto const type = model ? typeIn(*model, each.key) : server.frame().typeOf(each.key);
            restart.values.push_back({each.key, each.by(type)});
        }
        server.restart(std::move(restart));
    };
}

template <typename Key>
Action dropping(std::uint32_t given, Key key) {
    return [given, key](FrameServer& server, std::uint32_t present) {
        require(server.dropSubscription(meant(given, present), key),
                "that panel has no such subscription");
    };
}

Action readDrop(CommandWords& words) {
    auto const given = client(words);
    return dropping(given, words.parameter());
}

Action readDropList(CommandWords& words) {
    auto const given = client(words);
    return dropping(given, words.list());
}

Action readTime(CommandWords& words) {
    auto const command = words.empty() ? words.word("COMMAND") : words.tail();
    return [text = std::string(command)](FrameServer& server, std::uint32_t) {
        server.fieldTime(text);
    };
}

constexpr ActionSyntax actions[] = {
    {"set", "PID DID VALUE", readSet,
     "sets a parameter as another operator would; a text may stand in double quotes"},
    {"list", "LID NUMBER DID", readList,
     "sends the whole list to the panels that have subscribed to it"},
    {"event", "EID DID [HEX]", readEvent, "does what the event does, with data in hexadecimal"},
    {"cut", "[ME]", readCut, "cuts on M/E 1, or the one given"},
    {"auto", "[ME]", readAuto, "starts or stops an auto transition on M/E 1, or the one given"},
    {"refuse", "on|off", readRefuse, "refuses new connections, or takes them again"},
    {"mute", "on|off", readMute, "accepts new connections and never answers them, or does again"},
    {"delay", "MS [MOST]", readDelay,
     "holds back all that is sent by so many milliseconds, or a time between; 0 ends it"},
    {"delay-acks", "MS [MOST]", readDelayAcks, "the same for acknowledgements; the rest passes"},
    {"shuffle", "MS", readShuffle,
     "holds back each by up to so many milliseconds; only what belongs together keeps its order"},
    {"freeze", "", readFreeze, "stops reading and answering, with all connections left open"},
    {"thaw", "", readThaw, "goes on after freeze"},
    {"disconnect", "", readDisconnect, "cuts all connections"},
    {"break", "to|from MESSAGE BYTE [CLIENT]", readBreak,
     "cuts the next connection, or the one given, at that byte of that message to or from it"},
    {"truncate", "values|lists [COUNT [BYTE]]", readTruncate,
     "shortens the next payloads, to so many bytes or by chance"},
    {"corrupt", "values|lists [COUNT [BYTE]]", readCorrupt,
     "changes a byte of the next payloads, the one given or any"},
    {"garbage", "random|length|version|type [CLIENT]", readGarbage,
     "sends bytes that make no sense to all panels, or the one given"},
    {"version", "VERSION|off", readVersion, "says welcome by another version, or by its own"},
    {"seed", "SEED", readSeed, "what decides all that these faults leave to chance"},
    {"flood", "PER-SECOND MS [PID DID]", readFlood,
     "changes values so often for so long: all in turn, or the one given"},
    {"operate", "PER-SECOND [SEED]", readOperate,
     "sets parameters to values by chance, as another operator would; 0 ends it"},
    {"restart", "[MS] [model FILE] [set PID DID VALUE]...", readRestart,
     "drops all connections and comes back after so long, with other state"},
    {"drop", "CLIENT PID DID", readDrop, "ends a subscription to a parameter without a word"},
    {"drop-list", "CLIENT LID NUMBER DID", readDropList, "the same for a list"},
    {"heal", "", readHeal, "ends all these faults"},
    {"time", "COMMAND", readTime, "works on the field time; time help lists the commands"},
};

}  // namespace

std::span<ActionSyntax const> frameActions() { return actions; }

ActionSyntax const* findAction(std::string_view name) {
    auto const* const found =
        std::find_if(std::begin(actions), std::end(actions),
                     [name](ActionSyntax const& each) { return each.name == name; });
    return found == std::end(actions) ? nullptr : found;
}

}  // namespace FrameSim
