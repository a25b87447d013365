#include "SwitcherTruth.h"

#include <cstdint>
#include <cstdio>
#include <map>
#include <thread>
#include <utility>

namespace FrameDriver::Testing {
namespace {

using FrameSim::Frame;
using FrameSim::ListKey;
using PanelSim::Heard;

constexpr ListKey sourceNames{12, 1, 0x62000000};
constexpr ListKey registers{23, 1, 0x35000000};
constexpr ListKey cameras{32, 1, 0x62000000};
constexpr std::uint32_t keyers = 4;

std::string text(std::uint32_t number) { return std::to_string(number); }

/// What the panel must show, by kind and name.
class Truth {
  public:
    explicit Truth(Frame const& switcher) : frame(switcher) {
        tellSources();
        for (std::uint32_t me = 0; me < 2; ++me)
            tellMixEffects(me);
        for (std::uint32_t aux = 0; aux < 4; ++aux)
            tellAux(aux);
        tellSystem();
        tellMemory();
        tellCameras();
    }

    std::map<std::pair<Heard, std::string>, std::string> told;

  private:
    void sid(std::string const& name, std::string const& value) {
        told[{Heard::sid, name}] = value;
    }
    void tid(std::string const& name, std::string const& value) {
        told[{Heard::tid, name}] = value;
    }
    void lamp(std::string const& name, bool on) { sid(name, on ? "ON" : "OFF"); }

    std::uint32_t number(std::int32_t pid, std::uint32_t did) const {
        return static_cast<std::uint32_t>(frame.value({pid, did}).value().integer());
    }
    bool isOn(std::int32_t pid, std::uint32_t did) const {
        return frame.value({pid, did}).value().boolean();
    }
    std::string tenths(std::int32_t pid, std::uint32_t did, char const* unit) const {
        char shown[64];
        std::snprintf(shown, sizeof shown, "%.1f%s",
                      static_cast<double>(frame.value({pid, did}).value().real()), unit);
        return shown;
    }
    std::vector<FrameSim::ListItem> items(ListKey list) const { return frame.items(list).value(); }
    static FrameSim::Value field(ListKey list, FrameSim::ListItem const& item, char const* name) {
        auto const& layout = *FrameSim::findListLayout(list.lid);
        std::size_t place = 0;
        while (layout.at(place).name != name)
            ++place;
        return item.fields.at(place);
    }

    void tellSources() {
        for (auto const& item : items(sourceNames)) {
            auto const source = item.itemId - 1;
            names[source] = field(sourceNames, item, "Source Name").text();
            tid("SOURCE" + text(source) + ".NAME", names[source]);
            tid("SOURCE" + text(source) + ".NICK",
                field(sourceNames, item, "Source Nick Name").text());
            lamp("TALLY.SRC" + text(source), isOn(11, 0x1b000000 + source));
        }
    }

    void tellBus(std::string const& bus, std::uint32_t source) {
        for (std::uint32_t button = 0; button <= 16; ++button)
            lamp(bus + ".SRC" + text(button), button == source);
        sid(bus + ".SOURCE", text(source));
        tid(bus + ".NAME", names[source]);
    }

    void tellMixEffects(std::uint32_t me) {
        auto const name = "ME" + text(me + 1);
        auto const bus = [me](std::uint32_t which) { return 0x24000000U + which * 256 + me * 16; };
        tellBus(name + ".PGM", number(10, bus(0)));
        tellBus(name + ".PST", number(10, bus(1)));
        for (std::uint32_t key = 0; key < keyers; ++key) {
            auto const fill = number(10, bus(2 + key));
            auto const cut = number(10, bus(6 + key));
            tellBus(name + ".KEY" + text(key + 1) + ".FILL", fill);
            tellBus(name + ".KEY" + text(key + 1) + ".CUT", cut);
            lamp(name + ".KEY" + text(key + 1) + ".SPLIT", fill != cut);
            tellKeyer(name + ".KEY" + text(key + 1), 0x08000000 + key * 16 + me);
        }
        tellTransition(name, 0x03000000 + me);
    }

    void tellKeyer(std::string const& name, std::uint32_t did) {
        lamp(name + ".ON", isOn(20, did));
        sid(name + ".PRIORITY", text(number(21, did)));
        tid(name + ".CLIP", tenths(22, did, "%"));
        tid(name + ".HUE", tenths(23, did, "\xb0"));
    }

    void tellTransition(std::string const& me, std::uint32_t did) {
        sid(me + ".LEVER.POSITION", text(number(30, did)));
        sid(me + ".RATE.FIELDS", text(number(31, did)));
        lamp(me + ".NEXT.BGD", number(32, did) & 1U);
        for (std::uint32_t key = 1; key <= keyers; ++key)
            lamp(me + ".NEXT.KEY" + text(key), number(32, did) >> key & 1U);
        lamp(me + ".AUTO.RUNNING", isOn(34, did));
    }

    void tellAux(std::uint32_t aux) {
        auto const source = number(40, 0x18000000 + aux);
        tellBus("AUX" + text(aux + 1), source);
        lamp("AUX" + text(aux + 1) + ".IS.PGM", source == number(10, 0x24000000));
    }

    void tellSystem() {
        lamp("FRAME.CONNECTED", true);
        sid("VIDEO.FRAMERATE", text(number(50, 0x01000001)));
        auto const show = frame.value({51, 0x01000001}).value().text();
        tid("SHOW.NAME", show);
        lamp("SHOW.UNNAMED", show.empty());
    }

    void tellMemory() {
        for (std::uint32_t index = 0; index < 100; ++index) {
            lamp("MEMORY.REG." + text(index), false);
            lamp("MEMORY.USED." + text(index), false);
            tid("MEMORY.NAME." + text(index), "");
        }
        auto const used = number(60, 0x35000000);
        auto const shown = used == 65535 ? "NONE" : text(used);
        lamp("MEMORY.REG.NONE", false);
        lamp("MEMORY.REG." + shown, true);
        sid("MEMORY.REGISTER", shown);
        for (auto const& item : items(registers)) {
            lamp("MEMORY.USED." + text(item.itemId - 1), true);
            tid("MEMORY.NAME." + text(item.itemId - 1),
                field(registers, item, "Register Name").text());
        }
    }

    void tellCameras() {
        for (std::uint32_t camera = 1; camera <= 8; ++camera) {
            lamp("CAMERA" + text(camera) + ".CONNECTED", false);
            tid("CAMERA" + text(camera) + ".NAME", "");
        }
        for (auto const& item : items(cameras)) {
            auto const camera = "CAMERA" + text(item.itemId);
            lamp(camera + ".CONNECTED", field(cameras, item, "Connected").boolean());
            tid(camera + ".NAME", field(cameras, item, "Camera Name").text());
        }
    }

    Frame const& frame;
    std::map<std::uint32_t, std::string> names;
};

}  // namespace

std::vector<std::string> lies(Frame const& frame, PanelSim::PanelRecord const& panel) {
    std::map<std::pair<Heard, std::string>, std::string> shown;
    for (auto& event : panel.state())
        shown[{event.kind, event.name}] = event.value;
    std::vector<std::string> found;
    for (auto const& [what, value] : Truth(frame).told) {
        auto const at = shown.find(what);
        // What was never shown is dark.
        auto const is = at == shown.end() ? value == "OFF" ? "OFF" : "" : at->second;
        if (is != value)
            found.push_back(std::string(kindName(what.first)) + " " + what.second + " is " + is +
                            ", not " + value);
    }
    return found;
}

std::vector<std::string> lastingLies(Frame const& frame, PanelSim::PanelRecord const& panel,
                                     std::chrono::milliseconds patience) {
    auto const deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        auto const found = lies(frame, panel);
        if (found.empty() || std::chrono::steady_clock::now() > deadline)
            return found;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

}  // namespace FrameDriver::Testing
