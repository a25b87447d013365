// A module without a driver: it tells its sinks what the host did with it.

#include "foundation/Exceptions.h"
#include "platform/host/IFunctionID.h"
#include "platform/host/IQFDConfiguration.h"
#include "platform/sal/Module.h"

#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using FrameDriver::ErrorManagement::Exception::IllegalArgumentException;

std::string valueOf(FIDParameterList const& parameters, char const* name) {
    std::string value;
    parameters.getValue(name, value);
    return value;
}

struct Shared {
    std::string calls;    // in order, told at `load`
    std::string logFile;  // where the calls after `load` go
    IStateSink* states = nullptr;
    IFunctionSink* functions = nullptr;
    std::vector<std::thread> threads;

    void note(std::string const& call) {
        calls += call + ";";
        if (!logFile.empty()) {
            std::ofstream(logFile, std::ios::app) << call << ";";
        }
    }
};

class Configuration final : public IQFDConfiguration {
  public:
    explicit Configuration(Shared& state) : shared(state) {}

    IInterface* queryInterface(int id) override {
        return id == configurationInterfaceId ? this : nullptr;
    }
    void configure(std::int32_t panelIndex, std::string const& first, std::string const& second,
                   std::string const& hostAddress, std::string const& fourth,
                   std::string const& fifth, std::string const& sixth) override {
        shared.note("configure " + std::to_string(panelIndex) + " [" + first + second + "] " +
                    hostAddress + " [" + fourth + fifth + sixth + "]");
    }
    void setStateSink(IStateSink* sink) override {
        shared.states = sink;
        shared.note("setStateSink");
    }
    void setFunctionSink(IFunctionSink* sink) override {
        shared.functions = sink;
        shared.note("setFunctionSink");
    }
    void setHostToken(void*) override {}
    void load() override {
        shared.note("load");
        char directory[4096] = "";
        shared.states->setState("CWD", getcwd(directory, sizeof directory) ? directory : "?");
        shared.states->setState("CALLS", shared.calls);
    }
    void unload() override {
        for (std::thread& thread : shared.threads) {
            thread.join();
        }
        shared.note("unload");
    }
    void idle() override {}

  private:
    Shared& shared;
};

class Functions final : public IFunctionID {
  public:
    explicit Functions(Shared& state) : shared(state) {}

    IInterface* queryInterface(int id) override {
        return id == functionInterfaceId ? this : nullptr;
    }
    void handleFID(std::string const& name, FIDParameterList const& parameters) override {
        if (name == "SHOW") {
            shared.states->setState("WIDGET", std::to_string(parameters.getSourceWidget().widget));
            for (FIDParameter const& parameter : parameters) {
                shared.states->setState(parameter.getName(), parameter.getValue());
            }
        } else if (name == "SHOW.LATER") {
            shared.threads.emplace_back([this, parameters] { handleFID("SHOW", parameters); });
        } else if (name == "LOG.TO") {
            shared.logFile = valueOf(parameters, "FILE");
        } else if (name == "THROW") {
            throw std::runtime_error(valueOf(parameters, "TEXT"));
        } else if (name == "THROW.POINTER") {
            throw new IllegalArgumentException(valueOf(parameters, "TEXT"));
        } else {
            shared.functions->sendFunction(name, parameters);
        }
    }
    void reservedFunction1(void*) override {}
    void reservedFunction2() override {}

  private:
    Shared& shared;
};

class FakeModule final : public sal::Module {
  public:
    ~FakeModule() override { shared.note("delete"); }
    IInterface* queryInterface(int id) override {
#ifndef WITHOUT_FUNCTIONS
        if (id == functionInterfaceId) {
            return &functions;
        }
#endif
        return id == configurationInterfaceId ? &configuration : nullptr;
    }
    void onLoad() override { shared.note("onLoad"); }
    void onUnload() override { shared.note("onUnload"); }

  private:
    Shared shared;
    Configuration configuration{shared};
    Functions functions{shared};
};

}  // namespace

extern "C" QFD_PUBLIC sal::Module* onCreateModule() {
#ifdef CREATES_NOTHING
    return nullptr;
#else
    return new FakeModule;
#endif
}
