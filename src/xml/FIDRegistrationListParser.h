#pragma once

#include "xml/AbstractParser.h"

#include <list>
#include <string>

namespace FrameDriver::XML {

/// Reads a list of the FIDs to register for, in mode `Schema`: the texts of the `fid` elements
/// in document order, ranges in round brackets expanded (RangeExpansion.h).
class FIDRegistrationListParser : public AbstractParser<std::list<std::string>> {
  public:
    ~FIDRegistrationListParser() override = default;

    std::list<std::string> parse(xercesc::DOMDocument* document) override;
};

}  // namespace FrameDriver::XML
