#pragma once

#include "sims/panel/PanelComparison.h"
#include "sims/panel/PanelRecord.h"
#include "sims/panel/PanelScript.h"

#include <cstddef>
#include <functional>
#include <string>

namespace PanelSim {

/// Does what the lines of a script say.
///
/// Thread: one, besides those that fill the record.
class PanelRunner {
  public:
    /// Delivers a FID to the driver; may throw what the driver throws.
    using Deliver = std::function<void(std::string const&, FIDParameterList const&)>;

    /// Compares the panel with a fresh one; may throw PanelHostError.
    using MakeComparison = std::function<Comparison()>;

    struct Output {
        /// A line of `:state`.
        std::function<void(PanelEvent const&)> state;
        /// A line of `:compare`.
        std::function<void(Difference const&)> difference;
        /// The text of an exception that a FID brought back.
        std::function<void(std::string const&)> exception;
        /// What came in place of what was waited for, one line a call.
        std::function<void(std::string const&)> complaint;
    };

    enum class Outcome {
        goOn,
        quit,   ///< the script says so
        failed  ///< a wait ran out, and what follows would rest on it
    };

    PanelRunner(PanelRecord& panelRecord, Deliver deliverFID, MakeComparison comparison,
                Output printers);

    /// After an exception out of a FID the script goes on. A wait that runs out complains with
    /// what it waited for, what there is, and the last of what came since the wait before it.
    Outcome run(Command const& command);

    /// Nothing failed, nothing differed and no FID brought an exception back.
    bool allGood() const { return good; }

  private:
    Outcome doCommand(Raise const& raise);
    Outcome doCommand(Wait const& wait);
    Outcome doCommand(Sleep const& sleep);
    Outcome doCommand(ShowState const& show);
    Outcome doCommand(Compare const& compare);
    Outcome doCommand(Quit const& quit);

    void complainOf(Wait const& wait) const;

    PanelRecord& record;
    Deliver const deliver;
    MakeComparison const makeComparison;
    Output const output;
    std::size_t heardBefore;  // up to the end of the last wait
    bool good = true;
};

}  // namespace PanelSim
