#include "template/DecoratorTable.h"

#include "foundation/NumberText.h"
#include "foundation/TextSearch.h"
#include "foundation/ValueConversions.h"
#include "template/ArgumentText.h"
#include "template/decorators/AggregateValueDecorator.h"
#include "template/decorators/ArithmeticDecorators.h"
#include "template/decorators/ClipStackDecorators.h"
#include "template/decorators/FormatDecorator.h"
#include "template/decorators/HexDecorators.h"
#include "template/decorators/KeyDecorators.h"
#include "template/decorators/LeverDecorators.h"
#include "template/decorators/ListElementDecorators.h"
#include "template/decorators/PriorityDecorators.h"
#include "template/decorators/RouterDecorators.h"
#include "template/decorators/SequenceDecorators.h"
#include "template/decorators/TableDecorators.h"
#include "template/decorators/TestDecorators.h"
#include "template/decorators/TransitionDecorators.h"
#include "template/decorators/WidthDecorator.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

// The makers read the arguments of a word field by field and from left to right, as the order of
// the fields decides what odd words mean; so each field is a statement of its own and never an
// argument next to another.

namespace FrameDriver::Template {
namespace {

using Made = std::unique_ptr<SegmentDecorator>;

template <typename Decorator>
Made alone(std::string_view) {
    return std::make_unique<Decorator>();
}

template <typename Decorator>
Made withText(std::string_view word) {
    return std::make_unique<Decorator>(std::string(behindEquals(word)));
}

template <typename Decorator>
Made withNumber(std::string_view word) {
    return std::make_unique<Decorator>(Tools::stringToInt32(behindEquals(word)));
}

Made makeEnumeration(std::string_view word) {
    EnumerationDecorator::Mapping mapping;
    std::optional<std::string> otherwise;
    std::string_view piece;
    for (Tools::Pieces pieces(behindColon(word), ","); pieces.next(piece);) {
        auto const parts = Tools::split(piece, "=>");
        if (parts.empty())
            continue;
        std::string value(parts.size() == 2 ? parts[1] : "");
        if (parts[0] == "$default")
            otherwise = std::move(value);
        else
            mapping.emplace(parts[0], std::move(value));
    }
    if (otherwise)
        return std::make_unique<EnumerationDecorator>(std::move(mapping), std::move(*otherwise));
    return std::make_unique<EnumerationDecorator>(std::move(mapping));
}

Made makeScale(std::string_view word) {
    return std::make_unique<ScaleDecorator>(Tools::floatOr(behindColon(word), 0.0F));
}

Made makeFormat(std::string_view word) { return FormatDecorator::fromWord(word); }

Made makeIsEqual(std::string_view word) {
    return std::make_unique<IsEqualDecorator>(std::string(behindColon(word)));
}

Made makeBitMask(std::string_view word) {
    ArgumentFields fields(word);
    std::uint32_t const mask = Tools::hexStringToUInt32(fields.firstToFirstComma());
    std::string setText(fields.nextToComma());
    std::string clearText(fields.nextToEnd());
    return std::make_unique<BitMaskDecorator>(mask, std::move(setText), std::move(clearText));
}

template <typename Decorator>
Made makeLever(std::string_view word) {
    ArgumentFields fields(word);
    std::int32_t const me = Tools::stringToInt32(fields.firstToFirstComma());
    std::int32_t const bank = Tools::stringToInt32(fields.nextToEnd());
    bool const emem = fields.nextToEnd() == "true";
    return std::make_unique<Decorator>(me, bank, emem);
}

Made makeWidth(std::string_view word) {
    ArgumentFields fields(word);
    std::int32_t const count = Tools::stringToInt32(fields.firstToFirstComma());
    auto const padding = fields.nextToEnd();
    return std::make_unique<WidthDecorator>(count, padding.empty() ? '\0' : padding.front());
}

Made makeAggregate(std::string_view word) {
    ArgumentFields fields(word);
    std::string key(fields.firstToFirstComma());
    std::int32_t const minimum = Tools::stringToInt32(fields.nextToEnd());
    std::int32_t const maximum = Tools::stringToInt32(fields.nextToEnd());
    return std::make_unique<AggregateValueDecorator>(std::move(key), minimum, maximum);
}

ClipStackBuilderDecorator::Operation operationOf(std::string_view name) {
    using enum ClipStackBuilderDecorator::Operation;
    if (name == "insert")
        return insert;
    if (name == "modify")
        return modify;
    return name == "delete" ? remove : none;
}

Made makeClipStackBuilder(std::string_view word) {
    ArgumentFields fields(word);
    auto const operation = operationOf(fields.nextToComma());
    std::int32_t const offset = Tools::stringToInt32(fields.nextToEnd());
    return std::make_unique<ClipStackBuilderDecorator>(operation, offset);
}

ClipStackElementDecorator::Field fieldOf(std::string_view name) {
    using enum ClipStackElementDecorator::Field;
    if (name == "itemId")
        return itemId;
    return name == "clipName" ? clipName : nextItemId;
}

Made makeClipStackElement(std::string_view word) {
    ArgumentFields fields(word);
    std::int32_t const position = Tools::stringToInt32(fields.nextToComma());
    return std::make_unique<ClipStackElementDecorator>(position, fieldOf(fields.nextToEnd()));
}

// Keyword, form, printed text, arguments, explanation, maker.
constexpr std::array<DecoratorRow, 33> table{{
    {"enum", "enum:<key>=><value>,<key>=><value>,...", "enum:<key>=><value>,<key>=><value>,...",
     "map (texts), default if a key is \"$default\"", "Translates by a table of its own.",
     makeEnumeration},
    {"backgroundEnumToName", "backgroundEnumToName", "backgroundEnumToName", "",
     "The name of a background bus by its number.", alone<BackgroundEnumToNameDecorator>},
    {"backgroundNameToEnum", "backgroundNameToEnum", "backgroundNameToEnum", "",
     "The number of a background bus by the last character of its name.",
     alone<BackgroundNameToEnumDecorator>},
    {"logicalMachineNumber", "logicalMachineNumber", "logicalMachineNumber", "",
     "\"NONE\" for the machine 65535.", alone<LogicalMachineDecorator>},
    {"increment", "increment", "increment", "", "The number plus 1.", alone<IncrementDecorator>},
    {"decrement", "decrement", "decrement", "", "The number minus 1.", alone<DecrementDecorator>},
    {"scale", "scale:<factor>", "scale:<factor>", "factor (Float)",
     "The number times a factor, in 32-bit float.", makeScale},
    {"format", "format:<kind>,<option>", "format:<kind>", "kind (word), option (text)",
     "Renders numbers and times for displays.", makeFormat},
    {"hexToDecimal", "hexToDecimal", "hexToDecimal", "", "A hexadecimal number in decimal.",
     alone<HexToDecimalDecorator>},
    {"stringToHex", "stringToHex", "stringToHex", "", "Each byte in hexadecimal, unpadded.",
     alone<StringToHexDecorator>},
    {"decimalToHex", "decimalToHex", "decimalToHex", "", "A signed number in hexadecimal.",
     alone<DecimalToHexDecorator>},
    {"decimalUnsignedToHex", "decimalUnsignedToHex", "decimalUnsignedToHex", "",
     "An unsigned number in hexadecimal.", alone<DecimalUnsignedToHexDecorator>},
    {"transitionElementCombiner", "transitionElementCombiner", "transitionElementCombiner", "",
     "The elements armed for the next transition, as a bit set.",
     alone<TransitionElementCombinerDecorator>},
    {"priorityCombiner", "priorityCombiner=<text>", "priorityElementCombiner", "key part (text)",
     "The order of six keys after a change of priority, packed into a number.",
     withText<PriorityCombinerDecorator>},
    {"bitmask", "bitmask=<hex mask>,<name>=<text if set>,<name>=<text if clear>", "bitMask",
     "mask (UInt32), two texts", "One of two texts by the bits of a mask.", makeBitMask},
    {"directionSelector", "directionSelector=<me>,<name>=<bank>,<name>=<emem>", "directionSelector",
     "me, bank (Int32), emem (Boolean)", "Decides and holds the direction of a transition lever.",
     makeLever<DirectionDecorator>},
    {"leverarm", "leverarm=<me>,<name>=<bank>,<name>=<emem>", "leverarmSetter",
     "me, bank (Int32), emem (Boolean)", "The fraction of a transition for a lever position.",
     makeLever<LeverArmDecorator>},
    {"width", "width=<count>,<name>=<padding>", "Width: width=<count>, padding=<padding>",
     "count (Int32), padding (character)", "Fills the value on the left.", makeWidth},
    {"aggregate", "aggregate=<key>,<name>=<min>,<name>=<max>", "AggregateValue",
     "key (text), min, max (Int32)", "A stored number plus the value, within bounds.",
     makeAggregate},
    {"isSplit", "isSplit", "splitKey", "", "Whether the fill and cut sources of a key differ.",
     alone<SplitKeyDecorator>},
    {"priorityExtractor", "priorityExtractor=<priority>", "PriorityExtractorDecorator",
     "priority (Int32)", "The places of a key in a packed order.",
     withNumber<PriorityExtractorDecorator>},
    {"mappingCorrector", "mappingCorrector=<block size>", "mappingCorrector", "block size (Int32)",
     "Renumbers an index from blocks of a size into blocks of 50.",
     withNumber<MappingCorrectorDecorator>},
    {"routerIdLookUp", "routerIdLookUp=<router>", "Router Id LookUp", "router key part (text)",
     "The identifiers of a router's entries by their name.", withText<RouterIdLookUpDecorator>},
    {"isEmpty", "isEmpty", "isEmpty", "", "Whether the value is empty.", alone<IsEmptyDecorator>},
    {"currentClipLength", "currentClipLength", "isEmpty", "",
     "The length between the marks of a machine.", alone<MachineClipLengthDecorator>},
    {"isSequenceComplete", "isSequenceComplete", "isSequenceComplete", "",
     "Whether the last step of a sequence leads to itself.", alone<SequenceCompleteDecorator>},
    {"clipstackBuilder", "clipstackBuilder=<operation>,<name>=<offset>", "ClipStackBuilder",
     "operation (word), offset (Int32)", "A device's clip stack after one change.",
     makeClipStackBuilder},
    {"clipstackElement", "clipstackElement=<position>,<name>=<field>", "ClipStackElement",
     "position (Int32), field (word)", "One field of a clip in a device's stack.",
     makeClipStackElement},
    {"isEqualTo", "isEqualTo:<key>", "isEqual", "state key (text)",
     "Whether a state key has the value as its text.", makeIsEqual},
    {"round", "round", "round", "", "The integer part of the number plus a half.",
     alone<RoundDecorator>},
    {"logicalSourceListExtractor", "logicalSourceListExtractor", "logicalSourceListExtractor", "",
     "The logical inputs mapped to a physical source.", alone<LogicalSourceListExtractorDecorator>},
    {"nextElementExtractor", "nextElementExtractor", "nextElementExtractor", "",
     "The text ahead of the first space.", alone<NextElementExtractorDecorator>},
    {"nextElementRemover", "nextElementRemover", "nextElementRemover", "",
     "The text behind the first space.", alone<NextElementRemoverDecorator>},
}};

}  // namespace

std::span<DecoratorRow const> decoratorTable() { return table; }

}  // namespace FrameDriver::Template
