#pragma once

#include "platform/fid/FIDParameterList.h"
#include "tools/ParameterGenerator.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace FrameDriver::Tools::MonkeyTest {

/// One FID that a monkey may raise, with its parameters in the file's order. A value: copies own
/// copies of the parameters' generators. Thread: `generate` any, several at once.
class FIDGenerator {
  public:
    explicit FIDGenerator(std::string fidName) : name(std::move(fidName)) {}
    FIDGenerator(FIDGenerator const& other);
    FIDGenerator(FIDGenerator&&) noexcept = default;
    FIDGenerator& operator=(FIDGenerator const& other);
    FIDGenerator& operator=(FIDGenerator&&) noexcept = default;
    ~FIDGenerator() = default;

    /// Takes the generator over.
    void addParameter(ParameterGenerator* parameter) { parameters.emplace_back(parameter); }

    /// The name, and one value of each parameter.
    std::pair<std::string, FIDParameterList> generate() const;

  private:
    std::string name;
    std::vector<std::unique_ptr<ParameterGenerator>> parameters;
};

}  // namespace FrameDriver::Tools::MonkeyTest
