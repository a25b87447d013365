#include "foundation/NumberText.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace FrameDriver::Tools {
namespace {

using namespace std::string_view_literals;

// --- The reference: the streams themselves -------------------------------------------------

/// Reads and prints with one stream each, in the classic locale whatever the global one is.
class Streams {
  public:
    Streams() {
        input.imbue(std::locale::classic());
        output.imbue(std::locale::classic());
    }

    template <typename Number>
    bool read(std::string const& text, Number& value) {
        return readBy(std::dec, text, value);
    }
    template <typename Number>
    bool readHex(std::string const& text, Number& value) {
        return readBy(std::hex, text, value);
    }
    template <typename Number, typename... Manipulators>
    std::string print(Number value, Manipulators... manipulators) {
        output.str("");
        output.flags(std::ios::dec);
        output.precision(6);
        (output << ... << manipulators) << value;
        return output.str();
    }
    std::string printFixed(float value, int decimals) {
        output.str("");
        output.flags(std::ios::dec | std::ios::fixed);
        output.precision(decimals);
        output << value;
        return output.str();
    }

  private:
    template <typename Number>
    bool readBy(std::ios_base& (*base)(std::ios_base&), std::string const& text, Number& value) {
        input.clear();
        input.str(text);
        Number result{};
        input >> base >> result;
        if (input.fail())
            return false;
        value = result;
        return true;
    }

    std::istringstream input;
    std::ostringstream output;
};

/// atoi of the C library, with strtol's limits cut down to 32 bits.
std::int32_t leadingIntReference(std::string const& text) {
    return static_cast<std::int32_t>(std::strtol(text.c_str(), nullptr, 10));
}

/// Equal bit by bit: "-0" is another number than "0", and a NaN equals itself.
template <typename Number>
bool same(Number left, Number right) {
    if constexpr (sizeof(Number) == 4)
        return std::bit_cast<std::uint32_t>(left) == std::bit_cast<std::uint32_t>(right);
    else if constexpr (sizeof(Number) == 8)
        return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
    else
        return left == right;
}

/// Empty if reader and reference agree on the text, else what differs. A failed read must
/// leave the value alone.
template <typename Number, typename Reader, typename Reference>
std::string difference(char const* name, std::string const& text, Reader reader,
                       Reference reference) {
    Number const untouched = static_cast<Number>(77);
    Number ours = untouched;
    Number theirs = untouched;
    bool const weRead = reader(text, ours);
    bool const theyRead = reference(text, theirs);
    if (weRead == theyRead && same(ours, theirs))
        return {};
    std::ostringstream report;
    report << name << " of " << testing::PrintToString(text) << ": " << weRead << ' ' << +ours
           << ", streams: " << theyRead << ' ' << +theirs;
    return report.str();
}

/// What differs for one text between the readers of decimal integers and their references.
std::string decimalDifference(std::string const& text, Streams& streams) {
    auto reference = [&](auto const& source, auto& value) { return streams.read(source, value); };
    if (readLeadingInt(text) != leadingIntReference(text))
        return "readLeadingInt of " + testing::PrintToString(text);
    return difference<std::int16_t>("readInt16", text, readInt16, reference) +
           difference<std::uint16_t>("readUInt16", text, readUInt16, reference) +
           difference<std::int32_t>("readInt32", text, readInt32, reference) +
           difference<std::uint32_t>("readUInt32", text, readUInt32, reference);
}

/// The same for hexadecimal integers and floats.
std::string otherDifference(std::string const& text, Streams& streams) {
    auto decimal = [&](auto const& source, auto& value) { return streams.read(source, value); };
    auto hexadecimal = [&](auto const& source, auto& value) {
        return streams.readHex(source, value);
    };
    return difference<std::int32_t>("readHexInt32", text, readHexInt32, hexadecimal) +
           difference<std::uint32_t>("readHexUInt32", text, readHexUInt32, hexadecimal) +
           difference<float>("readFloat", text, readFloat, decimal) +
           difference<double>("readDouble", text, readDouble, decimal);
}

std::string firstDifference(std::string const& text, Streams& streams) {
    return decimalDifference(text, streams) + otherDifference(text, streams);
}

// --- Random texts --------------------------------------------------------------------------

using Random = std::mt19937_64;

/// A seed of its own for each run, or the one of QFD_TEST_SEED, to repeat a run.
Random::result_type chooseSeed() {
    char const* const given = std::getenv("QFD_TEST_SEED");
    auto const seed = given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
    std::cout << "QFD_TEST_SEED=" << seed << '\n';
    return seed;
}

std::size_t below(Random& random, std::size_t bound) { return random() % bound; }

std::string pick(Random& random, std::string_view characters, std::size_t longest) {
    std::string text(below(random, longest + 1), ' ');
    for (char& character : text)
        character = characters[below(random, characters.size())];
    return text;
}

/// Any bytes that mean something to one of the readers, and a few that mean nothing.
std::string scramble(Random& random) {
    return pick(random, "0123456789001+-..eExXaAfFgpn \t\n\v\f\r,:\0\222\377"sv, 10);
}

/// The shape of a number, with each of its parts at times empty or odd.
std::string shaped(Random& random) {
    std::string text = pick(random, " \t\n"sv, 1) + pick(random, "+-"sv, 1);
    text += pick(random, "0"sv, 2) + pick(random, "xX"sv, below(random, 4) == 0 ? 1 : 0);
    text += pick(random, "0123456789"sv, 12) + pick(random, ".,"sv, 1);
    text += pick(random, "0123456789abcdefABCDEF"sv, 9);
    if (below(random, 2) == 0)
        text += pick(random, "eE"sv, 1) + pick(random, "+-"sv, 1) + pick(random, "0123456789"sv, 3);
    return text + pick(random, "xyz 1.:"sv, 1);
}

/// Close to a power of two, where ranges end.
std::string nearPowerOfTwo(Random& random) {
    auto const exact = std::uint64_t{1} << below(random, 64);
    auto const value = exact + below(random, 5) - 2;
    std::ostringstream text;
    text << (below(random, 2) == 0 ? "-" : "") << (below(random, 2) == 0 ? std::hex : std::dec)
         << value;
    return text.str();
}

/// A float from its bits, printed with more or fewer digits than it has; near the largest, the
/// smallest and the denormal ones as often as elsewhere.
std::string printedFloat(Random& random) {
    std::array<char, 400> text;
    auto bits = static_cast<std::uint32_t>(random());
    if (below(random, 3) == 0)
        bits &= 0x80FF'FFFF;  // denormal or close to it
    if (below(random, 6) == 0)
        bits |= 0x7F00'0000;  // among the largest, infinite ones included
    double const value = std::bit_cast<float>(bits) * (0.5 + static_cast<double>(random() % 3));
    auto const precision = static_cast<int>(below(random, 20));
    std::snprintf(text.data(), text.size(), "%.*g", precision, value);
    return text.data();
}

std::string randomText(Random& random) {
    switch (below(random, 4)) {
    case 0:
        return scramble(random);
    case 1:
        return shaped(random);
    case 2:
        return nearPowerOfTwo(random);
    default:
        return printedFloat(random);
    }
}

/// Texts on which the two steps of a stream's read disagree, and the ends of all ranges.
std::vector<std::string> const& boundaryTexts() {
    auto const zeros = std::string(500, '0');
    static std::vector<std::string> const texts{"",
                                                " ",
                                                "+",
                                                "-",
                                                "+-1",
                                                "-+1",
                                                "--1",
                                                "++1",
                                                "- 1",
                                                "0",
                                                "-0",
                                                "+0",
                                                "00",
                                                "007",
                                                "+5",
                                                "1e",
                                                "1e+",
                                                "1e-",
                                                "1e+5",
                                                "1E5",
                                                "1e 5",
                                                "1ee5",
                                                "1e5e5",
                                                "1e5.5",
                                                "1.e5",
                                                ".5",
                                                "-.5",
                                                ".",
                                                "-.",
                                                ".e5",
                                                "e5",
                                                "1..5",
                                                "1.5.5",
                                                "0e",
                                                "0e0",
                                                "0x",
                                                "0X",
                                                "0xg",
                                                "0x1",
                                                "-0x1f",
                                                "+0X1F",
                                                "00x1f",
                                                "0x0x1",
                                                "x1f",
                                                "0x-1",
                                                "0x 1",
                                                "0x1p3",
                                                "0x1.8p1",
                                                "inf",
                                                "-inf",
                                                "nan",
                                                "infinity",
                                                "NAN",
                                                "1,5",
                                                "1'000",
                                                "1_000",
                                                "1f",
                                                "1d",
                                                "1L",
                                                "\t\n\v\f\r 1",
                                                "\2221",
                                                "1\222",
                                                "\xA0"
                                                "1",
                                                "\x85"
                                                "1",
                                                std::string("\0001", 2),
                                                std::string("1\0002", 3),
                                                "32767",
                                                "32768",
                                                "-32768",
                                                "-32769",
                                                "65535",
                                                "65536",
                                                "-65535",
                                                "-65536",
                                                "2147483647",
                                                "2147483648",
                                                "-2147483648",
                                                "-2147483649",
                                                "4294967295",
                                                "4294967296",
                                                "-4294967295",
                                                "-4294967296",
                                                "9223372036854775807",
                                                "9223372036854775808",
                                                "-9223372036854775808",
                                                "-9223372036854775809",
                                                "18446744073709551615",
                                                "18446744073709551616",
                                                "18446744073709551617",
                                                "-18446744073709551615",
                                                "99999999999999999999999999",
                                                "7fffffff",
                                                "80000000",
                                                "-80000000",
                                                "-80000001",
                                                "ffffffff",
                                                "100000000",
                                                "-ffffffff",
                                                "FFFFFFFFFFFFFFFF",
                                                "3.4028234e38",
                                                "3.4028235e38",
                                                "3.4028235677973366e38",
                                                "3.4028235677973367e38",
                                                "3.5e38",
                                                "-3.5e38",
                                                "1e38",
                                                "1e39",
                                                "1.17549435e-38",
                                                "1e-38",
                                                "1e-45",
                                                "7e-46",
                                                "8e-46",
                                                "-7e-46",
                                                "7.00649232162408e-46",
                                                "7.00649232162409e-46",
                                                "1e-400",
                                                "-1e-400",
                                                "1e400",
                                                "-1e400",
                                                "1e99999999999999999999",
                                                "1e-99999999999999999999",
                                                "0e99999999999999999999",
                                                "0.0e-99999999999999999999",
                                                "1.7976931348623157e308",
                                                "1.7976931348623159e308",
                                                "5e-324",
                                                "2e-324",
                                                "3e-324",
                                                "16777217",
                                                "0.1",
                                                "0.30000001192092896",
                                                "1" + zeros,
                                                "0." + zeros + "1",
                                                "1" + zeros + "e-500",
                                                "0." + zeros + "1e500",
                                                "0." + zeros + "1e501",
                                                "-0." + zeros + "1",
                                                "." + zeros + "1e540",
                                                "." + zeros + "1e539",
                                                zeros + "1",
                                                zeros + "." + zeros,
                                                "1" + zeros + "e-540",
                                                "1" + zeros + "e-1000"};
    return texts;
}

// --- Tests ---------------------------------------------------------------------------------

TEST(NumberText, ReadsBoundaryTextsAsStreamsDo) {
    Streams streams;
    for (auto const& text : boundaryTexts())
        EXPECT_EQ(firstDifference(text, streams), "");
}

TEST(NumberText, ReadsAMillionRandomTextsAsStreamsDo) {
    Random random(chooseSeed());
    Streams streams;
    // Half of the texts for each half of the readers: that keeps the test within seconds.
    for (int count = 0; count < 500'000; ++count) {
        ASSERT_EQ(decimalDifference(randomText(random), streams), "");
        ASSERT_EQ(otherDifference(randomText(random), streams), "");
    }
}

template <typename Appender, typename... Arguments>
std::string appended(Appender appender, Arguments... arguments) {
    std::string out = "ahead:";
    appender(out, arguments...);
    return out.substr(6);
}

void expectPrintsAsStreamsDo(std::uint64_t bits, Streams& streams) {
    auto const word = static_cast<std::uint32_t>(bits);
    auto const number = static_cast<std::int32_t>(word);
    auto const wide = static_cast<std::int64_t>(bits);
    auto const real = std::bit_cast<float>(word);
    auto const decimals = static_cast<int>((bits >> 32) % 8);
    ASSERT_EQ(appended(appendInt32, number), streams.print(number));
    ASSERT_EQ(appended(appendUInt32, word), streams.print(word));
    ASSERT_EQ(appended(appendInt64, wide), streams.print(wide));
    ASSERT_EQ(appended(appendHex32, word), streams.print(word, std::hex));
    ASSERT_EQ(appended(appendFloat, real), streams.print(real));
    ASSERT_EQ(appended(appendFixed, real, decimals), streams.printFixed(real, decimals));
}

TEST(NumberText, PrintsRandomNumbersAsStreamsDo) {
    Random random(chooseSeed());
    Streams streams;
    for (int count = 0; count < 60'000 && !testing::Test::HasFatalFailure(); ++count)
        expectPrintsAsStreamsDo(random() >> below(random, 64), streams);
}

TEST(NumberText, PrintsFloatsOfEverydaySizeAsStreamsDo) {
    Random random(chooseSeed());
    Streams streams;
    for (int count = 0; count < 60'000; ++count) {
        auto const tenth = static_cast<float>(below(random, 10'000'000)) / 10.0F;
        auto const value = std::ldexp(tenth, static_cast<int>(below(random, 24)) - 20);
        ASSERT_EQ(appended(appendFloat, value), streams.print(value));
        ASSERT_EQ(appended(appendFixed, -value, 3), streams.printFixed(-value, 3));
    }
}

TEST(NumberText, PrintsTheEndsOfTheRanges) {
    Streams streams;
    for (std::uint64_t const bits :
         {std::uint64_t{0}, std::uint64_t{0x7FFF'FFFF}, std::uint64_t{0x8000'0000},
          std::uint64_t{0xFFFF'FFFF}, std::uint64_t{0x7F7F'FFFF}, std::uint64_t{0x0000'0001},
          std::uint64_t{0x7F80'0000}, std::uint64_t{0xFF80'0000}, std::uint64_t{0x7FC0'0000},
          std::uint64_t{0xFFC0'0000}, std::uint64_t{0x7FFF'FFFF'FFFF'FFFF},
          std::uint64_t{0x8000'0000'0000'0000}, std::uint64_t{0xFFFF'FFFF'FFFF'FFFF}}) {
        SCOPED_TRACE(bits);
        expectPrintsAsStreamsDo(bits, streams);
    }
}

TEST(NumberText, PrintsUpToSixtyDecimals) {
    Streams streams;
    for (int const decimals : {0, 1, 3, 60}) {
        EXPECT_EQ(appended(appendFixed, -FLT_MAX, decimals),
                  streams.printFixed(-FLT_MAX, decimals));
        EXPECT_EQ(appended(appendFixed, FLT_MIN, decimals), streams.printFixed(FLT_MIN, decimals));
    }
}

struct IntegerRow {
    std::string_view text;
    bool reads;
    std::int32_t value;
};

TEST(NumberText, ReadsAnIntegerUpToTheFirstCharacterThatCannotContinueIt) {
    for (auto const& row : std::vector<IntegerRow>{{"42", true, 42},
                                                   {" 42xyz", true, 42},
                                                   {"12abc", true, 12},
                                                   {"+5", true, 5},
                                                   {"-007.5", true, -7},
                                                   {"1e5", true, 1},
                                                   {"0x1f", true, 0},
                                                   {"1\222", true, 1},
                                                   {"-2147483648", true, INT32_MIN},
                                                   {"2147483648", false, 99},
                                                   {"", false, 99},
                                                   {"abc", false, 99},
                                                   {"INVALID", false, 99},
                                                   {"- 1", false, 99},
                                                   {"+-1", false, 99}}) {
        SCOPED_TRACE(row.text);
        std::int32_t value = 99;
        EXPECT_EQ(readInt32(row.text, value), row.reads);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(int32Or(row.text, 99), row.value);
    }
}

TEST(NumberText, ReadsHexadecimalWithAndWithoutPrefix) {
    for (auto const& row : std::vector<IntegerRow>{{"1f", true, 31},
                                                   {"0x1F", true, 31},
                                                   {"-0X1f", true, -31},
                                                   {"7fffffff", true, INT32_MAX},
                                                   {"0", true, 0},
                                                   {"00x1f", true, 0},
                                                   {"ffffffff", false, 99},
                                                   {"0x", false, 99},
                                                   {"0xg", false, 99},
                                                   {"g", false, 99}}) {
        SCOPED_TRACE(row.text);
        std::int32_t value = 99;
        EXPECT_EQ(readHexInt32(row.text, value), row.reads);
        EXPECT_EQ(value, row.value);
    }
}

TEST(NumberText, AnUnsignedReadTakesASignAndWraps) {
    std::uint32_t value = 0;
    EXPECT_TRUE(readUInt32("-1", value));
    EXPECT_EQ(value, 4294967295U);
    EXPECT_FALSE(readUInt32("-4294967296", value));
    std::uint16_t small = 0;
    EXPECT_TRUE(readUInt16("-1", small));
    EXPECT_EQ(small, 65535U);
}

struct FloatRow {
    std::string_view text;
    bool reads;
    float value;
};

TEST(NumberText, ReadsAFloatOnlyIfAllThatBelongsToItConverts) {
    for (auto const& row : std::vector<FloatRow>{{"1.5", true, 1.5F},
                                                 {" -1.5e2x", true, -150.0F},
                                                 {".5", true, 0.5F},
                                                 {"1.", true, 1.0F},
                                                 {"1,5", true, 1.0F},
                                                 {"0x10", true, 0.0F},
                                                 {"1e-60", true, 0.0F},
                                                 {"1e", false, 99.0F},
                                                 {"1e+", false, 99.0F},
                                                 {"1exit", false, 99.0F},
                                                 {".", false, 99.0F},
                                                 {"inf", false, 99.0F},
                                                 {"nan", false, 99.0F},
                                                 {"1e39", false, 99.0F},
                                                 {"", false, 99.0F}}) {
        SCOPED_TRACE(row.text);
        float value = 99.0F;
        EXPECT_EQ(readFloat(row.text, value), row.reads);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(floatOr(row.text, 99.0F), row.value);
    }
}

TEST(NumberText, AFloatThatIsTooSmallReadsAsZeroWithItsSign) {
    float value = 1.0F;
    EXPECT_TRUE(readFloat("-1e-60", value));
    EXPECT_TRUE(same(value, -0.0F));
}

TEST(NumberText, ALeadingIntIsCutToTheLowBitsOfItsLimit) {
    for (auto const& row : std::vector<IntegerRow>{{"12x", true, 12},
                                                   {" \t-7", true, -7},
                                                   {"x", true, 0},
                                                   {"", true, 0},
                                                   {"4294967297", true, 1},
                                                   {"99999999999999999999", true, -1},
                                                   {"-99999999999999999999", true, 0}}) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(readLeadingInt(row.text), row.value);
    }
}

TEST(NumberText, TruncatesTowardsZeroAndStopsAtTheLimits) {
    EXPECT_EQ(truncateToInt64(2.9), 2);
    EXPECT_EQ(truncateToInt64(-2.9), -2);
    EXPECT_EQ(truncateToInt64(-0.4), 0);
    EXPECT_EQ(truncateToInt64(9223372036854774784.0), 9223372036854774784);
    EXPECT_EQ(truncateToInt64(9223372036854775808.0), INT64_MAX);
    EXPECT_EQ(truncateToInt64(-9223372036854775808.0), INT64_MIN);
    EXPECT_EQ(truncateToInt64(-1e300), INT64_MIN);
    EXPECT_EQ(truncateToInt64(HUGE_VAL), INT64_MAX);
    EXPECT_EQ(truncateToInt64(std::nan("")), 0);
}

TEST(NumberText, PrintsFloatsInSixSignificantDigits) {
    EXPECT_EQ(appended(appendFloat, 1.5F), "1.5");
    EXPECT_EQ(appended(appendFloat, 3.0F), "3");
    EXPECT_EQ(appended(appendFloat, -0.0F), "-0");
    EXPECT_EQ(appended(appendFloat, 123456.7F), "123457");
    EXPECT_EQ(appended(appendFloat, 1234567.0F), "1.23457e+06");
    EXPECT_EQ(appended(appendFloat, 0.00001F), "1e-05");
    EXPECT_EQ(appended(appendFixed, 12.34F, 1), "12.3");
    EXPECT_EQ(appended(appendFixed, 1.0F, 3), "1.000");
}

// --- A host with a locale of its own -------------------------------------------------------

class CommaPoint : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

/// Sets both the C++ and the C locale to one that writes "1.234,5", and restores them. Where no
/// such C locale is installed, the C++ one has to do.
class CommaLocale {
  public:
    CommaLocale() : previous(std::locale::global(std::locale(std::locale(), new CommaPoint))) {
        for (char const* name :
             {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "nl_NL.UTF-8"})
            if (std::setlocale(LC_ALL, name) != nullptr)
                return;
    }
    CommaLocale(CommaLocale const&) = delete;
    CommaLocale& operator=(CommaLocale const&) = delete;
    ~CommaLocale() {
        std::locale::global(previous);
        std::setlocale(LC_ALL, "C");
    }

  private:
    std::locale previous;
};

TEST(NumberText, TheHostsLocaleChangesNothing) {
    CommaLocale const locale;
    std::ostringstream witness;
    witness << 1234.5F;
    ASSERT_EQ(witness.str(), "1.234,5") << "the locale is not in force";

    EXPECT_EQ(appended(appendFloat, 1234.5F), "1234.5");
    EXPECT_EQ(appended(appendFixed, 1234.5F, 1), "1234.5");
    EXPECT_EQ(appended(appendInt32, 1234567), "1234567");
    EXPECT_EQ(floatOr("1.5", 0.0F), 1.5F);
    EXPECT_EQ(floatOr("1,5", 0.0F), 1.0F);
    EXPECT_EQ(int32Or("1.234", 0), 1);

    Random random(chooseSeed());
    Streams streams;
    for (int count = 0; count < 5'000; ++count)
        ASSERT_EQ(firstDifference(randomText(random), streams), "");
}

}  // namespace
}  // namespace FrameDriver::Tools
