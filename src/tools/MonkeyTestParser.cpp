#include "tools/MonkeyTestParser.h"

#include "foundation/Exceptions.h"
#include "xml/DOMSearch.h"
#include "xml/RangeExpansion.h"

#include <boost/lexical_cast.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::IllegalArgumentException;
using Tools::MonkeyTest::FIDGenerator;
using Tools::MonkeyTest::ParameterGenerator;
using Tools::MonkeyTest::RandomEnumGenerator;
using Tools::MonkeyTest::RandomFloatGenerator;
using Tools::MonkeyTest::RandomIntegerGenerator;
using Made = std::unique_ptr<ParameterGenerator>;

template <typename Generator, typename Number>
Made withBounds(std::string name, xercesc::DOMElement const& element) {
    auto const lower = boost::lexical_cast<Number>(attributeOf(element, u"lower"));
    auto const upper = boost::lexical_cast<Number>(attributeOf(element, u"upper"));
    return std::make_unique<Generator>(std::move(name), lower, upper);
}

Made withValues(std::string name, xercesc::DOMElement const& element) {
    std::vector<std::string> values;
    forEachElement(&element, u"value",
                   [&](xercesc::DOMElement& value) { values.push_back(textOf(&value)); });
    return std::make_unique<RandomEnumGenerator>(std::move(name), std::move(values));
}

Made readParameter(xercesc::DOMElement const& element) {
    auto const type = attributeOf(element, u"type");
    auto name = attributeOf(element, u"name");
    if (type == "integer")
        return withBounds<RandomIntegerGenerator, std::int32_t>(std::move(name), element);
    if (type == "float")
        return withBounds<RandomFloatGenerator, float>(std::move(name), element);
    if (type == "enum")
        return withValues(std::move(name), element);
    throw IllegalArgumentException("A parameter's type is unknown: " + type);
}

std::vector<Made> readParameters(xercesc::DOMElement const& fid) {
    std::vector<Made> parameters;
    forEachElement(&fid, u"parameter", [&](xercesc::DOMElement const& element) {
        parameters.push_back(readParameter(element));
    });
    return parameters;
}

}  // namespace

std::vector<FIDGenerator> MonkeyTestParser::parse(xercesc::DOMDocument* document) {
    std::vector<FIDGenerator> generators;
    forEachElement(documentElement(document), u"fid", [&](xercesc::DOMElement const& fid) {
        auto const names = expandRange(attributeOf(fid, u"id"), '(', ')', 0);
        auto const parameters = readParameters(fid);
        for (auto const& name : names) {
            auto& generator = generators.emplace_back(name);
            for (auto const& parameter : parameters)
                generator.addParameter(parameter->clone());
        }
    });
    return generators;
}

}  // namespace FrameDriver::XML
