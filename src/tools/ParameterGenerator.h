#pragma once

#include "platform/fid/FIDParameter.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace FrameDriver::Tools::MonkeyTest {

/// Makes the values of one parameter of a random FID. The order of the virtual operations is part
/// of the design. Thread: any, several at once.
class ParameterGenerator {
  public:
    explicit ParameterGenerator(std::string parameterName) : name(std::move(parameterName)) {}
    virtual ~ParameterGenerator() = default;

    /// A new copy, the caller's.
    virtual ParameterGenerator* clone() const = 0;
    virtual std::string generateValue() const = 0;

    FIDParameter generate() const { return {name, generateValue()}; }

  protected:
    ParameterGenerator(ParameterGenerator const&) = default;
    ParameterGenerator& operator=(ParameterGenerator const&) = default;

  private:
    std::string name;
};

/// One of some texts; the empty text if there are none.
class RandomEnumGenerator : public ParameterGenerator {
  public:
    RandomEnumGenerator(std::string parameterName, std::vector<std::string> texts)
        : ParameterGenerator(std::move(parameterName)), values(std::move(texts)) {}

    RandomEnumGenerator* clone() const override { return new RandomEnumGenerator(*this); }
    std::string generateValue() const override;

  private:
    std::vector<std::string> values;
};

/// A number from `lower` on that stops just short of `upper`, in steps of 1/32768 of the way.
class RandomFloatGenerator : public ParameterGenerator {
  public:
    RandomFloatGenerator(std::string parameterName, float lowest, float end)
        : ParameterGenerator(std::move(parameterName)), lower(lowest), upper(end) {}

    RandomFloatGenerator* clone() const override { return new RandomFloatGenerator(*this); }
    std::string generateValue() const override;

  private:
    float lower;
    float upper;
};

/// A number from `lower` on that never reaches `upper`; `lower` where there is no room between
/// them. A wide range isn't used up: the random number has 15 bits.
class RandomIntegerGenerator : public ParameterGenerator {
  public:
    RandomIntegerGenerator(std::string parameterName, std::int32_t lowest, std::int32_t end)
        : ParameterGenerator(std::move(parameterName)), lower(lowest), upper(end) {}

    RandomIntegerGenerator* clone() const override { return new RandomIntegerGenerator(*this); }
    std::string generateValue() const override;

  private:
    std::int32_t lower;
    std::int32_t upper;
};

}  // namespace FrameDriver::Tools::MonkeyTest
