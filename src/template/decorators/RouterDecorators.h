#pragma once

#include "template/decorators/CopyableDecorator.h"

#include <cstdint>
#include <string>

namespace FrameDriver::Template {

/// The identifiers of a router's entries with the value as their name, all of them, one behind
/// the other. "*" and the empty value give the empty string.
///
///     count      "ROUTER." router ".NEXTID"    (0 if absent)
///     name       router identifier ".NAME"     (identifiers from 0 below the count; no "ROUTER."
///                                               ahead, as the dictionaries in use store it)
class RouterIdLookUpDecorator : public CopyableDecorator<RouterIdLookUpDecorator> {
  public:
    explicit RouterIdLookUpDecorator(std::string routerKeyPart);

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "Router Id LookUp"; }

  private:
    std::string router;
};

/// Renumbers an index, from 1, of a layout in blocks of `blockSize` into one in blocks of 50. A
/// size of 0 gives the value unchanged.
class MappingCorrectorDecorator : public CopyableDecorator<MappingCorrectorDecorator> {
  public:
    explicit MappingCorrectorDecorator(std::int32_t size) : blockSize(size) {}

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "mappingCorrector"; }

  private:
    std::int32_t blockSize;
};

}  // namespace FrameDriver::Template
