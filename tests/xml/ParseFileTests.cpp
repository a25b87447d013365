#include "XMLFiles.h"
#include "foundation/Exceptions.h"
#include "xml/AbstractParser.h"
#include "xml/DOMSearch.h"
#include "xml/ParsingErrorListener.h"

#include <gtest/gtest.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/RuntimeException.hpp>

#include <clocale>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::IllegalArgumentException;
using ErrorManagement::Exception::ParseException;
using ErrorManagement::Exception::XMLException;

constexpr char const* schema =
    R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" targetNamespace="t" xmlns="t"
 elementFormDefault="qualified"><xs:element name="root"><xs:complexType><xs:sequence>
<xs:element name="a" type="xs:int"/></xs:sequence></xs:complexType></xs:element></xs:schema>)";

std::string document(std::string const& content) {
    return "<root xmlns=\"t\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"\n"
           " xsi:schemaLocation=\"t ./Schemas/t.xsd\">" +
           content + "</root>";
}

/// The text of the document element, under its name.
class RootParser : public AbstractParser<std::string> {
  public:
    std::string parse(xercesc::DOMDocument* parsed) override {
        auto const* const root = documentElement(parsed);
        return textOf(root);
    }
};

/// Fails in `parse` as it is told to.
class FailingParser : public AbstractParser<int> {
  public:
    explicit FailingParser(void (*failure)()) : fail(failure) {}
    int parse(xercesc::DOMDocument*) override {
        fail();
        return 1;
    }

  private:
    void (*fail)();
};

class ParseFile : public ::testing::Test {
  protected:
    std::string failure(std::string const& path, ValidationMode mode) {
        return thrownText<ParseException>([&] { RootParser().parseFile(path, mode); });
    }
    std::string failureInside(void (*fail)()) {
        return thrownText<ParseException>(
            [&] { FailingParser(fail).parseFile(good, ValidationMode::None); });
    }

    XMLScope xml;
    ScratchDirectory scratch;
    std::string schemaPath = scratch.write("Schemas/t.xsd", schema);
    std::string good = scratch.write("good.xml", document("<a>1</a>"));
    std::string bad = scratch.write("bad.xml", document("<a>one</a>"));
};

TEST_F(ParseFile, AValidFileReachesItsReader) {
    EXPECT_EQ(RootParser().parseFile(good, ValidationMode::Schema), "1");
}

TEST_F(ParseFile, ASchemaViolationIsAnErrorWithItsPosition) {
    EXPECT_EQ(failure(bad, ValidationMode::Schema),
              "An error occurred while parsing the xml file. The problem was found in " + bad +
                  " on line number 2 in column 51. value 'one' does not match regular expression "
                  "facet '[+\\-]?[0-9]+'");
}

TEST_F(ParseFile, TheSameFileParsesWithoutValidation) {
    EXPECT_EQ(RootParser().parseFile(bad, ValidationMode::None), "one");
}

TEST_F(ParseFile, AWarningStopsTheLoadAsAnErrorDoes) {
    std::filesystem::remove(schemaPath);
    EXPECT_EQ(failure(good, ValidationMode::Schema),
              "A warning occurred while parsing the xml file. The problem was found in  on line "
              "number 0 in column 0. unable to open primary document entity '" +
                  scratch.path("Schemas/t.xsd") + "'");
}

TEST_F(ParseFile, WhatIsntWellFormedIsAFatalError) {
    std::string const path = scratch.write("cut.xml", "<root>\n<a></root>");
    EXPECT_EQ(failure(path, ValidationMode::None),
              "A fatal error occurred while parsing the xml file. The problem was found in " +
                  path + " on line number 2 in column 6. expected end of tag 'a'");
}

TEST_F(ParseFile, AnAbsentFileIsAFatalErrorWithoutAPosition) {
    std::string const path = scratch.path("absent.xml");
    EXPECT_EQ(failure(path, ValidationMode::Schema),
              "A fatal error occurred while parsing the xml file. The problem was found in  on "
              "line number 0 in column 0. unable to open primary document entity '" +
                  path + "'");
}

TEST_F(ParseFile, SomethingElseThanAFileFailsToo) {
    std::string const start =
        "A fatal error occurred while parsing the xml file. The problem was found in ";
    EXPECT_EQ(failure("", ValidationMode::None),
              start + " on line number 0 in column 0. unable to open primary document entity ''");
    EXPECT_EQ(failure(scratch.root, ValidationMode::None),
              start + " on line number 0 in column 0. unable to read data from file");
    std::string const empty = scratch.write("empty.xml", "");
    EXPECT_EQ(failure(empty, ValidationMode::None),
              start + empty + " on line number 1 in column 1. invalid document structure");
}

TEST_F(ParseFile, ADocumentElementOfAnyNameIsTaken) {
    std::string const path = scratch.write("other.xml", "<anything>at all</anything>");
    EXPECT_EQ(RootParser().parseFile(path, ValidationMode::None), "at all");
}

TEST_F(ParseFile, ADocumentThatNamesNoSchemaIsntValidated) {
    std::string const path = scratch.write("bare.xml", "<root><b/>text</root>");
    EXPECT_EQ(RootParser().parseFile(path, ValidationMode::Schema), "text");
}

TEST_F(ParseFile, APrefixIsAPartOfTheNameWithoutValidationAndMustBeDeclaredWith) {
    std::string const path = scratch.write("prefix.xml", "<p:root>text</p:root>");
    EXPECT_EQ(RootParser().parseFile(path, ValidationMode::None), "text");
    EXPECT_THROW(RootParser().parseFile(path, ValidationMode::Schema), ParseException);
}

TEST_F(ParseFile, TheSystemIdentifierIsTheAbsolutePath) {
    auto const before = std::filesystem::current_path();
    std::filesystem::current_path(scratch.root);
    std::string const text = failure("./Schemas/../bad.xml", ValidationMode::Schema);
    std::filesystem::current_path(before);
    EXPECT_NE(text.find("found in " + bad + " on line"), std::string::npos) << text;
    std::string const dotted = failure(scratch.root + "/./bad.xml", ValidationMode::Schema);
    EXPECT_NE(dotted.find("found in " + bad + " on line"), std::string::npos) << dotted;
}

TEST_F(ParseFile, PathsAreBytesWhateverTheLocale) {
    for (char const* locale : {"C", "C.UTF-8", "en_US.ISO-8859-1"}) {
        SCOPED_TRACE(locale);
        std::setlocale(LC_ALL, locale);
        for (char const* name : {"d\xc3\xa9j\xc3\xa0", "d\xe9j\xe0", "closed\x92", "per%20cent"}) {
            SCOPED_TRACE(name);
            std::string const folder = name;
            scratch.write(folder + "/Schemas/t.xsd", schema);
            std::string const path = scratch.write(folder + "/good.xml", document("<a>1</a>"));
            EXPECT_EQ(RootParser().parseFile(path, ValidationMode::Schema), "1");
            std::string const broken = scratch.write(folder + "/bad.xml", document("<a>x</a>"));
            EXPECT_NE(failure(broken, ValidationMode::Schema).find("found in " + broken + " on"),
                      std::string::npos);
        }
        std::setlocale(LC_ALL, "C");
    }
}

TEST_F(ParseFile, TextIsOneByteACharacterWhateverTheLocaleAndTheEncoding) {
    std::string const latin = scratch.write(
        "latin.xml", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r>\x92\xe9\xff</r>");
    std::string const unicode =
        scratch.write("unicode.xml", "<r>&#x92;\xc3\xa9&#255;\xe2\x80\x99</r>");
    for (char const* locale : {"C", "C.UTF-8"}) {
        SCOPED_TRACE(locale);
        std::setlocale(LC_ALL, locale);
        EXPECT_EQ(RootParser().parseFile(latin, ValidationMode::None), "\x92\xe9\xff");
        EXPECT_EQ(RootParser().parseFile(unicode, ValidationMode::None), "\x92\xe9\xff?");
        std::setlocale(LC_ALL, "C");
    }
}

TEST_F(ParseFile, ASchemaMayIncludeAnother) {
    scratch.write("Schemas/t.xsd",
                  R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" targetNamespace="t">
<xs:include schemaLocation="more/u.xsd"/></xs:schema>)");
    scratch.write("Schemas/more/u.xsd", schema);
    EXPECT_EQ(RootParser().parseFile(good, ValidationMode::Schema), "1");
    EXPECT_THROW(RootParser().parseFile(bad, ValidationMode::Schema), ParseException);
}

TEST_F(ParseFile, ExceptionsOfTheLibraryShowTheirMessage) {
    EXPECT_EQ(
        failureInside([] {
            ThrowXML1(xercesc::RuntimeException, xercesc::XMLExcepts::File_CouldNotOpenFile, u"x");
        }),
        "A problem occurred while parsing the xml file " + good + ": unable to open file 'x'");
    EXPECT_EQ(
        failureInside([] { throw xercesc::DOMException(xercesc::DOMException::NOT_FOUND_ERR, 0); }),
        "A problem occurred while parsing the xml file " + good +
            ": attempt is made to reference a node in a context where it does not exist");
}

TEST_F(ParseFile, AParseExceptionComesThroughWithItsOwnText) {
    EXPECT_EQ(failureInside([] { throw ParseException("as it is"); }), "as it is");
}

TEST_F(ParseFile, AnythingElseIsUnforeseen) {
    std::string const text =
        "An unforeseen problem has occurred while parsing the xml file " + good;
    EXPECT_EQ(failureInside([] { throw IllegalArgumentException("a number"); }), text);
    EXPECT_EQ(failureInside([] { throw new IllegalArgumentException("a hex number"); }), text);
    EXPECT_EQ(failureInside([] { throw XMLException("the base alone"); }), text);
    EXPECT_EQ(failureInside([] { throw std::out_of_range("invalid string position"); }), text);
    EXPECT_EQ(failureInside([] { throw 42; }), text);
}

TEST(ParseFileWithoutTheLibrary, IsUnforeseenAndNoCrash) {
    ScratchDirectory const scratch;
    std::string const path = scratch.write("a.xml", "<a/>");
    auto const load = [&] { RootParser().parseFile(path, ValidationMode::None); };
    std::string const text =
        "An unforeseen problem has occurred while parsing the xml file " + path;
    EXPECT_EQ(thrownText<ParseException>(load), text);
    {
        XMLScope const xml;
        EXPECT_NO_THROW(load());
    }
    EXPECT_EQ(thrownText<ParseException>(load), text);
}

/// Waits in the middle of a parse until it is told to go on.
class Waiting : public AbstractParser<std::string> {
  public:
    std::string parse(xercesc::DOMDocument* parsed) override {
        std::unique_lock guard(lock);
        inside = true;
        changed.notify_all();
        changed.wait(guard, [this] { return goOn; });
        return textOf(documentElement(parsed));
    }
    void waitUntilInside() {
        std::unique_lock guard(lock);
        changed.wait(guard, [this] { return inside; });
    }
    void letGo() {
        std::lock_guard const guard(lock);
        goOn = true;
        changed.notify_all();
    }

  private:
    std::mutex lock;
    std::condition_variable changed;
    bool inside = false;
    bool goOn = false;
};

TEST(StoppingTheLibrary, LeavesARunningParseAlone) {
    ScratchDirectory const scratch;
    std::string const path = scratch.write("a.xml", "<a>survives</a>");
    Waiting parser;
    std::string result;
    startXMLUtilities();
    std::thread reader([&] { result = parser.parseFile(path, ValidationMode::None); });
    parser.waitUntilInside();
    stopXMLUtilities();
    EXPECT_THROW(RootParser().parseFile(path, ValidationMode::None), ParseException);
    parser.letGo();
    reader.join();
    EXPECT_EQ(result, "survives");
    EXPECT_THROW(RootParser().parseFile(path, ValidationMode::None), ParseException);
}

TEST(StoppingTheLibrary, HarmsNoParserThatFailsMeanwhile) {
    ScratchDirectory const scratch;
    std::string const path = scratch.write("a.xml", "<a>\n</b>");
    std::vector<std::thread> readers;
    startXMLUtilities();
    for (int thread = 0; thread < 4; ++thread)
        readers.emplace_back([&] {
            for (int round = 0; round < 50; ++round)
                EXPECT_THROW(RootParser().parseFile(path, ValidationMode::None), ParseException);
        });
    for (int round = 0; round < 20; ++round) {
        stopXMLUtilities();
        startXMLUtilities();
    }
    stopXMLUtilities();
    for (std::thread& reader : readers)
        reader.join();
}

}  // namespace
}  // namespace FrameDriver::XML
