#include "sims/panel/PanelHost.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <mutex>
#include <unistd.h>
#include <utility>
#include <vector>

namespace PanelSim {
namespace {

using CreateModule = sal::Module*();

PanelRecord& recordForEver(PanelRecord::Listener listener, std::size_t history) {
    static std::mutex mutex;
    // Never destroyed, like its content: drivers have threads that end with the process.
    static auto* const records = new std::vector<std::unique_ptr<PanelRecord>>;
    std::lock_guard const guard(mutex);
    return *records->emplace_back(std::make_unique<PanelRecord>(std::move(listener), history));
}

void* openLibrary(std::string const& file) {
    // A name without a slash would be sought in the system's folders.
    std::string const path = file.find('/') == std::string::npos ? "./" + file : file;
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        throw PanelHostError("cannot load the module '" + file + "': " + dlerror());
    }
    return handle;
}

std::unique_ptr<sal::Module> createModule(void* handle, std::string const& file) {
    auto* const create = reinterpret_cast<CreateModule*>(dlsym(handle, "onCreateModule"));
    if (!create) {
        throw PanelHostError("'" + file + "' is no module: it has no onCreateModule");
    }
    std::unique_ptr<sal::Module> created(create());
    if (!created) {
        throw PanelHostError("'" + file + "' created no module");
    }
    return created;
}

void changeDirectory(std::string const& directory) {
    if (!directory.empty() && chdir(directory.c_str()) != 0) {
        throw PanelHostError("cannot go to the installation '" + directory +
                             "': " + std::strerror(errno));
    }
}

}  // namespace

void PanelHost::CloseLibrary::operator()(void* handle) const { dlclose(handle); }

// The root is a virtual base, and only a dynamic_cast finds the way from it to an interface.
template <typename Interface>
Interface& PanelHost::ask(int number) {
    auto* const found = dynamic_cast<Interface*>(module->queryInterface(number));
    if (!found) {
        throw PanelHostError("'" + options.module + "' has no interface " + std::to_string(number));
    }
    return *found;
}

PanelHost::PanelHost(PanelHostOptions hostOptions, PanelRecord::Listener listener)
    : options(std::move(hostOptions)),
      heard(recordForEver(std::move(listener), options.history)),
      library(openLibrary(options.module)),
      module(createModule(library.get(), options.module)) {
    module->onLoad();
    configuration = &ask<IQFDConfiguration>(configurationInterfaceId);
    functions = &ask<IFunctionID>(functionInterfaceId);
}

PanelHost::~PanelHost() {
    stop();
    module->onUnload();
}

void PanelHost::start() {
    changeDirectory(options.installation);
    configuration->configure(options.panelIndex, "", "", options.address, "", "", "");
    configuration->setStateSink(&heard);
    configuration->setFunctionSink(&heard);
    configuration->load();
    running = true;
}

void PanelHost::stop() {
    if (std::exchange(running, false)) {
        configuration->unload();
    }
}

void PanelHost::raise(std::string const& name, FIDParameterList const& parameters) {
    functions->handleFID(name, parameters);
}

}  // namespace PanelSim
