#include "tools/FIDGenerator.h"

namespace FrameDriver::Tools::MonkeyTest {

FIDGenerator::FIDGenerator(FIDGenerator const& other) : name(other.name) {
    parameters.reserve(other.parameters.size());
    for (auto const& parameter : other.parameters)
        addParameter(parameter->clone());
}

FIDGenerator& FIDGenerator::operator=(FIDGenerator const& other) {
    if (this != &other)
        *this = FIDGenerator(other);
    return *this;
}

std::pair<std::string, FIDParameterList> FIDGenerator::generate() const {
    FIDParameterList list;
    for (auto const& parameter : parameters)
        list.add(parameter->generate());
    return {name, list};
}

}  // namespace FrameDriver::Tools::MonkeyTest
