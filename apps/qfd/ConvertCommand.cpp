#include "ConvertCommand.h"

#include "AuthorInput.h"
#include "Output.h"
#include "conversion/ContextMarshaller.h"
#include "conversion/DictionaryCheck.h"
#include "conversion/ManifestParser.h"
#include "conversion/TemplateConversionCollection.h"
#include "conversion/TemplateConversionCollectionParser.h"
#include "template/ContextStore.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>

using FrameDriver::Conversion::TemplateConversionCollection;
using FrameDriver::Template::ContextStore;
using namespace FrameDriver::XML;

namespace qfd {
namespace {

struct Options {
    std::vector<std::string> dictionaries;
    std::string manifest;
    std::string direction;
    std::vector<std::string> context;
    std::vector<std::string> texts;
    bool applyContext = false;
    bool json = false;
};

/// The place, if the checker finds one, is worth more than the loader's own words.
std::string whyNotLoaded(std::string const& path, std::string const& loadersWords) {
    for (auto const& finding : checkDictionary(path))
        if (finding.severity == DictionaryFinding::fatal) {
            auto text = toText(path, finding);
            while (text.ends_with('\n'))
                text.pop_back();
            return text;
        }
    return loadersWords;
}

void load(std::string const& path, TemplateConversionCollection& target) {
    try {
        TemplateConversionCollectionParser parser;
        target.merge(parser.parseFile(path, ValidationMode::None));
    } catch (...) {
        throw InputError(whyNotLoaded(path, currentExceptionText()));
    }
}

std::vector<std::string> filesOf(Options const& options) {
    if (options.manifest.empty())
        return options.dictionaries;
    try {
        ManifestParser parser;
        auto const manifest = parser.parseFile(options.manifest, ValidationMode::Schema);
        auto files = options.direction == "fid" ? manifest.getFidToCPLDictionaries()
                                                : manifest.getIssueToSIDDictionaries();
        std::erase(files, "");  // a module without that kind of dictionary
        return files;
    } catch (...) {
        throw InputError(currentExceptionText());
    }
}

void applyContext(std::vector<std::string> const& results, ContextStore& store) {
    FrameDriver::Conversion::ContextMarshaller const marshaller;
    for (auto const& line : results)
        if (line.substr(0, line.find(':')) == "Context") {
            auto const [name, value] = marshaller.unmarshal(line);
            store.set(name, value);
        }
}

void printResults(std::string_view text, std::vector<std::string> const& results, bool json) {
    if (json) {
        nlohmann::ordered_json object;
        object["text"] = widened(text);
        object["results"] = nlohmann::ordered_json::array();
        for (auto const& result : results)
            object["results"].push_back(widened(result));
        printLine(jsonLine(object));
        return;
    }
    printLine(std::to_string(results.size()));
    for (auto const& result : results)
        printLine(onOneLine(result));
}

void printFailure(std::string_view text, std::string const& error, bool json) {
    if (json)
        printLine(jsonLine({{"text", widened(text)}, {"error", widened(error)}}));
    else
        printLine("!" + onOneLine(error));
}

int run(Options const& options) {
    XMLLibrary const library;
    TemplateConversionCollection dictionary;
    for (auto const& file : filesOf(options))
        load(file, dictionary);
    ContextStore store;
    fillContext(store, options.context);
    forEachText(options.texts, [&](std::string_view text, std::size_t) {
        try {
            auto const results = dictionary.convert(text, &store);
            if (options.applyContext)
                applyContext(results, store);
            printResults(text, results, options.json);
        } catch (...) {
            printFailure(text, currentExceptionText(), options.json);
        }
    });
    return exitGood;
}

constexpr char footer[] =
    "\nFor each text a line with the number of results, then the results, one a line. In a result\n"
    "a line feed is written \\x0a and a backslash \\x5c. An exception is a line that begins\n"
    "with ! in place of the number.\n"
    "\nExample, from the installation's folder:\n"
    "  printf 'FID: id=MEMORY.RECALL, data=[REG=10\\222\\n' |\n"
    "    qfd convert --manifest Configuration/SimulatorManifest.xml --direction fid";

}  // namespace

void addConvertCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<Options>();
    auto* const command =
        program.add_subcommand("convert", "Convert texts by dictionaries, as the driver does");
    auto* const files =
        command->add_option("--dictionary", options->dictionaries, "Dictionary file; may repeat")
            ->type_name("FILE")
            ->allow_extra_args(false);
    auto* const manifest =
        command->add_option("--manifest", options->manifest, "All dictionaries of a manifest")
            ->type_name("FILE")
            ->excludes(files);
    auto* const direction =
        command
            ->add_option("--direction", options->direction, "Which of the manifest's dictionaries")
            ->type_name("fid|issue")
            ->check(CLI::IsMember({"fid", "issue"}))
            ->needs(manifest);
    manifest->needs(direction);
    command->add_option("--context", options->context, "State to begin with; may repeat")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    command->add_flag("--apply-context", options->applyContext,
                      "Let \"Context\" results change the state, as the driver does");
    command->add_flag("--json", options->json, "Print one JSON object per text");
    command->add_option("texts", options->texts, "Source texts (default: standard input's lines)")
        ->type_name("TEXT");
    command->footer(footer);
    command->callback([options, &job] {
        if (options->dictionaries.empty() && options->manifest.empty())
            throw CLI::ValidationError("convert", "give --dictionary or --manifest");
        job = [options] { return run(*options); };
    });
}

}  // namespace qfd
