#include "FrameCommand.h"

#include "ConsoleInput.h"
#include "FrameTime.h"
#include "Output.h"
#include "sims/frame/FrameConsole.h"
#include "sims/frame/FrameServer.h"
#include "sims/frame/ModelFile.h"
#include "sims/frame/Scenario.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>

namespace qfd {
namespace {

struct FrameOptions {
    std::string address = "127.0.0.1";
    std::uint16_t port = 5000;
    std::string model;
    std::string scenario;
    bool json = false;
    FrameTimeOptions time;
};

constexpr char footer[] =
    "Without --model the frame is the sample switcher: two M/Es, four keyers each, four aux\n"
    "buses, sixteen sources. The first line that it prints tells the address and the port.\n"
    "The field time is asked for over UDP; see docs/time-keeper.md.\n"
    "\nCommands on standard input change things while panels are connected; type help. The end\n"
    "of the input stops nothing; quit, SIGINT and SIGTERM do, with exit code 0. A scenario is a\n"
    "file of the same commands, each with its time or trigger; see docs/faults.md.\n"
    "\nExamples:\n"
    "  qfd frame --port 0\n"
    "  qfd frame --bind 127.0.0.2 --model installation/frame/sample-switcher.json --json";

/// A double with the digits of the float: 0.1 and not 0.10000000149011612. Null where JSON has
/// no number for it.
nlohmann::ordered_json shortest(float number) {
    if (!std::isfinite(number)) {
        return nullptr;
    }
    auto const digits =
        FrameSim::shownValue(FrameSim::Value::ofReal(FrameSim::DataType::Float, number));
    return std::strtod(digits.c_str(), nullptr);
}

nlohmann::ordered_json json(FrameSim::LineField::Content const& content) {
    return std::visit(
        [](auto const& each) -> nlohmann::ordered_json {
            using Each = std::decay_t<decltype(each)>;
            if constexpr (std::is_same_v<Each, FrameSim::Word>) {
                return widened(each.text);
            } else if constexpr (std::is_same_v<Each, std::string>) {
                return widened(each);
            } else if constexpr (std::is_same_v<Each, float>) {
                return shortest(each);
            } else {
                return each;
            }
        },
        content);
}

std::string asJson(FrameSim::Line const& line) {
    nlohmann::ordered_json object;
    if (line.client != 0) {
        object["client"] = line.client;
    }
    if (line.direction != FrameSim::Direction::note) {
        object["direction"] = line.direction == FrameSim::Direction::received ? "received" : "sent";
    }
    object["what"] = line.what;
    for (auto const& field : line.fields) {
        object[widened(field.name)] = json(field.content);
    }
    return jsonLine(object);
}

/// The help is for a person, so it stands in columns.
std::string asHelp(FrameSim::Line const& line) {
    constexpr std::size_t column = 26;
    auto text = "  " + std::get<std::string>(line.fields.at(0).content);
    text.resize(std::max(text.size() + 1, column), ' ');
    return text + std::get<std::string>(line.fields.at(1).content);
}

void printText(FrameSim::Line const& line) {
    printLine(line.what == "help" ? asHelp(line) : line.text());
}

void printJson(FrameSim::Line const& line) { printLine(asJson(line)); }

FrameSim::FrameServerOptions serverOptions(FrameOptions const& options) {
    FrameSim::FrameServerOptions server;
    server.address = options.address;
    server.port = options.port;
    server.model =
        options.model.empty() ? FrameSim::sampleSwitcher() : FrameSim::readModelFile(options.model);
    server.realFields = true;
    server.printer = options.json ? printJson : printText;
    server.recordLimit = 0;
    return server;
}

std::optional<FrameSim::Scenario> readScenario(std::string const& path) {
    return path.empty() ? std::nullopt : std::optional(FrameSim::Scenario::readFile(path));
}

int runFrame(FrameOptions const& options) {
    ConsoleInput input;
    try {
        auto const scenario = readScenario(options.scenario);
        FrameTime time(options.time, options.address, options.json ? printJson : printText);
        auto wanted = serverOptions(options);
        wanted.fieldTime = [&time](std::string_view command) { time.run(command); };
        FrameSim::FrameServer server(std::move(wanted));
        FrameSim::FrameConsole console(server, options.json ? printJson : printText, printJson);
        time.open();
        if (scenario) {
            checkFieldTime(*scenario);
            server.play(*scenario);
        }
        server.start();
        time.start();
        input.run([&](std::string_view line) { return console.execute(line); });
        time.stop();
        server.stop();
    } catch (FrameSim::ModelError const& error) {
        throw InputError(error.what());
    } catch (FrameSim::ScenarioError const& error) {
        throw InputError(error.what());
    } catch (FrameSim::StartError const& error) {
        throw InputError(error.what());
    }
    return exitGood;
}

}  // namespace

void addFrameCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<FrameOptions>();
    auto* const command = program.add_subcommand(
        "frame", "Be a frame: serve panels over TCP and print all that they say and hear");
    command->add_option("--bind", options->address, "Address to listen on")
        ->type_name("ADDRESS")
        ->capture_default_str();
    command->add_option("--port", options->port, "Port to listen on; 0 takes a free one")
        ->type_name("PORT")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    command->add_option("--model", options->model, "Model file, docs/formats/frame-model.md")
        ->type_name("FILE");
    command->add_option("--scenario", options->scenario, "Faults and their times, docs/faults.md")
        ->type_name("FILE");
    command->add_flag("--json", options->json, "Print one JSON object per line");
    addFrameTimeOptions(*command, options->time);
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return runFrame(*options); }; });
}

}  // namespace qfd
