#include "sims/frame/FrameConsole.h"

#include <algorithm>
#include <iterator>

namespace FrameSim {
namespace {

std::string shownKey(ParameterKey key) {
    return "pid=" + std::to_string(key.pid) + " did=" + shownDevice(key.did);
}

void addCrossed(Line& line, std::string_view way, Crossed const& crossed) {
    line.number(std::string(way) + "Messages", static_cast<std::int64_t>(crossed.messages));
    line.number(std::string(way) + "Bytes", static_cast<std::int64_t>(crossed.bytes));
}

Line shownCount(ConnectionCount const& count) {
    Line line{.client = count.client, .what = "crossed"};
    line.add("open", count.open);
    addCrossed(line, "to", count.toPanel);
    addCrossed(line, "from", count.fromPanel);
    return line;
}

Line helpLine(std::string_view name, std::string_view arguments, std::string_view does) {
    auto const usage = std::string(name) + (arguments.empty() ? "" : " ") + std::string(arguments);
    return Line{.what = "help"}.add("command", usage).add("does", std::string(does));
}

}  // namespace

struct FrameConsole::Command {
    std::string_view name;
    std::string_view arguments;
    void (FrameConsole::*run)(CommandWords&);
    std::string_view help;
};

FrameConsole::Command const FrameConsole::commands[] = {
    {"get", "PID DID", &FrameConsole::get, "shows a parameter"},
    {"state", "[PATTERN]", &FrameConsole::state,
     "shows all parameters and list items, or the lines that contain PATTERN"},
    {"clients", "", &FrameConsole::clients, "shows the panels that are connected"},
    {"dump", "[CLIENT] [--json]", &FrameConsole::dump,
     "shows what is held of all that the panels, or one, have subscribed to"},
    {"crossed", "", &FrameConsole::crossed, "shows what has crossed each connection"},
    {"help", "", &FrameConsole::help, "shows this"},
    {"quit", "", &FrameConsole::quit, "stops the frame"},
};

bool FrameConsole::execute(std::string_view line) {
    CommandWords words(line);
    if (words.empty() || line[words.offset()] == '#') {
        return true;
    }
    auto const name = words.word("command");
    try {
        run(name, words);
        output(Line{.what = "ok"}.add("command", Word{std::string(name)}));
    } catch (std::runtime_error const& error) {
        output(Line{.what = "error"}.add("reason", std::string(name) + ": " + error.what()));
    }
    return goOn;
}

void FrameConsole::run(std::string_view name, CommandWords& words) {
    auto const command = std::find_if(std::begin(commands), std::end(commands),
                                      [name](Command const& each) { return each.name == name; });
    if (command != std::end(commands)) {
        (this->*command->run)(words);
        return;
    }
    auto const* const action = findAction(name);
    if (!action) {
        words.fail("there is no command '" + std::string(name) + "'; try help");
    }
    auto const arguments = words;
    auto const act = action->read(words);
    words.expectEnd();
    act(server, 0);
    if (name == "set") {
        auto again = arguments;
        showValue(again.parameter());
    }
}

void FrameConsole::get(CommandWords& words) {
    auto const key = words.parameter();
    words.expectEnd();
    showValue(key);
}

void FrameConsole::showValue(ParameterKey key) {
    auto const value = server.frame().value(key);
    if (!value) {
        throw CommandError("there is no parameter " + shownKey(key));
    }
    output(shownParameter(key, *value));
}

void FrameConsole::state(CommandWords& words) { showAll(server.frame().dump(words.tail())); }

void FrameConsole::clients(CommandWords& words) {
    words.expectEnd();
    showAll(server.clients());
}

void FrameConsole::dump(CommandWords& words) {
    std::vector<std::uint32_t> wanted;
    if (!words.empty() && !words.nextIs("--json")) {
        wanted.push_back(words.number32("CLIENT"));
    } else {
        for (auto const& line : server.clients()) {
            wanted.push_back(line.client);
        }
    }
    bool const asJson = words.nextIs("--json");
    if (asJson) {
        words.word("--json");
    }
    words.expectEnd();
    for (auto const client : wanted) {
        auto const held = server.holding(client);
        if (!held) {
            throw CommandError("there is no panel " + std::to_string(client));
        }
        for (auto line : held->lines()) {
            line.client = client;
            (asJson ? jsonOutput : output)(line);
        }
    }
}

void FrameConsole::crossed(CommandWords& words) {
    words.expectEnd();
    for (auto const& count : server.crossed()) {
        output(shownCount(count));
    }
}

void FrameConsole::showAll(std::vector<Line> const& lines) {
    for (auto const& line : lines) {
        output(line);
    }
}

void FrameConsole::help(CommandWords& words) {
    words.expectEnd();
    for (auto const& action : frameActions()) {
        output(helpLine(action.name, action.arguments, action.help));
    }
    for (auto const& command : commands) {
        output(helpLine(command.name, command.arguments, command.help));
    }
}

void FrameConsole::quit(CommandWords& words) {
    words.expectEnd();
    goOn = false;
}

}  // namespace FrameSim
