#include "sims/frame/ModelFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace FrameSim {
namespace {

std::string errorOf(std::string const& text) {
    try {
        readModel("m.json", text);
    } catch (ModelError const& error) {
        return error.what();
    }
    return "no error";
}

FrameModel withParameter(std::string const& members) {
    return readModel("m.json", "{\"parameters\": [{" + members + "}]}");
}

std::vector<std::string> texts(FrameModel const& model) {
    std::vector<std::string> all;
    for (auto const& line : model.dump()) {
        all.push_back(line.text());
    }
    return all;
}

using Texts = std::vector<std::string>;

TEST(ModelFile, AnEmptyObjectIsAFrameWithNothing) {
    auto const model = readModel("m.json", "{}");
    EXPECT_EQ(model.name, "unnamed");
    EXPECT_EQ(model.behaviour, "none");
    EXPECT_EQ(texts(model), Texts{});
}

TEST(ModelFile, AParameterIsThereForEachDeviceOfItsSteps) {
    auto const model =
        withParameter(R"("pid": 10, "type": "UInt16", "value": 3, "device": "24000000",
                         "over": [{"shift": 4, "count": 2}, {"shift": 8, "count": 3}])");
    EXPECT_EQ(texts(model), (Texts{"parameter pid=10 did=24000000 type=UInt16 value=3",
                                   "parameter pid=10 did=24000010 type=UInt16 value=3",
                                   "parameter pid=10 did=24000100 type=UInt16 value=3",
                                   "parameter pid=10 did=24000110 type=UInt16 value=3",
                                   "parameter pid=10 did=24000200 type=UInt16 value=3",
                                   "parameter pid=10 did=24000210 type=UInt16 value=3"}));
}

TEST(ModelFile, AValueLeftOutIsZeroOrTheNearestBound) {
    struct Row {
        std::string members;
        std::string shown;
    };
    Row const rows[] = {
        {R"("type": "UInt16")", "0"},
        {R"("type": "UInt16", "minimum": 5)", "5"},
        {R"("type": "Int32", "maximum": -5)", "-5"},
        {R"("type": "Bool")", "false"},
        {R"("type": "Percent", "minimum": 0.5)", "0.5"},
        {R"("type": "String")", "\"\""},
        {R"("type": "String", "value": "\u0092\u00e9")", R"("\x92\xe9")"},
        {R"("type": "Bool", "value": true)", "true"},
        {R"("type": "Float", "value": 1e3)", "1000"},
        {R"("type": "UInt16", "maximum": 99, "also": 65535, "value": 65535)", "65535"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.members);
        auto const model = withParameter(R"("pid": 1, "device": "01000001", )" + row.members);
        EXPECT_EQ(shownValue(model.find(ParameterKey{1, 0x01000001})->value), row.shown);
    }
}

TEST(ModelFile, ItemsAreOrderedAndLinked) {
    auto const model = readModel("m.json", R"({"lists": [
        {"lid": 6, "number": 1, "device": "3e000000", "writable": true, "items": [
            {"itemId": 7, "fields": {"Clip Name": "second"}},
            {"itemId": 3, "fields": {"MarkIn Time": 25}}]}]})");
    EXPECT_EQ(texts(model),
              (Texts{R"(item lid=6 number=1 did=3e000000 itemId=3 nextItemId=7 status=1 )"
                     R"("MarkIn Time"=25 "Clip Name"="")",
                     R"(item lid=6 number=1 did=3e000000 itemId=7 nextItemId=0 status=1 )"
                     R"("MarkIn Time"=0 "Clip Name"="second")"}));
    EXPECT_TRUE(model.find(ListKey{6, 1, 0x3e000000})->writable);
}

TEST(ModelFile, AMistakeIsShownWithItsPlace) {
    EXPECT_EQ(errorOf("{\n  \"parameters\": [\n    {\"pid\": \"ten\"}\n  ]\n}"),
              "m.json:3:13: \"pid\" must be a whole number from 0 to 65535\n"
              "    {\"pid\": \"ten\"}\n"
              "            ^");
}

/// The first line of the error, without the file's name.
std::string firstLine(std::string const& text) {
    auto const error = errorOf(text);
    return error.substr(0, error.find('\n')).substr(std::string("m.json:").size());
}

TEST(ModelFile, NamesTheCauseAndThePlaceOfEachMistake) {
    struct Row {
        std::string text;
        std::string error;
    };
    Row const rows[] = {
        {"", "1:1: syntax error while parsing value - unexpected end of input; expected '[', "
             "'{', or a literal"},
        {"{\"name\": nope}", "1:11: syntax error while parsing value - invalid literal; last "
                             "read: '\"name\": no'"},
        {"[]", "1:1: the model must be an object, not an array"},
        {R"({"name": 5})", "1:10: \"name\" must be a string, not a number"},
        {R"({"nome": 5})",
         "1:2: \"nome\" is not known here; the model has name, comment, behaviour, parameters, "
         "events, lists"},
        {R"({"name": "a", "name": "b"})", "1:15: \"name\" stands twice in this object"},
        {R"({"name": "€"})", "1:10: the text has a character above U+00FF, which no byte holds"},
        {R"({"behaviour": "magic"})", "1:15: \"behaviour\" must be \"none\" or \"switcher\""},
        {R"({"parameters": {}})", "1:16: \"parameters\" must be an array, not an object"},
        {R"({"parameters": [5]})", "1:17: a parameter must be an object, not a number"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(firstLine(row.text), row.error);
    }
}

TEST(ModelFile, NamesTheCauseOfEachMistakeInAParameter) {
    struct Row {
        std::string members;
        std::string error;  // behind line 1, column of the parameter's "{" at 17
    };
    Row const rows[] = {
        {R"("device": "01000001", "type": "Bool")", "1:17: \"pid\" is missing"},
        {R"("pid": 70000, "device": "01000001", "type": "Bool")",
         "1:25: \"pid\" must be a whole number from 0 to 65535"},
        {R"("pid": 1.5, "device": "01000001", "type": "Bool")",
         "1:25: \"pid\" must be a whole number from 0 to 65535"},
        {R"("pid": 1, "type": "Bool")", "1:17: \"device\" is missing"},
        {R"("pid": 1, "type": "Bool", "device": 5)",
         "1:54: \"device\" must be a string, not a number"},
        {R"("pid": 1, "type": "Bool", "device": "1000001")",
         "1:54: \"device\" must be eight hexadecimal digits, such as \"24000000\""},
        {R"("pid": 1, "device": "01000001")", "1:17: \"type\" is missing"},
        {R"("pid": 1, "type": "Double")",
         "1:36: \"Double\" is no type; there are Int16, Int32, UInt16, UInt32, Bool, Float, "
         "String, Clock, Degree, Percent, Revolution, ScreenUnit, SPercent, State"},
        {R"("pid": 1, "type": "Bool", "maximum": 1)", "1:55: a Bool has no \"maximum\""},
        {R"("pid": 1, "type": "Int16", "maximum": 40000)",
         "1:56: \"maximum\" must be a whole number from -32768 to 32767"},
        {R"("pid": 1, "type": "Int16", "minimum": 2, "maximum": 1)",
         "1:56: \"minimum\" is above \"maximum\""},
        {R"("pid": 1, "type": "UInt16", "maximum": 9, "value": 10)",
         "1:69: \"value\" lies outside \"minimum\" and \"maximum\""},
        {R"("pid": 1, "type": "UInt16", "value": true)",
         "1:55: \"value\" must be a whole number from 0 to 65535"},
        {R"("pid": 1, "type": "Bool", "value": 1)", "1:53: \"value\" must be true or false"},
        {R"("pid": 1, "type": "Float", "value": "1")", "1:54: \"value\" must be a number"},
        {R"("pid": 1, "type": "String", "value": 1)", "1:55: \"value\" must be a string"},
        {R"("pid": 1, "type": "Bool", "readOnly": 1)",
         "1:56: \"readOnly\" must be true or false, not a number"},
        {R"("pid": 1, "type": "Bool", "device": "01000001", "over": [{"shift": 32}])",
         "1:85: \"shift\" must be a whole number from 0 to 31"},
        {R"("pid": 1, "type": "Bool", "device": "01000001", "over": [{"shift": 0}])",
         "1:75: \"count\" is missing"},
        {R"("pid": 1, "type": "Bool", "device": "01000001", "over": [{"shift": 0, "count": 2},
            {"shift": 0, "count": 2}])",
         "1:17: the parameter pid=1 did=01000002 is there twice"},
        {R"("pid": 1, "type": "Bool", "device": "00000000",
            "over": [{"shift": 16, "count": 65536}, {"shift": 0, "count": 65536}])",
         "2:53: the model has more than 100000 parameters, events and list items"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.members);
        EXPECT_EQ(firstLine("{\"parameters\": [{" + row.members + "}]}"), row.error);
    }
}

TEST(ModelFile, NamesTheCauseOfEachMistakeInAnEventOrAList) {
    struct Row {
        std::string text;
        std::string error;
    };
    Row const rows[] = {
        {R"({"events": [{"device": "03000000"}]})", "1:13: \"eid\" is missing"},
        {R"({"events": [{"eid": 1, "device": "03000000", "data": -1}]})",
         "1:54: \"data\" must be a whole number from 0 to 32767"},
        {"{\"events\": [{\"eid\": 1, \"device\": \"03000000\"},\n"
         "{\"eid\": 1, \"device\": \"03000000\"}]}",
         "2:1: the event eid=1 did=03000000 is there twice"},
        {R"({"lists": [{"lid": 7, "number": 1, "device": "62000000"}]})",
         "1:20: there is no list 7"},
        {R"({"lists": [{"lid": 6, "device": "62000000"}]})", "1:12: \"number\" is missing"},
        {R"({"lists": [{"lid": 6, "number": 1, "device": "62000000", "items": [{}]}]})",
         "1:68: \"itemId\" is missing"},
        {R"({"lists": [{"lid": 6, "number": 1, "device": "62000000", "items": [)"
         R"({"itemId": 0}]}]})",
         "1:79: \"itemId\" must be a whole number from 1 to 4294967295"},
        {R"({"lists": [{"lid": 6, "number": 1, "device": "62000000", "items": [)"
         "{\"itemId\": 1},\n{\"itemId\": 1}]}]}",
         "2:1: the item 1 is there twice"},
        {R"({"lists": [{"lid": 6, "number": 1, "device": "62000000", "items": [)"
         "{\"itemId\": 1,\n \"fields\": {\"Clip\": \"x\"}}]}]}",
         "2:13: the list has no field \"Clip\""},
        {R"({"lists": [{"lid": 6, "number": 1, "device": "62000000", "items": [)"
         "{\"itemId\": 1,\n \"fields\": {\"Clip Name\": 1}}]}]}",
         "2:26: \"Clip Name\" must be a string"},
        {"{\"lists\": [{\"lid\": 6, \"number\": 1, \"device\": \"62000000\"},\n"
         "{\"lid\": 6, \"number\": 1, \"device\": \"62000000\"}]}",
         "2:1: the list lid=6 number=1 did=62000000 is there twice"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(firstLine(row.text), row.error);
    }
}

TEST(ModelFile, NestingIsBounded) {
    EXPECT_EQ(firstLine(std::string(100, '[')), "1:65: nested deeper than 64");
}

TEST(ModelFile, AFileThatCantBeReadIsNamed) {
    try {
        readModelFile("/nonexistent/model.json");
        FAIL();
    } catch (ModelError const& error) {
        EXPECT_STREQ(error.what(), "/nonexistent/model.json: No such file or directory");
    }
    try {
        readModelFile("/");
        FAIL();
    } catch (ModelError const& error) {
        EXPECT_STREQ(error.what(), "/: Is a directory");
    }
}

TEST(SampleSwitcher, IsTheFileOfTheInstallation) {
    std::string const path = QFD_SOURCE_DIR "/installation/frame/sample-switcher.json";
    std::ifstream file(path);
    std::ostringstream content;
    content << file.rdbuf();
    EXPECT_EQ(sampleSwitcherJson(), content.str());
    EXPECT_EQ(texts(readModelFile(path)), texts(sampleSwitcher()));
}

TEST(SampleSwitcher, HasWhatItsPageSays) {
    auto const model = sampleSwitcher();
    EXPECT_EQ(model.behaviour, "switcher");
    EXPECT_EQ(model.allParameters().size(), 20U + 17 + 4 * 8 + 5 * 2 + 4 + 2 + 1 + 8);
    EXPECT_EQ(model.allEvents().size(), 7U);
    EXPECT_EQ(model.allLists().size(), 4U);
    EXPECT_EQ(model.find(ListKey{12, 1, 0x62000000})->items.size(), 17U);
    EXPECT_TRUE(model.find(ParameterKey{11, 0x1b000010})->readOnly);
    EXPECT_EQ(model.find(EventKey{65, 0x35000000})->dataSize, 6U);
}

}  // namespace
}  // namespace FrameSim
