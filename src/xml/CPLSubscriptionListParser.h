#pragma once

#include "xml/AbstractParser.h"

#include <list>

namespace FrameDriver::CPL {
class Subscription;
}

namespace FrameDriver::XML {

/// Reads a list of what to subscribe to at the frame, in mode `Schema`.
///
///     <subscription xsi:type="parameterSubscription">
///       <paramId> decimal range </paramId> <deviceId> hexadecimal range </deviceId>
///       <flag> "immediate" | "replace" | "append" | "update" </flag>
///     </subscription>
///
/// or "listSubscription" with `listId` in place of `paramId`; any other type is skipped. Each
/// number must stand exactly once in its `subscription`, or that yields nothing. Ranges are in
/// square brackets (RangeExpansion.h). Decimal numbers are limited to 32767, as
/// Tools::stringToUInt32 reads them. Without a `flag`, or with any other text, it is "append".
///
/// The result has every number with every device, the numbers varying slowest. Its objects are
/// the caller's, to be deleted.
class CPLSubscriptionListParser : public AbstractParser<std::list<CPL::Subscription*>> {
  public:
    ~CPLSubscriptionListParser() override = default;

    std::list<CPL::Subscription*> parse(xercesc::DOMDocument* document) override;
};

}  // namespace FrameDriver::XML
