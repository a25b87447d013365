#include "../xml/XMLFiles.h"
#include "conversion/Manifest.h"
#include "conversion/ManifestParser.h"
#include "foundation/Exceptions.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace FrameDriver::XML {
namespace {

using Names = std::vector<std::string>;
using Tools::Manifest;

class ManifestFile : public ::testing::Test {
  protected:
    Manifest load(std::string const& content) {
        return ManifestParser().parseFile(
            scratch.write("Manifest.xml", "<anything>" + content + "</anything>"),
            ValidationMode::None);
    }

    XMLScope xml;
    ScratchDirectory scratch;
};

void expectLists(Manifest const& manifest, Names const& subscriptions, Names const& fids,
                 Names const& toCPL, Names const& toSID, Names const& monkeys) {
    EXPECT_EQ(manifest.getCplSubscriptionLists(), subscriptions);
    EXPECT_EQ(manifest.getFidRegistrationLists(), fids);
    EXPECT_EQ(manifest.getFidToCPLDictionaries(), toCPL);
    EXPECT_EQ(manifest.getIssueToSIDDictionaries(), toSID);
    EXPECT_EQ(manifest.getMonkeyTests(), monkeys);
}

TEST(Manifest, NamesAreAppendedToTheListTheyBelongTo) {
    Manifest manifest;
    expectLists(manifest, {}, {}, {}, {}, {});
    manifest.addCplSubscriptionList("s1");
    manifest.addCplSubscriptionList("s2");
    manifest.addFidRegistrationList("r");
    manifest.addFidToCPLDictionary("f");
    manifest.addIssueToSIDDictionary("i");
    manifest.addMonkeyTest("m");
    expectLists(manifest, {"s1", "s2"}, {"r"}, {"f"}, {"i"}, {"m"});
}

TEST(Manifest, ListsAreCopies) {
    Manifest manifest;
    manifest.addMonkeyTest("m");
    manifest.getMonkeyTests().clear();
    EXPECT_EQ(manifest.getMonkeyTests(), Names{"m"});
}

TEST_F(ManifestFile, WithoutModulesIsEmpty) { expectLists(load(""), {}, {}, {}, {}, {}); }

TEST_F(ManifestFile, EachModuleNamesItsFilesInTheFilesOrder) {
    expectLists(load("<moduleConfiguration><cplSubscriptionList>s1</cplSubscriptionList>"
                     "<fidRegistrationList>r1</fidRegistrationList>"
                     "<fidToCPLDictionary>f1</fidToCPLDictionary>"
                     "<issueToSIDDictionary>i1</issueToSIDDictionary>"
                     "<monkeytest>m1</monkeytest></moduleConfiguration>"
                     "<moduleConfiguration><monkeytest>m2</monkeytest>"
                     "<issueToSIDDictionary>i2</issueToSIDDictionary>"
                     "<fidToCPLDictionary>f2</fidToCPLDictionary>"
                     "<fidRegistrationList>r2</fidRegistrationList>"
                     "<cplSubscriptionList>s2</cplSubscriptionList></moduleConfiguration>"),
                {"s1", "s2"}, {"r1", "r2"}, {"f1", "f2"}, {"i1", "i2"}, {"m1", "m2"});
}

// The four lists stay of one length; whoever loads them copes with the empty names.
TEST_F(ManifestFile, AFileThatIsntNamedIsEmptyButForTheMonkeyTest) {
    expectLists(load("<moduleConfiguration><fidToCPLDictionary>f</fidToCPLDictionary>"
                     "</moduleConfiguration>"),
                {""}, {""}, {"f"}, {""}, {});
    expectLists(load("<moduleConfiguration><monkeytest/></moduleConfiguration>"), {""}, {""}, {""},
                {""}, {});
}

TEST_F(ManifestFile, AFileThatIsNamedTwiceIsEmptyToo) {
    expectLists(load("<moduleConfiguration><monkeytest>m</monkeytest><monkeytest>n</monkeytest>"
                     "</moduleConfiguration>"),
                {""}, {""}, {""}, {""}, {});
    expectLists(load("<moduleConfiguration><fidToCPLDictionary>f</fidToCPLDictionary>"
                     "<fidToCPLDictionary>g</fidToCPLDictionary></moduleConfiguration>"),
                {""}, {""}, {""}, {""}, {});
}

TEST_F(ManifestFile, AModuleInAnotherCountsForBoth) {
    expectLists(load("<moduleConfiguration><fidToCPLDictionary>outer</fidToCPLDictionary>"
                     "<moduleConfiguration><fidToCPLDictionary>inner</fidToCPLDictionary>"
                     "<monkeytest>m</monkeytest></moduleConfiguration></moduleConfiguration>"),
                {"", ""}, {"", ""}, {"", "inner"}, {"", ""}, {"m", "m"});
}

TEST_F(ManifestFile, NamesAreTakenAsTheyStand) {
    expectLists(load("<group><moduleConfiguration><deep><fidToCPLDictionary> ./a b.xml "
                     "</fidToCPLDictionary></deep></moduleConfiguration></group>"),
                {""}, {""}, {" ./a b.xml "}, {""}, {});
}

TEST_F(ManifestFile, TheSchemaIsChecked) {
    std::string const path =
        scratch.write("Manifest.xml", "<manifest xmlns=\"FrameDriver/Manifest\" "
                                      "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                                      "xsi:schemaLocation=\"FrameDriver/Manifest ./Absent.xsd\"/>");
    EXPECT_THROW(ManifestParser().parseFile(path, ValidationMode::Schema),
                 ErrorManagement::Exception::ParseException);
}

}  // namespace
}  // namespace FrameDriver::XML
