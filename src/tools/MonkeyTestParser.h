#pragma once

#include "tools/FIDGenerator.h"
#include "xml/AbstractParser.h"

#include <vector>

namespace FrameDriver::XML {

/// Reads the FIDs of a monkey test, in mode `None`; docs/formats/monkey-test.md describes the
/// file. A name with ranges in round brackets gives one generator for each of its names.
///
/// Throws boost::bad_lexical_cast for a bound that is no number, and IllegalArgumentException for
/// a parameter of unknown type; `parseFile` makes a ParseException of both.
class MonkeyTestParser : public AbstractParser<std::vector<Tools::MonkeyTest::FIDGenerator>> {
  public:
    ~MonkeyTestParser() override = default;

    std::vector<Tools::MonkeyTest::FIDGenerator> parse(xercesc::DOMDocument* document) override;
};

}  // namespace FrameDriver::XML
