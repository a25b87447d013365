#include "foundation/Exceptions.h"
#include "tests/support/WorkingDirectory.h"
#include "tools/MonkeyTestParser.h"
#include "xml/XMLUtilities.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::ParseException;
using Names = std::vector<std::string>;

class MonkeyTestFile : public testing::Test {
  protected:
    MonkeyTestFile() { startXMLUtilities(); }
    ~MonkeyTestFile() override { stopXMLUtilities(); }

    auto parse(std::string const& fids, std::string const& root = "monkeyTest") {
        directory.write("monkey.xml", "<" + root + ">" + fids + "</" + root + ">");
        return MonkeyTestParser().parseFile("monkey.xml", ValidationMode::None);
    }
    /// "NAME PARAMETER=VALUE ..." for one run of each generator.
    Names shown(std::string const& fids) {
        Names texts;
        for (auto const& generator : parse(fids)) {
            auto const [name, list] = generator.generate();
            texts.push_back(name);
            for (auto const& parameter : list)
                texts.back() += " " + parameter.getName() + "=" + parameter.getValue();
        }
        return texts;
    }
    std::string failure(std::string const& fids) {
        try {
            parse(fids);
        } catch (ParseException const& error) {
            return error.getMessage();
        }
        return "none";
    }

    Testing::WorkingDirectory directory;
};

TEST_F(MonkeyTestFile, AnIdWithARangeGivesOneGeneratorPerNameEachWithItsParameters) {
    EXPECT_EQ(shown(R"(<fid id="A(1-3).B"><parameter type="integer" name="V" lower="4" upper="5"/>
                       </fid><fid id="C"/>)"),
              (Names{"A1.B V=4", "A2.B V=4", "A3.B V=4", "C"}));
}

TEST_F(MonkeyTestFile, ParametersKeepTheirOrderAndMayBeOfAnyType) {
    EXPECT_EQ(shown(R"(<fid id="F">
                         <parameter type="enum" name="E"><value>x</value><!-- no --></parameter>
                         <parameter type="float" name="G" lower="2.5" upper="2.5"/>
                         <parameter type="integer" name="I" lower="-1" upper="0"/>
                       </fid>)"),
              Names{"F E=x G=2.5 I=-1"});
}

TEST_F(MonkeyTestFile, AnEnumHasItsValuesInOrderAsBytes) {
    auto const generators = parse(R"(<fid id="F"><parameter type="enum" name="E">
        <value>a</value><value></value><value>&#x92; b</value></parameter></fid>)");
    ASSERT_EQ(generators.size(), 1U);
    std::set<std::string> values;
    for (int i = 0; i < 200; ++i)
        values.insert(generators[0].generate().second.begin()->getValue());
    EXPECT_EQ(values, (std::set<std::string>{"a", "", "\x92 b"}));
}

TEST_F(MonkeyTestFile, TheRootIsNotLookedAtAndFidsAreFoundAtAnyDepth) {
    directory.write("monkey.xml", R"(<other><group><fid id="A"/></group><fid id="B"/></other>)");
    EXPECT_EQ(MonkeyTestParser().parseFile("monkey.xml", ValidationMode::None).size(), 2U);
}

TEST_F(MonkeyTestFile, ARootThatIsAFidIsNoneItself) {
    directory.write("monkey.xml", R"(<fid id="ROOT"><fid id="A"/></fid>)");
    auto const generators = MonkeyTestParser().parseFile("monkey.xml", ValidationMode::None);
    ASSERT_EQ(generators.size(), 1U);
    EXPECT_EQ(generators[0].generate().first, "A");
}

TEST_F(MonkeyTestFile, AFloatBoundMayBeInfinite) {
    for (char const* text : {"infinity", "INFINITY"})
        EXPECT_EQ(shown(std::string(R"(<fid id="F"><parameter type="float" name="G" lower=")") +
                        text + R"(" upper="1"/></fid>)")
                      .size(),
                  1U);
}

TEST_F(MonkeyTestFile, ABoundThatIsNoNumberLosesTheFile) {
    std::string const unforeseen =
        "An unforeseen problem has occurred while parsing the xml file monkey.xml";
    for (char const* parameter :
         {R"(type="integer" name="V" lower="x" upper="1")",
          R"(type="integer" name="V" lower="0" upper="")", R"(type="integer" name="V" lower="0")",
          R"(type="integer" name="V" lower=" 0" upper="1")",
          R"(type="integer" name="V" lower="0x1" upper="2")",
          R"(type="integer" name="V" lower="1.0" upper="2")",
          R"(type="integer" name="V" lower="0" upper="2147483648")",
          R"(type="float" name="V" lower="0" upper="1,5")"})
        EXPECT_EQ(failure(std::string("<fid id=\"A\"/><fid id=\"F\"><parameter ") + parameter +
                          "/></fid>"),
                  unforeseen)
            << parameter;
}

TEST_F(MonkeyTestFile, AnUnknownTypeAndABadRangeLoseTheFile) {
    EXPECT_NE(failure(R"(<fid id="F"><parameter type="Integer" name="V"/></fid>)"), "none");
    EXPECT_NE(failure("<fid id=\"A(x-3)\"/>"), "none");
    EXPECT_EQ(failure(R"(<fid id="F">)").find("A fatal error occurred while parsing the xml file."),
              0U);
}

}  // namespace
}  // namespace FrameDriver::XML
