#include "conversion/DeviceIdentifierTable.h"

#include <algorithm>
#include <iterator>

namespace FrameDriver::Conversion {
namespace {

using enum FieldQuirk;
using FieldsRead::byName;
using FieldsRead::byPosition;
using FieldsRead::never;

// The odd entries are part of the format: the dictionaries in use hold texts that count on them.
// In the first encoding, SuiteIDType overlaps eCopySwapObjID and is written with its bits.
// clang-format off
constexpr DeviceIdEncoding encodings[] = {
    {0x01, byName, {{{"eSystemComponents", 0, 7}, {"eCopySwapObjID", 12, 15, ifFirstIs3},
        {"SuiteIDType", 8, 15}}}},
    {0x02, byName, {{{"MEIdType", 0, 3}, {"eEMemLevel", 4, 7}, {"eMEPartitionType", 8, 11},
        {"eFieldPresent", 12, 15}}}},
    {0x03, byPosition, {{{"MEIdType", 0, 3}, {"eMEPartitionType", 4, 7}, {"eEMemLevel", 8, 11}}}},
    {0x04, byPosition, {{{"MEIdType", 0, 3}, {"BkgdIDType", 4, 7}, {"eEMemLevel", 8, 11}}}},
    {0x08, byPosition, {{{"MEIdType", 0, 3}, {"KeyerIDType", 4, 7}, {"eEMemLevel", 8, 11}}}},
    {0x0A, byPosition, {{{"MEIdType", 0, 3}, {"KeyerIDType", 4, 7}, {"MaskIDType", 8, 11}}}},
    {0x0B, byPosition, {{{"MEIdType", 0, 3}, {"KeyerIDType", 4, 7}, {"MatteIDType", 8, 11}}}},
    {0x0C, byName, {{{"MEIdType", 0, 3}, {"KeyerIDType", 4, 7}, {"MatteIDType", 8, 11},
        {"ColorIDType", 12, 15}}}},
    {0x0E, byPosition, {{{"MEIdType", 0, 3}, {"KeyerIDType", 4, 7}, {"CKPriSecType", 8, 11}}}},
    {0x0F, byPosition, {{{"MEIdType", 0, 3}, {"WipeGenIDType", 4, 7}, {"eEMemLevel", 8, 11}}}},
    {0x13, byPosition, {{{"BkgdGenIDType", 0, 3}, {"eEMemLevel", 4, 7}}}},
    {0x18, byPosition, {{{"AuxVideoVideoKeyBusIDType", 0, 7}, {"eEMemLevel", 8, 11},
        {"SuiteIDType", 20, 23}}}},
    {0x19, byPosition, {{{"AuxVideoVideoKeyBusIDType", 0, 7}, {"BusIDType", 8, 11},
        {"eFrontBackType", 12, 15}}}},
    {0x1B, byName, {{{"SourceIDType", 0, 15, low16}}}},
    {0x20, byName, {{{"ProtocolType", 0, 3}, {"InstanceID", 4, 7, low16}}}},
    {0x21, byName, {{{"SuiteIDType", 0, 3}, {"CtrlSurfaceIDType", 4, 7},
        {"CtrlPointIDType", 8, 15}}}},
    {0x22, FieldsRead::none, {{{"CtrlSurfaceIDType", 0, 3}}}},
    {0x24, byName, {{{"CtrlSurfaceID", 0, 3}, {"MEIdType", 4, 7}, {"eMEBusIDType", 8, 11}}}},
    {0x27, byName, {{{"CtrlSurfaceIDType", 0, 3}}}},
    {0x2F, byName, {{{"eCpuType", 12, 15}}}, 1},
    {0x30, byPosition, {{{"MEIdType", 0, 3}, {"KeyerIDType", 4, 7}, {"eKeyerWashGen", 8, 11}}}},
    {0x31, byPosition, {{{"MEIdType", 0, 3}, {"eMEPartitionType", 4, 7}, {"eTransWipe", 8, 11}}}},
    {0x34, byPosition, {{{"eEMemLevel", 0, 3}, {"eEMemLevels", 4, 11}, {"SuiteIDType", 20, 23}}}},
    {0x35, byPosition, {{{"eEMemLevel", 0, 7}, {"SuiteIDType", 20, 23}}}},
    {0x36, byName, {{{"MEIdType", 0, 3}, {"eMEPartitionType", 4, 7}, {"eTransWipe", 8, 11},
        {"eTransWipeGenType", 12, 15}}}},
    {0x37, byName, {{{"MEIdType", 0, 3}, {"eMEPartitionType", 4, 7}, {"eTransWipe", 8, 11},
        {"eTransWipeGenType", 12, 15}, {"ColorIDType", 16, 19}}}},
    {0x38, byPosition, {{{"BkgdGenIDType", 0, 3}, {"eBkgdGenMatteGen", 4, 7}}}},
    {0x39, byPosition, {{{"BkgdGenIDType", 0, 3}, {"eBkgdGenMatteGen", 4, 7},
        {"ColorIDType", 8, 11}}}},
    {0x3E, byPosition, {{{"eSrcMachineObjectType", 0, 3}, {"InstanceIDType", 4, 11, low16},
        {"eEMemLevel", 12, 15}}}},
    {0x40, byPosition, {{{"eExternalDeviceType", 0, 3}, {"InstanceIDType", 4, 11, low16}}}},
    {0x44, byName, {{{"eRouterIDType", 0, 3}, {"eEMemLevel", 4, 7}}}},
    {0x4C, byPosition, {{{"CtrlSurfaceIDType", 0, 3}, {"CrossbarTypes", 4, 7},
        {"eAuxBusDelegationButton", 8, 15}}}},
    {0x61, byName, {{{"eRouterIDType", 0, 3}, {"SourceIDType", 4, 19, low16}}}},
    {0x62, byName, {{{"SuiteIDType", 0, 3, masked}}}},
    {0x64, byPosition, {{{"SuiteDID", 0, 23}}}},
    {0x75, byName, {{{"AuxVideoVideoKeyBusIDType", 0, 7}, {"SuiteIDType", 20, 23}}}},
    {0x77, byName, {{{"MacroIDType", 0, 11, signed16}, {"eEMemLevel", 12, 15},
        {"SuiteIDType", 20, 23, ignoredOnRead}}}},
    {0x84, byName, {{{"SubLevelID", 1, 7, low8}, {"eEMemSublevelType", 8, 15},
        {"eEMemPortals", 16, 19}, {"SuiteIDType", 23, 23}}}, 1},
    {0x85, never, {{{"SubLevelID", 1, 7}, {"eEMemSublevelType", 8, 13}, {"eEMemLevels", 14, 19},
        {"SuiteIDType", 20, 23}}}},
    {0x86, byName, {{{"CtrlSurfaceIDType", 0, 3}, {"ePanelGlobalButtons", 4, 11}}}},
    {0x87, byName, {{{"CtrlSurfaceIDType", 0, 3}, {"MEIdType", 4, 7},
        {"ePanelStripeMEBusses", 8, 11}}}},
    {0x88, byPosition, {{{"CtrlSurfaceIDType", 0, 3}, {"ButtonMappingIDType", 4, 7}}}},
    {0x89, byName, {{{"CtrlSurfaceIDType", 0, 3}, {"ButtonMappingIDType", 4, 7},
        {"CrossbarTypes", 8, 11}, {"ButtonIDType", 12, 19, low16}}}},
    {0x8A, byName, {{{"CtrlSurfaceIDType", 0, 3}, {"PanelStripes", 4, 7},
        {"PanelStripeButtonRows", 8, 11}, {"ePanelShiftLevels", 12, 15}}}},
    {0x8C, byName, {{{"eImageStoreChannelType", 0, 3}, {"AuxVideoVideoKeyBusIDType", 4, 11},
        {"BusIDType", 12, 15}, {"eEMemLevel", 16, 19}}}},
    {0x8D, byName, {{{"eDeviceSelectIDType", 0, 7}, {"SuiteIDType", 8, 11}}}},
    {0x8E, byName, {{{"eEMemLevel", 0, 7}, {"SuiteIDType", 8, 11},
        {"eCueObjectType", 0, 0, alwaysZero}}}},
    {0x92, byName, {{{"MEIdType", 0, 3}, {"KeyerIDType", 4, 7}, {"eEMemLevel", 8, 11},
        {"eKeyerWipeGen", 12, 15}}}},
    {0x93, byName, {{{"CtrlSurfaceIDType", 0, 3}}}},
    {0x94, byName, {{{"CtrlSurfaceIDType", 8, 11, FieldQuirk::none, "CtrlSurfaceID"},
        {"InstanceIDType", 12, 19, low16}}}},
    {0x95, byName, {{{"CtrlSurfaceIDType", 0, 3}, {"PanelMachineControlDeviceSlots", 4, 7}}}},
    {0x9E, byName, {{{"MEIdType", 0, 3}, {"KeyerIDType", 4, 7}, {"TECornerPinType", 8, 11}}}},
};
// clang-format on
static_assert(std::ranges::is_sorted(encodings, {}, &DeviceIdEncoding::type));

constexpr std::size_t typeCount = 256;

/// For each type the place of its encoding in the table, counted from 1.
constexpr auto places = [] {
    std::array<std::uint8_t, typeCount> result{};
    for (std::size_t i = 0; i < std::size(encodings); ++i)
        result[encodings[i].type] = static_cast<std::uint8_t>(i + 1);
    return result;
}();

}  // namespace

std::span<DeviceIdField const> DeviceIdEncoding::fields() const {
    auto const end = std::ranges::find_if(slots, &std::string_view::empty, &DeviceIdField::name);
    return {slots.begin(), end};
}

std::span<DeviceIdEncoding const> deviceIdEncodings() { return encodings; }

DeviceIdEncoding const* deviceIdEncoding(std::int32_t type) {
    auto const index = static_cast<std::uint32_t>(type);
    if (index >= typeCount || places[index] == 0)
        return nullptr;
    return &encodings[places[index] - 1];
}

}  // namespace FrameDriver::Conversion
