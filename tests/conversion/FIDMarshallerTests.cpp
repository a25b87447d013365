#include "conversion/ClosingByte.h"
#include "conversion/DIDMarshaller.h"
#include "conversion/FIDMarshaller.h"
#include "platform/fid/FIDParameterList.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace FrameDriver::Conversion {
namespace {

using Parameters = std::vector<std::pair<std::string, std::string>>;

Parameters listed(FIDParameterList const& list) {
    Parameters parameters;
    for (auto const& parameter : list)
        parameters.emplace_back(parameter.getName(), parameter.getValue());
    return parameters;
}

FIDParameterList listOf(Parameters const& parameters) {
    FIDParameterList list;
    for (auto const& [name, value] : parameters)
        list.add(name, value);
    return list;
}

struct WriterRow {
    char const* name;
    Parameters parameters;
    std::string text;  // behind the tag
};

std::vector<WriterRow> const& writerRows() {
    static std::vector<WriterRow> const rows = {
        {"A.B", {}, "id=A.B, data=[\x92"},
        {"X", {{"a", "1"}}, "id=X, data=[a=1\x92"},
        {"X", {{"b", "2"}, {"a", "1"}}, "id=X, data=[b=2, a=1\x92"},
        {"X", {{"a", "1"}, {"a", "2"}}, "id=X, data=[a=1, a=2\x92"},
        {"", {{"", ""}}, "id=, data=[=\x92"},
        // Nothing is quoted.
        {"X", {{"a", "1, b=2"}}, "id=X, data=[a=1, b=2\x92"},
        {"X", {{"a", "1\x92"}}, "id=X, data=[a=1\x92\x92"},
        {"X", {{"a", "\xc3\xa9"}}, "id=X, data=[a=\xc3\xa9\x92"},
    };
    return rows;
}

TEST(FIDMarshaller, WritesTheParametersInTheirOrder) {
    for (auto const& row : writerRows()) {
        SCOPED_TRACE(row.text);
        auto list = listOf(row.parameters);
        EXPECT_EQ(FIDMarshaller().marshal(row.name, list), "FID: " + row.text);
        EXPECT_EQ(FIDMarshaller().marshal({row.name, &list}), "FID: " + row.text);
    }
}

TEST(DIDMarshaller, WritesLikeAFIDUnderATagOfItsOwn) {
    for (auto const& row : writerRows()) {
        SCOPED_TRACE(row.text);
        auto list = listOf(row.parameters);
        EXPECT_EQ(DIDMarshaller().marshal({row.name, &list}), "DFID: " + row.text);
    }
}

TEST(FIDMarshaller, ALongTextIsWrittenWhole) {
    Parameters parameters;
    std::string expected = "FID: id=" + std::string(500, 'N') + ", data=[";
    for (int i = 0; i < 50; ++i) {
        parameters.emplace_back(std::string("name").append(std::to_string(i)),
                                std::string(100, 'v'));
        expected.append(i == 0 ? "" : ", ").append("name").append(std::to_string(i));
        expected.append("=").append(std::string(100, 'v'));
    }
    EXPECT_EQ(FIDMarshaller().marshal(std::string(500, 'N'), listOf(parameters)),
              expected + "\x92");
}

struct ReaderRow {
    char const* what;
    std::string text;
    std::string name;
    Parameters fidParameters;
    Parameters didParameters;
    std::string printed;  // empty unless malformed
};

std::vector<ReaderRow> const& readerRows() {
    static std::vector<ReaderRow> const rows = {
        {"no parameters", "FID: id=A.B, data=[\x92", "A.B", {}, {}, ""},
        {"one", "FID: id=A.B, data=[a=1\x92", "A.B", {{"a", "1"}}, {{"a", "1"}}, ""},
        {"several",
         "FID: id=A, data=[a=1, b=two, c=\x92",
         "A",
         {{"a", "1"}, {"b", "two"}, {"c", ""}},
         {{"a", "1"}, {"b", "two"}, {"c", ""}},
         ""},
        {"a name twice",
         "FID: id=A, data=[a=1, a=2\x92",
         "A",
         {{"a", "1"}, {"a", "2"}},
         {{"a", "1"}, {"a", "2"}},
         ""},
        {"no closing byte: the last value reaches to the end, and the reading ends there",
         "FID: id=X, data=[a=1, b=2",
         "X",
         {{"a", "1"}, {"b", "2"}},
         {{"a", "1"}, {"b", "2"}},
         ""},
        {"the last value holds the closing byte",
         "FID: id=X, data=[a=1, b=2\x92z\x92",
         "X",
         {{"a", "1"}, {"b", "2\x92z"}},
         {{"a", "1"}, {"b", "2"}},
         "fidMessageString=FID: id=X, data=[a=1, b=2\x92z\x92  end=27 other=25\n"},
        {"text behind the closing byte holds an \"=\": the last value was read already",
         "FID: id=X, data=[a=1\x92 b=2",
         "X",
         {{"a", "1"}},
         {{"a", "1"}},
         ""},
        {"an earlier value holds a comma: the next name begins two bytes behind it",
         "FID: id=X, data=[a=1,2, b=3\x92",
         "X",
         {{"a", "1"}, {", b", "3"}},
         {{"a", "1"}, {", b", "3"}},
         ""},
        {"an earlier value holds the closing byte: kept, the last one alone is looked at",
         "FID: id=X, data=[a=1\x92, b=2\x92",
         "X",
         {{"a", "1\x92"}, {"b", "2"}},
         {{"a", "1\x92"}, {"b", "2"}},
         ""},
        {"a comma behind the closing byte belongs to the value",
         "FID: id=X, data=[a=1\x92,",
         "X",
         {{"a", "1\x92"}},
         {{"a", "1\x92"}},
         ""},
        {"the only closing byte stands ahead of the value",
         "FID: id=X\x92, data=[a=1",
         "X\x92",
         {{"a", "1"}},
         {{"a", "1"}},
         "fidMessageString=FID: id=X\x92, data=[a=1  end=9 other=-1\n"},
        {"no bracket: reading begins at the front",
         "FID: id=X, a=1\x92",
         "X",
         {{"FID: id", "X"}, {"a", "1"}},
         {{"FID: id", "X"}, {"a", "1"}},
         ""},
        {"no comma: the name reaches to the end",
         "FID: id=X",
         "X",
         {{"FID: id", "X"}},
         {{"FID: id", "X"}},
         ""},
        {"nothing", "", "", {}, {}, ""},
        {"the comma ahead of the \"=\": the length wraps",
         ",=x",
         "x",
         {{",", "x"}},
         {{",", "x"}},
         ""},
        {"no \"=\"", "FID: id", "FID: id", {}, {}, ""},
    };
    return rows;
}

TEST(FIDMarshaller, ReadsByPosition) {
    FIDMarshaller const marshaller;
    for (auto const& row : readerRows()) {
        SCOPED_TRACE(row.what);
        bool malformed = row.printed.empty();
        ::testing::internal::CaptureStdout();
        auto const [name, list] = marshaller.unmarshal(row.text, malformed);
        std::unique_ptr<FIDParameterList> const owner(list);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), row.printed);
        EXPECT_EQ(name, row.name);
        EXPECT_EQ(listed(*list), row.fidParameters);
        EXPECT_EQ(malformed, !row.printed.empty());
    }
}

TEST(DIDMarshaller, ReadsByPositionAndStopsAtTheFirstClosingByte) {
    for (auto const& row : readerRows()) {
        SCOPED_TRACE(row.what);
        ::testing::internal::CaptureStdout();
        auto const [name, list] = DIDMarshaller().unmarshal(row.text);
        std::unique_ptr<FIDParameterList> const owner(list);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
        EXPECT_EQ(name, row.name);
        EXPECT_EQ(listed(*list), row.didParameters);
    }
}

TEST(FIDMarshaller, ReadsWhatItWrites) {
    Parameters const parameters = {{"VALUE", "1"}, {"SOURCE", "KNOB"}, {"last", "a]b[c\x92 d"}};
    FIDMarshaller const marshaller;
    bool malformed = false;
    ::testing::internal::CaptureStdout();
    auto const [name, list] =
        marshaller.unmarshal(marshaller.marshal("A.B.INC", listOf(parameters)), malformed);
    ::testing::internal::GetCapturedStdout();
    std::unique_ptr<FIDParameterList> const owner(list);
    EXPECT_EQ(name, "A.B.INC");
    EXPECT_EQ(listed(*list), parameters);
    EXPECT_TRUE(malformed);
}

TEST(ClosingByte, IsNoRightSquareBracket) {
    EXPECT_EQ(static_cast<unsigned char>(closingByte), 0x92);
}

}  // namespace
}  // namespace FrameDriver::Conversion
