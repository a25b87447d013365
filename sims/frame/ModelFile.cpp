#include "sims/frame/ModelFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace FrameSim {
namespace {

using Names = std::initializer_list<std::string_view>;
using Kind = JsonNode::Kind;

// A slip of the pen in "count" must not eat the machine's memory.
constexpr std::size_t mostEntries = 100000;

constexpr std::array<std::string_view, 6> kindNames{"null",     "true or false", "a number",
                                                    "a string", "an array",      "an object"};

std::string_view kindName(Kind kind) { return kindNames[static_cast<std::size_t>(kind)]; }

std::string joined(Names names) {
    std::string text;
    for (auto const name : names) {
        text.append(text.empty() ? "" : ", ").append(name);
    }
    return text;
}

/// What a value of the type may look like, for an error.
std::string described(TypeInfo const& type) {
    switch (type.form) {
    case ValueForm::integer:
        return "a whole number from " + std::to_string(type.lowest) + " to " +
               std::to_string(type.highest);
    case ValueForm::boolean:
        return "true or false";
    case ValueForm::real:
        return "a number";
    default:
        return "a string";
    }
}

class ModelReader {
  public:
    explicit ModelReader(JsonDocument const& file) : document(file) {}

    FrameModel read() {
        JsonNode const& root = document.root();
        expectObject(root, "the model",
                     {"name", "comment", "behaviour", "parameters", "events", "lists"});
        model.name = textOf(root, "name", "unnamed");
        readBehaviour(root);
        forEach(root, "parameters", [this](JsonNode const& node) { readParameters(node); });
        forEach(root, "events", [this](JsonNode const& node) { readEvents(node); });
        forEach(root, "lists", [this](JsonNode const& node) { readList(node); });
        return std::move(model);
    }

  private:
    [[noreturn]] void fail(JsonNode const& node, std::string const& cause) const {
        document.fail(node.offset, cause);
    }

    void expectKind(JsonNode const& node, Kind kind, std::string const& what) const {
        if (node.kind != kind) {
            fail(node, what + " must be " + std::string(kindName(kind)) + ", not " +
                           std::string(kindName(node.kind)));
        }
    }

    void expectObject(JsonNode const& node, std::string const& what, Names known) const {
        expectKind(node, Kind::object, what);
        for (auto const& member : node.members) {
            if (std::find(known.begin(), known.end(), member.name) == known.end()) {
                document.fail(member.offset, "\"" + member.name + "\" is not known here; " + what +
                                                 " has " + joined(known));
            }
        }
    }

    JsonNode const& required(JsonNode const& node, std::string_view name) const {
        auto const* member = node.find(name);
        if (!member) {
            fail(node, "\"" + std::string(name) + "\" is missing");
        }
        return *member;
    }

    template <typename Operation>
    void forEach(JsonNode const& node, std::string_view name, Operation operation) {
        auto const* array = node.find(name);
        if (!array) {
            return;
        }
        expectKind(*array, Kind::array, "\"" + std::string(name) + "\"");
        for (auto const& element : array->elements) {
            operation(element);
        }
    }

    std::string textOf(JsonNode const& node, std::string_view name, std::string otherwise) const {
        auto const* member = node.find(name);
        if (!member) {
            return otherwise;
        }
        expectKind(*member, Kind::string, "\"" + std::string(name) + "\"");
        return member->text;
    }

    bool flagOf(JsonNode const& node, std::string_view name) const {
        auto const* member = node.find(name);
        if (member) {
            expectKind(*member, Kind::boolean, "\"" + std::string(name) + "\"");
        }
        return member && member->boolean;
    }

    std::int64_t numberIn(JsonNode const& node, std::string_view name, std::int64_t lowest,
                          std::int64_t highest) const {
        std::int64_t number = 0;
        auto const end = node.text.data() + node.text.size();
        auto const result = std::from_chars(node.text.data(), end, number);
        if (node.kind != Kind::number || result.ec != std::errc() || result.ptr != end ||
            number < lowest || number > highest) {
            fail(node, "\"" + std::string(name) + "\" must be a whole number from " +
                           std::to_string(lowest) + " to " + std::to_string(highest));
        }
        return number;
    }

    std::int64_t requiredNumber(JsonNode const& node, std::string_view name, std::int64_t lowest,
                                std::int64_t highest) const {
        return numberIn(required(node, name), name, lowest, highest);
    }

    void readBehaviour(JsonNode const& root) {
        model.behaviour = textOf(root, "behaviour", "none");
        if (model.behaviour != "none" && model.behaviour != "switcher") {
            fail(*root.find("behaviour"), "\"behaviour\" must be \"none\" or \"switcher\"");
        }
    }

    std::uint32_t readDevice(JsonNode const& node) const {
        auto const& device = required(node, "device");
        expectKind(device, Kind::string, "\"device\"");
        std::uint32_t did = 0;
        auto const end = device.text.data() + device.text.size();
        auto const result = std::from_chars(device.text.data(), end, did, 16);
        if (device.text.size() != 8 || result.ec != std::errc() || result.ptr != end) {
            fail(device, "\"device\" must be eight hexadecimal digits, such as \"24000000\"");
        }
        return did;
    }

    /// The devices that an entry is for: "device", counted up in each place of "over".
    std::vector<std::uint32_t> readDevices(JsonNode const& node) {
        std::vector<std::uint32_t> devices{readDevice(node)};
        forEach(node, "over", [&](JsonNode const& step) {
            expectObject(step, "a step of \"over\"", {"shift", "count"});
            auto const shift = static_cast<unsigned>(requiredNumber(step, "shift", 0, 31));
            auto const count = static_cast<std::size_t>(requiredNumber(step, "count", 1, 65536));
            countEntries(step, devices.size() * (count - 1));
            std::vector<std::uint32_t> more;
            for (auto const did : devices) {
                for (std::uint32_t i = 0; i < count; ++i) {
                    more.push_back(did + (i << shift));
                }
            }
            devices = std::move(more);
        });
        return devices;
    }

    void countEntries(JsonNode const& node, std::size_t more) {
        entries += more;
        if (entries > mostEntries) {
            fail(node, "the model has more than " + std::to_string(mostEntries) +
                           " parameters, events and list items");
        }
    }

    Value readTyped(JsonNode const& node, std::string const& what, TypeInfo const& type) const {
        Kind const kind = type.form == ValueForm::boolean ? Kind::boolean
                          : type.form == ValueForm::text  ? Kind::string
                                                          : Kind::number;
        std::string const text =
            node.kind == Kind::boolean ? (node.boolean ? "1" : "0") : node.text;
        auto const value = node.kind == kind ? readValue(type.type, text) : std::nullopt;
        if (!value) {
            fail(node, what + " must be " + described(type));
        }
        return *value;
    }

    TypeInfo const& readType(JsonNode const& node) const {
        auto const& type = required(node, "type");
        expectKind(type, Kind::string, "\"type\"");
        auto const* info = findType(type.text);
        if (!info) {
            fail(type, "\"" + type.text +
                           "\" is no type; there are Int16, Int32, UInt16, UInt32, "
                           "Bool, Float, String, Clock, Degree, Percent, Revolution, ScreenUnit, "
                           "SPercent, State");
        }
        return *info;
    }

    std::optional<double> readBound(JsonNode const& node, std::string const& name,
                                    TypeInfo const& type) const {
        auto const* member = node.find(name);
        if (!member) {
            return std::nullopt;
        }
        if (type.form != ValueForm::integer && type.form != ValueForm::real) {
            fail(*member, "a " + std::string(type.name) + " has no \"" + name + "\"");
        }
        Value const bound = readTyped(*member, "\"" + name + "\"", type);
        return bound.form() == ValueForm::integer ? static_cast<double>(bound.integer())
                                                  : static_cast<double>(bound.real());
    }

    Range readRange(JsonNode const& node, TypeInfo const& type) const {
        Range range{readBound(node, "minimum", type), readBound(node, "maximum", type),
                    readBound(node, "also", type)};
        if (type.form == ValueForm::integer) {
            range.minimum = range.minimum.value_or(static_cast<double>(type.lowest));
            range.maximum = range.maximum.value_or(static_cast<double>(type.highest));
        }
        if (range.minimum && range.maximum && *range.minimum > *range.maximum) {
            fail(node.find("minimum") ? *node.find("minimum") : *node.find("maximum"),
                 "\"minimum\" is above \"maximum\"");
        }
        return range;
    }

    void readParameters(JsonNode const& node) {
        expectObject(node, "a parameter",
                     {"name", "comment", "pid", "device", "over", "type", "value", "minimum",
                      "maximum", "also", "readOnly"});
        auto const pid = requiredNumber(node, "pid", 0, std::numeric_limits<std::uint16_t>::max());
        TypeInfo const& type = readType(node);
        Parameter parameter;
        parameter.name = textOf(node, "name", "");
        parameter.range = readRange(node, type);
        parameter.readOnly = flagOf(node, "readOnly");
        parameter.value = readStart(node, type, parameter.range);
        parameter.start = parameter.value;
        countEntries(node, 1);
        for (auto const did : readDevices(node)) {
            if (!model.add(ParameterKey{static_cast<std::int32_t>(pid), did}, parameter)) {
                fail(node, "the parameter pid=" + std::to_string(pid) + " did=" + shownDevice(did) +
                               " is there twice");
            }
        }
    }

    /// Without "value" it is 0, or the bound that is nearest to it.
    Value readStart(JsonNode const& node, TypeInfo const& type, Range const& range) const {
        auto const* member = node.find("value");
        if (!member) {
            return clamped(zeroValue(type.type), range);
        }
        Value value = readTyped(*member, "\"value\"", type);
        if (!(clamped(value, range) == value)) {
            fail(*member, "\"value\" lies outside \"minimum\" and \"maximum\"");
        }
        return value;
    }

    void readEvents(JsonNode const& node) {
        expectObject(node, "an event", {"name", "comment", "eid", "device", "over", "data"});
        auto const eid = requiredNumber(node, "eid", 0, std::numeric_limits<std::uint16_t>::max());
        Event event;
        event.name = textOf(node, "name", "");
        if (auto const* data = node.find("data")) {
            event.dataSize = static_cast<std::size_t>(numberIn(*data, "data", 0, 32767));
        }
        countEntries(node, 1);
        for (auto const did : readDevices(node)) {
            if (!model.add(EventKey{static_cast<std::int32_t>(eid), did}, event)) {
                fail(node, "the event eid=" + std::to_string(eid) + " did=" + shownDevice(did) +
                               " is there twice");
            }
        }
    }

    void readList(JsonNode const& node) {
        expectObject(node, "a list",
                     {"name", "comment", "lid", "number", "device", "writable", "items"});
        auto const lid = requiredNumber(node, "lid", 0, std::numeric_limits<std::int16_t>::max());
        auto const number =
            requiredNumber(node, "number", 0, std::numeric_limits<std::uint16_t>::max());
        ListKey const key{static_cast<std::int32_t>(lid), static_cast<std::uint16_t>(number),
                          readDevice(node)};
        auto const* layout = findListLayout(key.lid);
        if (!layout) {
            fail(required(node, "lid"), "there is no list " + std::to_string(lid));
        }
        List list;
        list.name = textOf(node, "name", "");
        list.writable = flagOf(node, "writable");
        std::set<std::uint32_t> seen;
        forEach(node, "items", [&](JsonNode const& item) {
            list.items.push_back(readItem(item, *layout));
            if (!seen.insert(list.items.back().itemId).second) {
                fail(item,
                     "the item " + std::to_string(list.items.back().itemId) + " is there twice");
            }
        });
        if (!model.add(key, std::move(list))) {
            fail(node, "the list lid=" + std::to_string(lid) + " number=" + std::to_string(number) +
                           " did=" + shownDevice(key.did) + " is there twice");
        }
    }

    ListItem readItem(JsonNode const& node, std::vector<ListField> const& layout) {
        expectObject(node, "an item", {"itemId", "fields"});
        countEntries(node, 1);
        ListItem item;
        item.itemId = static_cast<std::uint32_t>(
            requiredNumber(node, "itemId", 1, std::numeric_limits<std::uint32_t>::max()));
        item.fields = emptyFields(layout);
        if (auto const* fields = node.find("fields")) {
            expectKind(*fields, Kind::object, "\"fields\"");
            for (auto const& member : fields->members) {
                readField(member, layout, item);
            }
        }
        return item;
    }

    void readField(JsonNode::Member const& member, std::vector<ListField> const& layout,
                   ListItem& item) const {
        auto const field = std::find_if(layout.begin(), layout.end(), [&](ListField const& each) {
            return each.name == member.name;
        });
        if (field == layout.end()) {
            document.fail(member.offset, "the list has no field \"" + member.name + "\"");
        }
        auto const index = static_cast<std::size_t>(std::distance(layout.begin(), field));
        item.fields[index] =
            readTyped(member.value, "\"" + member.name + "\"", *findType(field->type));
    }

    JsonDocument const& document;
    FrameModel model;
    std::size_t entries = 0;
};

}  // namespace

FrameModel readModel(std::string const& name, std::string const& content) {
    JsonDocument const document(name, content);
    return ModelReader(document).read();
}

FrameModel readModelFile(std::string const& path) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    std::string content;
    char block[65536];
    while (std::size_t const got = file ? std::fread(block, 1, sizeof block, file) : 0) {
        content.append(block, got);
    }
    int const reason = file && !std::ferror(file) ? 0 : errno;
    if (file) {
        std::fclose(file);
    }
    if (reason != 0) {
        throw ModelError(path + ": " + std::strerror(reason));
    }
    return readModel(path, content);
}

FrameModel sampleSwitcher() {
    return readModel("sample-switcher.json", std::string(sampleSwitcherJson()));
}

}  // namespace FrameSim
