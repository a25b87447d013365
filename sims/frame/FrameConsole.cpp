#include "sims/frame/FrameConsole.h"

#include "platform/cplclient/CPLTypes.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace FrameSim {
namespace {

/// A command is wrong or can't be done.
class CommandError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

constexpr std::string_view blanks = " \t\r";
constexpr std::int32_t cutEvent = 40;
constexpr std::int32_t autoEvent = 41;
constexpr std::uint32_t firstMixEffects = 0x03000000;

std::string_view trimmed(std::string_view text) {
    auto const start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos) {
        return {};
    }
    return text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

std::string shownKey(ParameterKey key) {
    return "pid=" + std::to_string(key.pid) + " did=" + shownDevice(key.did);
}

void check(Outcome const& outcome) {
    if (!outcome.good()) {
        throw CommandError("refused: " + outcome.cause);
    }
}

}  // namespace

class FrameConsole::Arguments {
  public:
    explicit Arguments(std::string_view typed) : rest(trimmed(typed)) {}

    bool empty() const { return rest.empty(); }

    std::string_view word(std::string_view name) {
        if (rest.empty()) {
            throw CommandError(std::string(name) + " is missing");
        }
        auto const end = std::min(rest.find_first_of(blanks), rest.size());
        auto const taken = rest.substr(0, end);
        rest = trimmed(rest.substr(end));
        return taken;
    }

    std::int64_t number(std::string_view name, std::int64_t lowest, std::int64_t highest) {
        auto const text = word(name);
        std::int64_t value = 0;
        auto const result = std::from_chars(text.data(), text.data() + text.size(), value);
        if (result.ec != std::errc() || result.ptr != text.data() + text.size() || value < lowest ||
            value > highest) {
            throw CommandError(std::string(name) + " must be a number from " +
                               std::to_string(lowest) + " to " + std::to_string(highest) +
                               ", not '" + std::string(text) + "'");
        }
        return value;
    }

    std::uint16_t number16(std::string_view name) {
        return static_cast<std::uint16_t>(number(name, 0, 65535));
    }

    std::uint32_t device() {
        auto const text = word("DID");
        auto const did = readDevice(text);
        if (!did) {
            throw CommandError("DID must be up to eight hexadecimal digits, not '" +
                               std::string(text) + "'");
        }
        return *did;
    }

    ParameterKey parameter() {
        std::int32_t const pid = number16("PID");
        return {pid, device()};
    }

    bool onOrOff() {
        auto const text = word("on or off");
        if (text != "on" && text != "off") {
            throw CommandError("it must be on or off, not '" + std::string(text) + "'");
        }
        return text == "on";
    }

    /// All that is left.
    std::string_view tail() { return std::exchange(rest, {}); }

    void expectEnd() const {
        if (!rest.empty()) {
            throw CommandError("too much: '" + std::string(rest) + "'");
        }
    }

  private:
    std::string_view rest;
};

struct FrameConsole::Command {
    std::string_view name;
    std::string_view arguments;
    void (FrameConsole::*run)(Arguments&);
    std::string_view help;
};

FrameConsole::Command const FrameConsole::commands[] = {
    {"set", "PID DID VALUE", &FrameConsole::set,
     "sets a parameter as another operator would; a text may stand in double quotes"},
    {"get", "PID DID", &FrameConsole::get, "shows a parameter"},
    {"list", "LID NUMBER DID", &FrameConsole::list,
     "sends the whole list to the panels that have subscribed to it"},
    {"event", "EID DID [HEX]", &FrameConsole::event,
     "does what the event does, with data in hexadecimal"},
    {"cut", "[ME]", &FrameConsole::cut, "cuts on M/E 1, or the one given"},
    {"auto", "[ME]", &FrameConsole::autoTransition,
     "starts or stops an auto transition on M/E 1, or the one given"},
    {"refuse", "on|off", &FrameConsole::refuse, "refuses new connections, or takes them again"},
    {"delay", "MS", &FrameConsole::delay,
     "holds back all that is sent by so many milliseconds; 0 ends it"},
    {"freeze", "", &FrameConsole::freeze,
     "stops reading and answering, with all connections left open"},
    {"thaw", "", &FrameConsole::thaw, "goes on after freeze"},
    {"disconnect", "", &FrameConsole::disconnect, "cuts all connections"},
    {"state", "[PATTERN]", &FrameConsole::state,
     "shows all parameters and list items, or the lines that contain PATTERN"},
    {"clients", "", &FrameConsole::clients, "shows the panels that are connected"},
    {"help", "", &FrameConsole::help, "shows this"},
    {"quit", "", &FrameConsole::quit, "stops the frame"},
};

bool FrameConsole::execute(std::string_view line) {
    Arguments arguments(line);
    if (arguments.empty() || trimmed(line).front() == '#') {
        return true;
    }
    auto const name = arguments.word("command");
    auto const command = std::find_if(std::begin(commands), std::end(commands),
                                      [name](Command const& each) { return each.name == name; });
    try {
        if (command == std::end(commands)) {
            throw CommandError("there is no command '" + std::string(name) + "'; try help");
        }
        (this->*command->run)(arguments);
        output(Line{.what = "ok"}.add("command", Word{std::string(name)}));
    } catch (std::runtime_error const& error) {
        output(Line{.what = "error"}.add("reason", std::string(name) + ": " + error.what()));
    }
    return goOn;
}

void FrameConsole::set(Arguments& arguments) {
    auto const key = arguments.parameter();
    auto const type = server.frame().typeOf(key);
    if (!type) {
        throw CommandError("there is no parameter " + shownKey(key));
    }
    if (arguments.empty()) {
        throw CommandError("VALUE is missing");
    }
    std::string text(arguments.tail());
    if (*type == DataType::String && text.front() == '"') {
        auto bytes = unquoted(text);
        if (!bytes) {
            throw CommandError("the quoted text isn't whole: " + text);
        }
        text = std::move(*bytes);
    }
    auto const value = readValue(*type, text);
    if (!value) {
        throw CommandError("'" + text + "' is no " + typeName(*type));
    }
    check(server.frame().set(key, eSetAbsolute, *value));
    showValue(key);
}

void FrameConsole::get(Arguments& arguments) {
    auto const key = arguments.parameter();
    arguments.expectEnd();
    showValue(key);
}

void FrameConsole::showValue(ParameterKey key) {
    auto const value = server.frame().value(key);
    if (!value) {
        throw CommandError("there is no parameter " + shownKey(key));
    }
    Line line{.what = "parameter"};
    line.number("pid", key.pid).device(key.did).value(*value);
    output(line);
}

void FrameConsole::list(Arguments& arguments) {
    std::int32_t const lid = arguments.number16("LID");
    std::uint16_t const number = arguments.number16("NUMBER");
    ListKey const key{lid, number, arguments.device()};
    arguments.expectEnd();
    if (!server.sendList(key)) {
        throw CommandError("there is no list lid=" + std::to_string(lid) +
                           " number=" + std::to_string(number) + " did=" + shownDevice(key.did));
    }
}

void FrameConsole::event(Arguments& arguments) {
    std::int32_t const eid = arguments.number16("EID");
    auto const did = arguments.device();
    std::string data;
    while (!arguments.empty()) {
        std::string_view digits = arguments.word("HEX");
        for (; !digits.empty(); digits.remove_prefix(2)) {
            unsigned char byte = 0;
            auto const* const end = digits.data() + 2;
            if (digits.size() < 2 || std::from_chars(digits.data(), end, byte, 16).ptr != end) {
                throw CommandError("HEX must be pairs of hexadecimal digits");
            }
            data.push_back(static_cast<char>(byte));
        }
    }
    check(server.frame().event({eid, did}, data));
}

void FrameConsole::cut(Arguments& arguments) { mixEffectsEvent(arguments, cutEvent); }

void FrameConsole::autoTransition(Arguments& arguments) { mixEffectsEvent(arguments, autoEvent); }

void FrameConsole::mixEffectsEvent(Arguments& arguments, std::int32_t eid) {
    auto const me = arguments.empty() ? 1 : arguments.number("ME", 1, 16);
    arguments.expectEnd();
    auto const did = firstMixEffects + static_cast<std::uint32_t>(me - 1);
    check(server.frame().event({eid, did}, {}));
}

void FrameConsole::refuse(Arguments& arguments) {
    bool const on = arguments.onOrOff();
    arguments.expectEnd();
    server.refuse(on);
}

void FrameConsole::delay(Arguments& arguments) {
    auto const time = arguments.number("MS", 0, 600000);
    arguments.expectEnd();
    server.delay(std::chrono::milliseconds(time));
}

void FrameConsole::freeze(Arguments& arguments) {
    arguments.expectEnd();
    server.freeze(true);
}

void FrameConsole::thaw(Arguments& arguments) {
    arguments.expectEnd();
    server.freeze(false);
}

void FrameConsole::disconnect(Arguments& arguments) {
    arguments.expectEnd();
    server.disconnect();
}

void FrameConsole::state(Arguments& arguments) { showAll(server.frame().dump(arguments.tail())); }

void FrameConsole::clients(Arguments& arguments) {
    arguments.expectEnd();
    showAll(server.clients());
}

void FrameConsole::showAll(std::vector<Line> const& lines) {
    for (auto const& line : lines) {
        output(line);
    }
}

void FrameConsole::help(Arguments& arguments) {
    arguments.expectEnd();
    for (auto const& command : commands) {
        std::string usage(command.name);
        if (!command.arguments.empty()) {
            usage.append(" ").append(command.arguments);
        }
        output(Line{.what = "help"}.add("command", usage).add("does", std::string(command.help)));
    }
}

void FrameConsole::quit(Arguments& arguments) {
    arguments.expectEnd();
    goOn = false;
}

}  // namespace FrameSim
