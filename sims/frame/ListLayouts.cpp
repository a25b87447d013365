#include "sims/frame/ListLayouts.h"

#include "platform/cplclient/wire/ByteReader.h"
#include "platform/cplclient/wire/ByteWriter.h"
#include "sims/frame/WireValue.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

namespace FrameSim {
namespace {

using enum DataType;
using Layout = std::vector<ListField>;

/// `count` times the fields, each named "Key N" and the given ending.
void addKeyGroups(Layout& layout, int count, Layout const& endings) {
    for (int key = 1; key <= count; ++key) {
        for (auto const& ending : endings) {
            layout.push_back({"Key " + std::to_string(key) + ending.name, ending.type});
        }
    }
}

Layout keyerStores() {
    Layout layout{
        {"Me Id", Int16}, {"Avatar Id", Int16}, {"Key Count", UInt16}, {"BkgdPair Count", UInt16}};
    addKeyGroups(layout, 8,
                 {{" Incarnation", Int16},
                  {" ThreeDDPM", Int16},
                  {" TwoDDPM", Int16},
                  {" KeyStoreCount", UInt16},
                  {" KeyWipesCount", UInt16}});
    return layout;
}

Layout meAllocations() {
    Layout layout{{"Me Id", UInt16},
                  {"Partition Id", UInt16},
                  {"Allocation Id", UInt16},
                  {"Assigned", Bool},
                  {"Is ME 50", Bool}};
    addKeyGroups(layout, 8, {{"", Bool}});
    return layout;
}

std::map<std::int32_t, Layout> makeLayouts() {
    return {
        {1, {{"Name", String}}},
        {2,
         {{"Resource Id", UInt16},
          {"Resource State", UInt16},
          {"Device Id", UInt32},
          {"Resource Name", String}}},
        {5, {{"Physical DID", UInt32}, {"State", UInt32}, {"Logical DID", UInt32}}},
        {6, {{"MarkIn Time", UInt32}, {"Clip Name", String}}},
        {10, {{"First UInt32", UInt32}, {"Second UInt32", UInt32}}},
        {12,
         {{"Source Alias Id", UInt16},
          {"Engineering Source Id", UInt16},
          {"DPM Source Id", UInt16},
          {"Logical Machine Id", UInt16},
          {"Is Configurable", Bool},
          {"Source Nick Name", String},
          {"Source Name", String},
          {"Engineering Source Name", String},
          {"Module Name", String},
          {"Menu Name", String},
          {"DPM Name", String}}},
        {15, {{"Source Alias Id", UInt16}}},
        {16,
         {{"Engineering Source Id", UInt16},
          {"Is Configurable", Bool},
          {"Is On Air", Bool},
          {"Video Crosspoint", UInt16},
          {"Video Crosspoint Right Eye", UInt16},
          {"Key Crosspoint", UInt16},
          {"Key Crosspoint Right Eye", UInt16},
          {"Key Type", UInt16},
          {"Key Timing", UInt16},
          {"Key Shaped", Bool},
          {"Clip Hi", Float},
          {"Clip Lo", Float},
          {"Input Type", UInt16},
          {"Device Type", UInt16},
          {"Profile Id", UInt16},
          {"Is Device Connected", Bool},
          {"Camera Status", Bool},
          {"Camera Id", UInt16},
          {"Is FourK", Bool},
          {"Engineering Name", String},
          {"Router Source Name", String},
          {"Camera Source Name", String}}},
        {19,
         {{"Is Valid Source", Bool},
          {"Device Id", UInt16},
          {"Device Type Id", UInt16},
          {"Router Source Index", Int32},
          {"Router Source Name", String}}},
        {23,
         {{"Register Id", UInt32},
          {"Is Valid", Bool},
          {"Register Name", String},
          {"Register Comment", String}}},
        {24, {{"Source Alias Id", UInt16}, {"Display Inverted", Bool}, {"Source Color", String}}},
        {32,
         {{"Camera Id", UInt16},
          {"Camera Name", String},
          {"Head Type", String},
          {"Aspect Ratio", UInt16},
          {"Video Mode", UInt16},
          {"Connected", Bool},
          {"Color Bars Enabled", Bool},
          {"Auto Iris Enabled", Bool},
          {"Auto Black Enabled", Bool},
          {"Filter", UInt16},
          {"Scene File", UInt16},
          {"Red Tally", Bool},
          {"Yellow Tally", Bool},
          {"Green Tally", Bool},
          {"Suite ID", UInt16}}},
        {35, {{"Id", UInt16}, {"Name", String}, {"Short Name", String}, {"Comment", String}}},
        {39, {{"Engineering Source Id", UInt32}, {"Flag", Bool}, {"Name", String}}},
        {40, {{"Flag", Bool}, {"Source Alias Id", UInt16}}},
        {47,
         {{"Index", UInt16},
          {"Id", UInt16},
          {"Name", String},
          {"Status", UInt16},
          {"Date", String},
          {"Context", UInt16}}},
        {51, keyerStores()},
        {54, meAllocations()},
    };
}

/// A text ends at a NUL here, unlike in an update; all else is the same.
void appendField(std::string& out, Value const& value) {
    if (value.form() == ValueForm::text) {
        cplwire::ByteWriter(out).terminated(value.text());
    } else {
        out += valueBytes(value);
    }
}

std::optional<Value> readField(DataType type, cplwire::ByteReader& reader) {
    auto const* info = findType(type);
    switch (info->form) {
    case ValueForm::text:
        return Value::ofText(std::string(reader.terminated()));
    case ValueForm::boolean:
        return valueFromBytes(type, reader.bytes(1));
    case ValueForm::real:
        return valueFromBytes(type, reader.bytes(4));
    default:
        return valueFromBytes(type, reader.bytes(integerWidth(type)));
    }
}

}  // namespace

std::vector<ListField> const* findListLayout(std::int32_t lid) {
    static auto const layouts = makeLayouts();
    auto const at = layouts.find(lid);
    return at == layouts.end() ? nullptr : &at->second;
}

std::vector<Value> emptyFields(std::vector<ListField> const& layout) {
    std::vector<Value> fields;
    fields.reserve(layout.size());
    for (auto const& field : layout) {
        fields.push_back(zeroValue(field.type));
    }
    return fields;
}

std::optional<std::vector<Value>> readFields(std::vector<ListField> const& layout,
                                             std::string_view bytes) {
    cplwire::ByteReader reader(bytes);
    std::vector<Value> fields;
    fields.reserve(layout.size());
    for (auto const& field : layout) {
        auto value = readField(field.type, reader);
        if (!value || !reader.good()) {
            return std::nullopt;
        }
        fields.push_back(std::move(*value));
    }
    return reader.done() ? std::optional(std::move(fields)) : std::nullopt;
}

std::string fieldBytes(std::vector<Value> const& fields) {
    std::string bytes;
    for (auto const& field : fields) {
        appendField(bytes, field);
    }
    return bytes;
}

void appendItem(std::string& payload, ListItem const& item) {
    std::string const fields = item.empty ? std::string() : fieldBytes(item.fields);
    constexpr std::size_t largest = std::numeric_limits<std::int16_t>::max();
    cplwire::ByteWriter writer(payload);
    writer.u32(item.itemId);
    writer.u32(item.nextItemId);
    writer.u16(static_cast<std::uint16_t>(item.status));
    writer.u16(static_cast<std::uint16_t>(std::min(fields.size(), largest)));
    writer.bytes(fields);
}

void appendListHead(std::string& payload, std::int32_t lid, std::uint16_t number,
                    std::uint32_t did) {
    cplwire::ByteWriter writer(payload);
    writer.u16(static_cast<std::uint16_t>(lid));
    writer.u16(number);
    writer.u32(did);
}

}  // namespace FrameSim
