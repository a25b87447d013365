#include "MessageCommand.h"

#include "AuthorInput.h"
#include "Output.h"
#include "conversion/CPLMarshaller.h"
#include "cpl/DataValue.h"
#include "cpl/Issue.h"
#include "cpl/SendEventMessage.h"
#include "cpl/SetListMessage.h"
#include "cpl/SetMessage.h"
#include "cpl/Subscription.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <memory>

using namespace FrameDriver::CPL;
using Fields = std::vector<std::pair<std::string, std::string>>;

namespace qfd {
namespace {

struct Options {
    std::vector<std::string> texts;
    bool json = false;
};

std::string hex(char const* format, unsigned number) {
    char text[16];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

std::string did(std::uint32_t number) { return hex("%08x", number); }

std::string typeName(std::int32_t tag) {
    auto const name = dataTypeRow(tag).name;
    return name.empty() ? "unknown (" + std::to_string(tag) + ")" : std::string(name);
}

std::string valueText(void const* data, std::int32_t tag) {
    std::string text;
    appendValue(text, data, dataTypeRow(tag).written);
    return text;
}

Fields fieldsOf(SetMessage const& message) {
    auto const tag = message.getDataType();
    Fields fields{{"kind", "set"},
                  {"pid", std::to_string(message.getPid())},
                  {"did", did(message.getDid())},
                  {"type", typeName(tag)},
                  {"value", valueText(message.getData(), tag)},
                  {"flag", std::to_string(message.getFlag())}};
    if (dataTypeRow(tag).sent == Form::nothing)
        fields.emplace_back("warning", "the frame can't be sent a value of this type: the driver "
                                       "throws and its link hangs");
    return fields;
}

Fields fieldsOf(SendEventMessage const& message) {
    std::string data;
    for (unsigned i = 0; i < message.getSize(); ++i)
        data += (i ? " " : "") + hex("%02x", message.getData()[i]);
    return {{"kind", "event"},
            {"eid", std::to_string(message.getEid())},
            {"did", did(message.getDid())},
            {"size", std::to_string(message.getSize())},
            {"data", data}};
}

Fields fieldsOf(SetListMessage const& message) {
    auto const& item = message.viewItem();
    Fields fields{{"kind", "set list"},
                  {"lid", std::to_string(message.getLid())},
                  {"did", did(message.getDid())},
                  {"number", std::to_string(message.getNumber())},
                  {"action", std::to_string(message.getAction())},
                  {"itemId", std::to_string(item.getItemId())}};
    for (auto const& [name, parameter] : item.getParameters())
        fields.emplace_back(name, valueText(parameter.getData(), parameter.getDataType()));
    if (message.getLid() != 6 && message.getLid() != 32)
        fields.emplace_back("warning", "only lists 6 and 32 can be written: nothing is sent");
    return fields;
}

Fields fieldsOf(Subscription const& message) {
    if (auto const* one = dynamic_cast<ParameterSubscription const*>(&message))
        return {{"kind", "subscribe to a parameter"},
                {"pid", std::to_string(one->getPid())},
                {"did", did(one->getDid())},
                {"flag", std::to_string(one->getFlag())}};
    if (auto const* list = dynamic_cast<ListSubscription const*>(&message))
        return {{"kind", "subscribe to a list"},
                {"lid", std::to_string(list->getLid())},
                {"number", std::to_string(list->getNumber())},
                {"did", did(list->getDid())},
                {"flag", std::to_string(list->getFlag())}};
    Fields fields{{"kind", "subscribe to parameters"}, {"flag", "3"}};
    for (auto const* each : dynamic_cast<BatchSubscription const&>(message).viewSubscriptions())
        if (auto const* member = dynamic_cast<ParameterSubscription const*>(each))
            fields.emplace_back("pid and did",
                                std::to_string(member->getPid()) + " " + did(member->getDid()));
    return fields;
}

/// What the client would send; nothing for what it drops.
Fields fieldsOf(Message const& message) {
    if (auto const* set = dynamic_cast<SetMessage const*>(&message))
        return fieldsOf(*set);
    if (auto const* event = dynamic_cast<SendEventMessage const*>(&message))
        return fieldsOf(*event);
    if (auto const* list = dynamic_cast<SetListMessage const*>(&message))
        return fieldsOf(*list);
    if (auto const* subscription = dynamic_cast<Subscription const*>(&message))
        return fieldsOf(*subscription);
    return {};
}

void print(std::string_view text, Fields const& fields, bool json) {
    if (!json) {
        for (auto const& [name, value] : fields)
            printLine(name + " = " + onOneLine(value));
        return;
    }
    nlohmann::ordered_json object{{"text", widened(text)}};
    object["fields"] = nlohmann::ordered_json::array();
    for (auto const& [name, value] : fields)
        object["fields"].push_back({widened(name), widened(value)});
    printLine(jsonLine(object));
}

void printFailure(std::string_view text, std::string const& cause, bool json) {
    if (json)
        printLine(jsonLine({{"text", widened(text)}, {"error", widened(cause)}}));
    else
        printLine("!" + onOneLine(cause));
}

bool showOne(std::string_view text, bool json) {
    FrameDriver::Conversion::CPLMarshaller const marshaller;
    try {
        std::unique_ptr<Message> const message(marshaller.unmarshal(text));
        auto const fields = message ? fieldsOf(*message) : Fields{};
        if (!fields.empty()) {
            print(text, fields, json);
            return true;
        }
        printFailure(text, message ? "an issue isn't sent to the frame" : "no message to the frame",
                     json);
    } catch (...) {
        printFailure(text, currentExceptionText(), json);
    }
    return false;
}

int run(Options const& options) {
    auto code = exitGood;
    forEachText(options.texts, [&](std::string_view text, std::size_t count) {
        if (count > 1 && !options.json)
            printLine("");
        if (!showOne(text, options.json))
            code = exitCheckFailed;
    });
    return code;
}

constexpr char footer[] =
    "\nPrints \"FIELD = VALUE\" lines, a blank line between two messages. Exit code 1 if a text\n"
    "is no message that the driver would send.\n"
    "\nExample:\n"
    "  qfd message \"$(printf 'Set Message: 10, did=[EncodingType=08, MEIdType=1\\222, "
    "data=[type=UInt16, value=3\\222, flag=absolute')\"";

}  // namespace

void addMessageCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<Options>();
    auto* const command =
        program.add_subcommand("message", "Show what the frame would be sent, field by field");
    command->add_flag("--json", options->json, "Print one JSON object per text");
    command->add_option("texts", options->texts, "Result lines (default: standard input's lines)")
        ->type_name("TEXT");
    command->footer(footer);
    command->callback([options, &job] { job = [options] { return run(*options); }; });
}

}  // namespace qfd
