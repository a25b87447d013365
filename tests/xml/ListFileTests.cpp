#include "XMLFiles.h"
#include "cpl/Subscription.h"
#include "foundation/Exceptions.h"
#include "foundation/ValueConversions.h"
#include "xml/CPLSubscriptionListParser.h"
#include "xml/FIDRegistrationListParser.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::ParseException;

/// "p 17 0x10 3" for a parameter, "l 12/1 0x10 3" for a list.
std::string shown(CPL::Subscription const& subscription) {
    auto const hex = [](std::uint32_t did) { return " 0x" + Tools::uint32ToHexString(did); };
    std::string const flag = ' ' + std::to_string(subscription.getFlag());
    if (auto const* list = dynamic_cast<CPL::ListSubscription const*>(&subscription))
        return "l " + std::to_string(list->getLid()) + '/' + std::to_string(list->getNumber()) +
               hex(list->getDid()) + flag;
    auto const& parameter = dynamic_cast<CPL::ParameterSubscription const&>(subscription);
    return "p " + std::to_string(parameter.getPid()) + hex(parameter.getDid()) + flag;
}

class ListFile : public ::testing::Test {
  protected:
    ListFile() {
        std::filesystem::create_directory(scratch.path("Schemas"));
        for (char const* name : {"CPLSubscriptionList.xsd", "FIDRegistrationList.xsd"})
            std::filesystem::copy_file(std::string(QFD_SCHEMAS "/") + name,
                                       scratch.path(std::string("Schemas/") + name));
    }

    std::string write(std::string const& root, std::string const& space, std::string const& schema,
                      std::string const& content) {
        return scratch.write(
            "list.xml", "<" + root + " xmlns=\"" + space +
                            "\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                            "xsi:schemaLocation=\"" +
                            space + " ./Schemas/" + schema + "\">" + content + "</" + root + ">");
    }

    XMLScope xml;
    ScratchDirectory scratch;
};

class SubscriptionList : public ListFile {
  protected:
    std::vector<std::string> load(std::string const& content,
                                  ValidationMode mode = ValidationMode::Schema) {
        path = write("subscriptionList", "FrameDriver/Subscriptions", "CPLSubscriptionList.xsd",
                     content);
        std::vector<std::string> texts;
        for (CPL::Subscription* subscription : CPLSubscriptionListParser().parseFile(path, mode)) {
            std::unique_ptr<CPL::Subscription const> const owned(subscription);
            texts.push_back(shown(*owned));
        }
        return texts;
    }

    std::vector<std::string> loadParameter(std::string const& content) {
        return load("<subscription xsi:type=\"parameterSubscription\">" + content +
                    "</subscription>");
    }

    std::string path;
};

using Texts = std::vector<std::string>;

TEST_F(SubscriptionList, EveryNumberGoesWithEveryDeviceTheNumbersSlowest) {
    EXPECT_EQ(loadParameter("<paramId>[1-2]</paramId><deviceId>[0x10-0x12]</deviceId>"),
              (Texts{"p 1 0x10 3", "p 1 0x11 3", "p 1 0x12 3", "p 2 0x10 3", "p 2 0x11 3",
                     "p 2 0x12 3"}));
    EXPECT_EQ(load("<subscription xsi:type=\"listSubscription\"><listId>[12-13]</listId>"
                   "<deviceId>62000000</deviceId></subscription>"),
              (Texts{"l 12/1 0x62000000 3", "l 13/1 0x62000000 3"}));
}

TEST_F(SubscriptionList, TheOrderOfTheFileIsKept) {
    EXPECT_EQ(load("<subscription xsi:type=\"listSubscription\"><deviceId>1</deviceId>"
                   "<listId>6</listId></subscription>"
                   "<subscription xsi:type=\"parameterSubscription\"><flag>update</flag>"
                   "<deviceId>2</deviceId><paramId>7</paramId></subscription>"),
              (Texts{"l 6/1 0x1 3", "p 7 0x2 4"}));
}

TEST_F(SubscriptionList, NumbersAreExpandedByTheirElementsRule) {
    struct Row {
        char const* paramId;
        char const* deviceId;
        Texts texts;
    };
    Row const rows[] = {
        {"1", "[0x1-0x2]", {"p 1 0x1 3", "p 1 0x2 3"}},
        {"1", "0x00[00-02]00", {"p 1 0x0 3", "p 1 0x100 3", "p 1 0x200 3"}},
        {"1",
         "[08-10]",
         {"p 1 0x8 3", "p 1 0x9 3", "p 1 0xa 3", "p 1 0xb 3", "p 1 0xc 3", "p 1 0xd 3", "p 1 0xe 3",
          "p 1 0xf 3", "p 1 0x10 3"}},
        {"[1-2][3-4]", "1", {"p 13 0x1 3", "p 14 0x1 3", "p 23 0x1 3", "p 24 0x1 3"}},
        {"[5-3]", "1", {}},
        {"1", "[5-3]", {}},
        {"32767", "ffffffff", {"p 32767 0xffffffff 3"}},
        {" 17 and more", "0x1b", {"p 17 0x1b 3"}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(std::string(row.paramId) + " with " + row.deviceId);
        EXPECT_EQ(loadParameter(std::string("<paramId>") + row.paramId + "</paramId><deviceId>" +
                                row.deviceId + "</deviceId>"),
                  row.texts);
    }
}

TEST_F(SubscriptionList, FlagsHaveTheirWordsAndAllElseAppends) {
    struct Row {
        char const* flags;
        char const* text;
    };
    Row const rows[] = {
        {"", "p 1 0x2 3"},
        {"<flag>immediate</flag>", "p 1 0x2 1"},
        {"<flag>replace</flag>", "p 1 0x2 2"},
        {"<flag>append</flag>", "p 1 0x2 3"},
        {"<flag>update</flag>", "p 1 0x2 4"},
        {"<flag>Update</flag>", "p 1 0x2 3"},
        {"<flag> update</flag>", "p 1 0x2 3"},
        {"<flag/>", "p 1 0x2 3"},
        {"<flag>replace</flag><flag>update</flag>", "p 1 0x2 2"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.flags);
        EXPECT_EQ(
            loadParameter(std::string("<paramId>1</paramId><deviceId>2</deviceId>") + row.flags),
            (Texts{row.text}));
    }
}

TEST_F(SubscriptionList, AnIdentifierThatIsntThereExactlyOnceYieldsNothing) {
    for (char const* content :
         {"", "<paramId>1</paramId>", "<deviceId>1</deviceId>",
          "<paramId>1</paramId><paramId>2</paramId><deviceId>1</deviceId>",
          "<paramId>1</paramId><deviceId>1</deviceId><deviceId>2</deviceId>"}) {
        SCOPED_TRACE(content);
        EXPECT_EQ(loadParameter(content), Texts{});
    }
}

TEST_F(SubscriptionList, OtherTypesAreSkipped) {
    std::string const content =
        "<paramId>1</paramId><listId>1</listId><deviceId>1</deviceId></subscription>";
    EXPECT_EQ(load("<subscription xsi:type=\"ParameterSubscription\">" + content +
                       "<subscription xsi:type=\"x:parameterSubscription\">" + content +
                       "<subscription>" + content +
                       "<deep><subscription xsi:type=\"listSubscription\">" + content + "</deep>",
                   ValidationMode::None),
              (Texts{"l 1/1 0x1 3"}));
}

TEST_F(SubscriptionList, TheSchemaKnowsTheTwoTypesAlone) {
    std::string const content = "<paramId>1</paramId><deviceId>1</deviceId></subscription>";
    for (std::string const open :
         {"<subscription>", "<subscription xsi:type=\"subscription\">",
          "<subscription xsi:type=\"batchSubscription\">",
          "<subscription xsi:type=\"listSubscription\">", "<other>1</other><subscription>"}) {
        SCOPED_TRACE(open);
        EXPECT_THROW(load(open + content), ParseException);
    }
}

TEST_F(SubscriptionList, BadNumbersAreUnforeseenAndLoseTheWholeFile) {
    std::string const good = "<subscription xsi:type=\"parameterSubscription\"><paramId>1</paramId>"
                             "<deviceId>1</deviceId></subscription>";
    for (char const* numbers :
         {"<paramId>x</paramId><deviceId>1</deviceId>", "<paramId/><deviceId>1</deviceId>",
          "<paramId>32768</paramId><deviceId>1</deviceId>",
          "<paramId>1</paramId><deviceId>g</deviceId>",
          "<paramId>1</paramId><deviceId>[1-</deviceId>",
          "<paramId>1</paramId><deviceId>100000000</deviceId>"}) {
        SCOPED_TRACE(numbers);
        std::string const text = thrownText<ParseException>([&] {
            load(good + "<subscription xsi:type=\"parameterSubscription\">" + numbers +
                 "</subscription>");
        });
        EXPECT_EQ(text, "An unforeseen problem has occurred while parsing the xml file " + path);
    }
}

TEST_F(SubscriptionList, ANegativeNumberIsTakenInTwosComplement) {
    EXPECT_EQ(loadParameter("<paramId>-2</paramId><deviceId>1</deviceId>"), (Texts{"p -2 0x1 3"}));
}

// Kept: devices that are written with a leading "a" have always shown on the console.
TEST_F(SubscriptionList, DevicesThatBeginWithAnAArePrinted) {
    testing::internal::CaptureStdout();
    loadParameter("<paramId>[1-2]</paramId><deviceId>[09-0b]</deviceId>");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    testing::internal::CaptureStdout();
    loadParameter("<paramId>[1-2]</paramId><deviceId>[9-b]0</deviceId>");
    loadParameter("<deviceId>a</deviceId>");
    loadParameter("<paramId>1</paramId><deviceId>A1</deviceId>");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "a0\na\n");
}

class RegistrationList : public ListFile {
  protected:
    std::list<std::string> load(std::string const& content,
                                ValidationMode mode = ValidationMode::Schema) {
        return FIDRegistrationListParser().parseFile(write("fidRegistrationList",
                                                           "FrameDriver/FIDRegistration",
                                                           "FIDRegistrationList.xsd", content),
                                                     mode);
    }
};

using Names = std::list<std::string>;

TEST_F(RegistrationList, NamesComeInTheFilesOrderWithTheirRangesExpanded) {
    EXPECT_EQ(load("<fid>PANEL.INIT</fid><fid>A(1-2)B</fid><fid>M(0x9-0xa).K(1-2)</fid>"
                   "<fid>KEY[1-2]</fid><fid>*.CUT</fid>"),
              (Names{"PANEL.INIT", "A1B", "A2B", "M9.K1", "M9.K2", "Ma.K1", "Ma.K2", "KEY[1-2]",
                     "*.CUT"}));
}

TEST_F(RegistrationList, TextIsTakenAsItStandsAndNamesMayRepeat) {
    EXPECT_EQ(load("<fid> A</fid><fid> A</fid><fid/>"), (Names{" A", " A", ""}));
}

TEST_F(RegistrationList, NoNamesAtAllIsAnEmptyList) {
    EXPECT_EQ(load(""), Names{});
    EXPECT_EQ(load("<fid>A(2-1)</fid>"), Names{});
}

TEST_F(RegistrationList, NamesAreFoundAtAnyDepth) {
    EXPECT_EQ(load("<group><fid>A</fid></group><fid>B</fid>", ValidationMode::None),
              (Names{"A", "B"}));
}

TEST_F(RegistrationList, BreaksItsSchemaWithAnythingElse) {
    for (char const* content : {"<group/>", "text", "<fid id=\"A\"/>", "<fid><b/></fid>"}) {
        SCOPED_TRACE(content);
        EXPECT_THROW(load(content), ParseException);
    }
}

TEST_F(RegistrationList, BadNumbersLoseTheWholeFile) {
    EXPECT_THROW(load("<fid>A</fid><fid>B(x)</fid>"), ParseException);
    EXPECT_THROW(load("<fid>A(0xg-0xh)</fid>"), ParseException);
}

}  // namespace
}  // namespace FrameDriver::XML
