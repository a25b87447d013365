#include "conversion/ContextMarshaller.h"
#include "conversion/SIDMarshaller.h"
#include "conversion/TIDMarshaller.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace FrameDriver::Conversion {
namespace {

using Pair = std::pair<std::string, std::string>;

TEST(PairMarshallers, WriteEachFormWithItsOwnLabels) {
    Pair const rows[] = {{"X", "1"},
                         {"X", "1, 2"},
                         {"", ""},
                         {"a=b", "c\x92"},
                         {std::string(300, 'n'), std::string(300, 'v')}};
    for (auto const& row : rows) {
        auto const& [first, second] = row;
        EXPECT_EQ(SIDMarshaller().marshal(row), "SID: id=" + first + ", value=" + second);
        EXPECT_EQ(TIDMarshaller().marshal(row), "TID: id=" + first + ", parameter=" + second);
        EXPECT_EQ(ContextMarshaller().marshal(row), "Context: name=" + first + ", value=" + second);
    }
}

struct ReaderRow {
    char const* what;
    std::string text;
    Pair result;         // of the readers that seek the second "=" behind the comma
    Pair contextResult;  // of the one that seeks it behind the first "="
};

TEST(PairMarshallers, ReadByPosition) {
    ReaderRow const rows[] = {
        {"as written", "SID: id=X, value=1", {"X", "1"}, {"X", "1"}},
        {"the value runs to the end, commas included",
         "SID: id=X, value=1, 2",
         {"X", "1, 2"},
         {"X", "1, 2"}},
        {"closing bytes mean nothing here",
         "TID: id=X, parameter=[a\x92]",
         {"X", "[a\x92]"},
         {"X", "[a\x92]"}},
        {"a value with an \"=\"", "SID: id=X, value=a=b", {"X", "a=b"}, {"X", "a=b"}},
        {"a name with an \"=\": the context's value begins within the name",
         "Context: name=a=b, value=c",
         {"a=b", "c"},
         {"a=b", "b, value=c"}},
        {"empty fields", "SID: id=, value=", {"", ""}, {"", ""}},
        {"no second \"=\": the whole text",
         "SID: id=X, 1",
         {"X", "SID: id=X, 1"},
         {"X", "SID: id=X, 1"}},
        {"no comma: the name reaches to the end",
         "SID: id=X",
         {"X", "SID: id=X"},
         {"X", "SID: id=X"}},
        {"no comma, two \"=\"", "SID: id=X=Y", {"X=Y", "SID: id=X=Y"}, {"X=Y", "Y"}},
        {"no \"=\"", "SID: X, 1", {"SID: X", "SID: X, 1"}, {"SID: X", "SID: X, 1"}},
        {"nothing", "", {"", ""}, {"", ""}},
        {"a comma ahead of the name: the length wraps", "a,b=c", {"c", "c"}, {"c", "a,b=c"}},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(SIDMarshaller().unmarshal(row.text), row.result);
        EXPECT_EQ(TIDMarshaller().unmarshal(row.text), row.result);
        EXPECT_EQ(ContextMarshaller().unmarshal(row.text), row.contextResult);
    }
}

}  // namespace
}  // namespace FrameDriver::Conversion
