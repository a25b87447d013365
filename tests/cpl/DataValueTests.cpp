#include "cpl/DataValue.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

namespace FrameDriver::CPL {
namespace {

struct Owner {
    std::int32_t tag;
    void operator()(void* data) const { releaseValue(data, tag); }
};
using Value = std::unique_ptr<void, Owner>;

struct Kind {
    int tag;
    char const* name;
    std::size_t bytes;  ///< of a value read from "7"
    bool owned;
    char const* log;  ///< of a value read from "7"
};

TEST(DataValue, EveryKindHasItsNameSizeOwnerAndLogText) {
    Kind const kinds[] = {
        {0, "Int16", 2, true, "7"},       {1, "Int32", 4, true, "7"},
        {2, "UInt16", 2, true, "7"},      {3, "UInt32", 4, true, "7"},
        {4, "Bool", 1, true, "false"},    {5, "Float", 4, true, "7"},
        {7, "String", 2, true, "7"},      {11, "Clock", 4, true, "7"},
        {12, "Degree", 4, true, "7"},     {14, "Percent", 4, true, "7"},
        {15, "Revolution", 4, true, "7"}, {16, "ScreenUnit", 4, true, "7"},
        {17, "SPercent", 4, true, "7"},   {18, "State", 2, true, "7"},
    };
    for (Kind const& kind : kinds) {
        SCOPED_TRACE(kind.name);
        DataTypeRow const& row = dataTypeRow(kind.tag);
        EXPECT_EQ(row.name, kind.name);
        EXPECT_EQ(dataTypeOf(kind.name), kind.tag);
        EXPECT_EQ(row.owned, kind.owned);
        Value const value(readValue("7", row.read), Owner{kind.tag});
        EXPECT_EQ(sizeOfValue(value.get(), kind.tag), kind.bytes);
        std::string text;
        appendLogValue(text, value.get(), kind.tag);
        EXPECT_EQ(text, kind.log);
        Value const copy(copyValue(value.get(), kind.tag), Owner{kind.tag});
        ASSERT_NE(copy, nullptr);
        EXPECT_NE(copy.get(), value.get());
        EXPECT_EQ(std::memcmp(copy.get(), value.get(), kind.bytes), 0);
    }
}

TEST(DataValue, TagsWithoutANameHaveNoValue) {
    int something = 5;
    for (int const tag : {6, 9, 10, 13, 19, 20, -1, INT32_MAX, INT32_MIN}) {
        SCOPED_TRACE(tag);
        EXPECT_EQ(dataTypeRow(tag).name, "");
        EXPECT_EQ(copyValue(&something, tag), nullptr);
        EXPECT_EQ(readValue("5", dataTypeRow(tag).read), nullptr);
        releaseValue(&something, tag);  // must not touch it
        std::string text;
        appendLogValue(text, &something, tag);
        EXPECT_EQ(text, "");
    }
    EXPECT_EQ(dataTypeOf(""), NoValue);
    EXPECT_EQ(dataTypeOf("Boolean"), NoValue);
    EXPECT_EQ(dataTypeOf("int16"), NoValue);
}

TEST(DataValue, ADoubleIsReadInFullButNotOwnedCopiedOrLogged) {
    DataTypeRow const& row = dataTypeRow(Double);
    std::unique_ptr<double> const value(static_cast<double*>(readValue("1.5", row.read)));
    EXPECT_EQ(*value, 1.5);
    EXPECT_FALSE(row.owned);
    releaseValue(value.get(), Double);
    EXPECT_EQ(copyValue(value.get(), Double), nullptr);
    std::string text;
    appendLogValue(text, value.get(), Double);
    EXPECT_EQ(text, "");
    EXPECT_EQ(row.written, Form::float32);
    EXPECT_EQ(row.sent, Form::float32);
}

TEST(DataValue, NullIsCopiedReleasedAndShownAsNothing) {
    for (int tag = 0; tag <= 19; ++tag) {
        SCOPED_TRACE(tag);
        EXPECT_EQ(copyValue(nullptr, tag), nullptr);
        EXPECT_EQ(sizeOfValue(nullptr, tag), 0u);
        releaseValue(nullptr, tag);
        std::string text;
        appendLogValue(text, nullptr, tag);
        EXPECT_EQ(text, "");
    }
}

struct Reading {
    int tag;
    char const* text;
    char const* shown;
};

TEST(DataValue, NumbersAreReadAsStreamsReadThemAndAre0Otherwise) {
    Reading const readings[] = {
        {Int16, "-32768", "-32768"},
        {Int16, "32768", "0"},
        {Int16, " 12abc", "12"},
        {Int32, "-2147483648", "-2147483648"},
        {Int32, "abc", "0"},
        {UInt16, "65535", "65535"},
        {UInt16, "65536", "0"},
        {UInt32, "4294967295", "4294967295"},
        {UInt32, "-1", "4294967295"},
        {Bool, "true", "true"},
        {Bool, "TRUE", "false"},
        {Bool, "true ", "false"},
        {Bool, "1", "false"},
        {Float, "0.1", "0.1"},
        {Float, "1234567", "1.23457e+06"},
        {Float, "", "0"},
        {Percent, "99.5%", "99.5"},
        {String, "a, b=c", "a, b=c"},
        {String, "", ""},
        {State, "65535", "-1"},
        {State, "65541", "5"},
        {State, "-2", "-2"},
    };
    for (Reading const& reading : readings) {
        SCOPED_TRACE(std::string(dataTypeRow(reading.tag).name) + " " + reading.text);
        Value const value(readValue(reading.text, dataTypeRow(reading.tag).read),
                          Owner{reading.tag});
        std::string text;
        appendLogValue(text, value.get(), reading.tag);
        EXPECT_EQ(text, reading.shown);
    }
}

}  // namespace
}  // namespace FrameDriver::CPL
