#include "sims/panel/PanelScript.h"

#include <charconv>
#include <cstdint>
#include <utility>

namespace PanelSim {
namespace {

constexpr auto none = std::string::npos;
constexpr std::uint32_t longestTime = 3600000;  // an hour: more is a slip
constexpr std::uint32_t highestWidget = 65535;

/// A fault in the line at hand; its place in the file is added further up.
struct Fault {
    std::size_t column;
    std::string cause;
};

struct Word {
    std::string text;
    std::size_t column = 1;
    std::size_t equals = none;  // the first "=" outside of quotes
    bool plain = true;          // without quotes
};

bool isBlank(char byte) { return byte == ' ' || byte == '\t'; }

/// The words of a line, left to right.
class WordReader {
  public:
    explicit WordReader(std::string_view text) : line(text) {}

    std::vector<Word> readAll() {
        std::vector<Word> words;
        for (skipBlanks(); at < line.size(); skipBlanks()) {
            words.push_back(read());
        }
        return words;
    }

  private:
    void skipBlanks() {
        while (at < line.size() && isBlank(line[at])) {
            ++at;
        }
    }

    Word read() {
        Word word;
        word.column = at + 1;
        while (at < line.size() && !isBlank(line[at])) {
            if (line[at] == '"') {
                readQuoted(word);
                continue;
            }
            if (line[at] == '=' && word.equals == none) {
                word.equals = word.text.size();
            }
            word.text.push_back(line[at++]);
        }
        return word;
    }

    void readQuoted(Word& word) {
        std::size_t const open = at++;
        word.plain = false;
        while (at < line.size() && line[at] != '"') {
            word.text.push_back(line[at] == '\\' ? readEscape() : line[at++]);
        }
        if (at == line.size()) {
            throw Fault{open + 1, "a quote that isn't closed"};
        }
        ++at;
    }

    char readEscape() {
        std::size_t const start = at++;
        constexpr std::string_view letters = "\"\\nrt";
        constexpr std::string_view bytes = "\"\\\n\r\t";
        char const letter = at < line.size() ? line[at++] : '\0';
        if (letter == 'x') {
            return readHexByte(start);
        }
        auto const which = letters.find(letter);
        if (which == none) {
            throw Fault{start + 1, "an escape that isn't \\\" \\\\ \\n \\r \\t or \\xHH"};
        }
        return bytes[which];
    }

    char readHexByte(std::size_t start) {
        unsigned value = 0;
        auto const digits = line.substr(at, 2);
        auto const* const end = digits.data() + digits.size();
        auto const result = std::from_chars(digits.data(), end, value, 16);
        if (digits.size() < 2 || result.ptr != end) {
            throw Fault{start + 1, "\\x without two hexadecimal digits"};
        }
        at += 2;
        return static_cast<char>(value);
    }

    std::string_view line;
    std::size_t at = 0;
};

std::uint32_t readNumber(Word const& word, std::size_t offset, std::uint32_t highest,
                         char const* what) {
    std::uint32_t number = 0;
    auto const digits = std::string_view(word.text).substr(offset);
    auto const* const end = digits.data() + digits.size();
    auto const result = std::from_chars(digits.data(), end, number);
    if (digits.empty() || result.ec != std::errc() || result.ptr != end || number > highest) {
        throw Fault{word.column + offset,
                    "expected " + std::string(what) + ", 0 to " + std::to_string(highest)};
    }
    return number;
}

std::chrono::milliseconds readTime(Word const& word) {
    return std::chrono::milliseconds(readNumber(word, 0, longestTime, "milliseconds"));
}

/// The words of a command behind its own, taken one by one.
class Arguments {
  public:
    Arguments(std::vector<Word> const& lineWords, std::size_t lineEnd)
        : words(lineWords), endColumn(lineEnd + 1) {}

    bool done() const { return next == words.size(); }
    Word const& peek() const { return words[next]; }

    Word const& take(char const* what) {
        if (done()) {
            throw Fault{endColumn, "expected " + std::string(what)};
        }
        return words[next++];
    }

    void finish() const {
        if (!done()) {
            throw Fault{peek().column, "unexpected '" + peek().text + "'"};
        }
    }

  private:
    std::vector<Word> const& words;
    std::size_t endColumn;
    std::size_t next = 1;
};

void addParameter(FIDParameterList& list, Word const& word) {
    if (word.equals == none || word.equals == 0) {
        throw Fault{word.column, "expected NAME=VALUE"};
    }
    list.add(word.text.substr(0, word.equals), word.text.substr(word.equals + 1));
}

bool isWidget(Word const& word) { return word.plain && word.text.starts_with('@'); }

Command readRaise(Word const& name, Arguments& arguments) {
    if (name.equals != none || name.text.empty()) {
        throw Fault{name.column, "expected a FID's name or a command"};
    }
    Raise raise{name.text, {}};
    while (!arguments.done()) {
        Word const& word = arguments.take("");
        if (isWidget(word)) {
            auto const number = readNumber(word, 1, highestWidget, "a widget's number");
            raise.parameters.setSourceWidget({static_cast<std::uint16_t>(number), 0});
            arguments.finish();
        } else {
            addParameter(raise.parameters, word);
        }
    }
    return raise;
}

Heard readKind(Word const& word) {
    for (Heard const kind : {Heard::sid, Heard::tid, Heard::fid}) {
        if (word.text == kindName(kind)) {
            return kind;
        }
    }
    throw Fault{word.column, "expected SID, TID or FID"};
}

bool isWithin(Word const& word) { return word.plain && word.text == "within"; }

Command readWait(Arguments& arguments) {
    Wait wait;
    Expectation& expectation = wait.expectation;
    expectation.kind = readKind(arguments.take("SID, TID or FID"));
    expectation.name = arguments.take("a name").text;
    while (!arguments.done() && !isWithin(arguments.peek())) {
        if (expectation.kind == Heard::fid) {
            addParameter(expectation.parameters, arguments.take(""));
        } else if (expectation.value) {
            arguments.finish();
        } else {
            expectation.value = arguments.take("").text;
        }
    }
    if (!arguments.done()) {
        arguments.take("");
        wait.atMost = readTime(arguments.take("milliseconds"));
    }
    return wait;
}

Command readSleep(Arguments& arguments) { return Sleep{readTime(arguments.take("milliseconds"))}; }

Command readShowState(Arguments& arguments) {
    return arguments.done() ? ShowState{} : ShowState{arguments.take("").text};
}

Command readCompare(Arguments&) { return Compare{}; }

Command readQuit(Arguments&) { return Quit{}; }

struct CommandWord {
    std::string_view word;
    Command (*read)(Arguments&);
};

constexpr CommandWord commandWords[] = {{":wait", readWait},
                                        {":sleep", readSleep},
                                        {":state", readShowState},
                                        {":compare", readCompare},
                                        {":quit", readQuit}};

Command readCommand(Word const& word, Arguments& arguments) {
    if (!word.plain || !word.text.starts_with(':')) {
        return readRaise(word, arguments);
    }
    for (auto const& row : commandWords) {
        if (row.word == word.text) {
            Command command = row.read(arguments);
            arguments.finish();
            return command;
        }
    }
    throw Fault{word.column, "unknown command '" + word.text + "'"};
}

}  // namespace

ScriptError::ScriptError(std::string const& file, std::size_t line, std::size_t column,
                         std::string const& cause)
    : std::runtime_error(file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " +
                         cause) {}

std::optional<Command> parseLine(std::string_view line, std::string const& file,
                                 std::size_t number) {
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    auto const first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos || line[first] == '#') {
        return std::nullopt;
    }
    try {
        auto const words = WordReader(line).readAll();
        Arguments arguments(words, line.size());
        return readCommand(words.front(), arguments);
    } catch (Fault const& fault) {
        throw ScriptError(file, number, fault.column, fault.cause);
    }
}

std::vector<Command> parseScript(std::string_view text, std::string const& file) {
    std::vector<Command> commands;
    for (std::size_t number = 1; !text.empty(); ++number) {
        auto const end = text.find('\n');
        if (auto command = parseLine(text.substr(0, end), file, number)) {
            commands.push_back(std::move(*command));
        }
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return commands;
}

}  // namespace PanelSim
