#pragma once

#include "driver/LineExpander.h"

#include <cstdint>
#include <cstdio>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct DsfParameter {
    std::string name;
    std::string value;
};

struct DsfReturn {
    std::int32_t index = 0;  // number in the file plus the base
    bool increment = false;
    std::string stateId;
};

/// One line of the FID section.
struct DsfFunction {
    std::string name;
    std::vector<ChoiceGroup> groups;  // the choices of the line that it came from
    std::vector<DsfParameter> parameters;
    std::vector<DsfReturn> returns;
};

/// One line of the RID section.
struct DsfState {
    std::int32_t index = 0;  // number in the file plus the base
    std::string stateId;
    bool hasMinimum = false;
    bool hasMaximum = false;
    float minimum = 0;
    float maximum = 0;
};

/// One line of the SID section.
struct DsfAssignment {
    std::string name;
    std::string value;
};

using DsfFunctions = std::list<DsfFunction>;
using DsfStates = std::list<DsfState>;
using DsfAssignments = std::list<DsfAssignment>;

/// Reads a panel's state file. The grammar is in docs/formats/state-file.md.
///
/// The three lists are the caller's and are appended to. It knows no driver, and tells what it
/// does on standard output: panels' tools read it there, not in the log. A line that can't be read
/// is dropped, told and counted; the result of `load` says nothing of it. Thread: one at a time.
class CDSFParser {
  public:
    CDSFParser() = default;
    virtual ~CDSFParser() = default;
    CDSFParser(CDSFParser const&) = delete;
    CDSFParser& operator=(CDSFParser const&) = delete;

    /// False if the file can't be opened. What a `LineExpander` throws passes.
    bool load(std::string const& path, DsfFunctions& functions, DsfStates& states,
              DsfAssignments& assignments, std::int32_t base);

  protected:
    enum class Section { none, functions, states, assignments };

    /// All that is told passes here; to standard output, unless a tool wants it elsewhere.
    virtual void print(std::string const& text);

    std::int32_t lineNumber = 0;  ///< of the line being read; the first is 1
    std::int32_t errorCount = 0;

  private:
    struct CloseFile {
        void operator()(std::FILE* open) const { std::fclose(open); }
    };

    void readLines();
    void takeLine(std::string_view line);
    void parseLine(std::string const& line);
    template <typename Parse>
    void parseEach(LineExpander const& expander, Parse parse);
    bool parseFunction(ExpandedLine const& expanded);
    bool parseParameters(std::string const& line, std::string_view& rest, DsfFunction& function);
    bool parseReturns(std::string const& line, std::string_view rest, DsfFunction& function);
    std::optional<DsfReturn> parseReturn(std::string_view element);
    bool parseState(std::string const& line);
    void parseOptions(std::string const& line, std::string_view rest, DsfState& state);
    bool parseAssignment(std::string const& line);
    /// Prints "Syntax error (N): " and the text around `subject`; false.
    bool complain(std::string_view before, std::string_view subject, std::string_view after);

    std::unique_ptr<std::FILE, CloseFile> file;
    Section section = Section::none;
    DsfFunctions* functionList = nullptr;
    DsfStates* stateList = nullptr;
    DsfAssignments* assignmentList = nullptr;
    std::int32_t baseIndex = 0;
};
