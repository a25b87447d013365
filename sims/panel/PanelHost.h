#pragma once

#include "platform/host/IFunctionID.h"
#include "platform/host/IQFDConfiguration.h"
#include "platform/sal/Module.h"
#include "sims/panel/PanelRecord.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace PanelSim {

/// A module can't be used, with the file and the reason.
class PanelHostError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct PanelHostOptions {
    std::string module;           ///< the module's file
    std::string installation;     ///< the directory that the driver runs in; empty: the present one
    std::int32_t panelIndex = 0;  ///< the panel's number
    std::string address;          ///< the panel's own, towards the frame; empty: any
    std::size_t history = PanelRecord::historyBound;  ///< how much of what it heard is kept
};

/// A panel's software around one driver module: loads it, asks it for its two interfaces, gives
/// it its configuration and its sinks, starts it, delivers FIDs, and stops it, in the order that
/// drivers rely on.
///
/// Changes the working directory of the process, which is where a driver finds its files: hosts
/// that run at the same time must be of one installation, and be started one at a time.
/// Thread: `start`, `stop` and the destructor on one thread, `raise` on any.
/// Errors: PanelHostError. What a driver throws on a FID passes through `raise`.
class PanelHost {
  public:
    /// Loads the module and asks it for its interfaces; the driver doesn't run yet.
    explicit PanelHost(PanelHostOptions hostOptions, PanelRecord::Listener listener = {});
    /// Stops the driver if it runs, then unloads the module.
    ~PanelHost();
    PanelHost(PanelHost const&) = delete;
    PanelHost& operator=(PanelHost const&) = delete;

    /// Goes to the installation and starts the driver; returns when that is at work. Once.
    void start();
    /// Stops the driver; nothing if it doesn't run.
    void stop();

    void raise(std::string const& name, FIDParameterList const& parameters);

    /// What the panel hears. A driver's threads may outlive its stop, so the record is kept to
    /// the end of the process.
    PanelRecord& record() { return heard; }

  private:
    struct CloseLibrary {
        void operator()(void* handle) const;
    };

    template <typename Interface>
    Interface& ask(int number);

    PanelHostOptions const options;
    PanelRecord& heard;
    std::unique_ptr<void, CloseLibrary> library;  // outlives what came out of it
    std::unique_ptr<sal::Module> module;
    IQFDConfiguration* configuration = nullptr;  // the module's
    IFunctionID* functions = nullptr;            // the module's
    bool running = false;
};

}  // namespace PanelSim
