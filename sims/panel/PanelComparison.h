#pragma once

#include "sims/panel/PanelHost.h"
#include "sims/panel/PanelRecord.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

/// Whether a panel shows what its frame is. The measure is a panel that has just been joined to
/// the same frame: it has no history, so whatever the other one shows else comes of its own.
namespace PanelSim {

/// The states and texts that are the panel's own business and not the frame's: what a button
/// selected, what a knob was turned to. One shell pattern a line, on the name; blank lines and
/// lines that begin with "#" are none.
class OwnNames {
  public:
    OwnNames() = default;
    explicit OwnNames(std::string_view text);

    bool covers(std::string const& name) const;

  private:
    std::vector<std::string> patterns;
};

struct Difference {
    Heard kind = Heard::sid;  ///< never fid
    std::string name;
    std::string value;  ///< what the panel shows
    std::string fresh;  ///< what the fresh one shows

    bool operator==(Difference const&) const = default;
};

///     line = ("SID" | "TID") " " name ": this panel " value ", a fresh one " value
std::string shown(Difference const& difference);

/// All states, then all texts, each by name, in which the two differ; own names left out. What
/// was never shown counts as empty. The state by which a driver tells the time of its connection
/// is the same if both are connected or both aren't.
std::vector<Difference> differences(PanelRecord const& panel, PanelRecord const& fresh,
                                    OwnNames const& own);

struct ComparisonLimits {
    /// Within this time the fresh panel must be joined and come to rest.
    std::chrono::milliseconds joining{10000};
    /// It has come to rest when it has heard nothing for so long.
    std::chrono::milliseconds quiet{500};
    /// What differs then may still be on its way to the one or the other. So long is it looked
    /// at again.
    std::chrono::milliseconds settling{2000};
};

struct Comparison {
    /// Why there is nothing to compare with; empty if there is.
    std::string trouble;
    std::vector<Difference> found;

    bool good() const { return trouble.empty() && found.empty(); }
};

/// Joins a fresh panel to the frame, compares, and stops it again; the frame sees one panel more
/// for these seconds. `options` must name the same module and installation, and another panel
/// number than any panel of the same address has.
/// Thread: any but a driver's; one at a time, since it starts a host. Throws PanelHostError.
Comparison compareWithFresh(PanelRecord const& panel, PanelHostOptions options, OwnNames const& own,
                            ComparisonLimits limits = {});

}  // namespace PanelSim
