#include "conversion/DeviceIdentifier.h"
#include "conversion/DeviceIdentifierTable.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace FrameDriver::Conversion {
namespace {

// A second writing of the encodings, and a slow writer and reader for it, with the odd cases
// spelt out one by one.
// clang-format off
char const* const encodingLines[] = {
    "01 name: eSystemComponents 0..7, eCopySwapObjID 12..15, SuiteIDType 8..15",
    "02 name: MEIdType 0..3, eEMemLevel 4..7, eMEPartitionType 8..11, eFieldPresent 12..15",
    "03 position: MEIdType 0..3, eMEPartitionType 4..7, eEMemLevel 8..11",
    "04 position: MEIdType 0..3, BkgdIDType 4..7, eEMemLevel 8..11",
    "08 position: MEIdType 0..3, KeyerIDType 4..7, eEMemLevel 8..11",
    "0A position: MEIdType 0..3, KeyerIDType 4..7, MaskIDType 8..11",
    "0B position: MEIdType 0..3, KeyerIDType 4..7, MatteIDType 8..11",
    "0C name: MEIdType 0..3, KeyerIDType 4..7, MatteIDType 8..11, ColorIDType 12..15",
    "0E position: MEIdType 0..3, KeyerIDType 4..7, CKPriSecType 8..11",
    "0F position: MEIdType 0..3, WipeGenIDType 4..7, eEMemLevel 8..11",
    "13 position: BkgdGenIDType 0..3, eEMemLevel 4..7",
    "18 position: AuxVideoVideoKeyBusIDType 0..7, eEMemLevel 8..11, SuiteIDType 20..23",
    "19 position: AuxVideoVideoKeyBusIDType 0..7, BusIDType 8..11, eFrontBackType 12..15",
    "1B name: SourceIDType 0..15",
    "20 name: ProtocolType 0..3, InstanceID 4..7",
    "21 name: SuiteIDType 0..3, CtrlSurfaceIDType 4..7, CtrlPointIDType 8..15",
    "22 none: CtrlSurfaceIDType 0..3",
    "24 name: CtrlSurfaceID 0..3, MEIdType 4..7, eMEBusIDType 8..11",
    "27 name: CtrlSurfaceIDType 0..3",
    "2F name: eCpuType 12..15",
    "30 position: MEIdType 0..3, KeyerIDType 4..7, eKeyerWashGen 8..11",
    "31 position: MEIdType 0..3, eMEPartitionType 4..7, eTransWipe 8..11",
    "34 position: eEMemLevel 0..3, eEMemLevels 4..11, SuiteIDType 20..23",
    "35 position: eEMemLevel 0..7, SuiteIDType 20..23",
    "36 name: MEIdType 0..3, eMEPartitionType 4..7, eTransWipe 8..11, "
    "eTransWipeGenType 12..15",
    "37 name: MEIdType 0..3, eMEPartitionType 4..7, eTransWipe 8..11, "
    "eTransWipeGenType 12..15, ColorIDType 16..19",
    "38 position: BkgdGenIDType 0..3, eBkgdGenMatteGen 4..7",
    "39 position: BkgdGenIDType 0..3, eBkgdGenMatteGen 4..7, ColorIDType 8..11",
    "3E position: eSrcMachineObjectType 0..3, InstanceIDType 4..11, eEMemLevel 12..15",
    "40 position: eExternalDeviceType 0..3, InstanceIDType 4..11",
    "44 name: eRouterIDType 0..3, eEMemLevel 4..7",
    "4C position: CtrlSurfaceIDType 0..3, CrossbarTypes 4..7, eAuxBusDelegationButton 8..15",
    "61 name: eRouterIDType 0..3, SourceIDType 4..19",
    "62 name: SuiteIDType 0..3",
    "64 position: SuiteDID 0..23",
    "75 name: AuxVideoVideoKeyBusIDType 0..7, SuiteIDType 20..23",
    "77 name: MacroIDType 0..11, eEMemLevel 12..15, SuiteIDType 20..23",
    "84 name: SubLevelID 1..7, eEMemSublevelType 8..15, eEMemPortals 16..19, SuiteIDType 23",
    "85 none: SubLevelID 1..7, eEMemSublevelType 8..13, eEMemLevels 14..19, "
    "SuiteIDType 20..23",
    "86 name: CtrlSurfaceIDType 0..3, ePanelGlobalButtons 4..11",
    "87 name: CtrlSurfaceIDType 0..3, MEIdType 4..7, ePanelStripeMEBusses 8..11",
    "88 position: CtrlSurfaceIDType 0..3, ButtonMappingIDType 4..7",
    "89 name: CtrlSurfaceIDType 0..3, ButtonMappingIDType 4..7, CrossbarTypes 8..11, "
    "ButtonIDType 12..19",
    "8A name: CtrlSurfaceIDType 0..3, PanelStripes 4..7, PanelStripeButtonRows 8..11, "
    "ePanelShiftLevels 12..15",
    "8C name: eImageStoreChannelType 0..3, AuxVideoVideoKeyBusIDType 4..11, "
    "BusIDType 12..15, eEMemLevel 16..19",
    "8D name: eDeviceSelectIDType 0..7, SuiteIDType 8..11",
    "8E name: eEMemLevel 0..7, SuiteIDType 8..11, eCueObjectType always 0",
    "92 name: MEIdType 0..3, KeyerIDType 4..7, eEMemLevel 8..11, eKeyerWipeGen 12..15",
    "93 name: CtrlSurfaceIDType 0..3",
    "94 name: CtrlSurfaceIDType 8..11, InstanceIDType 12..19",
    "95 name: CtrlSurfaceIDType 0..3, PanelMachineControlDeviceSlots 4..7",
    "9E name: MEIdType 0..3, KeyerIDType 4..7, TECornerPinType 8..11",
};
// clang-format on

struct SlowField {
    std::string name;
    unsigned low = 0;
    unsigned width = 0;  ///< 0: always 0
};

struct SlowEncoding {
    std::uint32_t type = 0;
    std::string readBy;
    std::vector<SlowField> fields;
};

/// "eCpuType 12..15", "SuiteIDType 23" or "eCueObjectType always 0".
SlowField slowField(std::string const& text) {
    SlowField field;
    std::istringstream in(text);
    std::string bits;
    in >> field.name >> bits;
    if (bits == "always")
        return field;
    std::size_t const dots = bits.find("..");
    field.low = static_cast<unsigned>(std::stoul(bits));
    field.width = 1;
    if (dots != std::string::npos)
        field.width = static_cast<unsigned>(std::stoul(bits.substr(dots + 2))) - field.low + 1;
    return field;
}

std::vector<SlowEncoding> slowEncodings() {
    std::vector<SlowEncoding> encodings;
    for (std::string const line : encodingLines) {
        SlowEncoding encoding;
        std::size_t position = line.find(": ");
        encoding.type = static_cast<std::uint32_t>(std::stoul(line.substr(0, 2), nullptr, 16));
        encoding.readBy = line.substr(3, position - 3);
        while (position != std::string::npos) {
            std::size_t const end = line.find(", ", position + 2);
            encoding.fields.push_back(slowField(line.substr(position + 2, end - position - 2)));
            position = end;
        }
        encodings.push_back(encoding);
    }
    return encodings;
}

SlowEncoding slowEncoding(std::uint32_t type) {
    static std::vector<SlowEncoding> const encodings = slowEncodings();
    for (SlowEncoding const& encoding : encodings)
        if (encoding.type == type)
            return encoding;
    return {};
}

std::uint32_t slowBits(SlowField const& field, std::uint32_t did) {
    std::uint32_t value = 0;
    for (unsigned bit = 0; bit < field.width; ++bit)
        if ((did >> (field.low + bit)) % 2 == 1)
            value += 1u << bit;
    return value;
}

std::string slowWrite(std::uint32_t did) {
    std::ostringstream out;
    out << std::hex;
    std::uint32_t const type = did / 0x1000000;
    SlowEncoding const encoding = slowEncoding(type);
    if (encoding.fields.empty()) {
        out << "undefined device id encoding type (" << type << ")";
        return out.str();
    }
    out << "did=[EncodingType=" << (type < 16 ? "0" : "") << type;
    for (SlowField const& field : encoding.fields)
        if (!(type == 1 && field.name == "eCopySwapObjID" && did % 0x100 != 3))
            out << ", " << field.name << "=" << slowBits(field, did);
    out << "\222";
    return out.str();
}

using Fields = std::map<std::string, std::int32_t>;

/// What a text with these values, under these names, reads as.
std::uint32_t slowSum(std::uint32_t type, Fields const& values) {
    auto const value = [&](char const* name) {
        auto const found = values.find(name);
        return found == values.end() ? 0u : static_cast<std::uint32_t>(found->second);
    };
    switch (type) {
    case 0x01:
        if (value("eSystemComponents") == 3)
            return 0x01000003 + value("eCopySwapObjID") * 0x1000 + value("SuiteIDType") * 0x100;
        return 0x01000000 + value("SuiteIDType") * 0x100 + value("eSystemComponents");
    case 0x1B:
        return 0x1B000000 + value("SourceIDType") % 0x10000;
    case 0x20:
        return 0x20000000 + value("ProtocolType") + value("InstanceID") % 0x10000 * 0x10;
    case 0x22:
        return 0x22000000;
    case 0x2F:
        return 0x2F000001 + value("eCpuType") * 0x1000;
    case 0x3E:
        return 0x3E000000 + value("eSrcMachineObjectType") +
               value("InstanceIDType") % 0x10000 * 0x10 + value("eEMemLevel") * 0x1000;
    case 0x40:
        return 0x40000000 + value("eExternalDeviceType") + value("InstanceIDType") % 0x10000 * 0x10;
    case 0x61:
        return 0x61000000 + value("eRouterIDType") + value("SourceIDType") % 0x10000 * 0x10;
    case 0x62:
        return 0x62000000 + value("SuiteIDType") % 0x10;
    case 0x77: {
        std::uint32_t macro = value("MacroIDType") % 0x10000;
        if (macro >= 0x8000)
            macro -= 0x10000;
        return 0x77000000 + macro + value("eEMemLevel") * 0x1000;
    }
    case 0x84:
        return 0x84000001 + value("SuiteIDType") * 0x800000 + value("eEMemPortals") * 0x10000 +
               value("eEMemSublevelType") * 0x100 + value("SubLevelID") % 0x100 * 2;
    case 0x85:
        return 0xFF;
    case 0x89:
        return 0x89000000 + value("CtrlSurfaceIDType") + value("ButtonMappingIDType") * 0x10 +
               value("CrossbarTypes") * 0x100 + value("ButtonIDType") % 0x10000 * 0x1000;
    case 0x8E:
        return 0x8E000000 + value("eEMemLevel") + value("SuiteIDType") * 0x100;
    case 0x94:
        return 0x94000000 + value("CtrlSurfaceID") * 0x100 +
               value("InstanceIDType") % 0x10000 * 0x1000;
    default:
        break;
    }
    std::uint32_t sum = type * 0x1000000;
    for (SlowField const& field : slowEncoding(type).fields)
        sum += value(field.name.c_str()) * (1u << field.low);
    return sum;
}

std::string written(std::uint32_t did) {
    std::string out;
    appendDeviceId(out, did);
    return out;
}

std::string group(std::string const& fields) { return "did=[EncodingType=" + fields + "\222"; }

TEST(DeviceIdentifier, WritesEveryTypeAsTheSlowWriterDoes) {
    std::mt19937 random(20220308);
    for (std::uint32_t type = 0; type < 256; ++type)
        for (int round = 0; round < 50; ++round) {
            auto const did = static_cast<std::uint32_t>(type * 0x1000000 + random() % 0x1000000);
            ASSERT_EQ(written(did), slowWrite(did)) << std::hex << did;
        }
    for (std::uint32_t low = 0; low < 0x10000; low += 0x11)
        ASSERT_EQ(written(0x01000000 + low), slowWrite(0x01000000 + low)) << std::hex << low;
}

/// Any number that a text can hold, small ones and negative ones more often.
std::int32_t randomValue(std::mt19937& random) {
    auto const value = static_cast<std::int32_t>(random());
    switch (random() % 4) {
    case 0:
        return value & 0xF;
    case 1:
        return value & 0xFFFF;
    case 2:
        return -(value & 0xFF);
    default:
        return value;
    }
}

std::string hexText(std::int32_t value) {
    std::ostringstream out;
    auto const magnitude =
        value < 0 ? 0u - static_cast<std::uint32_t>(value) : static_cast<std::uint32_t>(value);
    out << (value < 0 ? "-" : "") << std::hex << magnitude;
    return out.str();
}

std::string typeText(std::uint32_t type) {
    return (type < 16 ? "0" : "") + hexText(static_cast<std::int32_t>(type));
}

TEST(DeviceIdentifier, ReadsEveryTypeAsTheSlowReaderDoes) {
    std::mt19937 random(165936);
    for (SlowEncoding const& encoding : slowEncodings()) {
        for (int round = 0; round < 200; ++round) {
            Fields values;
            std::string fields = typeText(encoding.type);
            for (SlowField const& field : encoding.fields) {
                std::int32_t const value =
                    round % 5 == 0 ? static_cast<int>(random() % 4) : randomValue(random);
                std::string name = field.name;
                if (encoding.type == 0x94 && random() % 2 == 0 && name == "CtrlSurfaceIDType")
                    name = "CtrlSurfaceID";
                values[name] = value;
                fields += ", " + name + "=" + hexText(value);
            }
            ASSERT_EQ(readDeviceId(group(fields)), slowSum(encoding.type, values)) << group(fields);
        }
    }
}

/// The bits that a written identifier doesn't bring back, or that come back set.
std::uint32_t readBack(std::uint32_t type, std::uint32_t did) {
    auto const bits = [&](unsigned low, unsigned width) { return slowBits({"", low, width}, did); };
    switch (type) {
    case 0x01:  // the object is in the suite's bits already
        return did + (bits(0, 8) == 3 ? bits(12, 4) * 0x1000 : 0);
    case 0x22:
        return 0x22000000;
    case 0x2F:
    case 0x84:
        return did + 1;
    case 0x77:
        return did - bits(20, 4) * 0x100000;
    case 0x85:
        return 0xFF;
    case 0x94:
        return did - bits(8, 4) * 0x100;
    default:
        return did;
    }
}

TEST(DeviceIdentifier, WhatIsWrittenReadsBackButForTheKnownOddities) {
    std::mt19937 random(745);
    for (SlowEncoding const& encoding : slowEncodings())
        for (int round = 0; round < 200; ++round) {
            std::uint32_t did = encoding.type * 0x1000000;
            for (SlowField const& field : encoding.fields)
                if (field.width > 0)
                    did |= static_cast<std::uint32_t>(random() % (1u << field.width)) << field.low;
            if (encoding.type == 1 && round % 2 == 0)
                did = (did & 0xFFFFFF00) + 3;
            ASSERT_EQ(readDeviceId(written(did)), readBack(encoding.type, did))
                << std::hex << did << " " << written(did);
        }
}

TEST(DeviceIdentifier, TheTableHasEveryEncodingOnce) {
    std::vector<SlowEncoding> const slow = slowEncodings();
    ASSERT_EQ(deviceIdEncodings().size(), slow.size());
    for (std::size_t i = 0; i < slow.size(); ++i) {
        DeviceIdEncoding const& encoding = deviceIdEncodings()[i];
        EXPECT_EQ(encoding.type, slow[i].type);
        EXPECT_EQ(encoding.fields().size(), slow[i].fields.size());
        EXPECT_EQ(deviceIdEncoding(encoding.type), &encoding);
    }
    for (int const type : {0, 5, 0x9F, 0xFF, 0x100, 0x108, -1, INT32_MAX, INT32_MIN})
        EXPECT_EQ(deviceIdEncoding(type), nullptr) << type;
}

struct Row {
    std::uint32_t did;
    std::string text;
};

TEST(DeviceIdentifier, Writes) {
    Row const rows[] = {
        {0x08000213, group("08, MEIdType=3, KeyerIDType=1, eEMemLevel=2")},
        {0x92004321, group("92, MEIdType=1, KeyerIDType=2, eEMemLevel=3, eKeyerWipeGen=4")},
        {0x9E00000A, group("9e, MEIdType=a, KeyerIDType=0, TECornerPinType=0")},
        {0x64ABCDEF, group("64, SuiteDID=abcdef")},
        {0x01004502, group("01, eSystemComponents=2, SuiteIDType=45")},
        {0x01004503, group("01, eSystemComponents=3, eCopySwapObjID=4, SuiteIDType=45")},
        {0x8EFFF512, group("8e, eEMemLevel=12, SuiteIDType=5, eCueObjectType=0")},
        {0x2F003001, group("2f, eCpuType=3")},
        {0x85000000, group("85, SubLevelID=0, eEMemSublevelType=0, eEMemLevels=0, SuiteIDType=0")},
        {0x94012300, group("94, CtrlSurfaceIDType=3, InstanceIDType=12")},
        {0x00000001, "undefined device id encoding type (0)"},
        {0x05000000, "undefined device id encoding type (5)"},
        {0xFF123456, "undefined device id encoding type (ff)"},
    };
    for (Row const& row : rows)
        EXPECT_EQ(written(row.did), row.text);
}

TEST(DeviceIdentifier, Reads) {
    Row const rows[] = {
        {0x92004321, group("92, MEIdType=1, KeyerIDType=2, eEMemLevel=3, eKeyerWipeGen=4")},
        {0x22000000, group("22, CtrlSurfaceIDType=1")},
        {0x2F003001, group("2f, eCpuType=3")},
        {0xFF, group("85, SubLevelID=1")},
        {0, group("00, MEIdType=1")},
        {0, group("9f, MEIdType=1")},
        {0, group("ff")},
        {0, group("108, MEIdType=1, KeyerIDType=2, eEMemLevel=3")},
        {0, group("-1, MEIdType=1")},
        // Numbers: both cases, an optional 0x, up to the first other character.
        {0x08000AF1, group("0x8, MEIdType=1, KeyerIDType= 0xF, eEMemLevel=AG")},
        {0x9E000BA9, group("9E, MEIdType=9x, KeyerIDType=\tA , TECornerPinType=0Xb")},
        // Types by name: any order, repeated, unknown, absent, unreadable.
        {0x92004321, group("92, eKeyerWipeGen=4, eEMemLevel=3, KeyerIDType=2, MEIdType=1")},
        {0x92000005, group("92, MEIdType=1, MEIdType=5")},
        {0x92000000, group("92, MEIdType=1, MEIdType=x")},
        {0x92000000, group("92, MEIdType=1, MEIdType")},
        {0x92000002, group("92, MeIdType=1, mEIdType=1, Other=7, MEIdType=2")},
        {0x92000300, group("92, eEMemLevel=3")},
        {0x92000000, group("92")},
        {0x92000000, group("92, MEIdType=80000000")},
        {0x92000003, group("92,MEIdType\t = 3 =7")},
        {0x92000003, group("92, MEIdType==3")},
        // Types by position: names are not looked at, what is absent leaves 0.
        {0x08000321, group("08, MEIdType=1, KeyerIDType=2, eEMemLevel=3")},
        {0x08000321, group("08, eEMemLevel=1, MEIdType=2, KeyerIDType=3")},
        {0x08000321, group("08, a=1, b=2, c=3, d=4")},
        {0x08000031, group("08, MEIdType=1, eEMemLevel=3")},
        {0x08000301, group("08, MEIdType=1, KeyerIDType=, eEMemLevel=3")},
        {0x08000021, group("08, MEIdType=1, KeyerIDType=2")},
        {0x08000000, group("08")},
        {0x08000021, group("08, MEIdType=1=2")},
        // Sums: too large a value runs over, a negative one borrows.
        {0x08000310, group("08, MEIdType=10, KeyerIDType=0, eEMemLevel=3")},
        {0x09000000, group("08, MEIdType=1000000, KeyerIDType=0, eEMemLevel=0")},
        {0x07FFFFFF, group("08, MEIdType=-1, KeyerIDType=0, eEMemLevel=0")},
        // The entries that part from the scheme.
        {0x01004502, group("01, eSystemComponents=2, eCopySwapObjID=4, SuiteIDType=45")},
        {0x01008503, group("01, eSystemComponents=3, eCopySwapObjID=4, SuiteIDType=45")},
        {0x01004603, group("01, eSystemComponents=103, eCopySwapObjID=4, SuiteIDType=45")},
        {0x62000005, group("62, SuiteIDType=15")},
        {0x76FF9000, group("77, MacroIDType=9000, SuiteIDType=4")},
        {0x76FFB000, group("77, MacroIDType=9000, eEMemLevel=2")},
        {0x77000FFF, group("77, MacroIDType=10fff, eEMemLevel=0")},
        {0x848203FF,
         group("84, SubLevelID=1ff, eEMemSublevelType=2, eEMemPortals=2, SuiteIDType=1")},
        {0x8E000512, group("8e, eEMemLevel=12, SuiteIDType=5, eCueObjectType=7")},
        {0x94012000, group("94, CtrlSurfaceIDType=3, InstanceIDType=12")},
        {0x94012300, group("94, CtrlSurfaceID=3, InstanceIDType=12")},
        {0x200FFFF0, group("20, InstanceID=1ffff")},
        {0x61012340, group("61, SourceIDType=51234")},
    };
    for (Row const& row : rows)
        EXPECT_EQ(readDeviceId(row.text), row.did) << row.text;
}

TEST(DeviceIdentifier, ReadsWhatOtherTextSurroundsTheForm) {
    EXPECT_EQ(readDeviceId(" " + group("92, MEIdType=1") + ", flag=append"), 0x92000001u);
    // By position, what follows the group counts where fields are absent.
    EXPECT_EQ(readDeviceId(group("08, MEIdType=1") + ", number=2"), 0x08000021u);
}

TEST(DeviceIdentifier, ReadsMalformedTextSomehow) {
    Row const rows[] = {
        {0, ""},
        {0, "="},
        {0, "=="},
        {0, "did"},
        {0, "\222"},
        {0x92000000, "92"},  // without an "=", from the start
        {0, "=92"},
        {0x92000000, "did=[EncodingType=92"},  // without a comma, to the end
        {0x08000000, "did=[EncodingType=08\222"},
        {0x92000001, "did=[EncodingType=92, MEIdType=1"},
        {0x92000001, "did=EncodingType=92,MEIdType=1"},
        {0x92000001, "\222did=[EncodingType=92, MEIdType=1"},
    };
    for (Row const& row : rows)
        EXPECT_EQ(readDeviceId(row.text), row.did) << row.text;
}

}  // namespace
}  // namespace FrameDriver::Conversion
