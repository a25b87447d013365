#include "../xml/XMLFiles.h"
#include "conversion/DictionaryCheck.h"
#include "conversion/DictionaryTemplateCheck.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace FrameDriver::XML {
namespace {

using Texts = std::vector<std::string>;

class DictionaryCheck : public ::testing::Test {
  protected:
    std::string write(std::string const& content) {
        return scratch.write("dictionary.xml", "<dictionary>\n" + content + "</dictionary>");
    }
    /// "line:column: cause", a "!" ahead of what is fatal.
    Texts findings(std::string const& content) {
        Texts texts;
        for (DictionaryFinding const& finding : checkDictionary(write(content)))
            texts.push_back((finding.severity == DictionaryFinding::fatal ? "!" : "") +
                            std::to_string(finding.position.line) + ':' +
                            std::to_string(finding.position.column) + ": " + finding.cause);
        return texts;
    }
    Texts formFindings(std::string const& form) {
        return findings("<conversion>\n<from xsi:type='fid'><id>X</id></from>\n" + form +
                        "</conversion>");
    }

    XMLScope xml;
    ScratchDirectory scratch;
};

TEST_F(DictionaryCheck, NothingIsFoundInAGoodOne) {
    EXPECT_EQ(findings(R"(<conversion><from xsi:type="fid"><id>ME(1-2).KEY(1-4)</id>
<parameter name="v">{@v}</parameter></from><to xsi:type="cplSetMessage"><paramId>21</paramId>
<deviceId><EncodingType>08</EncodingType><MEIdType>{@m|decrement}</MEIdType><KeyerIDType>0
</KeyerIDType><eEMemLevel>0</eEMemLevel></deviceId><data datatype="Int16">{@v}</data>
<flag>absolute</flag></to>
<to xsi:type="cplBatchSubscription"><subscription><paramId>(1-9)</paramId></subscription>
<flag>update</flag></to>
<to xsi:type="cplSetListMessage"><item><itemId>1</itemId><parameter name="n"
 datatype="String">x</parameter></item></to>
<to xsi:type="sid"><id>A</id><value>{$context:A.{@v|width=2,pad=0}|isEmpty}</value></to>
</conversion><conversion><from xsi:type="cplParameterIssue"><flag>invalid</flag></from>
</conversion>)"),
              Texts{});
}

TEST_F(DictionaryCheck, AFileThatIsntWellFormedIsFatal) {
    EXPECT_EQ(findings("<conversion>\n<from></to>"), Texts{"!3:9: expected end of tag 'from'"});
    auto const absent = checkDictionary(scratch.path("absent.xml"));
    ASSERT_EQ(absent.size(), 1u);
    EXPECT_EQ(toText("absent.xml", absent[0]),
              "absent.xml: error: unable to open primary document entity '" +
                  scratch.path("absent.xml") + "'\n");
}

TEST_F(DictionaryCheck, AFileWithoutConversions) {
    EXPECT_EQ(findings("<conversions/>"), Texts{"1:1: the file holds no \"conversion\""});
}

TEST_F(DictionaryCheck, ConversionsWithoutExactlyOneFrom) {
    EXPECT_EQ(findings(" <conversion/>"),
              Texts{"2:2: the conversion has no \"from\" and is passed over"});
    EXPECT_EQ(findings("<conversion><from xsi:type='fid'><id>A</id></from>"
                       "<from xsi:type='fid'><id>B</id></from></conversion>"),
              Texts{"2:1: the conversion has 2 \"from\" and is passed over"});
}

TEST_F(DictionaryCheck, TheSameFromTwice) {
    EXPECT_EQ(findings("<conversion><from xsi:type='fid'><id>A(1-2)</id></from></conversion>\n"
                       "<conversion><from xsi:type='fid'><id>A2</id></from></conversion>"),
              Texts{"3:13: never answers: the \"from\" on line 2 is the same"});
}

TEST_F(DictionaryCheck, FormsOfUnknownType) {
    EXPECT_EQ(findings("<conversion><from xsi:type='FID'/><to/></conversion>"),
              (Texts{"2:13: \"FID\" is no form, so the conversion produces nothing",
                     "2:35: \"to\" has no xsi:type, so this output is left out"}));
}

TEST_F(DictionaryCheck, Fields) {
    struct Row {
        char const* form;
        Texts findings;
    };
    Row const rows[] = {
        {"<to xsi:type='sid'><ident>A</ident></to>", {"4:20: \"ident\" is no field of \"sid\""}},
        {"<to xsi:type='sid'><id>A</id>\n<id>B</id></to>",
         {"5:1: \"id\" stands 2 times in its form, so none of them counts"}},
        {"<to xsi:type='sid'><id><b>A</b></id></to>",
         {"4:24: \"b\" stands inside \"id\", where text alone counts"}},
        {"<to xsi:type='dfid'><parameter>A</parameter></to>",
         {"4:21: \"parameter\" has no attribute \"name\""}},
        {"<to xsi:type='cplSendEventMessage'><data>00</data></to>",
         {"4:36: \"data\" has no attribute \"size\""}},
        {"<to xsi:type='cplParameterIssue'><data>00</data></to>",
         {"4:34: \"data\" has no attribute \"datatype\""}},
        {"<to xsi:type='cplParameterIssue'><data datatype='Boolean'>true</data></to>",
         {"4:34: \"Boolean\" is no type of a value"}},
        {"<to xsi:type='cplParameterIssue'><flag>Absolute</flag></to>",
         {"4:34: \"Absolute\" is no flag of \"cplParameterIssue\""}},
        {"<to xsi:type='cplListSubscription'><flag>absolute</flag></to>",
         {"4:36: \"absolute\" is no flag of \"cplListSubscription\""}},
        {"<to xsi:type='cplListSubscription'><flag>{@f}</flag></to>", {}},
        {"<to xsi:type='cplListSubscription'><number>1</number></to>",
         {"4:36: \"number\" is no field of \"cplListSubscription\""}},
        {"<to xsi:type='cplBatchSubscription'><subscription><pid>1</pid></subscription></to>",
         {"4:51: \"pid\" is no field of \"subscription\""}},
        {"<to xsi:type='cplListIssue'><item><id>1</id><parameter datatype='Bit'>x</parameter>"
         "</item></to>",
         {"4:35: \"id\" is no field of \"item\"", "4:45: \"parameter\" has no attribute \"name\"",
          "4:45: \"Bit\" is no type of a value"}},
        {"<to xsi:type='cplListIssue'><deviceId/></to>",
         {"4:29: \"deviceId\" doesn't begin with \"EncodingType\""}},
        {"<to xsi:type='cplListIssue'><deviceId><EncodingType>9f</EncodingType></deviceId></to>",
         {"4:39: \"9f\" is no encoding of device identifiers"}},
        {"<to xsi:type='cplListIssue'><deviceId><EncodingType>08</EncodingType><MEId>1</MEId>"
         "</deviceId></to>",
         {"4:70: \"MEId\" is no field of this encoding of device identifiers"}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.form);
        EXPECT_EQ(formFindings(row.form), row.findings);
    }
}

TEST_F(DictionaryCheck, SetMessagesThatCantBeSentAreFatal) {
    std::string const cause = "a set message without a value of a known type can't be sent, and "
                              "blocks the driver's link to the frame";
    EXPECT_EQ(formFindings("<to xsi:type='cplSetMessage'/>"), Texts{"!4:1: " + cause});
    EXPECT_EQ(formFindings("<to xsi:type='cplSetMessage'><data datatype='Boolean'>1</data></to>"),
              (Texts{"4:30: \"Boolean\" is no type of a value", "!4:30: " + cause}));
    EXPECT_EQ(formFindings("<to xsi:type='cplSetMessage'><data datatype='{@t}'>1</data></to>"),
              Texts{});
    EXPECT_EQ(findings("<conversion><from xsi:type='cplSetMessage'/></conversion>"), Texts{});
}

TEST_F(DictionaryCheck, Ranges) {
    std::string const refused = "the driver refuses the whole file for this form: ";
    struct Row {
        char const* id;
        Texts findings;
    };
    Row const rows[] = {
        {"A(x)", {"!4:1: " + refused + "Unable to convert a string value into an Int32."}},
        {"A(0xg-0x1)", {"!4:1: " + refused + "Unable to convert a string value into a UInt32"}},
        {"A(1-2", {"!4:1: " + refused + "A range has no closing bracket."}},
        {"A(2-1)",
         {"4:1: a range goes from a higher number to a lower one, so the form stands for "
          "nothing"}},
        {"(0x8-0x10)(1-2)",
         {"4:1: a range is overlooked: see that something stands between two ranges, and that a "
          "hexadecimal lower bound has the upper one's length"}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.id);
        EXPECT_EQ(formFindings(std::string("<to xsi:type='sid'><id>") + row.id + "</id></to>"),
                  row.findings);
    }
}

TEST_F(DictionaryCheck, Templates) {
    std::string const refused = "!4:1: the driver refuses the whole file for this form: ";
    struct Row {
        char const* value;
        Texts findings;
    };
    Row const rows[] = {
        {"{}", {refused + "invalid string position"}},
        {"{@a|width=x}", {refused + "Unable to convert a string value into an Int32."}},
        {"{@a|bitmask=x}", {refused + "Unable to convert a string value into a UInt32"}},
        {"{$abc}", {"4:1: \"{$abc}\" means nothing and is left out of the template"}},
        {"{@a|hexToDec}", {"4:1: \"hexToDec\" is no decorator and is ignored"}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(
            formFindings(std::string("<to xsi:type='sid'><value>") + row.value + "</value></to>"),
            row.findings);
    }
}

TEST_F(DictionaryCheck, FindingsComeInTheFilesOrder) {
    EXPECT_EQ(findings("<conversion>\n<to xsi:type='x'/>\n<to xsi:type='y'/></conversion>"),
              (Texts{"2:1: the conversion has no \"from\" and is passed over",
                     "3:1: \"x\" is no form, so this output is left out",
                     "4:1: \"y\" is no form, so this output is left out"}));
}

TEST_F(DictionaryCheck, AFindingIsShownWithItsLineAndAMark) {
    std::string const path = write("\t\xc3\xa9 <conversion/>");
    auto const found = checkDictionary(path);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(toText("d.xml", found[0]),
              "d.xml:2:4: warning: the conversion has no \"from\" and is passed over\n"
              "\t\xc3\xa9 <conversion/></dictionary>\n"
              "\t  ^\n");
}

TEST_F(DictionaryCheck, ManyFindingsTakeTheirShareOfTime) {
    std::string content;
    for (int i = 0; i < 20000; ++i)
        content += "<conversion><from xsi:type='fid'><id>A</id></from></conversion>\n";
    EXPECT_EQ(findings(content).size(), 19999u);
}

TEST(TemplateCheck, SaysWhatTheParserPassesOver) {
    struct Row {
        char const* text;
        Texts causes;
    };
    Row const rows[] = {
        {"FID: id=A, data=[a={@a|increment|width=2,p=0}\x92", {}},
        {"{$context:EMEM.{@x|increment}.NAME|isEmpty}", {}},
        {"{$context:A.{$context:B}}", {}},
        {"{@a|format:percent}{@b|enum:1=>x,$default=>y}", {}},
        {"", {}},
        {"{}", {}},
        {"a{b", {"the \"{\" of \"{b\" is never closed, and what stands behind it comes twice"}},
        {"{abc}", {"\"{abc}\" is taken as text, without its braces"}},
        {"{$abc|width=2}", {"\"{$abc}\" means nothing and is left out of the template"}},
        {"{@a}}", {"the \"}\" in \"}\" closes nothing and is taken as text"}},
        {"{@a}@b", {"\"@b\" is taken for a variable although it stands outside braces"}},
        {"{@a|up|down}",
         {"\"up\" is no decorator and is ignored", "\"down\" is no decorator and is ignored"}},
        {"{@a|@b}", {"\"@b\" is a second name, and takes the place of the first"}},
        {"{@a|format:seconds_to_autotrans}{@a|format:float_as_integer}", {}},
        {"{@a|format:percnt}",
         {"\"format:percnt\" is no known format, and leaves the value as it is"}},
        {"{$context:A.{@x|up}.B}", {"\"up\" is no decorator and is ignored"}},
        {"{$contextA}", {"\"$contextA\" has no \":\" behind \"$context\", and loses a character"}},
        {"{|}", {"\"{|}\" is taken as text, without its braces"}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(checkTemplate(row.text), row.causes);
    }
}

}  // namespace
}  // namespace FrameDriver::XML
