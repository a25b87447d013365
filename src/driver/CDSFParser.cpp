#include "driver/CDSFParser.h"

#include "foundation/NumberText.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

using FrameDriver::Tools::readLeadingInt;

constexpr std::size_t none = std::string_view::npos;
constexpr std::string_view blanks = " \t";

std::string_view trimmed(std::string_view text) {
    auto const start = std::min(text.find_first_not_of(" \t\r"), text.size());
    return text.substr(start, text.find_last_not_of(" \t\r\n") + 1 - start);
}

/// The text ahead of `end`, which is taken off `rest`; the delimiter stays.
std::string_view takeTo(std::string_view& rest, std::size_t end) {
    auto const taken = rest.substr(0, end);
    rest.remove_prefix(taken.size());
    return taken;
}

void skip(std::string_view& rest) { rest.remove_prefix(std::min<std::size_t>(1, rest.size())); }

// Indices are numbers of the host's tables; past 32 bits they wrap as they always have.
std::int32_t sum(std::int32_t index, std::int32_t base) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(index) +
                                     static_cast<std::uint32_t>(base));
}

}  // namespace

bool CDSFParser::load(std::string const& path, DsfFunctions& functions, DsfStates& states,
                      DsfAssignments& assignments, std::int32_t base) {
    print("Loading \"" + path + "\"...");
    file.reset(std::fopen(path.c_str(), "r"));
    if (!file) {
        print("FAILED (can't open file " + path + ")\n");
        return false;
    }
    functionList = &functions;
    stateList = &states;
    assignmentList = &assignments;
    baseIndex = base;
    section = Section::none;
    lineNumber = 0;
    errorCount = 0;
    readLines();
    file.reset();
    if (errorCount == 0)
        print("OK\n");
    else
        print("completed with " + std::to_string(errorCount) + " parsing error(s).\n");
    return true;
}

void CDSFParser::print(std::string const& text) { std::fputs(text.c_str(), stdout); }

// The byte 0xFF ends the file, wherever it stands, and a last line without a line feed is lost:
// panels' files have always been read so.
void CDSFParser::readLines() {
    constexpr int endMark = 0xFF;
    std::string line;
    for (int byte = std::getc(file.get()); byte != EOF && byte != endMark;
         byte = std::getc(file.get())) {
        if (byte == '\n') {
            ++lineNumber;
            takeLine(line);
            line.clear();
        } else if (byte != '\r') {
            line.push_back(static_cast<char>(byte));
        }
    }
}

void CDSFParser::takeLine(std::string_view line) {
    auto const text = trimmed(line.substr(0, line.find("//")));
    // The end of a section ends nothing: what follows belongs to it until the next header.
    if (text.empty() || text == "END::FIDS" || text == "END::SIDS" || text == "END::RIDS")
        return;
    if (text == "::FIDS")
        section = Section::functions;
    else if (text == "::RIDS")
        section = Section::states;
    else if (text == "::SIDS")
        section = Section::assignments;
    else
        parseLine(std::string(text));
}

void CDSFParser::parseLine(std::string const& line) {
    switch (section) {
    case Section::none:
        break;
    case Section::functions:
        parseEach(LineExpander(line), [this](auto const& one) { return parseFunction(one); });
        break;
    case Section::states:
        // Not multiplied: the marks of its groups stay in it.
        errorCount += parseState(LineExpander(line).line) ? 0 : 1;
        break;
    case Section::assignments:
        parseEach(LineExpander(line),
                  [this](auto const& one) { return parseAssignment(one.text); });
        break;
    }
}

template <typename Parse>
void CDSFParser::parseEach(LineExpander const& expander, Parse parse) {
    for (auto const& expanded : expander.expand())
        errorCount += parse(expanded) ? 0 : 1;
}

bool CDSFParser::complain(std::string_view before, std::string_view subject,
                          std::string_view after) {
    std::string text = "Syntax error (" + std::to_string(lineNumber) + "): ";
    // As far as a C string goes; the line's end stays.
    text.append(before).append(subject.substr(0, subject.find('\0'))).append(after).append("\n");
    print(text);
    return false;
}

bool CDSFParser::parseFunction(ExpandedLine const& expanded) {
    std::string_view rest = expanded.text;
    auto const end = rest.find_first_of(blanks);
    if (end == none)
        return complain("Missing ( <rid idx> <value>, ... ) tag in FID -> ", expanded.text, "");
    DsfFunction function;
    function.name = trimmed(takeTo(rest, end));
    function.groups = expanded.choices;
    rest = trimmed(rest);
    if (!parseParameters(expanded.text, rest, function) ||
        !parseReturns(expanded.text, rest, function))
        return false;
    functionList->push_back(std::move(function));
    return true;
}

/// Leaves `rest` at the "(".
bool CDSFParser::parseParameters(std::string const& line, std::string_view& rest,
                                 DsfFunction& function) {
    while (!rest.starts_with('(')) {
        auto const equals = rest.find('=');
        if (equals == none)
            return complain("Expecting '=' after parameter name in FID -> ", line, "");
        DsfParameter parameter;
        parameter.name = trimmed(takeTo(rest, equals));
        skip(rest);
        auto const end = rest.find_first_of("(\t ");
        if (end == none)
            return complain("Expecting '(' after parameter value in FID -> ", line, "");
        parameter.value = trimmed(takeTo(rest, end));
        function.parameters.push_back(std::move(parameter));
        rest = trimmed(rest);
    }
    return true;
}

bool CDSFParser::parseReturns(std::string const& line, std::string_view rest,
                              DsfFunction& function) {
    skip(rest);
    rest = trimmed(rest);
    while (!rest.empty()) {
        auto const end = rest.find_first_of(",)");
        if (end == none)
            return complain("Expecting ')' in FID -> ", line, "");
        auto const element = parseReturn(trimmed(takeTo(rest, end)));
        if (!element)
            return false;
        function.returns.push_back(*element);
        skip(rest);
    }
    return true;
}

std::optional<DsfReturn> CDSFParser::parseReturn(std::string_view element) {
    auto rest = element;
    auto const end = rest.find_first_of(blanks);
    if (end == none) {
        complain("Expecting an index in FIDs return element -> ", element, "");
        return std::nullopt;
    }
    DsfReturn result;
    result.index = sum(readLeadingInt(takeTo(rest, end)), baseIndex);
    skip(rest);
    if (rest.empty()) {
        complain("Expecting ')' in FIDs return element -> ", element, "");
        return std::nullopt;
    }
    result.stateId = takeTo(rest, rest.find_first_of(blanks));
    skip(rest);
    result.increment = rest == "INC";
    if (!rest.empty() && !result.increment) {
        complain("unknown option '", rest, "'");
        return std::nullopt;
    }
    return result;
}

bool CDSFParser::parseState(std::string const& line) {
    std::string_view rest = line;
    auto const end = rest.find_first_of(blanks);
    if (end == none)
        return complain("RID format <idx> <state ID> not found (", line, ")");
    DsfState state;
    state.index = sum(readLeadingInt(takeTo(rest, end)), baseIndex);
    rest = trimmed(rest);
    state.stateId = takeTo(rest, rest.find_first_of(blanks));
    parseOptions(line, rest, state);
    stateList->push_back(std::move(state));
    return true;
}

// What is wrong with an option is told, and neither fails the line nor counts.
void CDSFParser::parseOptions(std::string const& line, std::string_view rest, DsfState& state) {
    for (rest = trimmed(rest); !rest.empty(); rest = trimmed(rest)) {
        auto const equals = rest.find('=');
        if (equals == none) {
            complain("Expecting '=' after option name in RID -> ", line, "");
            return;
        }
        auto const name = trimmed(takeTo(rest, equals));
        skip(rest);
        auto const value = readLeadingInt(takeTo(rest, rest.find_first_of(blanks)));
        if (name == "MIN") {
            state.hasMinimum = true;
            state.minimum = static_cast<float>(value);
        } else if (name == "MAX") {
            state.hasMaximum = true;
            state.maximum = static_cast<float>(value);
        } else {
            complain("unknown option '", name, "'");
        }
    }
}

bool CDSFParser::parseAssignment(std::string const& line) {
    std::string_view rest = line;
    auto tag = rest.find(" VAL");
    if (tag == none)
        tag = rest.find("\tVAL");
    if (tag == none)
        return complain("Missing VAL = <value> tag in SID -> ", line, "");
    DsfAssignment assignment;
    assignment.name = trimmed(takeTo(rest, tag));
    auto const equals = rest.find('=');
    if (equals == none)
        return complain("Expecting '=' after VAL tag in SID -> ", line, "");
    assignment.value = trimmed(rest.substr(equals + 1));
    assignmentList->push_back(std::move(assignment));
    return true;
}
