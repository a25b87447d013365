#include "xml/XMLText.h"

#include <gtest/gtest.h>

namespace FrameDriver::XML {
namespace {

TEST(XMLText, EachCharacterUpToFFIsOneByte) {
    std::u16string text;
    std::string bytes;
    for (int code = 1; code <= 0xFF; ++code) {
        text += static_cast<char16_t>(code);
        bytes += static_cast<char>(code);
    }
    EXPECT_EQ(toBytes(text), bytes);
    EXPECT_EQ(widen(bytes), text);
}

TEST(XMLText, WhatFitsNoByteIsAQuestionMarkEach) {
    struct Row {
        char const* what;
        std::u16string text;
        std::string bytes;
    };
    Row const rows[] = {
        {"the first above", u"a\u0100b", "a?b"},
        {"a curly quote", u"\u2019", "?"},
        {"two units are one character", u"x\U0001F3A5y", "x?y"},
        {"two of those", u"\U0001F3A5\U0001F3A6", "??"},
        {"the last unit", u"\uFFFD", "?"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(toBytes(row.text), row.bytes);
    }
}

TEST(XMLText, NoTextAtAllIsEmpty) {
    EXPECT_EQ(toBytes(static_cast<char16_t const*>(nullptr)), "");
    EXPECT_EQ(toBytes(u""), "");
}

TEST(XMLText, AppendingKeepsWhatIsThere) {
    std::string bytes = "did=[";
    appendBytes(bytes, u"\u0092");
    EXPECT_EQ(bytes, "did=[\x92");
}

TEST(XMLText, ControlBytesThatXMLCantHoldAreQuestionMarksInADocument) {
    EXPECT_EQ(toXMLText(std::string("\0\x01\x08\t\n\v\f\r\x1f \x7f\x80\x92\xff", 14)),
              u"???\t\n??\r? \u007f\u0080\u0092\u00ff");
}

}  // namespace
}  // namespace FrameDriver::XML
