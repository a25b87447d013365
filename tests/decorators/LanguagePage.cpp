#include "LanguagePage.h"

#include "template/ContextStore.h"
#include "template/TemplateParser.h"

#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>

namespace FrameDriver::Template {
namespace {

/// Reads the quoted text that begins at or behind `position` and moves behind it.
std::string takeText(std::string_view line, std::size_t& position) {
    std::string text;
    position = line.find('"', position);
    if (position == std::string_view::npos)
        return text;
    for (++position; position < line.size() && line[position] != '"'; ++position) {
        if (line[position] != '\\') {
            text += line[position];
            continue;
        }
        ++position;
        if (line.at(position) == 'x') {
            std::string const digits(line.substr(position + 1, 2));
            text += static_cast<char>(std::stoi(digits, nullptr, 16));
            position += 2;
        } else {
            text += line[position] == 'n' ? '\n' : line[position];
        }
    }
    ++position;
    return text;
}

std::string inQuotes(std::string_view text) { return std::string("\"").append(text).append("\""); }

/// Runs the lines of one example.
class Runner {
  public:
    /// Empty if the line holds.
    std::string step(ExampleLine const& line) {
        auto const action = actions().find(line.label);
        return action == actions().end() ? "unknown label " + line.label
                                         : action->second(*this, line);
    }

  private:
    using Action = std::string (*)(Runner&, ExampleLine const&);

    static std::map<std::string, Action> const& actions() {
        static std::map<std::string, Action> const table{
            {"context", &Runner::context},   {"word", &Runner::word},
            {"value", &Runner::value},       {"to", &Runner::to},
            {"from", &Runner::from},         {"text", &Runner::text},
            {"gives", &Runner::gives},       {"matches", &Runner::matches},
            {"captures", &Runner::captures}, {"prints", &Runner::prints},
            {"stores", &Runner::stores},     {"fails", &Runner::fails}};
        return table;
    }

    static std::string context(Runner& self, ExampleLine const& line) {
        self.store.set(line.text, line.second);
        return {};
    }
    static std::string word(Runner& self, ExampleLine const& line) {
        self.result = TemplateParser::parse("{@x|" + line.text + "}");
        self.isWord = true;
        self.isPending = false;
        return {};
    }
    static std::string to(Runner& self, ExampleLine const& line) {
        self.result = TemplateParser::parse(line.text);
        self.isWord = false;
        self.isPending = true;
        return {};
    }
    // Evaluated at once, so that what it stores shows without a `gives`.
    static std::string value(Runner& self, ExampleLine const& line) {
        self.variables = {{"x", line.text}};
        self.evaluate();
        return {};
    }
    static std::string from(Runner& self, ExampleLine const& line) {
        self.pattern = TemplateParser::parse(line.text);
        return {};
    }
    static std::string text(Runner& self, ExampleLine const& line) {
        self.fits = self.pattern.matches(line.text);
        self.variables.clear();
        self.isPending = false;
        self.attempt([&] {
            if (self.fits)
                self.variables = self.pattern.extractVariables(line.text);
        });
        return {};
    }
    static std::string gives(Runner& self, ExampleLine const& line) {
        if (self.isPending)
            self.evaluate();
        if (!self.failure.empty())
            return "fails " + inQuotes(self.failure);
        return self.output == line.text ? "" : "gives " + inQuotes(self.output);
    }
    static std::string fails(Runner& self, ExampleLine const& line) {
        if (self.isPending)
            self.evaluate();
        if (self.failure.empty())
            return "does not fail";
        return self.failure == line.text ? "" : "fails " + inQuotes(self.failure);
    }
    static std::string matches(Runner& self, ExampleLine const& line) {
        char const* const answer = self.fits ? "yes" : "no";
        return line.text == answer ? "" : "matches " + inQuotes(answer);
    }
    static std::string captures(Runner& self, ExampleLine const& line) {
        auto const capture = self.variables.find(line.text);
        if (capture == self.variables.end())
            return "captures nothing";
        return capture->second == line.second ? "" : "captures " + inQuotes(capture->second);
    }
    static std::string prints(Runner& self, ExampleLine const& line) {
        std::string text = self.result.toString();
        if (self.isWord)
            text = text.substr(4, text.size() - 5);  // between "{@x|" and "}"
        return text == line.text ? "" : "prints " + inQuotes(text);
    }
    static std::string stores(Runner& self, ExampleLine const& line) {
        if (!self.store.contains(line.text))
            return "stores nothing";
        std::string const stored = self.store.get(line.text);
        return stored == line.second ? "" : "stores " + inQuotes(stored);
    }

    void evaluate() {
        output.clear();
        attempt([&] { output = result.evaluate(variables, &store); });
    }

    void attempt(std::function<void()> const& action) {
        failure.clear();
        try {
            action();
        } catch (std::exception const& exception) {
            failure = exception.what();
        }
    }

    ContextStore store;
    TemplateString pattern;
    TemplateString result;
    bool isWord = true;      // whether `result` is a word in "{@x|" and "}"
    bool isPending = false;  // whether `result` is still to be evaluated
    bool fits = false;
    VariableMap variables;
    std::string output;
    std::string failure;
};

}  // namespace

ExampleLine parseExampleLine(std::string_view line, int number) {
    ExampleLine parsed;
    parsed.number = number;
    parsed.label = line.substr(0, line.find(' '));
    std::size_t position = 0;
    parsed.text = takeText(line, position);
    if (position < line.size())
        parsed.second = takeText(line, position);
    return parsed;
}

std::string run(Example const& example) {
    Runner runner;
    for (auto const& line : example) {
        std::string const difference = runner.step(line);
        if (!difference.empty())
            return "line " + std::to_string(line.number) + ": " + difference;
    }
    return {};
}

int countResults(Example const& example, std::string_view word) {
    int count = 0;
    bool counts = false;
    for (auto const& line : example) {
        if (line.label == "word")
            counts = line.text.starts_with(word);
        count += counts && line.label == "gives" ? 1 : 0;
    }
    return count;
}

LanguagePage::LanguagePage(std::string const& path) {
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    std::string line;
    bool inside = false;
    for (int number = 1; std::getline(file, line); ++number) {
        content += line + '\n';
        if (inside && line == "```") {
            inside = false;
        } else if (inside && !line.empty()) {
            blocks.back().push_back(parseExampleLine(line, number));
        } else if (line == "```example") {
            inside = true;
            blocks.emplace_back();
        }
    }
}

}  // namespace FrameDriver::Template
