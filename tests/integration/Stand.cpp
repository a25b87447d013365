#include "Stand.h"

#include "SwitcherTruth.h"
#include "sims/frame/ModelFile.h"

#include <gtest/gtest.h>

#include <thread>

using FrameSim::DataType;
using FrameSim::Value;

namespace FrameDriver::Testing {
namespace {

constexpr FrameSim::ListKey cameras{32, 1, 0x62000000};

FrameSim::FrameServerOptions frameOptions(std::string const& address) {
    FrameSim::FrameServerOptions options;
    options.address = address;
    options.port = 5000;
    options.model = FrameSim::sampleSwitcher();
    options.recordLimit = 3000;
    return options;
}

std::string cameraFields(std::string const& name) {
    auto const& layout = *FrameSim::findListLayout(cameras.lid);
    auto fields = FrameSim::emptyFields(layout);
    for (std::size_t place = 0; place < layout.size(); ++place) {
        if (layout[place].name == "Camera Name")
            fields[place] = Value::ofText(name);
        if (layout[place].name == "Connected")
            fields[place] = Value::ofBool(true);
    }
    return FrameSim::fieldBytes(fields);
}

}  // namespace

Stand::Stand(int index) : number(index), frame(frameOptions(frameAddress.text())) { frame.start(); }

void Stand::startPanel(Installation const& installation) {
    installation.setFrameAddress(frameAddress.text());
    panel = std::make_unique<PanelSim::PanelHost>(
        PanelSim::PanelHostOptions{QFD_MODULE, installation.path(), number, panelAddress.text()});
    panel->start();
}

void Stand::raise(std::string const& fid, Parameters parameters) {
    FIDParameterList list;
    for (auto const& [name, value] : parameters)
        list.add(name, value);
    panel->raise(fid, list);
}

FrameSim::ConnectionCount Stand::connection() { return frame.crossed().back(); }

bool Stand::waitForEnd(std::uint32_t connection, std::chrono::milliseconds atMost) {
    return frame.record().waitFor("#" + std::to_string(connection) + " closed", 1, atMost);
}

std::vector<std::string> Stand::waitForTruth(std::uint32_t connection) {
    // A panel that makes a connection has seen the end of the one before, and is dark.
    frame.record().waitFor("#" + std::to_string(connection) + " < hello", 1, patience);
    return lastingLies(frame.frame(), panel->record(), patience);
}

void Stand::changeFrame(std::mt19937& random) {
    auto const any = [&random](std::uint32_t most) {
        return static_cast<std::int64_t>(random() % (most + 1));
    };
    auto const set = [this](std::int32_t pid, std::int64_t did, Value const& value) {
        frame.frame().set({pid, static_cast<std::uint32_t>(did)}, 0, value);
    };
    auto const number16 = [](std::int64_t value) {
        return Value::ofInteger(DataType::UInt16, value);
    };
    set(10, 0x24000000 + any(9) * 256 + any(1) * 16, number16(any(16)));
    set(40, 0x18000000 + any(3), number16(any(16)));
    set(20, 0x08000000 + any(3) * 16 + any(1), Value::ofBool(any(1) == 1));
    set(22, 0x08000000 + any(3) * 16 + any(1),
        Value::ofReal(DataType::Float, static_cast<float>(any(100))));
    set(31, 0x03000000 + any(1), number16(1 + any(998)));
    set(51, 0x01000001, Value::ofText(std::string(random() % 8, 'n')));
    changeLists(random);
}

void Stand::changeLists(std::mt19937& random) {
    auto const camera = static_cast<std::uint32_t>(1 + random() % 8);
    if (random() % 2 == 0)
        frame.frame().writeList(FrameSim::insertItem, cameras, camera,
                                cameraFields("C" + std::to_string(random() % 100)));
    else
        frame.frame().writeList(FrameSim::deleteItem, cameras, camera, {});
    auto const registerNumber = static_cast<char>(random() % 100);
    frame.frame().event({65, 0x35000000}, std::string(5, '\0') + registerNumber);
}

Stands makeStands(Installation const& installation, std::size_t count) {
    Stands stands;
    for (std::size_t index = 0; index < count; ++index) {
        stands.push_back(std::make_unique<Stand>(static_cast<int>(index)));
        stands.back()->startPanel(installation);
    }
    for (auto const& stand : stands)
        EXPECT_EQ(stand->waitForTruth(1), std::vector<std::string>());
    return stands;
}

void onAll(Stands const& stands, std::function<void(Stand&, std::size_t)> const& work) {
    std::vector<std::thread> threads;
    for (std::size_t place = 0; place < stands.size(); ++place)
        threads.emplace_back([&, place] { work(*stands[place], place); });
    for (auto& thread : threads)
        thread.join();
}

void stopAll(Stands const& stands) {
    onAll(stands, [](Stand& stand, std::size_t) { stand.panel->stop(); });
}

void playShow(Stand& stand) {
    stand.raise("ME1.PST.SRC5");
    stand.raise("ME1.CUT");
    stand.raise("ME1.KEY1.FILL.SRC7");
    stand.raise("ME1.KEY1.TOGGLE");
    stand.raise("ME1.RATE.SET", {{"VAL", "5"}});
    stand.raise("ME1.AUTO");
    stand.frame.frame().advanceFields(6);
    stand.raise("AUX2.SRC9");
    stand.raise("MEMORY.STORE", {{"REG", "42"}});
    stand.raise("ME1.PGM.SRC3");
    stand.raise("MEMORY.RECALL", {{"REG", "42"}});
    stand.raise("SHOW.NAME.SET", {{"NAME", "Evening"}});
    stand.raise("CAMERA.SET", {{"ID", "1"}, {"CONNECTED", "ON"}, {"NAME", "Left"}});
    stand.raise("ME1.KEY1.TOGGLE");
    stand.raise("ME1.PST.SRC2");
}

}  // namespace FrameDriver::Testing
