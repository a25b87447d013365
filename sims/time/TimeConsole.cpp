#include "sims/time/TimeConsole.h"

#include "sims/frame/CommandWords.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

namespace TimeSim {
namespace {

using FrameSim::CommandError;
using FrameSim::Line;
using FrameSim::Word;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

/// A second, the longest time that makes sense between a panel and its frame, in microseconds.
constexpr std::int64_t second = 1000000;

std::vector<Line> described(TimeKeeper const& keeper, Moment now) {
    auto const shown = keeper.clock().at(now);
    std::vector<Line> lines;
    Line clock{.what = "time-clock"};
    clock.add("present", keeper.isPresent())
        .add("silent", keeper.isSilent())
        .number("period", keeper.clock().period().count())
        .add("drift", static_cast<float>(keeper.clock().drift()))
        .number("fieldTime", static_cast<std::int64_t>(shown.fieldTime))
        .number("fieldOffset", shown.fieldOffset);
    lines.push_back(std::move(clock));
    auto const& ways = keeper.faults().delays();
    if ((ways.request + ways.reply + ways.jitter).count() != 0) {
        Line delays{.what = "time-delay"};
        delays.number("request", ways.request / microseconds(1))
            .number("reply", ways.reply / microseconds(1))
            .number("jitter", ways.jitter / microseconds(1));
        lines.push_back(std::move(delays));
    }
    for (std::size_t index = 1; index < timeFaults; ++index) {
        auto const fault = static_cast<TimeFault>(index);
        if (auto const percent = keeper.faults().chanceOf(fault); percent > 0) {
            Line line{.what = "time-chance"};
            line.add("fault", Word{std::string(name(fault))})
                .add("percent", static_cast<float>(percent));
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

}  // namespace

std::optional<Telling> readTelling(std::string_view text) {
    constexpr std::pair<std::string_view, Telling> words[] = {
        {"none", Telling::none}, {"few", Telling::few}, {"all", Telling::all}};
    for (auto const& [word, telling] : words) {
        if (word == text) {
            return telling;
        }
    }
    return std::nullopt;
}

class TimeConsole::Arguments : public FrameSim::CommandWords {
  public:
    using CommandWords::CommandWords;

    /// A number that may have a fraction; the bounds are whole.
    double real(std::string_view name, int lowest, int highest) {
        auto const typed = word(name);
        double value = 0;
        auto const* const end = typed.data() + typed.size();
        auto const result = std::from_chars(typed.data(), end, value);
        if (result.ec != std::errc() || result.ptr != end ||
            !(value >= lowest && value <= highest)) {
            fail(std::string(name) + " must be a number from " + std::to_string(lowest) + " to " +
                 std::to_string(highest) + ", not '" + std::string(typed) + "'");
        }
        return value;
    }

    microseconds time(std::string_view name) { return microseconds(number(name, 0, second)); }

    TimeFault fault() {
        auto const typed = word("FAULT");
        auto const found = timeFault(typed);
        if (!found) {
            fail("there is no fault '" + std::string(typed) + "'");
        }
        return *found;
    }
};

struct TimeConsole::Command {
    std::string_view name;
    std::string_view arguments;
    void (TimeConsole::*run)(Arguments&);
    std::string_view help;
};

TimeConsole::Command const TimeConsole::commands[] = {
    {"rate", "HZ", &TimeConsole::rate, "sets the field rate: 59.94, 50, 60, 29.97 and so on"},
    {"period", "NS", &TimeConsole::period, "sets the field period in nanoseconds"},
    {"drift", "PPM", &TimeConsole::drift, "has the clock run fast, or slow if below 0"},
    {"shift", "US", &TimeConsole::shift, "moves all field boundaries by so many microseconds"},
    {"restart", "[NS]", &TimeConsole::restart, "begins the clock anew, at 0 or the time given"},
    {"wander", "NS MS", &TimeConsole::wander,
     "raises the period by NS and lowers it again, in turn, each MS milliseconds; 0 0 ends it"},
    {"stamp-error", "NS", &TimeConsole::stampError,
     "tells each boundary up to NS too early or too late; 0 ends it"},
    {"off", "", &TimeConsole::off, "has the field time go away"},
    {"on", "", &TimeConsole::on, "has it come back"},
    {"silent", "on|off", &TimeConsole::silent, "hears all and answers nothing, or answers again"},
    {"delay", "REQUEST REPLY [JITTER]", &TimeConsole::delay,
     "lets each way take so many microseconds, and up to JITTER more; 0 0 ends it"},
    {"chance", "FAULT PERCENT", &TimeConsole::chance,
     "how often a request meets a fault: lost, stale, held, doubled, wrong-echo, cut, stretched"},
    {"next", "FAULT [COUNT]", &TimeConsole::next,
     "the next request, or so many, have that fault; none is one of them"},
    {"stale", "COUNT", &TimeConsole::stale, "how many old replies come at once where any do"},
    {"seed", "NUMBER", &TimeConsole::seed, "begins the chances anew from this number"},
    {"good", "", &TimeConsole::good, "ends all faults and delays"},
    {"show", "", &TimeConsole::show, "shows the clock, and the faults that are set"},
    {"tell", "none|few|all", &TimeConsole::tell, "how much of the traffic is printed"},
    {"help", "", &TimeConsole::help, "shows this"},
};

void TimeConsole::run(std::string_view line) {
    Arguments arguments(line);
    std::string const name(arguments.word("COMMAND"));
    auto const* const command =
        std::find_if(std::begin(commands), std::end(commands),
                     [&name](Command const& each) { return each.name == name; });
    if (command == std::end(commands)) {
        throw CommandError("there is no command '" + name + "'; try time help");
    }
    try {
        (this->*command->run)(arguments);
    } catch (CommandError const& error) {
        throw CommandError(name + ": " + error.what(), error.offset);
    }
}

void checkTimeCommand(std::string_view line) {
    TimeService scratch({});
    TimeConsole(scratch, [](Line const&) {}).run(line);
}

void TimeConsole::change(std::function<void(TimeKeeper&)> const& how) {
    service.operate([&](TimeKeeper& keeper, Moment) { how(keeper); });
}

void TimeConsole::on(Arguments& arguments) {
    arguments.expectEnd();
    change([](TimeKeeper& keeper) { keeper.setPresent(true); });
}

void TimeConsole::off(Arguments& arguments) {
    arguments.expectEnd();
    change([](TimeKeeper& keeper) { keeper.setPresent(false); });
}

void TimeConsole::silent(Arguments& arguments) {
    bool const wanted = arguments.onOrOff();
    arguments.expectEnd();
    change([wanted](TimeKeeper& keeper) { keeper.setSilent(wanted); });
}

void TimeConsole::rate(Arguments& arguments) {
    auto const text = arguments.word("HZ");
    arguments.expectEnd();
    auto const wanted = fieldPeriod(text);
    if (!wanted) {
        throw CommandError("HZ must be a number from 1 to 1000, not '" + std::string(text) + "'");
    }
    service.operate(
        [&](TimeKeeper& keeper, Moment now) { keeper.clock().setPeriod(now, *wanted); });
}

void TimeConsole::period(Arguments& arguments) {
    nanoseconds const wanted(arguments.number("NS", 1000000, 1000000000));
    arguments.expectEnd();
    service.operate([&](TimeKeeper& keeper, Moment now) { keeper.clock().setPeriod(now, wanted); });
}

void TimeConsole::drift(Arguments& arguments) {
    auto const ppm = arguments.real("PPM", -100000, 100000);
    arguments.expectEnd();
    service.operate([&](TimeKeeper& keeper, Moment now) { keeper.clock().setDrift(now, ppm); });
}

void TimeConsole::shift(Arguments& arguments) {
    microseconds const by(arguments.number("US", -second, second));
    arguments.expectEnd();
    service.operate([&](TimeKeeper& keeper, Moment now) { keeper.clock().shift(now, by); });
}

void TimeConsole::restart(Arguments& arguments) {
    nanoseconds const reading(arguments.empty() ? 0 : arguments.number("NS", 0, INT64_MAX / 2));
    arguments.expectEnd();
    service.operate([&](TimeKeeper& keeper, Moment now) { keeper.clock().restart(now, reading); });
}

void TimeConsole::wander(Arguments& arguments) {
    nanoseconds const by(arguments.number("NS", 0, 100000000));
    milliseconds const every(arguments.number("MS", 0, 3600000));
    arguments.expectEnd();
    service.operate([&](TimeKeeper& keeper, Moment now) { keeper.wander(now, by, every); });
}

void TimeConsole::stampError(Arguments& arguments) {
    nanoseconds const upTo(arguments.number("NS", 0, 100000000));
    arguments.expectEnd();
    change([&](TimeKeeper& keeper) {
        keeper.clock().setStampError(upTo, keeper.faults().currentSeed());
    });
}

void TimeConsole::delay(Arguments& arguments) {
    TimeDelays delays;
    delays.request = arguments.time("REQUEST");
    delays.reply = arguments.time("REPLY");
    if (!arguments.empty()) {
        delays.jitter = arguments.time("JITTER");
    }
    arguments.expectEnd();
    change([&](TimeKeeper& keeper) { keeper.faults().setDelays(delays); });
}

void TimeConsole::chance(Arguments& arguments) {
    auto const fault = arguments.fault();
    auto const percent = arguments.real("PERCENT", 0, 100);
    arguments.expectEnd();
    change([&](TimeKeeper& keeper) { keeper.faults().setChance(fault, percent); });
}

void TimeConsole::next(Arguments& arguments) {
    auto const fault = arguments.fault();
    auto const count = arguments.empty() ? 1 : arguments.number("COUNT", 1, 1000000);
    arguments.expectEnd();
    change(
        [&](TimeKeeper& keeper) { keeper.faults().doom(fault, static_cast<std::size_t>(count)); });
}

void TimeConsole::stale(Arguments& arguments) {
    auto const count = static_cast<std::size_t>(arguments.number("COUNT", 1, 100));
    arguments.expectEnd();
    change([count](TimeKeeper& keeper) { keeper.setStaleCount(count); });
}

void TimeConsole::seed(Arguments& arguments) {
    auto const number = static_cast<std::uint64_t>(arguments.number("NUMBER", 0, INT64_MAX));
    arguments.expectEnd();
    change([number](TimeKeeper& keeper) { keeper.faults().restart(number); });
}

void TimeConsole::good(Arguments& arguments) {
    arguments.expectEnd();
    service.operate([](TimeKeeper& keeper, Moment now) { keeper.recover(now); });
}

void TimeConsole::show(Arguments& arguments) {
    arguments.expectEnd();
    std::vector<Line> lines;
    service.operate([&](TimeKeeper& keeper, Moment now) { lines = described(keeper, now); });
    for (auto const& line : lines) {
        output(line);
    }
}

void TimeConsole::tell(Arguments& arguments) {
    auto const text = arguments.word("none, few or all");
    arguments.expectEnd();
    auto const wanted = readTelling(text);
    if (!wanted) {
        throw CommandError("it must be none, few or all, not '" + std::string(text) + "'");
    }
    service.tell(*wanted);
}

void TimeConsole::help(Arguments& arguments) {
    arguments.expectEnd();
    for (auto const& command : commands) {
        auto usage = "time " + std::string(command.name);
        if (!command.arguments.empty()) {
            usage.append(" ").append(command.arguments);
        }
        output(Line{.what = "help"}.add("command", usage).add("does", std::string(command.help)));
    }
}

}  // namespace TimeSim
