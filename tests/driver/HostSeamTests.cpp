// What a host can do with the module and the two objects that it gets from it.
#include "DriverFixture.h"
#include "driver/QuillaneQFDModule.h"

using namespace FrameDriver::Testing;

namespace {

class HostSeam : public DriverFixture {};

}  // namespace

TEST_F(HostSeam, ObjectsAreHadByTheirNumbersOnly) {
    EXPECT_NE(driver->queryInterface(1100), nullptr);
    EXPECT_NE(driver->queryInterface(1201), nullptr);
    for (int const id : {0, 1101, 1200, -1})
        EXPECT_EQ(driver->queryInterface(id), nullptr) << id;
}

TEST_F(HostSeam, OneObjectDoesNotLeadToTheOther) {
    auto* const function = driver->queryInterface(1100);
    auto* const settings = driver->queryInterface(1201);
    EXPECT_EQ(function->queryInterface(1201), nullptr);
    EXPECT_EQ(settings->queryInterface(1100), nullptr);
    EXPECT_EQ(function->queryInterface(1100), function);
    EXPECT_EQ(settings->queryInterface(1201), settings);
}

TEST_F(HostSeam, AFIDBeforeTheStartReachesNothing) {
    functions().handleFID("PANEL.ANY", listOf({{"a", "1"}}));
    EXPECT_EQ(sinks.lines(), Lines{});
    EXPECT_EQ(frame().calls(), Lines{});
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(HostSeam, ConstructionDoesNothingButGetItsLog) {
    EXPECT_EQ(log.lines(), Lines{});
    EXPECT_EQ(frame().calls(), Lines{});
    EXPECT_EQ(frame().name(), "cplclient");
}

TEST_F(HostSeam, LoadBeforeConfigureComesUpAsPanelZero) {
    writeInstallation();
    configuration().load();
    auto const calls = frame().calls();
    EXPECT_NE(std::find(calls.begin(), calls.end(), "open(\"\", 6200)"), calls.end());
}

TEST_F(HostSeam, LoadWithoutSinksComesUpAllTheSame) {
    writeInstallation();
    configuration().load();
    EXPECT_TRUE(log.has("info: Initialization complete."));
    EXPECT_EQ(sinks.lines(), Lines{});
}

TEST_F(HostSeam, LoadEndsWithTheStateLoaded) {
    writeInstallation();
    load();
    EXPECT_EQ(sinks.lines(), (Lines{"SID LOADED = "}));
}

TEST_F(HostSeam, TheReservedOperationsHaveNoEffect) {
    int word = 0;
    configuration().setHostToken(&word);
    configuration().idle();
    driver->setHostValue(&word);
    driver->flushHostValue();
    driver->onNotify(&word);
    driver->onCreated();
    driver->onConfigured();
    functions().reservedFunction1(&word);
    functions().reservedFunction2();
    EXPECT_EQ(sinks.lines(), Lines{});
    EXPECT_EQ(frame().calls(), Lines{});
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(HostSeam, EachPanelHasItsPort) {
    writeInstallation();
    configuration().configure(3, "one", "two", "127.0.0.9", "four", "five", "six");
    configuration().load();
    auto const calls = frame().calls();
    EXPECT_NE(std::find(calls.begin(), calls.end(), "open(\"127.0.0.9\", 6206)"), calls.end());
}

TEST_F(HostSeam, AnyPanelNumberGivesSomePort) {
    writeInstallation();
    configuration().configure(-2147483647, "", "", "", "", "", "");
    configuration().load();
    auto const calls = frame().calls();
    EXPECT_NE(std::find(calls.begin(), calls.end(), "open(\"\", 6202)"), calls.end());
}

TEST(QuillaneQFDModule, WithoutADriverOffersNothing) {
    QuillaneQFDModule module;
    EXPECT_EQ(module.queryInterface(1100), nullptr);
    EXPECT_EQ(module.queryInterface(1201), nullptr);
}

TEST(QuillaneQFDModule, TheDriverOutlivesIt) {
    auto module = std::make_unique<QuillaneQFDModule>();
    module->createDriver();
    auto* const functions = module->queryInterface(1100);
    ASSERT_NE(functions, nullptr);
    module->onLoad();
    module->onUnload();
    module.reset();
    EXPECT_EQ(functions->queryInterface(1100), functions);
}

namespace {

struct Framework : IQFDFramework {
    IInterface* queryInterface(int) override { return nullptr; }
    void onConfigured() override { sinks.setText("configured", ""); }
    void initialize() override { sinks.setText("initialize", ""); }
    void deinitialize() override { sinks.setText("deinitialize", ""); }
    void onNotify(void*) override { sinks.setText("notify", ""); }
    RecordingSinks sinks;
};

}  // namespace

TEST(QFDConfigHandler, HandsTheHostsCallsOnToItsFramework) {
    QFDConfigHandler handler;
    Framework framework;
    FIDMapHandler functions;
    handler.setFramework(&framework);
    handler.setFunctions(&functions);
    handler.setStateSink(&framework.sinks);
    handler.configure(1, "", "", "", "", "", "");
    EXPECT_EQ(framework.sinks.take(), (Lines{"TID configured = "}));
    handler.load();
    EXPECT_EQ(framework.sinks.take(), (Lines{"TID initialize = ", "SID LOADED = "}));
    handler.idle();
    handler.setHostToken(&handler);
    EXPECT_EQ(framework.sinks.take(), Lines{});
    handler.unload();
    EXPECT_EQ(framework.sinks.take(), (Lines{"TID deinitialize = "}));
}

TEST(QFDConfigHandler, WithoutAFunctionObjectLoadsAllTheSame) {
    QFDConfigHandler handler;
    Framework framework;
    handler.setFramework(&framework);
    handler.setStateSink(&framework.sinks);
    handler.setFunctionSink(nullptr);
    handler.load();
    EXPECT_EQ(framework.sinks.take(), (Lines{"TID initialize = "}));
}

TEST(QFDConfigHandler, WithoutAFrameworkLoadsAndUnloadsNothing) {
    QFDConfigHandler handler;
    FIDMapHandler functions;
    RecordingSinks sinks;
    handler.setFunctions(&functions);
    handler.setStateSink(&sinks);
    handler.configure(1, "", "", "address", "", "", "");
    handler.load();
    handler.unload();
    EXPECT_EQ(sinks.lines(), Lines{});
    EXPECT_EQ(handler.getPanelIndex(), 1);
    EXPECT_EQ(handler.getHostAddress(), "address");
}
