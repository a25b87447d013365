#include "TimeCommand.h"

#include "Output.h"
#include "TimePlot.h"
#include "sims/frame/StartError.h"
#include "sims/time/TimeMeter.h"
#include "sims/time/TimeProbe.h"
#include "sims/time/TimeService.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

namespace qfd {
namespace {

using std::chrono::nanoseconds;
using TimeSim::Spread;
using TimeSim::TimeSurvey;

/// As long as a panel waits for a reply; and so that a field is met several times.
constexpr nanoseconds timeOut = std::chrono::milliseconds(100);
constexpr nanoseconds betweenRequests = std::chrono::milliseconds(4);
constexpr nanoseconds rowLength = std::chrono::seconds(1);

struct TimeOptions {
    std::string frame = "127.0.0.1";
    std::uint16_t port = 1506;
    double seconds = 10;
    std::size_t fields = 0;
    bool json = false;
    std::string plot;

    std::string target() const { return frame + ":" + std::to_string(port); }
};

constexpr char footer[] =
    "Asks the frame for its field time about 200 times a second, as a panel does, and tells\n"
    "second by second how long the answers take, how the frame's clock goes against this\n"
    "machine's, and how long its fields are; at the end all of it together.\n"
    "\nThe exit code is 1 if the frame never answers.\n"
    "\nExamples:\n"
    "  qfd time --frame 10.0.0.2\n"
    "  qfd time --seconds 60 --plot time.svg";

/// What is found out, as it grows.
struct Measurement {
    TimeSim::TimeMeter meter;
    TimeSim::Trend drift;  // nanoseconds over seconds
    TimeSurvey row;
    TimeSurvey total;
    TimeSim::TimeHistory history;
};

template <class... Values>
std::string format(char const* pattern, Values... values) {
    char text[256];
    std::snprintf(text, sizeof text, pattern, values...);
    return text;
}

/// A panel takes no period at or beyond these.
bool panelsTake(double period) { return period > 15000000 && period < 25000000; }

nlohmann::ordered_json json(Spread const& spread) {
    if (spread.count() == 0) {
        return nullptr;
    }
    return {{"count", spread.count()},
            {"mean", spread.mean()},
            {"min", spread.lowest()},
            {"max", spread.highest()},
            {"deviation", spread.deviation()}};
}

nlohmann::ordered_json json(char const* what, double seconds, TimeSurvey const& survey) {
    return {{"what", what},
            {"seconds", seconds},
            {"asked", survey.asked},
            {"lost", survey.lost},
            {"strays", survey.strays},
            {"roundTripNs", json(survey.roundTrip)},
            {"offsetNs", json(survey.offset)},
            {"periodNs", json(survey.period)}};
}

/// A column's value, or a dash where nothing has been measured.
std::string cell(Spread const& spread, double value, double unit, char const* pattern) {
    return spread.count() == 0 ? format("%12s", "-") : format(pattern, value / unit);
}

std::string asText(double seconds, TimeSurvey const& row) {
    auto const& [trip, offset, period] = std::tie(row.roundTrip, row.offset, row.period);
    return format("%6.1f %6zu %5zu %6zu", seconds, row.asked, row.lost, row.strays) +
           cell(trip, trip.mean(), 1000, "%12.1f") + cell(trip, trip.highest(), 1000, "%12.1f") +
           cell(offset, offset.mean(), 1000, "%+12.1f") +
           cell(offset, offset.deviation(), 1000, "%12.1f") +
           cell(period, period.mean(), 1, "%12.0f") +
           cell(period, period.highest() - period.lowest(), 1, "%12.0f");
}

constexpr char header[] =
    "  time  asked  lost strays  round trip         max      offset      spread      period"
    "        span\n"
    "     s                              us          us          us          us          ns"
    "          ns";

void printRow(TimeOptions const& options, double seconds, TimeSurvey const& row) {
    printLine(options.json ? jsonLine(json("second", seconds, row)) : asText(seconds, row));
}

void printSpread(char const* name, Spread const& spread, double unit, int decimals) {
    if (spread.count() == 0) {
        printLine(format("%-14s not measured", name));
        return;
    }
    printLine(format("%-14s %14.*f %14.*f %14.*f %12.1f %8zu", name, decimals, spread.mean() / unit,
                     decimals, spread.lowest() / unit, decimals, spread.highest() / unit,
                     spread.deviation() / unit, spread.count()));
}

std::string driftText(Measurement const& found) {
    return format("the frame's clock runs %+.1f ppm against this machine's",
                  found.drift.slope() / 1000);
}

void printSummary(Measurement const& found) {
    auto const& total = found.total;
    printLine("");
    printLine(format("%-14s %14s %14s %14s %12s %8s", "", "mean", "lowest", "highest", "deviation",
                     "count"));
    printSpread("round trip us", total.roundTrip, 1000, 1);
    printSpread("offset us", total.offset, 1000, 1);
    printSpread("period ns", total.period, 1, 0);
    printLine("");
    printLine(format("asked %zu, lost %zu, strays %zu", total.asked, total.lost, total.strays));
    printLine(format("at the first reply the frame's clock was %+.6f s from this machine's",
                     static_cast<double>(found.meter.firstOffset().count()) / 1e9));
    printLine(driftText(found));
    if (total.period.count() > 0) {
        auto const period = total.period.mean();
        printLine(format("%.3f fields a second; ", 1e9 / period) +
                  (panelsTake(total.period.lowest()) && panelsTake(total.period.highest())
                       ? "panels take that"
                       : "panels take only fields between 15 and 25 ms"));
    }
}

void printSummaryAsJson(double seconds, Measurement const& found) {
    auto summary = json("summary", seconds, found.total);
    summary["firstOffsetNs"] = found.meter.firstOffset().count();
    summary["driftPpm"] = found.drift.slope() / 1000;
    printLine(jsonLine(summary));
}

/// A reply that has been held up somewhere tells little about the clocks: half of what it was
/// late is taken for a difference.
void addToDrift(TimeSim::TimeReading const& reading, Measurement& found) {
    auto const trip = static_cast<double>(reading.roundTrip.count());
    if (found.total.roundTrip.count() == 0 || trip <= 2 * found.total.roundTrip.lowest()) {
        found.drift.add(static_cast<double>(reading.since.count()) / 1e9,
                        static_cast<double>(reading.offset.count()));
    }
}

void askOnce(TimeSim::TimeProbe& probe, nanoseconds since, Measurement& found) {
    auto const straysBefore = probe.strays();
    auto const sample = probe.ask(timeOut);
    TimeSurvey news;
    if (sample) {
        auto const reading = found.meter.take(*sample);
        news.add(reading);
        addToDrift(reading, found);
    }
    probe.pause(betweenRequests);
    news.asked = 1;
    news.lost = sample ? 0 : 1;
    news.strays = probe.strays() - straysBefore;
    found.row.add(news);
    found.total.add(news);
    found.history.at(since).add(news);
}

/// How long it took, in seconds.
double measure(TimeOptions const& options, TimeSim::TimeProbe& probe, Measurement& found) {
    auto const begin = TimeSim::steadyNow();
    auto const passed = [begin] { return TimeSim::steadyNow() - begin; };
    auto const seconds = [](nanoseconds time) { return static_cast<double>(time.count()) / 1e9; };
    nanoseconds rowEnd = rowLength;
    while (seconds(passed()) < options.seconds &&
           (options.fields == 0 || found.total.period.count() < options.fields)) {
        askOnce(probe, passed(), found);
        if (passed() >= rowEnd) {
            printRow(options, seconds(rowEnd), found.row);
            found.row = {};
            rowEnd += rowLength;
        }
    }
    if (found.row.asked > 0) {
        printRow(options, seconds(passed()), found.row);
    }
    return seconds(passed());
}

[[noreturn]] void failToWrite(std::string const& path) {
    throw InputError("cannot write '" + path + "': " + std::strerror(errno));
}

void writePlot(TimeOptions const& options, std::ofstream& file, Measurement const& found) {
    auto const& total = found.total;
    auto const counts = format("%zu requests, %zu not answered, %zu strays; ", total.asked,
                               total.lost, total.strays);
    file << timePlot("Field time of " + options.target(), counts + driftText(found), found.history)
         << std::flush;
    if (!file) {
        failToWrite(options.plot);
    }
}

int runTime(TimeOptions const& options) {
    std::ofstream plot;
    if (!options.plot.empty()) {
        // Before the measurement, so that a bad name isn't found out at its end.
        plot.open(options.plot);
        if (!plot) {
            failToWrite(options.plot);
        }
    }
    try {
        TimeSim::TimeProbe probe(options.frame, options.port);
        Measurement found;
        if (!options.json) {
            printLine(header);
        }
        auto const seconds = measure(options, probe, found);
        if (found.total.roundTrip.count() == 0) {
            printError("time",
                       format("no answer from %s in %.1f s", options.target().c_str(), seconds));
            return exitCheckFailed;
        }
        options.json ? printSummaryAsJson(seconds, found) : printSummary(found);
        if (plot.is_open()) {
            writePlot(options, plot, found);
        }
    } catch (FrameSim::StartError const& error) {
        throw InputError(error.what());
    }
    return exitGood;
}

}  // namespace

void addTimeCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<TimeOptions>();
    auto* const command =
        program.add_subcommand("time", "Measure the field time that a frame gives to panels");
    command->add_option("--frame", options->frame, "The frame's address")
        ->type_name("ADDRESS")
        ->capture_default_str();
    command->add_option("--port", options->port, "The frame's UDP port for field time")
        ->type_name("PORT")
        ->check(CLI::Range(1, 65535))
        ->capture_default_str();
    command->add_option("--seconds", options->seconds, "How long to measure")
        ->type_name("S")
        ->check(CLI::Range(0.1, 86400.0))
        ->capture_default_str();
    command->add_option("--fields", options->fields, "End earlier, with so many periods measured")
        ->type_name("COUNT")
        ->check(CLI::Range(1, 100000000));
    command->add_flag("--json", options->json, "Print one JSON object per line");
    command->add_option("--plot", options->plot, "Draw a picture of it all, as SVG")
        ->type_name("FILE");
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return runTime(*options); }; });
}

}  // namespace qfd
