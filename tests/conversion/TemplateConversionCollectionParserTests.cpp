#include "../xml/XMLFiles.h"
#include "conversion/TemplateConversionCollectionParser.h"
#include "foundation/Exceptions.h"
#include "template/ContextStore.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace FrameDriver::XML {
namespace {

using Conversion::TemplateConversionCollection;
using ErrorManagement::Exception::ParseException;
using Texts = std::vector<std::string>;

class DictionaryFile : public ::testing::Test {
  protected:
    std::string write(std::string const& content) {
        return scratch.write("dictionary.xml", "<anything>" + content + "</anything>");
    }
    std::vector<ConversionTexts> texts(std::string const& content) {
        return ConversionTextsParser().parseFile(write(content), ValidationMode::None);
    }
    TemplateConversionCollection load(std::string const& content) {
        return TemplateConversionCollectionParser().parseFile(write(content), ValidationMode::None);
    }
    /// The texts of one form.
    Texts form(std::string const& type, std::string const& fields) {
        auto const all =
            texts("<conversion><from xsi:type=\"" + type + "\">" + fields + "</from></conversion>");
        return all.size() == 1 ? all.front().from : Texts{"not one conversion"};
    }
    std::string failure(std::string const& content) {
        return thrownText<ParseException>([&] { load(content); });
    }

    XMLScope xml;
    ScratchDirectory scratch;
};

constexpr char const* device = "<deviceId><EncodingType>08</EncodingType><MEIdType>{@me}"
                               "</MEIdType></deviceId>";

// At each level something stands ahead of and behind what is below: nothing is seen twice or left
// out on the way back.
TEST_F(DictionaryFile, FieldsAreFoundAtAnyDepthAndInTheirOrder) {
    for (std::size_t depth = 0; depth < 30; ++depth) {
        SCOPED_TRACE(depth);
        std::string fields = "<id>A</id>";
        std::string before;
        std::string behind;
        for (std::size_t level = 0; level < depth; ++level) {
            auto const name = std::to_string(level);
            fields = "<parameter name=\"b" + name + "\">1</parameter><level>" + fields +
                     "</level><parameter name=\"e" + name + "\"><i>2</i></parameter>";
            before.insert(0, "b" + name + "=1, ");
            behind += (level == 0 ? "" : ", ") + ("e" + name) + "=2";
        }
        auto const list = depth == 0 ? "" : before + behind;
        EXPECT_EQ(form("fid", fields), Texts{"FID: id=A, data=[" + list + "\x92"});
    }
}

struct FormRow {
    char const* what;
    char const* type;
    std::string fields;
    Texts texts;
};

TEST_F(DictionaryFile, FormsOfThePanelsSide) {
    FormRow const rows[] = {
        {"all fields",
         "fid",
         "<id>A.B</id><parameter name=\"a\">1</parameter><parameter name=\"b\">{@x}</parameter>",
         {"FID: id=A.B, data=[a=1, b={@x}\x92"}},
        {"no fields", "fid", "", {"FID: data=[\x92"}},
        {"an id twice", "fid", "<id>A</id><id>B</id>", {"FID: data=[\x92"}},
        {"a parameter without a name", "fid", "<parameter>1</parameter>", {"FID: data=[=1\x92"}},
        {"at any depth",
         "fid",
         "<x><id>A</id><y><parameter name=\"a\">1</parameter></y></x>",
         {"FID: id=A, data=[a=1\x92"}},
        {"all fields",
         "dfid",
         "<id>D</id><parameter name=\"a\">1</parameter>",
         {"DFID: id=D, data=[a=1\x92"}},
        {"no fields", "dfid", "", {"DFID: data=[\x92"}},
        {"all fields, in their own order",
         "sid",
         "<value>ON</value><id>S</id>",
         {"SID: id=S, value=ON"}},
        {"no fields", "sid", "", {"SID: "}},
        {"the id alone", "sid", "<id>S</id>", {"SID: id=S, "}},
        {"the value alone", "sid", "<value/>", {"SID: value="}},
        {"all fields",
         "tid",
         "<id>T</id><parameter name=\"ignored\">x</parameter>",
         {"TID: id=T, parameter=x"}},
        {"a parameter twice",
         "tid",
         "<id>T</id><parameter>x</parameter><parameter>y</parameter>",
         {"TID: id=T, "}},
        {"all fields", "context", "<name>N</name><value>1</value>", {"Context: name=N, value=1"}},
        {"no fields", "context", "", {"Context: "}},
    };
    for (FormRow const& row : rows) {
        SCOPED_TRACE(std::string(row.type) + ": " + row.what);
        EXPECT_EQ(form(row.type, row.fields), row.texts);
    }
}

TEST_F(DictionaryFile, FormsOfTheFramesSide) {
    std::string const did = ", did=[EncodingType=08, MEIdType={@me}\x92";
    FormRow const rows[] = {
        {"without \"pid=\"",
         "cplSetMessage",
         std::string("<paramId>17</paramId>") + device +
             "<data datatype=\"Int16\">{@v}</data><flag>relative</flag>",
         {"Set Message: 17" + did + ", data=[type=Int16, value={@v}\x92, flag=relative"}},
        {"no fields", "cplSetMessage", "", {"Set Message: "}},
        {"data without its type",
         "cplSetMessage",
         "<data>1</data>",
         {"Set Message: , data=[type=, value=1\x92"}},
        {"data twice",
         "cplSetMessage",
         "<data datatype=\"a\"/><data datatype=\"b\"/>",
         {"Set Message: "}},
        {"a device without fields",
         "cplSetMessage",
         "<deviceId>text</deviceId>",
         {"Set Message: , did=[\x92"}},
        {"all fields",
         "cplParameterIssue",
         std::string("<flag>{@f}</flag><data datatype=\"Bool\">{@v}</data>") + device +
             "<paramId>20</paramId>",
         {"Parameter Issue: pid=20" + did + ", data=[type=Bool, value={@v}\x92, flag={@f}"}},
        {"all fields",
         "cplSendEventMessage",
         std::string("<eventId>64</eventId>") + device + "<data size=\"2\">{@r}</data>",
         {"Send Event Message: eid=64" + did + ", data=[size=2, value={@r}\x92"}},
        {"without data",
         "cplSendEventMessage",
         std::string("<eventId>64</eventId>") + device,
         {"Send Event Message: eid=64" + did}},
        {"all fields",
         "cplSetListMessage",
         std::string("<listId>6</listId>") + device +
             "<number>1</number><action>2</action><item><itemId>1</itemId><status>2</status>"
             "<nextItemId>3</nextItemId><parameter name=\"clipName\" datatype=\"String\">x"
             "</parameter><parameter name=\"mark\" datatype=\"UInt32\">9</parameter></item>",
         {"Set List Message: lid=6" + did +
          ", number=1, action=2, item=[itemId=1, status=2, nextItemId=3, "
          "param=[name=clipName, data=[type=String, value=x\x92\x92, "
          "param=[name=mark, data=[type=UInt32, value=9\x92\x92\x92"}},
        {"without an item",
         "cplSetListMessage",
         "<listId>6</listId>",
         {"Set List Message: lid=6, item=[\x92"}},
        {"two items",
         "cplSetListMessage",
         "<item><itemId>1</itemId></item><item><itemId>2</itemId></item>",
         {"Set List Message: , item=[\x92"}},
        {"an item's fields by themselves",
         "cplListIssue",
         "<item><itemId>1</itemId></item>",
         {"List Issue: , item=[itemId=1, \x92"}},
        {"an item of parameters alone",
         "cplListIssue",
         "<item><parameter name=\"n\" datatype=\"t\">v</parameter></item>",
         {"List Issue: , item=[, param=[name=n, data=[type=t, value=v\x92\x92\x92"}},
        {"an item's field outside the item",
         "cplListIssue",
         "<itemId>7</itemId><item><status>1</status></item>",
         {"List Issue: , item=[status=1, \x92"}},
        {"a list's field inside the item counts",
         "cplListIssue",
         "<item><number>1</number></item>",
         {"List Issue: , number=1, item=[\x92"}},
        {"all fields",
         "cplListIssue",
         std::string("<listId>23</listId>") + device + "<number>1</number><action>2</action>",
         {"List Issue: lid=23" + did + ", number=1, item=[\x92"}},
        {"all fields",
         "cplParameterSubscription",
         std::string("<paramId>1</paramId>") + device + "<flag>update</flag>",
         {"Parameter Subscription: pid=1" + did + ", flag=update"}},
        {"all fields",
         "cplListSubscription",
         std::string("<listId>1</listId><listNumber>2</listNumber>") + device +
             "<flag>update</flag>",
         {"List Subscription: lid=1, number=2" + did + ", flag=update"}},
        {"the number is called listNumber",
         "cplListSubscription",
         "<number>2</number>",
         {"List Subscription: "}},
    };
    for (FormRow const& row : rows) {
        SCOPED_TRACE(std::string(row.type) + ": " + row.what);
        EXPECT_EQ(form(row.type, row.fields), row.texts);
    }
}

TEST_F(DictionaryFile, BatchesHaveTheirMembersOneByOne) {
    std::string const one = "<subscription><paramId>1</paramId></subscription>";
    FormRow const rows[] = {
        {"no members", "cplBatchSubscription", "", {"Batch Subscription: | flag=append"}},
        {"a flag",
         "cplBatchSubscription",
         one + one + "<flag>update</flag>",
         {"Batch Subscription: |Parameter Subscription: pid=1|Parameter Subscription: pid=1"
          "| flag=update"}},
        {"a member's flag counts for the batch",
         "cplBatchSubscription",
         "<subscription><paramId>1</paramId><flag>update</flag></subscription>",
         {"Batch Subscription: |Parameter Subscription: pid=1, flag=update| flag=update"}},
        {"with several flags none counts",
         "cplBatchSubscription",
         "<subscription><flag>update</flag></subscription><flag>replace</flag>",
         {"Batch Subscription: |Parameter Subscription: , flag=update| flag=append"}},
        {"a range makes a member a value",
         "cplBatchSubscription",
         "<subscription><paramId>(1-2)</paramId><deviceId><E>(0x09-0x0a)</E></deviceId>"
         "</subscription>" +
             one,
         {"Batch Subscription: |Parameter Subscription: pid=1, did=[E=09\x92"
          "|Parameter Subscription: pid=1, did=[E=0a\x92"
          "|Parameter Subscription: pid=2, did=[E=09\x92"
          "|Parameter Subscription: pid=2, did=[E=0a\x92"
          "|Parameter Subscription: pid=1| flag=append"}},
        {"an empty range makes no member",
         "cplBatchSubscription",
         "<subscription><paramId>(2-1)</paramId></subscription>" + one,
         {"Batch Subscription: |Parameter Subscription: pid=1| flag=append"}},
        {"the flag's range multiplies the batch",
         "cplBatchSubscription",
         one + "<flag>f(1-2)</flag>",
         {"Batch Subscription: |Parameter Subscription: pid=1| flag=f1",
          "Batch Subscription: |Parameter Subscription: pid=1| flag=f2"}},
    };
    for (FormRow const& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(form(row.type, row.fields), row.texts);
    }
}

TEST_F(DictionaryFile, TypesAreComparedWhole) {
    for (char const* type : {"", "FID", "fids", " fid", "cplSetmessage", "x:fid"}) {
        SCOPED_TRACE(type);
        EXPECT_EQ(form(type, "<id>A</id>"), Texts{});
    }
    EXPECT_EQ(texts("<conversion><from type=\"fid\"/></conversion>").at(0).from, Texts{});
}

TEST_F(DictionaryFile, TextIsTakenAsItStandsOneByteACharacter) {
    EXPECT_EQ(form("sid", "<id> a\tb </id><value>x<!-- c -->\xc3\xa9&#x92;&#x2019;<b>y</b>"
                          "<![CDATA[<z>]]></value>"),
              (Texts{"SID: id= a\tb , value=x\xe9\x92?y<z>"}));
}

TEST_F(DictionaryFile, ADeviceHasItsFieldsByTheNamesOfItsChildrenAlone) {
    EXPECT_EQ(form("cplSetMessage", "<deviceId>\n <EncodingType>0<b>8</b></EncodingType>\n "
                                    "<!-- c --><MEIdType/>\n</deviceId>"),
              (Texts{"Set Message: , did=[EncodingType=08, MEIdType=\x92"}));
}

TEST_F(DictionaryFile, RangesMakeATemplateAValue) {
    EXPECT_EQ(form("sid", "<id>A(1-2)</id><value>(0x09-0x0a)</value>"),
              (Texts{"SID: id=A1, value=09", "SID: id=A1, value=0a", "SID: id=A2, value=09",
                     "SID: id=A2, value=0a"}));
    EXPECT_EQ(form("sid", "<id>A(3-1)</id>"), Texts{});
    // In an attribute and in a name as well.
    EXPECT_EQ(form("fid", "<parameter name=\"p(1-2)\"/>"),
              (Texts{"FID: data=[p1=\x92", "FID: data=[p2=\x92"}));
}

TEST_F(DictionaryFile, AConversionHasExactlyOneFromAndAnyNumberOfTo) {
    std::string const sid = " xsi:type=\"sid\"/>";
    EXPECT_EQ(texts("<conversion/>").size(), 0u);
    EXPECT_EQ(texts("<conversion><to" + sid + "</conversion>").size(), 0u);
    EXPECT_EQ(texts("<conversion><from" + sid + "<from" + sid + "</conversion>").size(), 0u);
    EXPECT_EQ(texts("<conversion><from" + sid + "</conversion>").at(0).to, Texts{});
    EXPECT_EQ(
        texts("<conversion><to" + sid + "<x><from" + sid + "</x><y><to" + sid + "</y></conversion>")
            .at(0)
            .to,
        (Texts{"SID: ", "SID: "}));
}

TEST_F(DictionaryFile, ConversionsAreFoundAtAnyDepthInTheFilesOrder) {
    auto const named = [](char const* id) {
        return std::string("<from xsi:type=\"sid\"><id>") + id + "</id></from>";
    };
    auto const all = texts("<a><conversion>" + named("1") + "</conversion></a><conversion>" +
                           named("2") + "<to xsi:type=\"sid\"/></conversion>");
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].from, Texts{"SID: id=1, "});
    EXPECT_EQ(all[1].from, Texts{"SID: id=2, "});
}

// A nested conversion makes the outer one's `from` a repeated one.
TEST_F(DictionaryFile, AConversionInAnotherCountsForBoth) {
    std::string const from = "<from xsi:type=\"sid\"/>";
    EXPECT_EQ(
        texts("<conversion>" + from + "<conversion>" + from + "</conversion></conversion>").size(),
        1u);
    EXPECT_EQ(texts("<conversion><conversion>" + from + "</conversion></conversion>").size(), 2u);
}

TEST_F(DictionaryFile, AToOfUnknownTypeIsLeftOut) {
    auto const all = texts("<conversion><from xsi:type=\"sid\"/><to xsi:type=\"sid\"><id>1</id>"
                           "</to><to xsi:type=\"sad\"><id>2</id></to><to xsi:type=\"tid\"><id>3"
                           "</id></to></conversion>");
    EXPECT_EQ(all.at(0).to, (Texts{"SID: id=1, ", "TID: id=3, "}));
}

TEST_F(DictionaryFile, EveryFromGetsAllOutputs) {
    TemplateConversionCollection collection =
        load("<conversion><from xsi:type=\"fid\"><id>K(1-3)</id><parameter name=\"v\">{@v}"
             "</parameter></from><to xsi:type=\"sid\"><id>S(1-2)</id><value>{@v}</value></to>"
             "<to xsi:type=\"context\"><name>N</name><value>{@v}</value></to></conversion>");
    EXPECT_EQ(collection.getConversions().size(), 3u);
    Template::ContextStore context;
    for (char const* key : {"K1", "K2", "K3"})
        EXPECT_EQ(
            collection.convert(std::string("FID: id=") + key + ", data=[v=7\x92", &context),
            (Texts{"SID: id=S1, value=7", "SID: id=S2, value=7", "Context: name=N, value=7"}));
    EXPECT_EQ(collection.convert("FID: id=K4, data=[v=7\x92", &context), Texts{});
}

TEST_F(DictionaryFile, ALonePrefixIsOneLiteral) {
    TemplateConversionCollection collection =
        load("<conversion><from xsi:type=\"sid\"/><to xsi:type=\"sid\"><id>X</id></to>"
             "</conversion>");
    Template::ContextStore context;
    EXPECT_EQ(collection.convert("SID: ", &context), Texts{"SID: id=X, "});
    EXPECT_EQ(collection.convert("SID: id=A, value=1", &context), Texts{});
}

TEST_F(DictionaryFile, AFromOfUnknownTypeMakesNoEntry) {
    EXPECT_TRUE(load("<conversion><from xsi:type=\"unknown\"/><to xsi:type=\"sid\"/></conversion>")
                    .getConversions()
                    .empty());
}

TEST_F(DictionaryFile, WhatTheExpansionOrTheTemplatesThrowLosesTheFile) {
    std::string const good = "<conversion><from xsi:type=\"sid\"/></conversion>";
    for (char const* text :
         {"A(x)", "(0xg-0x1)", "(1-2", "{}", "{$context}", "{@v|width=x}", "{@v|bitmask=x}"}) {
        SCOPED_TRACE(text);
        std::string const content =
            good + "<conversion><from xsi:type=\"sid\"><id>" + text + "</id></from></conversion>";
        EXPECT_EQ(failure(content),
                  "An unforeseen problem has occurred while parsing the xml file " +
                      scratch.path("dictionary.xml"));
    }
    // In an output as well, even if nothing would lead to it.
    EXPECT_NE(failure("<conversion><from xsi:type=\"?\"/><to xsi:type=\"sid\"><id>A(x)</id></to>"
                      "</conversion>"),
              "nothing was thrown");
}

TEST_F(DictionaryFile, ManyEntriesTakeTheirShareOfTime) {
    // A search by tag name for each field would make this one a matter of hours.
    constexpr std::size_t count = 20000;
    std::string content;
    for (std::size_t entry = 0; entry < count; ++entry)
        content += "<conversion><from xsi:type=\"fid\"><id>K" + std::to_string(entry) +
                   "</id></from><to xsi:type=\"sid\"><id>S</id></to></conversion>";
    EXPECT_EQ(texts(content).size(), count);
}

}  // namespace
}  // namespace FrameDriver::XML
