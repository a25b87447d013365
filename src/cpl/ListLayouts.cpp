#include "cpl/ListLayouts.h"

#include <algorithm>
#include <iterator>

namespace FrameDriver::CPL {
namespace {

constexpr ListField list1[] = {
    {"Name", String},
};

constexpr ListField list2[] = {
    {"Resource Id", UInt16},
    {"Resource State", UInt16},
    {"Device Id", UInt32},
    {"Resource Name", String},
};

constexpr ListField list5[] = {
    {"Physical DID", UInt32},
    {"State", UInt32},
    {"Logical DID", UInt32},
};

constexpr ListField list6[] = {
    {"MarkIn Time", UInt32},
    {"Clip Name", String},
};

constexpr ListField list10[] = {
    {"First UInt32", UInt32},
    {"Second UInt32", UInt32},
};

constexpr ListField list12[] = {
    {"Source Alias Id", UInt16}, {"Engineering Source Id", UInt16},
    {"DPM Source Id", UInt16},   {"Logical Machine Id", UInt16},
    {"Is Configurable", Bool},   {"Source Nick Name", String},
    {"Source Name", String},     {"Engineering Source Name", String},
    {"Module Name", String},     {"Menu Name", String},
    {"DPM Name", String},
};

constexpr ListField list15[] = {
    {"Source Alias Id", UInt16},
};

constexpr ListField list16[] = {
    {"Engineering Source Id", UInt16},
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
    {"Camera Source Name", String},
};

constexpr ListField list19[] = {
    {"Is Valid Source", Bool},      {"Device Id", UInt16},          {"Device Type Id", UInt16},
    {"Router Source Index", Int32}, {"Router Source Name", String},
};

constexpr ListField list23[] = {
    {"Register Id", UInt32},
    {"Is Valid", Bool},
    {"Register Name", String},
    {"Register Comment", String},
};

constexpr ListField list24[] = {
    {"Source Alias Id", UInt16},
    {"Display Inverted", Bool},
    {"Source Color", String},
};

constexpr ListField list32[] = {
    {"Camera Id", UInt16},        {"Camera Name", String},     {"Head Type", String},
    {"Aspect Ratio", UInt16},     {"Video Mode", UInt16},      {"Connected", Bool},
    {"Color Bars Enabled", Bool}, {"Auto Iris Enabled", Bool}, {"Auto Black Enabled", Bool},
    {"Filter", UInt16},           {"Scene File", UInt16},      {"Red Tally", Bool},
    {"Yellow Tally", Bool},       {"Green Tally", Bool},       {"Suite ID", UInt16},
};

constexpr ListField list35[] = {
    {"Id", UInt16},
    {"Name", String},
    {"Short Name", String},
    {"Comment", String},
};

constexpr ListField list39[] = {
    {"Engineering Source Id", UInt32},
    {"Flag", Bool},
    {"Name", String},
};

constexpr ListField list40[] = {
    {"Flag", Bool},
    {"Source Alias Id", UInt16},
};

constexpr ListField list47[] = {
    {"Index", UInt16},  {"Id", UInt16},   {"Name", String},
    {"Status", UInt16}, {"Date", String}, {"Context", UInt16},
};

constexpr ListField list51[] = {
    // Always eight keys, whatever "Key Count" says.
    {"Me Id", Int16},
    {"Avatar Id", Int16},
    {"Key Count", UInt16},
    {"BkgdPair Count", UInt16},
    {"Key 1 Incarnation", Int16},
    {"Key 1 ThreeDDPM", Int16},
    {"Key 1 TwoDDPM", Int16},
    {"Key 1 KeyStoreCount", UInt16},
    {"Key 1 KeyWipesCount", UInt16},
    {"Key 2 Incarnation", Int16},
    {"Key 2 ThreeDDPM", Int16},
    {"Key 2 TwoDDPM", Int16},
    {"Key 2 KeyStoreCount", UInt16},
    {"Key 2 KeyWipesCount", UInt16},
    {"Key 3 Incarnation", Int16},
    {"Key 3 ThreeDDPM", Int16},
    {"Key 3 TwoDDPM", Int16},
    {"Key 3 KeyStoreCount", UInt16},
    {"Key 3 KeyWipesCount", UInt16},
    {"Key 4 Incarnation", Int16},
    {"Key 4 ThreeDDPM", Int16},
    {"Key 4 TwoDDPM", Int16},
    {"Key 4 KeyStoreCount", UInt16},
    {"Key 4 KeyWipesCount", UInt16},
    {"Key 5 Incarnation", Int16},
    {"Key 5 ThreeDDPM", Int16},
    {"Key 5 TwoDDPM", Int16},
    {"Key 5 KeyStoreCount", UInt16},
    {"Key 5 KeyWipesCount", UInt16},
    {"Key 6 Incarnation", Int16},
    {"Key 6 ThreeDDPM", Int16},
    {"Key 6 TwoDDPM", Int16},
    {"Key 6 KeyStoreCount", UInt16},
    {"Key 6 KeyWipesCount", UInt16},
    {"Key 7 Incarnation", Int16},
    {"Key 7 ThreeDDPM", Int16},
    {"Key 7 TwoDDPM", Int16},
    {"Key 7 KeyStoreCount", UInt16},
    {"Key 7 KeyWipesCount", UInt16},
    {"Key 8 Incarnation", Int16},
    {"Key 8 ThreeDDPM", Int16},
    {"Key 8 TwoDDPM", Int16},
    {"Key 8 KeyStoreCount", UInt16},
    {"Key 8 KeyWipesCount", UInt16},
};

constexpr ListField list54[] = {
    {"Me Id", UInt16},  {"Partition Id", UInt16}, {"Allocation Id", UInt16}, {"Assigned", Bool},
    {"Is ME 50", Bool}, {"Key 1", Bool},          {"Key 2", Bool},           {"Key 3", Bool},
    {"Key 4", Bool},    {"Key 5", Bool},          {"Key 6", Bool},           {"Key 7", Bool},
    {"Key 8", Bool},
};

struct ListLayout {
    std::int32_t lid;
    std::span<ListField const> fields;
};
constexpr ListLayout layouts[] = {
    // by lid
    {1, list1},   {2, list2},   {5, list5},   {6, list6},   {10, list10}, {12, list12},
    {15, list15}, {16, list16}, {19, list19}, {23, list23}, {24, list24}, {32, list32},
    {35, list35}, {39, list39}, {40, list40}, {47, list47}, {51, list51}, {54, list54},
};
static_assert(std::ranges::is_sorted(layouts, {}, &ListLayout::lid));

}  // namespace

std::span<ListField const> listFields(std::int32_t lid) {
    auto const found = std::ranges::lower_bound(layouts, lid, {}, &ListLayout::lid);
    if (found == std::end(layouts) || found->lid != lid)
        return {};
    return found->fields;
}

}  // namespace FrameDriver::CPL
