#pragma once

namespace CLI {
class App;
}

namespace qfd {

/// Reads the command line into the program's options; call it after the last option was added.
/// Throws what CLI::App::parse throws.
///
/// Texts come through as they are, with two kinds that CLI11 would otherwise take apart or take
/// for its own: one in square brackets ("[a,b]" stays one text), and "++". A negative number
/// ("-1", "-.5") is a text; any other argument that begins with "-" is one only behind "--".
void parseArguments(CLI::App& program, int argc, char** argv);

}  // namespace qfd
