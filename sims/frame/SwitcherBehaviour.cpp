#include "sims/frame/SwitcherBehaviour.h"

#include "platform/cplclient/wire/ByteReader.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace FrameSim {
namespace {

// The sample's numbers, as docs/formats/sample-switcher.md has them.
enum Pid : std::int32_t {
    crosspoint = 10,
    tally = 11,
    keyerOn = 20,
    keyerPriority = 21,
    keyClip = 22,
    keyHue = 23,
    lever = 30,
    rate = 31,
    elements = 32,
    direction = 33,
    autoRunning = 34,
    auxCrosspoint = 40,
    standardRate = 50,
    registerInUse = 60
};
enum Eid : std::int32_t {
    cutEvent = 40,
    autoEvent = 41,
    recallEvent = 64,
    storeEvent = 65,
    copyEvent = 85
};

constexpr std::array memorised{crosspoint, keyerOn, keyerPriority, keyClip,
                               keyHue,     rate,    elements,      auxCrosspoint};
constexpr std::int64_t leverTop = 4095;
constexpr std::int64_t up = 0;
constexpr std::int64_t down = 1;
constexpr std::int64_t background = 1;  // bit 0 of the next transition elements
constexpr std::uint16_t mostRegisters = 100;
constexpr std::uint32_t programBus = 0;
constexpr std::uint32_t presetBus = 1;
constexpr std::uint32_t firstFillBus = 2;

ParameterKey busKey(std::uint32_t me, std::uint32_t bus) {
    return {crosspoint, 0x24000000U + (bus << 8U) + (me << 4U)};
}
ParameterKey keyerKey(std::int32_t pid, std::uint32_t me, std::uint32_t keyer) {
    return {pid, 0x08000000U + (keyer << 4U) + me};
}
ParameterKey meKey(std::int32_t pid, std::uint32_t me) { return {pid, 0x03000000U + me}; }
ParameterKey tallyKey(std::uint32_t source) { return {tally, 0x1b000000U + source}; }
constexpr ParameterKey rateKey{standardRate, 0x01000001U};
constexpr ParameterKey registerKey{registerInUse, 0x35000000U};
constexpr ListKey registerList{23, 1, 0x35000000U};

/// How many there are from 0 on.
template <typename KeyOf>
std::uint32_t countOf(FrameModel const& model, std::uint32_t most, KeyOf keyOf) {
    std::uint32_t count = 0;
    while (count < most && model.find(keyOf(count))) {
        ++count;
    }
    return count;
}

bool isSelected(std::int64_t elementBits, std::uint32_t keyer) {
    return ((elementBits >> (keyer + 1)) & 1) != 0;
}

bool isBetweenEnds(std::int64_t position) { return position > 0 && position < leverTop; }

}  // namespace

void SwitcherBehaviour::start(FrameModel& model) {
    std::uint32_t const count =
        countOf(model, 16, [](std::uint32_t me) { return busKey(me, programBus); });
    for (std::uint32_t me = 0; me < count; ++me) {
        auto const keyers =
            countOf(model, 4, [me](std::uint32_t keyer) { return keyerKey(keyerOn, me, keyer); });
        mixEffects.push_back({.number = me, .keyers = keyers});
    }
    sources = countOf(model, 65536, tallyKey);
    deriveTally(model);
}

void SwitcherBehaviour::changed(FrameModel& model, ParameterKey key) {
    auto* const me = key.pid == lever ? find(key.did) : nullptr;
    if (me) {
        leverMoved(model, *me);
    }
    deriveTally(model);
}

bool SwitcherBehaviour::event(FrameModel& model, EventKey key, std::string_view data) {
    bool const taken = key.eid == cutEvent || key.eid == autoEvent ? transition(model, key)
                                                                   : memory(model, key, data);
    deriveTally(model);
    return taken;
}

bool SwitcherBehaviour::busy() const {
    return std::any_of(mixEffects.begin(), mixEffects.end(),
                       [](MixEffects const& me) { return me.running; });
}

void SwitcherBehaviour::field(FrameModel& model) {
    for (auto& me : mixEffects) {
        if (me.running) {
            advance(model, me);
        }
    }
    deriveTally(model);
}

double SwitcherBehaviour::fieldRate(FrameModel const& model) const {
    std::int64_t const whole = std::max<std::int64_t>(1, model.integer(rateKey, 50));
    return whole == 59 ? 60000.0 / 1001.0 : static_cast<double>(whole);
}

SwitcherBehaviour::MixEffects* SwitcherBehaviour::find(std::uint32_t did) {
    auto const at = std::find_if(mixEffects.begin(), mixEffects.end(), [did](auto const& me) {
        return meKey(lever, me.number).did == did;
    });
    return at == mixEffects.end() ? nullptr : &*at;
}

bool SwitcherBehaviour::transition(FrameModel& model, EventKey key) {
    auto* const me = find(key.did);
    if (!me) {
        return false;
    }
    if (key.eid == autoEvent) {
        me->running ? stop(model, *me) : startAuto(model, *me);
    } else if (me->running) {
        // A cut in the middle of an auto transition takes it to its end at once.
        model.assignInteger(meKey(lever, me->number), me->to);
        finish(model, *me);
    } else {
        swap(model, *me);
    }
    return true;
}

void SwitcherBehaviour::swap(FrameModel& model, MixEffects const& me) {
    auto const bits = model.integer(meKey(elements, me.number), background);
    if ((bits & background) != 0) {
        auto const program = model.integer(busKey(me.number, programBus));
        auto const preset = model.integer(busKey(me.number, presetBus));
        model.assignInteger(busKey(me.number, programBus), preset);
        model.assignInteger(busKey(me.number, presetBus), program);
    }
    for (std::uint32_t keyer = 0; keyer < me.keyers; ++keyer) {
        if (isSelected(bits, keyer)) {
            auto const key = keyerKey(keyerOn, me.number, keyer);
            model.assignInteger(key, model.isOn(key) ? 0 : 1);
        }
    }
}

/// The lever stands at the end that it was going to.
void SwitcherBehaviour::finish(FrameModel& model, MixEffects& me) {
    stop(model, me);
    swap(model, me);
    bool const atTop = model.integer(meKey(lever, me.number)) == leverTop;
    model.assignInteger(meKey(direction, me.number), atTop ? down : up);
}

void SwitcherBehaviour::stop(FrameModel& model, MixEffects& me) {
    me.running = false;
    model.assignInteger(meKey(autoRunning, me.number), 0);
}

void SwitcherBehaviour::startAuto(FrameModel& model, MixEffects& me) {
    me.from = model.integer(meKey(lever, me.number));
    me.to = model.integer(meKey(direction, me.number)) == up ? leverTop : 0;
    if (me.from == me.to) {
        // Somebody has set the direction by hand: there is but one way to go.
        me.to = leverTop - me.to;
        model.assignInteger(meKey(direction, me.number), me.to == leverTop ? up : down);
    }
    auto const fields = static_cast<double>(model.integer(meKey(rate, me.number), 25));
    auto const way = static_cast<double>(std::abs(me.to - me.from));
    me.total = std::max<std::int64_t>(1, std::llround(fields * way / leverTop));
    me.done = 0;
    me.running = true;
    model.assignInteger(meKey(autoRunning, me.number), 1);
}

void SwitcherBehaviour::advance(FrameModel& model, MixEffects& me) {
    ++me.done;
    std::int64_t const position = me.from + (me.to - me.from) * me.done / me.total;
    model.assignInteger(meKey(lever, me.number), position);
    if (me.done == me.total) {
        finish(model, me);
    }
}

/// By hand. The hand takes the lever from an auto transition.
void SwitcherBehaviour::leverMoved(FrameModel& model, MixEffects& me) {
    if (me.running) {
        stop(model, me);
    }
    bool const goesUp = model.integer(meKey(direction, me.number)) == up;
    if (model.integer(meKey(lever, me.number)) == (goesUp ? leverTop : 0)) {
        finish(model, me);
    }
}

bool SwitcherBehaviour::memory(FrameModel& model, EventKey key, std::string_view data) {
    cplwire::ByteReader reader(data);
    switch (key.eid) {
    case recallEvent:
        return recall(model, reader.u16());
    case storeEvent:
        reader.u32();
        return store(model, reader.u16());
    case copyEvent: {
        auto const source = reader.u16();
        return copy(model, source, reader.u16());
    }
    default:
        return true;  // the model's own, without effect here
    }
}

bool SwitcherBehaviour::store(FrameModel& model, std::uint16_t number) {
    if (number >= mostRegisters) {
        return false;
    }
    Register content;
    for (auto const& [key, parameter] : model.allParameters()) {
        if (std::find(memorised.begin(), memorised.end(), key.pid) != memorised.end()) {
            content.emplace_back(key, parameter.value);
        }
    }
    registers[number] = std::move(content);
    listRegister(model, number);
    model.assignInteger(registerKey, number);
    return true;
}

bool SwitcherBehaviour::recall(FrameModel& model, std::uint16_t number) {
    auto const at = registers.find(number);
    if (at == registers.end()) {
        return false;
    }
    for (auto const& [key, value] : at->second) {
        model.assign(key, value);
    }
    model.assignInteger(registerKey, number);
    return true;
}

bool SwitcherBehaviour::copy(FrameModel& model, std::uint16_t source, std::uint16_t target) {
    auto const at = registers.find(source);
    if (at == registers.end() || target >= mostRegisters) {
        return false;
    }
    registers[target] = Register(at->second);
    listRegister(model, target);
    return true;
}

void SwitcherBehaviour::listRegister(FrameModel& model, std::uint16_t number) {
    ListItem item;
    item.itemId = number + 1U;
    item.fields = {Value::ofInteger(DataType::UInt32, number), Value::ofBool(true),
                   Value::ofText("Register " + std::to_string(number)), Value::ofText("")};
    model.putItem(registerList, std::move(item));
}

/// A source is on air if a program bus shows it, or the fill of a keyer that is on. While the
/// lever is on its way, so is what is coming in: the preset bus, and the keyers selected.
void SwitcherBehaviour::deriveTally(FrameModel& model) const {
    std::vector<bool> onAir(sources);
    for (auto const& me : mixEffects) {
        collectOnAir(model, me, onAir);
    }
    for (std::size_t source = 0; source < sources; ++source) {
        model.assignInteger(tallyKey(static_cast<std::uint32_t>(source)), onAir[source] ? 1 : 0);
    }
}

void SwitcherBehaviour::collectOnAir(FrameModel const& model, MixEffects const& me,
                                     std::vector<bool>& onAir) const {
    auto const show = [&](std::uint32_t bus) {
        auto const source = static_cast<std::size_t>(model.integer(busKey(me.number, bus)));
        if (source < onAir.size()) {
            onAir[source] = true;
        }
    };
    bool const underWay = isBetweenEnds(model.integer(meKey(lever, me.number)));
    auto const bits = model.integer(meKey(elements, me.number), background);
    show(programBus);
    if (underWay && (bits & background) != 0) {
        show(presetBus);
    }
    for (std::uint32_t keyer = 0; keyer < me.keyers; ++keyer) {
        bool const comesIn = underWay && isSelected(bits, keyer);
        if (comesIn || model.isOn(keyerKey(keyerOn, me.number, keyer))) {
            show(firstFillBus + keyer);
        }
    }
}

}  // namespace FrameSim
