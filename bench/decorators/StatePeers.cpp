#include "StreamPeers.h"
#include "StreamText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>
#include <vector>

namespace FrameDriver::Template::Bench {
namespace {

using Text = std::string const&;

bool holds(PlainState const& state, std::string const& key, std::string const& text) {
    auto const entry = state.find(key);
    return entry != state.end() && entry->second == text;
}

std::int32_t numberAt(PlainState const& state, std::string const& key) {
    auto const entry = state.find(key);
    return entry == state.end() ? 0 : read<std::int32_t>(entry->second);
}

std::string directionSelector(Text value, PlainState& state) {
    std::string const key = "ME1.PRIMARY.TRANSI.FADERDIRECTION";
    if (holds(state, key + ".LOCK", "OFF")) {
        auto const position = read<std::int32_t>(value);
        if (position != 2047) {
            state[key] = position < 2047 ? "UP" : "DOWN";
            state[key + ".LOCK"] = "ON";
        }
    }
    return state[key];
}

std::string leverArm(Text value, PlainState& state) {
    bool const down = holds(state, "ME2.PRIMARY.TRANSI.FADERDIRECTION", "DOWN");
    auto const position = read<float>(value);
    return print((down ? 4095.0F - position : position) * 0.00024420026F);
}

std::string transitionElements(Text value, PlainState& state) {
    static std::vector<std::pair<std::string, int>> const elements{
        {"BGD", 1},       {"KEY1", 2},   {"KEY2", 4},   {"KEY3", 8},   {"KEY4", 16},
        {"KEYPRIOR", 32}, {"KEY5", 128}, {"KEY6", 256}, {"KEY7", 512}, {"KEY8", 1024}};
    int armed = 0;
    for (auto const& [name, bit] : elements)
        armed |= holds(state, print(value, ".TRANSI.", name, ".NEXT"), "ON") ? bit : 0;
    return print(armed);
}

// Without any new priorities, which the sample doesn't have.
std::string priorityCombiner(Text value, PlainState& state) {
    std::array<std::int32_t, 6> order{};
    for (int key = 0; key < 6; ++key) {
        auto const place =
            numberAt(state, print(value, ".TRANSI.KEY", key + 1, ".PRIORITY.", "PGM"));
        order.at(static_cast<std::size_t>(place - 1)) = key;
    }
    std::int32_t number = 0;
    for (int key = 5; key >= 0; --key) {
        numberAt(state, print(value, ".TRANSI.KEY", key + 1, ".PRIORITY.", "PGM", ".NEW"));
        number = number * 16 + order[static_cast<std::size_t>(key)];
    }
    return print(number);
}

std::string isSplit(Text value, PlainState& state) {
    bool const back = holds(state, print(value, ".BACK.SELECTED"), "TRUE");
    auto const fill = state.find(print(value, back ? ".BACK" : ".FRONT", ".FILL.SOURCE"));
    auto const cut = state.find(print(value, back ? ".BACK" : ".FRONT", ".CUT.SOURCE"));
    bool const split = fill != state.end() && cut != state.end() && fill->second != cut->second;
    return split ? "ON" : "OFF";
}

std::string routerIdLookUp(Text value, PlainState& state) {
    std::ostringstream identifiers;
    auto const count = numberAt(state, "ROUTER.MAIN.NEXTID");
    for (std::int32_t identifier = 0; identifier < count; ++identifier) {
        if (holds(state, print("MAIN", identifier, ".NAME"), value))
            identifiers << identifier;
    }
    return identifiers.str();
}

std::string isEqualTo(Text value, PlainState& state) {
    return holds(state, "ME1.NAME", value) ? "true" : "false";
}

std::string aggregate(Text value, PlainState& state) {
    return print(std::clamp(numberAt(state, "ME1.RATE") + read<std::int32_t>(value), 0, 10));
}

std::string currentClipLength(Text value, PlainState& state) {
    return print(std::max(numberAt(state, print("MACHINE", value, ".MARKOUT")) -
                              numberAt(state, print("MACHINE", value, ".MARKIN")),
                          0));
}

std::string logicalSources(Text value, PlainState& state) {
    std::ostringstream inputs;
    for (int input = 1; input <= 250; ++input) {
        if (holds(state, print("LOGICAL.INPUT", input, ".PHYSICAL.SOURCE"), value))
            inputs << input << ' ';
    }
    return inputs.str();
}

struct Clip {
    std::int32_t itemId;
    std::string clipName;
    std::int32_t nextItemId;
};

Clip parseClip(Text text) {
    std::istringstream stream(text);
    std::vector<std::string> parts;
    for (std::string part; std::getline(stream, part, ':');) {
        if (!part.empty())
            parts.push_back(part);
    }
    return {read<std::int32_t>(parts.at(0)), parts.at(1), read<std::int32_t>(parts.at(2))};
}

std::vector<Clip> parseClips(Text text) {
    std::istringstream stream(text);
    std::vector<Clip> clips;
    for (std::string piece; std::getline(stream, piece, '>');) {
        if (!piece.empty())
            clips.push_back(parseClip(piece));
    }
    return clips;
}

// The sample's clip goes ahead of the second of the stack.
std::string clipStackBuilder(Text value, PlainState& state) {
    auto const mark = value.find('>');
    auto clips = parseClips(state[print("DEVICE", value.substr(0, mark), ".CLIP_STACK")]);
    auto const clip = parseClip(value.substr(mark + 1));
    auto const place = std::ranges::find(clips, clip.nextItemId, &Clip::itemId);
    std::prev(place)->nextItemId = clip.itemId;
    clips.insert(place, clip);
    std::ostringstream text;
    for (auto const& [itemId, clipName, nextItemId] : clips)
        text << itemId << "::" << clipName << "::" << nextItemId << ">>";
    return text.str();
}

std::string clipStackElement(Text value, PlainState& state) {
    std::string const key = print("DEVICE", value, ".CLIP_STACK");
    auto const clips = parseClips(state[key]);
    auto const index = numberAt(state, key + ".LOADED.INDEX") + 1;
    return print(clips.at(static_cast<std::size_t>(index - 1)).itemId);
}

constexpr auto peers = std::to_array<StreamPeer>({
    {"directionSelector=1,bank=0,emem=false", "100", directionSelector},
    {"leverarm=2,bank=0,emem=false", "1365", leverArm},
    {"transitionElementCombiner", "ME1.PRIMARY", transitionElements},
    {"priorityCombiner=PGM", "ME1.PRIMARY", priorityCombiner},
    {"isSplit", "ME1.KEY1", isSplit},
    {"routerIdLookUp=MAIN", "CAM 7", routerIdLookUp},
    {"isEqualTo:ME1.NAME", "MAIN", isEqualTo},
    {"aggregate=ME1.RATE,min=0,max=10", "-2", aggregate},
    {"currentClipLength", "2", currentClipLength},
    {"logicalSourceListExtractor", "7", logicalSources},
    {"clipstackBuilder=insert,offset=0", "3>9::logo::2", clipStackBuilder},
    {"clipstackElement=1,field=itemId", "3", clipStackElement},
});

}  // namespace

std::span<StreamPeer const> statePeers() { return peers; }

PlainState sampleState() {
    PlainState state{{"VIDEO.FRAMERATE", "50"},
                     {"VIDEO.SCANTYPE", "1"},
                     {"SETTINGS.AUTO.TRANSRATE.DISPLAY", "TIME"},
                     {"EMEM.ME1.LATEST.EFFDUR", "2"},
                     {"ME1.NAME", "MAIN"},
                     {"ME1.RATE", "9"},
                     {"ME1.PRIMARY.TRANSI.FADERDIRECTION.LOCK", "OFF"},
                     {"ME2.PRIMARY.TRANSI.FADERDIRECTION", "DOWN"},
                     {"ME1.PRIMARY.TRANSI.BGD.NEXT", "ON"},
                     {"ME1.PRIMARY.TRANSI.KEY1.NEXT", "ON"},
                     {"ME1.KEY1.FRONT.FILL.SOURCE", "7"},
                     {"ME1.KEY1.FRONT.CUT.SOURCE", "8"},
                     {"MACHINE2.MARKIN", "100"},
                     {"MACHINE2.MARKOUT", "350"},
                     {"DEVICE3.CLIP_STACK", "1::opener::2>>2::bin/take1::3>>3::end::0>>"},
                     {"DEVICE3.CLIP_STACK.LOADED.INDEX", "1"},
                     {"ROUTER.MAIN.NEXTID", "16"}};
    for (int key = 1; key <= 6; ++key)
        state[print("ME1.PRIMARY.TRANSI.KEY", key, ".PRIORITY.PGM")] = print(key);
    for (int entry = 0; entry < 16; ++entry)
        state[print("MAIN", entry, ".NAME")] = print("CAM ", entry);
    for (int input = 1; input <= 64; ++input)
        state[print("LOGICAL.INPUT", input, ".PHYSICAL.SOURCE")] = print(input % 32);
    return state;
}

}  // namespace FrameDriver::Template::Bench
