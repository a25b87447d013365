#include "DidCommand.h"

#include "AuthorInput.h"
#include "Output.h"
#include "conversion/CPLMarshaller.h"
#include "foundation/NumberText.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdio>

namespace qfd {
namespace {

struct Options {
    std::vector<std::string> texts;
    bool json = false;
};

std::string eightDigits(std::uint32_t did) {
    char text[16];
    std::snprintf(text, sizeof text, "%08x", did);
    return text;
}

/// Where a text stops being a hexadecimal number; npos if it is one as a whole.
std::size_t firstWrong(std::string_view text) {
    auto const start = text.starts_with("0x") || text.starts_with("0X") ? 2U : 0U;
    auto const wrong = text.find_first_not_of("0123456789abcdefABCDEF", start);
    return text.size() == start ? start : wrong;
}

class Converter {
  public:
    explicit Converter(bool asJson) : json(asJson) {}

    void convert(std::string_view text, std::size_t line) {
        if (text.find("did=[") != std::string_view::npos)
            toNumber(text, line);
        else
            toText(text, line);
    }
    int exitCode() const { return bad ? exitBadUsage : exitGood; }

  private:
    void toNumber(std::string_view text, std::size_t line) {
        try {
            auto const did = marshaller.unmarshalDeviceId(text);
            print(eightDigits(did), std::string(text), eightDigits(did));
        } catch (...) {
            complain(line, 1, currentExceptionText());
        }
    }
    void toText(std::string_view text, std::size_t line) {
        std::uint32_t did = 0;
        if (auto const wrong = firstWrong(text); wrong != std::string_view::npos)
            return complain(line, wrong + 1, "'" + escaped(text) + "' is no hexadecimal number");
        if (!FrameDriver::Tools::readHexUInt32(text, did))
            return complain(line, 1, "'" + escaped(text) + "' has more than 32 bits");
        auto const written = marshaller.marshalDeviceId(did);
        print(eightDigits(did), written, written);
    }
    void print(std::string const& did, std::string const& text, std::string const& plain) const {
        if (json)
            printLine(jsonLine({{"did", did}, {"text", widened(text)}}));
        else
            printLine(plain);
    }
    void complain(std::size_t line, std::size_t column, std::string const& cause) {
        printError("did", std::to_string(line) + ":" + std::to_string(column) + ": " + cause);
        bad = true;
    }

    FrameDriver::Conversion::CPLMarshaller const marshaller;
    bool const json;
    bool bad = false;
};

int run(Options const& options) {
    Converter converter(options.json);
    forEachText(options.texts,
                [&](std::string_view text, std::size_t line) { converter.convert(text, line); });
    return converter.exitCode();
}

constexpr char footer[] =
    "\nA text that holds did=[ gives eight hexadecimal digits; any other is read as a hexadecimal\n"
    "number and gives the text. The text's groups close with the byte 0x92.\n"
    "\nExample:\n"
    "  qfd did 08000213";

}  // namespace

void addDidCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<Options>();
    auto* const command =
        program.add_subcommand("did", "Turn device identifiers into text and back");
    command->add_flag("--json", options->json, "Print one JSON object per identifier");
    command->add_option("texts", options->texts, "Identifiers (default: standard input's lines)")
        ->type_name("DID|TEXT");
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return run(*options); }; });
}

}  // namespace qfd
