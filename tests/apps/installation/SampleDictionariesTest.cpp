#include "Installation.h"
#include "SampleRows.h"
#include "template/ContextStore.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using FrameDriver::Conversion::TemplateConversionCollection;
using FrameDriver::Template::ContextStore;
using Installation::bytes;

void expectRow(TemplateConversionCollection& dictionary, SampleRow const& row) {
    SCOPED_TRACE(row.text);
    ContextStore store;
    for (auto const& [key, value] : row.store) {
        store.set(key, bytes(value));
    }
    std::vector<std::string> expected;
    for (auto const& result : row.results) {
        expected.push_back(bytes(result));
    }
    EXPECT_EQ(dictionary.convert(bytes(row.text), &store), expected);
}

/// Forwards and backwards, since what was looked up before has a say in what answers.
void expectAll(char const* kind, std::vector<SampleRow> const& rows) {
    auto dictionary = Installation::dictionary(kind);
    for (auto row = rows.begin(); row != rows.end(); ++row) {
        expectRow(dictionary, *row);
    }
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        expectRow(dictionary, *row);
    }
}

TEST(SampleDictionaries, WhatBecomesOfAFID) { expectAll(Installation::fids, fidRows()); }

TEST(SampleDictionaries, WhatBecomesOfAnIssue) { expectAll(Installation::issues, issueRows()); }

/// The skipped fields of an item are swallowed whatever they hold.
TEST(SampleDictionaries, ASourcesNamesAreFoundAmongItsFields) {
    auto const field = [](std::string const& name, std::string const& type,
                          std::string const& value) {
        return ", param=[name=" + name + ", data=[type=" + type + ", value=" + value + "~~";
    };
    auto const text =
        "List Issue: lid=12, did=[EncodingType=62, SuiteIDType=0~, number=1, item=[itemId=4, "
        "status=1, nextItemId=5" +
        field("DPM Name", "String", "d") + field("DPM Source Id", "UInt16", "0") +
        field("Engineering Source Id", "UInt16", "3") +
        field("Engineering Source Name", "String", "CAM, 3") +
        field("Is Configurable", "Bool", "true") + field("Logical Machine Id", "UInt16", "65535") +
        field("Menu Name", "String", "") + field("Module Name", "String", "") +
        field("Source Alias Id", "UInt16", "3") + field("Source Name", "String", "Camera, 3") +
        field("Source Nick Name", "String", "C=3") + "~";
    ContextStore store;
    auto dictionary = Installation::dictionary(Installation::issues);
    auto const results = dictionary.convert(bytes(text), &store);
    ASSERT_EQ(results.size(), 3U + 24);
    EXPECT_EQ(results[0], "Context: name=SOURCE3.NAME, value=Camera, 3");
    EXPECT_EQ(results[1], "TID: id=SOURCE3.NAME, parameter=Camera, 3");
    EXPECT_EQ(results[2], "TID: id=SOURCE3.NICK, parameter=C=3");
    EXPECT_EQ(results[3], bytes("FID: id=DO.NAME.SHOW, data=[BUS=ME1.PGM~"));
    EXPECT_EQ(results.back(), bytes("FID: id=DO.NAME.SHOW, data=[BUS=AUX4~"));
}

}  // namespace
