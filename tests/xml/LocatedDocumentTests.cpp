#include "XMLFiles.h"
#include "xml/DOMSearch.h"
#include "xml/LocatedDocument.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace FrameDriver::XML {
namespace {

class Located : public ::testing::Test {
  protected:
    /// "name line:column" of each element below the root.
    std::vector<std::string> places(std::string const& content) {
        LocatedDocument const document(scratch.write("file.xml", content));
        std::vector<std::string> found;
        forEachElement(documentElement(document.get()), [&](xercesc::DOMElement const& element,
                                                            std::u16string_view) {
            FilePosition const position = document.positionOf(element);
            found.push_back(attributeOf(element, u"n") + ' ' + std::to_string(position.line) + ':' +
                            std::to_string(position.column));
        });
        return found;
    }

    XMLScope xml;
    ScratchDirectory scratch;
};

using Places = std::vector<std::string>;

TEST_F(Located, ElementsAreWhereTheirStartTagsBegin) {
    EXPECT_EQ(places("<r>\n  <a n='1'/><a n='2'>\n<a n='3'></a></a>\n</r>"),
              (Places{"1 2:3", "2 2:13", "3 3:1"}));
}

TEST_F(Located, ATagMayRunOverLinesAndHoldAGreaterThan) {
    EXPECT_EQ(places("<r><a\n  n='1'\n x='>>'\n/><a n='2'/></r>"), (Places{"1 1:4", "2 4:3"}));
}

TEST_F(Located, ColumnsAreCharacters) {
    EXPECT_EQ(places("<r>\xc3\xa9\xe2\x80\x99<a n='1'/></r>"), (Places{"1 1:6"}));
    EXPECT_EQ(places("<?xml version='1.0' encoding='ISO-8859-1'?><r>\xe9\x92<a n='1'/></r>"),
              (Places{"1 1:49"}));
}

TEST_F(Located, WhatComesOutOfAnEntityIsSomewhere) {
    auto const found = places("<!DOCTYPE r [<!ENTITY e \"<a n='1'/>\">]>\n<r>&e;<a n='2'/></r>");
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[1], "2 2:7");
}

TEST_F(Located, TheFirstComplaintHasItsPlace) {
    LocatedDocument const document(scratch.write("file.xml", "<r>\n <a></b>\n</r><"));
    ASSERT_TRUE(document.complaint());
    EXPECT_EQ(document.complaint()->position.line, 2u);
    EXPECT_EQ(document.complaint()->message, "expected end of tag 'a'");
    EXPECT_EQ(document.get(), nullptr);
}

TEST_F(Located, AnAbsentFileHasNoPlace) {
    LocatedDocument const document(scratch.path("absent.xml"));
    ASSERT_TRUE(document.complaint());
    EXPECT_EQ(document.complaint()->position.line, 0u);
    EXPECT_EQ(document.complaint()->message,
              "unable to open primary document entity '" + scratch.path("absent.xml") + "'");
}

TEST_F(Located, LinesAreThoseOfTheFile) {
    LocatedDocument const document(scratch.write("file.xml", "<r>\r\n\n <a/></r>"));
    EXPECT_EQ(document.line(0), "");
    EXPECT_EQ(document.line(1), "<r>");
    EXPECT_EQ(document.line(2), "");
    EXPECT_EQ(document.line(3), " <a/></r>");
    EXPECT_EQ(document.line(4), "");
}

}  // namespace
}  // namespace FrameDriver::XML
