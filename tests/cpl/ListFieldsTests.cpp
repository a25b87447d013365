#include "cpl/DataValue.h"
#include "cpl/Issue.h"
#include "cpl/IssueDispatcher.h"
#include "cpl/ListLayouts.h"
#include "tests/support/cplclient/LinkRecords.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

// Decodes an item of every list and compares with a second writing of the lists' fields, which a
// slow reader here takes apart.
namespace FrameDriver::CPL {
namespace {

using Testing::ListRecord;

/// The fields as "name tag; " in their order on the link.
struct List {
    int lid;
    std::string fields;
};

// clang-format off
List const lists[] = {
    {1,
     "Name 7; "},
    {2,
     "Resource Id 2; Resource State 2; Device Id 3; Resource Name 7; "},
    {5,
     "Physical DID 3; State 3; Logical DID 3; "},
    {6,
     "MarkIn Time 3; Clip Name 7; "},
    {10,
     "First UInt32 3; Second UInt32 3; "},
    {12,
     "Source Alias Id 2; Engineering Source Id 2; DPM Source Id 2; Logical Machine Id 2; "
     "Is Configurable 4; Source Nick Name 7; Source Name 7; Engineering Source Name 7; "
     "Module Name 7; Menu Name 7; DPM Name 7; "},
    {15,
     "Source Alias Id 2; "},
    {16,
     "Engineering Source Id 2; Is Configurable 4; Is On Air 4; Video Crosspoint 2; "
     "Video Crosspoint Right Eye 2; Key Crosspoint 2; Key Crosspoint Right Eye 2; "
     "Key Type 2; Key Timing 2; Key Shaped 4; Clip Hi 5; Clip Lo 5; Input Type 2; "
     "Device Type 2; Profile Id 2; Is Device Connected 4; Camera Status 4; Camera Id 2; "
     "Is FourK 4; Engineering Name 7; Router Source Name 7; Camera Source Name 7; "},
    {19,
     "Is Valid Source 4; Device Id 2; Device Type Id 2; Router Source Index 1; "
     "Router Source Name 7; "},
    {23,
     "Register Id 3; Is Valid 4; Register Name 7; Register Comment 7; "},
    {24,
     "Source Alias Id 2; Display Inverted 4; Source Color 7; "},
    {32,
     "Camera Id 2; Camera Name 7; Head Type 7; Aspect Ratio 2; Video Mode 2; Connected 4; "
     "Color Bars Enabled 4; Auto Iris Enabled 4; Auto Black Enabled 4; Filter 2; "
     "Scene File 2; Red Tally 4; Yellow Tally 4; Green Tally 4; Suite ID 2; "},
    {35,
     "Id 2; Name 7; Short Name 7; Comment 7; "},
    {39,
     "Engineering Source Id 3; Flag 4; Name 7; "},
    {40,
     "Flag 4; Source Alias Id 2; "},
    {47,
     "Index 2; Id 2; Name 7; Status 2; Date 7; Context 2; "},
    {51,
     "Me Id 0; Avatar Id 0; Key Count 2; BkgdPair Count 2; "},
    {54,
     "Me Id 2; Partition Id 2; Allocation Id 2; Assigned 4; Is ME 50 4; "},
};
// clang-format on

struct Field {
    std::string name;
    int tag;
};

/// Eight groups follow in list 51, eight flags in list 54.
std::string keyFields(int lid) {
    std::string fields;
    for (int n = 1; n <= 8; ++n) {
        std::string const key = "Key " + std::to_string(n);
        if (lid == 51)
            fields += key + " Incarnation 0; " + key + " ThreeDDPM 0; " + key + " TwoDDPM 0; " +
                      key + " KeyStoreCount 2; " + key + " KeyWipesCount 2; ";
        if (lid == 54)
            fields += key + " 4; ";
    }
    return fields;
}

std::vector<Field> fieldsOf(List const& list) {
    std::string rest = list.fields + keyFields(list.lid);
    std::vector<Field> fields;
    while (!rest.empty()) {
        std::size_t const end = rest.find("; ");
        fields.push_back({rest.substr(0, end - 2), rest[end - 1] - '0'});
        rest.erase(0, end + 2);
    }
    return fields;
}

/// Writes a value that differs from field to field, and gives its text.
std::string write(ListRecord& record, int tag, int seed) {
    auto const low = static_cast<std::uint16_t>(0x8000 + seed);
    std::uint32_t const high = 0x80010000u + static_cast<std::uint32_t>(seed);
    switch (tag) {
    case 0:
        record.u16(low);
        return std::to_string(static_cast<std::int16_t>(low));
    case 2:
        record.u16(low);
        return std::to_string(low);
    case 1:
        record.u32(high);
        return std::to_string(static_cast<std::int32_t>(high));
    case 3:
        record.u32(high);
        return std::to_string(high);
    case 4:
        record.u8(static_cast<std::uint8_t>(seed % 3));  // 2 is as true as 1
        return seed % 3 == 0 ? "false" : "true";
    case 5:
        record.f32(static_cast<float>(seed) + 0.5f);
        return std::to_string(seed) + ".5";
    default:
        record.text("text " + std::to_string(seed));
        return "text " + std::to_string(seed);
    }
}

class Keeper : public IssueHandler {
  public:
    void handleIssue(Issue* issue) override {
        ASSERT_EQ(issue->getServiceType(), 4);
        issues.push_back(static_cast<ListIssue&>(*issue));
    }
    std::vector<ListIssue> issues;
};

TEST(ListFields, EveryListIsDecodedFieldByField) {
    for (List const& list : lists) {
        SCOPED_TRACE(list.lid);
        std::vector<Field> const fields = fieldsOf(list);
        std::vector<std::string> texts;
        ListRecord record(static_cast<std::int16_t>(list.lid), 3, 0x08000213);
        for (int item = 0; item < 2; ++item) {
            record.item(100u + static_cast<unsigned>(item), 7, -1, 1);
            for (std::size_t i = 0; i < fields.size(); ++i)
                texts.push_back(write(record, fields[i].tag, static_cast<int>(i) + item * 50));
        }
        IssueDispatcher dispatcher;
        Keeper keeper;
        dispatcher.addHandler(&keeper);
        dispatcher.listUpdate(record.message(), nullptr);
        ASSERT_EQ(keeper.issues.size(), 2u);
        for (std::size_t item = 0; item < 2; ++item) {
            ListItem const& decoded = keeper.issues[item].viewItem();
            EXPECT_EQ(decoded.getItemId(), 100u + item);
            EXPECT_EQ(decoded.getParameters().size(), fields.size());
            for (std::size_t i = 0; i < fields.size(); ++i) {
                SCOPED_TRACE(fields[i].name);
                ListItemParameter parameter;
                ASSERT_TRUE(decoded.getParameter(fields[i].name, parameter));
                EXPECT_EQ(parameter.getDataType(), fields[i].tag);
                std::string text;
                appendLogValue(text, parameter.getData(), parameter.getDataType());
                EXPECT_EQ(text, texts[item * fields.size() + i]);
            }
        }
    }
}

TEST(ListFields, NoOtherListHasFields) {
    std::set<int> known;
    for (List const& list : lists)
        known.insert(list.lid);
    for (int lid = INT16_MIN; lid <= INT16_MAX; ++lid)
        if (!known.contains(lid)) {
            ASSERT_TRUE(listFields(lid).empty()) << lid;
        }
}

}  // namespace
}  // namespace FrameDriver::CPL
