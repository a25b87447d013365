// The schemas of the files that other folders read. What the driver validates must be taken
// and refused as the driver relies on; the others serve authors, and must be true.

#include "XMLFiles.h"
#include "foundation/Exceptions.h"
#include "xml/AbstractParser.h"

#include <gtest/gtest.h>

#include <string>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::ParseException;

struct Format {
    char const* root;
    char const* space;
    char const* schema;
};

constexpr Format manifest{"manifest", "FrameDriver/Manifest", "Manifest.xsd"};
constexpr Format dictionary{"dictionary", "FrameDriver/Dictionary", "Dictionary.xsd"};
constexpr Format monkeyTest{"monkeyTest", "FrameDriver/MonkeyTest", "MonkeyTest.xsd"};

class Schema : public ::testing::Test {
  protected:
    /// The complaint, or the empty text.
    std::string complaint(Format const& format, std::string const& content) {
        std::string const path = scratch.write(
            "file.xml", std::string("<") + format.root + " xmlns=\"" + format.space +
                            "\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                            "xsi:schemaLocation=\"" +
                            format.space + " " QFD_SCHEMAS "/" + format.schema + "\">" + content +
                            "</" + format.root + ">");
        try {
            LoadedDocument const document(path, ValidationMode::Schema);
            return "";
        } catch (ParseException const& exception) {
            return exception.getMessage();
        }
    }

    void expectGood(Format const& format, std::initializer_list<char const*> contents) {
        for (char const* content : contents) {
            SCOPED_TRACE(content);
            EXPECT_EQ(complaint(format, content), "");
        }
    }
    void expectBad(Format const& format, std::initializer_list<char const*> contents) {
        for (char const* content : contents) {
            SCOPED_TRACE(content);
            EXPECT_EQ(complaint(format, content).substr(0, 8), "An error");
        }
    }

    XMLScope xml;
    ScratchDirectory scratch;
};

TEST_F(Schema, ManifestTakesModulesWithAnyOfTheFiveFilesInAnyOrder) {
    expectGood(manifest,
               {"", "<moduleConfiguration/>",
                "<moduleConfiguration><monkeytest>m</monkeytest>"
                "<issueToSIDDictionary>i</issueToSIDDictionary>"
                "<fidToCPLDictionary>f</fidToCPLDictionary>"
                "<fidRegistrationList>r</fidRegistrationList>"
                "<cplSubscriptionList>s</cplSubscriptionList></moduleConfiguration>",
                "<moduleConfiguration><monkeytest>m</monkeytest></moduleConfiguration>"
                "<moduleConfiguration><fidToCPLDictionary/></moduleConfiguration>",
                "<moduleConfiguration><monkeytest>m</monkeytest><monkeytest>n</monkeytest>"
                "</moduleConfiguration>",
                "<moduleConfiguration><moduleConfiguration/></moduleConfiguration>"});
}

TEST_F(Schema, ManifestRefusesTheRest) {
    expectBad(manifest, {"<fidToCPLDictionary>f</fidToCPLDictionary>", "text", "<other/>",
                         "<moduleConfiguration><other/></moduleConfiguration>",
                         "<moduleConfiguration>text</moduleConfiguration>",
                         "<moduleConfiguration name=\"m\"/>",
                         "<moduleConfiguration><monkeyTest>m</monkeyTest></moduleConfiguration>"});
}

TEST_F(Schema, DictionaryTakesEveryForm) {
    expectGood(
        dictionary,
        {"",
         R"(<conversion><from xsi:type="fid"><id>A</id><parameter name="p">{@p}</parameter></from>
<to xsi:type="cplSetMessage"><paramId>1</paramId><deviceId><EncodingType>08</EncodingType>
<MEIdType>0</MEIdType></deviceId><data datatype="Int16">1</data><flag>absolute</flag></to>
<to xsi:type="cplSendEventMessage"><eventId>1</eventId><deviceId><EncodingType>03</EncodingType>
</deviceId><data size="2">0001</data></to>
<to xsi:type="cplSetListMessage"><listId>1</listId><deviceId><EncodingType>62</EncodingType>
</deviceId><number>1</number><action>1</action><item><itemId>1</itemId><status>1</status>
<nextItemId>0</nextItemId><parameter name="n" datatype="String">x</parameter></item></to>
<to xsi:type="cplParameterSubscription"><paramId>1</paramId><deviceId><EncodingType>62
</EncodingType></deviceId><flag>append</flag></to>
<to xsi:type="cplListSubscription"><listId>1</listId><listNumber>1</listNumber><deviceId>
<EncodingType>62</EncodingType></deviceId><flag>append</flag></to>
<to xsi:type="cplBatchSubscription"><subscription><paramId>1</paramId><deviceId>
<EncodingType>62</EncodingType></deviceId></subscription><flag>append</flag></to>
<to xsi:type="sid"><value>1</value><id>S</id></to>
<to xsi:type="tid"><id>T</id><parameter>1</parameter></to>
<to xsi:type="context"><name>N</name><value>1</value></to>
<to xsi:type="dfid"><id>D</id><parameter name="p">1</parameter></to></conversion>)",
         R"(<conversion><from xsi:type="cplParameterIssue"><paramId>1</paramId><data
datatype="Bool">{@v}</data><flag>{@f}</flag></from></conversion>)",
         R"(<conversion><from xsi:type="cplListIssue"><listId>1</listId><number>{@n}</number>
<item/></from></conversion>)"});
}

TEST_F(Schema, DictionaryRefusesWhatTheDriverWouldPassOverInSilence) {
    expectBad(dictionary,
              {R"(<conversion/>)", R"(<conversion><from><id>A</id></from></conversion>)",
               R"(<conversion><from xsi:type="FID"><id>A</id></from></conversion>)",
               R"(<conversion><from xsi:type="fid"/><from xsi:type="fid"/></conversion>)",
               R"(<conversion><from xsi:type="sid"><ident>A</ident></from></conversion>)",
               R"(<conversion><from xsi:type="sid"><id>A</id><id>B</id></from></conversion>)",
               R"(<conversion><from xsi:type="fid"><parameter>1</parameter></from></conversion>)",
               R"(<conversion><from xsi:type="cplSetMessage"><data>1</data></from></conversion>)",
               R"(<conversion><from xsi:type="cplSetMessage"><deviceId/></from></conversion>)"});
}

TEST_F(Schema, MonkeyTestTakesTheThreeKindsOfParameter) {
    expectGood(monkeyTest, {"", "<fid id=\"A(1-3)\"/>",
                            R"(<fid id="A"><parameter name="i" type="integer" lower="-1" upper="4"/>
<parameter name="f" type="float" lower="0.5" upper="infinity"/>
<parameter name="e" type="enum"><value>ON</value><value/></parameter></fid>)"});
}

TEST_F(Schema, MonkeyTestRefusesTheRest) {
    expectBad(monkeyTest, {R"(<fid/>)", R"(<fid id="A"><parameter name="p"/></fid>)",
                           R"(<fid id="A"><parameter name="p" type="bool"/></fid>)",
                           R"(<fid id="A"><parameter type="enum"/></fid>)",
                           R"(<fid id="A"><parameter name="p" type="integer" lower="x"/></fid>)"});
}

}  // namespace
}  // namespace FrameDriver::XML
