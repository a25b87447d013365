#pragma once

#include "template/decorators/CopyableDecorator.h"

namespace FrameDriver::Template {

/// A hexadecimal number (signed, "0x" or not) in decimal; "0" for what can't be read,
/// "ffffffff" included, which is out of the signed range.
class HexToDecimalDecorator : public CopyableDecorator<HexToDecimalDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "hexToDecimal"; }
};

/// A signed decimal number in lower-case hexadecimal without prefix or padding, a negative one
/// as its two's complement of 32 bits; "0" for what can't be read.
class DecimalToHexDecorator : public CopyableDecorator<DecimalToHexDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "decimalToHex"; }
};

/// The same for an unsigned number of 32 bits.
class DecimalUnsignedToHexDecorator : public CopyableDecorator<DecimalUnsignedToHexDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "decimalUnsignedToHex"; }
};

/// Each byte in lower-case hexadecimal without padding, taken as signed: a line feed gives "a",
/// and a byte of 128 or more eight digits that begin with "ffffff". Can't be taken back; kept:
/// the dictionaries in use depend on it.
class StringToHexDecorator : public CopyableDecorator<StringToHexDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "stringToHex"; }
};

}  // namespace FrameDriver::Template
