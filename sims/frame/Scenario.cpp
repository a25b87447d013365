#include "sims/frame/Scenario.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>

namespace FrameSim {
namespace {

using std::chrono::milliseconds;
using Kind = Happening::Kind;

constexpr std::int64_t longestTime = std::int64_t{24} * 60 * 60 * 1000;
constexpr std::int64_t highestCount = 1000000000;
constexpr std::size_t deviceDigits = 8;

struct NamedKind {
    std::string_view name;
    Kind kind;
};

constexpr NamedKind counted[] = {
    {"connects", Kind::connect}, {"hellos", Kind::hello},     {"sets", Kind::set},
    {"events", Kind::event},     {"listsets", Kind::setlist}, {"subscribes", Kind::subscribe},
    {"cancels", Kind::cancel},   {"pings", Kind::ping},       {"closes", Kind::close},
    {"requests", Kind::none},
};
constexpr NamedKind identified[] = {{"set", Kind::set},
                                    {"event", Kind::event},
                                    {"listset", Kind::setlist},
                                    {"subscribe", Kind::subscribe}};
constexpr NamedKind ofPanel[] = {
    {"connect", Kind::connect}, {"hello", Kind::hello}, {"close", Kind::close}};

template <std::size_t count>
Kind kindOf(CommandWords& words, NamedKind const (&all)[count]) {
    std::string names;
    for (auto const& each : all) {
        names.append(names.empty() ? "" : &each == std::end(all) - 1 ? " or " : ", ");
        names.append(each.name);
    }
    auto const given = words.word(names);
    auto const* const found = std::find_if(
        std::begin(all), std::end(all), [given](auto const& each) { return each.name == given; });
    if (found == std::end(all)) {
        words.fail("it must be " + names + ", not '" + std::string(given) + "'");
    }
    return found->kind;
}

milliseconds readTime(CommandWords& words, std::int64_t lowest) {
    auto const text = words.word("the time");
    std::int64_t number = -1;
    auto const* const end = text.data() + text.size();
    auto const result = std::from_chars(text.data(), end, number);
    std::string_view const unit(result.ptr, static_cast<std::size_t>(end - result.ptr));
    bool const isSeconds = unit == "s";
    if (result.ec != std::errc() || (!isSeconds && unit != "ms") || number > longestTime) {
        words.fail("the time must be like 500ms or 3s, not '" + std::string(text) + "'");
    }
    number *= isSeconds ? 1000 : 1;
    if (number < lowest || number > longestTime) {
        words.fail("the time must be from " + std::to_string(lowest) + "ms to " +
                   std::to_string(longestTime / 1000) + "s, not '" + std::string(text) + "'");
    }
    return milliseconds(number);
}

Trigger readAt(CommandWords& words) {
    return {.kind = Trigger::Kind::at, .time = readTime(words, 0), .did = {}};
}

Trigger readEvery(CommandWords& words) {
    return {.kind = Trigger::Kind::every, .time = readTime(words, 1), .did = {}};
}

Trigger readThen(CommandWords& words) {
    return {.kind = Trigger::Kind::then, .time = readTime(words, 0), .did = {}};
}

Trigger readAfter(CommandWords& words) {
    Trigger trigger{.kind = Trigger::Kind::after, .did = {}};
    trigger.count = static_cast<std::uint64_t>(words.number("N", 1, highestCount));
    trigger.happening = kindOf(words, counted);
    return trigger;
}

bool isDevice(CommandWords words) {
    auto const word = words.empty() ? std::string_view() : words.word("DID");
    return word.size() == deviceDigits && readDevice(word);
}

Trigger readWhen(CommandWords& words) {
    Trigger trigger{.kind = Trigger::Kind::when, .did = {}};
    trigger.happening = kindOf(words, identified);
    trigger.id = words.number16("ID");
    if (isDevice(words)) {
        trigger.did = words.device();
    }
    return trigger;
}

Trigger readOn(CommandWords& words) {
    Trigger trigger{.kind = Trigger::Kind::client, .did = {}};
    trigger.happening = kindOf(words, ofPanel);
    trigger.count = static_cast<std::uint64_t>(words.number("CLIENT", 1, highestCount));
    return trigger;
}

struct TriggerSyntax {
    std::string_view name;
    Trigger (*read)(CommandWords&);
};

constexpr TriggerSyntax triggers[] = {{"at", readAt},     {"every", readEvery},
                                      {"then", readThen}, {"after", readAfter},
                                      {"when", readWhen}, {"on", readOn}};

Trigger readTrigger(CommandWords& words, bool first) {
    auto const name = words.word("the trigger");
    auto const* const found =
        std::find_if(std::begin(triggers), std::end(triggers),
                     [name](TriggerSyntax const& each) { return each.name == name; });
    if (found == std::end(triggers)) {
        words.fail("a line must begin with at, every, then, after, when or on, not '" +
                   std::string(name) + "'");
    }
    if (first && name == "then") {
        words.fail("there is no line above that 'then' could follow");
    }
    return found->read(words);
}

Action readAction(CommandWords& words) {
    auto const name = words.word("the action");
    auto const* const syntax = findAction(name);
    if (!syntax) {
        words.fail("there is no action '" + std::string(name) + "'");
    }
    auto action = syntax->read(words);
    words.expectEnd();
    return action;
}

[[noreturn]] void fail(std::string const& fileName, std::size_t number, std::string_view line,
                       CommandError const& error) {
    throw ScenarioError(fileName + ":" + std::to_string(number) + ":" +
                        std::to_string(error.offset + 1) + ": " + error.what() + "\n" +
                        std::string(line) + "\n" + std::string(error.offset, ' ') + "^");
}

/// "requests" are what a panel is given an acknowledgement for.
bool isRequest(Kind kind) {
    return kind == Kind::set || kind == Kind::event || kind == Kind::setlist ||
           kind == Kind::subscribe || kind == Kind::cancel;
}

}  // namespace

Scenario::Scenario(std::string const& fileName, std::string_view content) : file(fileName) {
    for (std::size_t number = 1; !content.empty(); ++number) {
        auto const end = std::min(content.find('\n'), content.size());
        auto line = content.substr(0, end);
        content.remove_prefix(std::min(end + 1, content.size()));
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        CommandWords words(line);
        if (words.empty() || line[words.offset()] == '#') {
            continue;
        }
        try {
            auto const trigger = readTrigger(words, all.empty());
            std::string text(line.substr(words.offset()));
            all.push_back({number, trigger, std::move(text), readAction(words)});
        } catch (CommandError const& error) {
            fail(fileName, number, line, error);
        }
    }
}

Scenario Scenario::readFile(std::string const& path) {
    errno = 0;
    std::ifstream in(path, std::ios::binary);
    std::string const content{std::istreambuf_iterator<char>(in), {}};
    if (!in.is_open() || in.bad()) {
        throw ScenarioError(path + ": " + std::strerror(errno));
    }
    return {path, content};
}

ScenarioPlayer::ScenarioPlayer(Scenario script, Run runStep, TimePoint now)
    : scenario(std::move(script)), run(std::move(runStep)), states(scenario.steps().size()) {
    for (std::size_t i = 0; i < states.size(); ++i) {
        auto const& trigger = scenario.steps()[i].trigger;
        if (trigger.kind == Trigger::Kind::at || trigger.kind == Trigger::Kind::every) {
            states[i].due = now + trigger.time;
        }
    }
}

bool ScenarioPlayer::isMet(Scenario::Step const& step, State& state, Happening const& what) const {
    auto const& trigger = step.trigger;
    bool const ofKind =
        trigger.happening == Kind::none ? isRequest(what.kind) : trigger.happening == what.kind;
    if (!ofKind) {
        return false;
    }
    switch (trigger.kind) {
    case Trigger::Kind::after:
        return ++state.count == trigger.count;
    case Trigger::Kind::when:
        return trigger.id == what.id && trigger.did.value_or(what.did) == what.did;
    case Trigger::Kind::client:
        return trigger.count == what.client;
    default:
        return false;
    }
}

void ScenarioPlayer::notice(Happening const& what, TimePoint now) {
    for (std::size_t i = 0; i < states.size(); ++i) {
        if (!states[i].done && isMet(scenario.steps()[i], states[i], what)) {
            states[i].done = true;
            execute(i, what.client, now);
        }
    }
}

void ScenarioPlayer::pass(TimePoint now) {
    for (;;) {
        // The earliest first, however late it has become.
        auto const first = std::min_element(
            states.begin(), states.end(), [](State const& one, State const& other) {
                return one.due && (!other.due || *one.due < *other.due);
            });
        if (first == states.end() || !first->due || *first->due > now) {
            return;
        }
        auto const index = static_cast<std::size_t>(first - states.begin());
        auto const& trigger = scenario.steps()[index].trigger;
        first->due.reset();
        if (trigger.kind == Trigger::Kind::every) {
            first->due = now + trigger.time;
        }
        execute(index, first->client, now);
    }
}

/// Carries a step out; a "then" right below begins to wait.
void ScenarioPlayer::execute(std::size_t index, std::uint32_t client, TimePoint now) {
    auto const& steps = scenario.steps();
    run(steps[index], client);
    if (index + 1 < steps.size() && steps[index + 1].trigger.kind == Trigger::Kind::then) {
        states[index + 1].due = now + steps[index + 1].trigger.time;
        states[index + 1].client = client;
    }
}

std::optional<ScenarioPlayer::TimePoint> ScenarioPlayer::nextDue() const {
    std::optional<TimePoint> first;
    for (auto const& state : states) {
        if (state.due && (!first || *state.due < *first)) {
            first = state.due;
        }
    }
    return first;
}

}  // namespace FrameSim
