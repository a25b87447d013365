#include "tools/ParameterGenerator.h"

#include "foundation/ValueConversions.h"
#include "tools/Random15.h"

namespace FrameDriver::Tools::MonkeyTest {

std::string RandomEnumGenerator::generateValue() const {
    auto const number = static_cast<std::size_t>(MonkeyTest::rand());
    return values.empty() ? std::string() : values[number % values.size()];
}

// 1/32768: the random number's 15 bits and this constant belong together.
std::string RandomFloatGenerator::generateValue() const {
    auto const fraction = static_cast<float>(MonkeyTest::rand() * 3.0517578125e-05);
    return floatToString((upper - lower) * fraction + lower);
}

// Bounds more than 32 bits apart wrap, as does the sum.
std::string RandomIntegerGenerator::generateValue() const {
    int const number = MonkeyTest::rand();
    auto const range = static_cast<std::int32_t>(static_cast<std::uint32_t>(upper) -
                                                 static_cast<std::uint32_t>(lower));
    int const step = range == 0 ? 0 : number % range;
    return int32ToString(static_cast<std::int32_t>(static_cast<std::uint32_t>(step) +
                                                   static_cast<std::uint32_t>(lower)));
}

}  // namespace FrameDriver::Tools::MonkeyTest
