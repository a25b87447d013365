#pragma once

#include "bench/convert/Contest.h"
#include "bench/convert/Dictionary.h"

#include <cstddef>
#include <string>
#include <vector>

/// The tables of figures, in Markdown.
namespace bench {

class Report {
  public:
    explicit Report(TickingClock const& usedClock) : clock(usedClock) {}

    void beginShape(Shape shape);
    /// `missed` tells of each text whether the kept lists of candidates left it to the index.
    void add(Shape shape, std::size_t entries, std::vector<bool> const& missed,
             std::vector<Contestant> const& contestants);
    /// What is asked of the engine, and the worst that was measured of it.
    void printTargets() const;

  private:
    struct Line {
        std::string peer;
        std::size_t texts = 0;
        double median = 0, late = 0, missedMedian = 0, missedLate = 0;
    };
    struct Round {
        Shape shape;
        std::size_t entries;
        std::vector<Line> lines;
        Line const* find(std::string_view peer) const;
    };
    // A quotient and where it was measured.
    struct Ratio {
        double value;
        std::string where;
    };
    using Ratios = std::vector<Ratio>;

    Line lineOf(Contestant const& contestant, std::vector<bool> const& missed) const;
    void printRow(Round const& round, Contestant const& contestant) const;
    Ratios againstPeer(std::string_view peer, std::string_view engine, std::size_t smallest,
                       double Line::*peerFigure, double Line::*engineFigure) const;
    Ratios againstSmaller(std::string_view engine) const;

    TickingClock clock;
    std::vector<Round> rounds;
};

}  // namespace bench
