#include "foundation/Exceptions.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>

namespace FrameDriver::ErrorManagement::Exception {
namespace {

// What a handler at the top of a load or start-up step sees.
template <class Thrown>
std::string caughtText(Thrown const& thrown) {
    try {
        throw thrown;
    } catch (Exception const& exception) {
        return exception.getMessage() + "|" + exception.what();
    }
}

std::string twice(std::string const& text) { return text + "|" + text; }

TEST(Exceptions, EachClassHasItsDefaultMessageInBothTexts) {
    EXPECT_EQ(caughtText(IllegalArgumentException()),
              twice("An illegal argument exception occurred."));
    EXPECT_EQ(caughtText(IllegalOperationException()),
              twice("An illegal operation exception occurred."));
    EXPECT_EQ(caughtText(InitializationException()),
              twice("An initialization exception occurred."));
    EXPECT_EQ(caughtText(DisposalException()), twice("A disposal exception occurred."));
    EXPECT_EQ(caughtText(XMLException()), twice("An XML exception occurred."));
    EXPECT_EQ(caughtText(ParseException()), twice("A parse exception occurred."));
}

TEST(Exceptions, EachClassKeepsTheMessageItIsGivenInBothTexts) {
    EXPECT_EQ(caughtText(IllegalArgumentException("a")), twice("a"));
    EXPECT_EQ(caughtText(IllegalOperationException("b")), twice("b"));
    EXPECT_EQ(caughtText(InitializationException("c")), twice("c"));
    EXPECT_EQ(caughtText(DisposalException("d")), twice("d"));
    EXPECT_EQ(caughtText(XMLException("e")), twice("e"));
    EXPECT_EQ(caughtText(ParseException("")), twice(""));
}

TEST(Exceptions, DefaultExceptionHasAMessageAndAnEmptyWhat) {
    EXPECT_EQ(caughtText(Exception()), "An unknown exception has occurred.|");
}

TEST(Exceptions, ParseExceptionIsCaughtAsXMLExceptionAndAsException) {
    EXPECT_THROW(throw ParseException("x"), XMLException);
    EXPECT_THROW(throw ParseException("x"), Exception);
    EXPECT_THROW(throw ParseException("x"), std::runtime_error);
    EXPECT_FALSE((std::is_base_of_v<XMLException, InitializationException>));
}

TEST(Exceptions, MessageIsACopy) {
    IllegalArgumentException const exception("kept");
    auto message = exception.getMessage();
    message += " not";
    EXPECT_EQ(exception.getMessage(), "kept");
}

}  // namespace
}  // namespace FrameDriver::ErrorManagement::Exception
