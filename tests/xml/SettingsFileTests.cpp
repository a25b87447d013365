#include "XMLFiles.h"
#include "foundation/Exceptions.h"
#include "xml/SettingsParser.h"
#include "xml/SettingsWriter.h"

#include <gtest/gtest.h>
#include <xercesc/util/XMLException.hpp>

#include <optional>
#include <string>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::ParseException;
using Tools::Settings;
using Map = Settings::Map;

class SettingsFile : public ::testing::Test {
  protected:
    SettingsFile() {
        std::filesystem::create_directory(scratch.path("Schemas"));
        std::filesystem::copy_file(QFD_SCHEMAS "/Settings.xsd",
                                   scratch.path("Schemas/Settings.xsd"));
    }

    Map load(ValidationMode mode = ValidationMode::Schema) {
        Settings const settings = SettingsParser().parseFile(path, mode);
        return {settings.begin(), settings.end()};
    }
    Map loadContent(std::string const& content) {
        scratch.write("Settings.xml",
                      "<settings xmlns=\"FrameDriver/Settings\" "
                      "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                      "xsi:schemaLocation=\"FrameDriver/Settings ./Schemas/Settings.xsd\">" +
                          content + "</settings>");
        return load();
    }
    void save(Map const& pairs) { SettingsWriter().writeFile(path, Settings(pairs)); }

    XMLScope xml;
    ScratchDirectory scratch;
    std::string path = scratch.path("Settings.xml");
};

TEST_F(SettingsFile, IsWrittenInNameOrderToTheLetter) {
    SettingsWriter().writeFile(path, [] {
        Settings settings;
        settings.set("Simulator Frame Address", "127.0.0.1");
        settings.set("Client Name", "A & B <\"C\">");
        settings.set("Empty", "");
        return settings;
    }());
    EXPECT_EQ(readFile(path), R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>
<settings xmlns="FrameDriver/Settings" xmlns:pfx="FrameDriver/Settings" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xsi:schemaLocation="FrameDriver/Settings ./Schemas/Settings.xsd">

  <setting>
    <name>Client Name</name>
    <value>A &amp; B &lt;"C"&gt;</value>
  </setting>

  <setting>
    <name>Empty</name>
    <value></value>
  </setting>

  <setting>
    <name>Simulator Frame Address</name>
    <value>127.0.0.1</value>
  </setting>

</settings>
)");
}

TEST_F(SettingsFile, WrittenAndReadBackIsTheSame) {
    std::string everyByte;
    for (int byte = 1; byte <= 0xFF; ++byte)
        if (byte >= 0x20 || byte == '\t' || byte == '\n' || byte == '\r')
            everyByte += static_cast<char>(byte);
    Map const pairs{{"every byte", everyByte},
                    {everyByte, "as a name"},
                    {"closing byte", "did=[\x92"},
                    {"blank", " "},
                    {"blanks", " \t \r\n \n"},
                    {"line feed", "\n"},
                    {"carriage return", "\r"},
                    {"marks", "]]>&amp;<!--"},
                    {"empty", ""},
                    {"", "without a name"}};
    save(pairs);
    EXPECT_EQ(load(), pairs);
}

TEST_F(SettingsFile, BytesThatXMLCantHoldAreWrittenAsQuestionMarks) {
    save({{"a", std::string("\0\x1b[0m\x7f", 6)}});
    EXPECT_EQ(load(), (Map{{"a", "??[0m\x7f"}}));
}

TEST_F(SettingsFile, AnEmptyOneComesBackEmpty) {
    save({});
    EXPECT_EQ(load(), Map{});
    EXPECT_EQ(loadContent(""), Map{});
}

TEST_F(SettingsFile, OneWriterWritesAsManyFilesAsOneLikes) {
    SettingsWriter writer;
    writer.writeFile(path, Settings(Map{{"a", "1"}}));
    writer.writeFile(path, Settings(Map{{"b", "2"}}));
    EXPECT_EQ(load(), (Map{{"b", "2"}}));
}

TEST_F(SettingsFile, ASettingMayLackItsNameOrItsValue) {
    EXPECT_EQ(loadContent("<setting><name>a</name></setting>"), (Map{{"a", ""}}));
    EXPECT_EQ(loadContent("<setting><value>v</value></setting>"), (Map{{"", "v"}}));
    EXPECT_EQ(loadContent("<setting/>"), (Map{{"", ""}}));
}

TEST_F(SettingsFile, OfTwoSettingsWithOneNameTheLaterCounts) {
    EXPECT_EQ(loadContent("<setting><name>a</name><value>1</value></setting>"
                          "<setting><value>2</value><name>a</name></setting>"),
              (Map{{"a", "2"}}));
}

TEST_F(SettingsFile, TextIsTakenAsItStands) {
    EXPECT_EQ(loadContent("<setting><name> a\n</name><value>x<!-- no -->y<![CDATA[<z>]]></value>"
                          "</setting>"),
              (Map{{" a\n", "xy<z>"}}));
}

TEST_F(SettingsFile, BreaksItsSchemaWithAnythingElse) {
    for (char const* content :
         {"<other/>", "<setting><nome>a</nome></setting>", "text",
          "<setting><name>a</name><name>b</name></setting>", "<setting name=\"a\"/>",
          "<setting xmlns=\"\"><name>a</name></setting>"}) {
        SCOPED_TRACE(content);
        EXPECT_THROW(loadContent(content), ParseException);
    }
}

TEST_F(SettingsFile, OutsideItsNamespaceIsRefused) {
    scratch.write("Settings.xml",
                  "<settings xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                  "xsi:schemaLocation=\"FrameDriver/Settings ./Schemas/Settings.xsd\">"
                  "<setting><name>a</name></setting></settings>");
    EXPECT_THROW(load(), ParseException);
    EXPECT_EQ(load(ValidationMode::None), (Map{{"a", ""}}));
}

// Beyond what the schema allows, for whoever loads without it.
TEST_F(SettingsFile, TheFirstNameAndTheFirstValueCountAtAnyDepth) {
    scratch.write("Settings.xml", "<x><y><setting><z><name>a</name></z><name>b</name>"
                                  "<value>1</value><value>2</value></setting></y></x>");
    EXPECT_EQ(load(ValidationMode::None), (Map{{"a", "1"}}));
}

TEST_F(SettingsFile, AnUnwritableFileIsTheLibrarysException) {
    SettingsWriter writer;
    EXPECT_THROW(writer.writeFile(scratch.path("absent/Settings.xml"), Settings()),
                 xercesc::XMLException);
    EXPECT_THROW(writer.writeFile(scratch.root, Settings()), xercesc::XMLException);
}

TEST_F(SettingsFile, AFullDiskIsNoSuccess) {
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "no /dev/full here";
    EXPECT_THROW(SettingsWriter().writeFile("/dev/full", Settings()), xercesc::XMLException);
}

TEST_F(SettingsFile, PathsAreBytes) {
    path = scratch.path("S\xe9ttings\x92.xml");
    save({{"a", "1"}});
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_EQ(load(), (Map{{"a", "1"}}));
}

TEST(SettingsWriterWithoutTheLibrary, IsNotMade) {
    EXPECT_THROW(SettingsWriter(), std::runtime_error);
}

TEST(SettingsWriterAndAStop, TheLibraryStaysUpForTheWriter) {
    ScratchDirectory const scratch;
    std::string const path = scratch.path("Settings.xml");
    {
        std::optional<SettingsWriter> writer;
        {
            XMLScope const xml;
            writer.emplace();
        }
        writer->writeFile(path, Settings(Map{{"a", "1"}}));
        EXPECT_NE(readFile(path).find("<value>1</value>"), std::string::npos);
    }
    EXPECT_THROW(SettingsWriter(), std::runtime_error);
}

TEST(SettingsWriterAndAStop, AFailureMayLeaveWithTheLastWriter) {
    ScratchDirectory const scratch;
    startXMLUtilities();
    try {
        SettingsWriter writer;
        stopXMLUtilities();
        writer.writeFile(scratch.path("absent/Settings.xml"), Settings());
        FAIL() << "nothing was thrown";
    } catch (xercesc::XMLException const& exception) {
        EXPECT_EQ(exception.getCode(), xercesc::XMLExcepts::File_CouldNotOpenFile);
    }
    XMLScope const settled;
}

}  // namespace
}  // namespace FrameDriver::XML
