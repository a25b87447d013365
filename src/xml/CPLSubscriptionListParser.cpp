#include "xml/CPLSubscriptionListParser.h"

#include "cpl/Subscription.h"
#include "foundation/ValueConversions.h"
#include "platform/cplclient/CPLTypes.h"
#include "xml/DOMSearch.h"
#include "xml/RangeExpansion.h"

#include <cstdint>
#include <iostream>
#include <memory>
#include <utility>
#include <vector>

namespace FrameDriver::XML {
namespace {

using xercesc::DOMElement;
using Numbers = std::vector<std::uint32_t>;
using Owned = std::vector<std::unique_ptr<CPL::Subscription>>;

constexpr std::pair<std::string_view, eSubscribeFlags> flagWords[] = {
    {"immediate", eSubscribeImmediate},
    {"replace", eSubscribeReplace},
    {"append", eSubscribeAppend},
    {"update", eSubscribeUpdate},
};

eSubscribeFlags readFlag(DOMElement const& subscription) {
    std::string const word = textOf(firstElement(&subscription, u"flag"));
    for (auto const& [text, flag] : flagWords)
        if (text == word)
            return flag;
    return eSubscribeAppend;
}

/// Empty unless the element stands exactly once.
Numbers readDecimals(DOMElement const& subscription, std::u16string_view tagName) {
    Numbers numbers;
    if (DOMElement const* const element = onlyElement(&subscription, tagName))
        for (std::string const& text : expandDecimalRange(textOf(element), '[', ']', 0))
            numbers.push_back(Tools::stringToUInt32(text));
    return numbers;
}

Numbers readDevices(DOMElement const& subscription) {
    Numbers numbers;
    DOMElement const* const element = onlyElement(&subscription, u"deviceId");
    if (!element)
        return numbers;
    for (std::string const& text : expandHexRange(textOf(element), '[', ']', 0)) {
        numbers.push_back(Tools::hexStringToUInt32(text));
        // Kept: panels have always shown these on their console.
        if (!text.empty() && text.front() == 'a')
            std::cout << Tools::uint32ToHexString(numbers.back()) << std::endl;
    }
    return numbers;
}

void addParameters(Owned& subscriptions, DOMElement const& element) {
    Numbers const pids = readDecimals(element, u"paramId");
    Numbers const dids = readDevices(element);
    eSubscribeFlags const flag = readFlag(element);
    for (std::uint32_t const pid : pids)
        for (std::uint32_t const did : dids)
            subscriptions.push_back(
                std::make_unique<CPL::ParameterSubscription>(static_cast<PIDType>(pid), did, flag));
}

void addLists(Owned& subscriptions, DOMElement const& element) {
    constexpr std::uint16_t number = 1;
    Numbers const lids = readDecimals(element, u"listId");
    Numbers const dids = readDevices(element);
    eSubscribeFlags const flag = readFlag(element);
    for (std::uint32_t const lid : lids)
        for (std::uint32_t const did : dids)
            subscriptions.push_back(std::make_unique<CPL::ListSubscription>(
                static_cast<eListIDType>(lid), number, did, flag));
}

}  // namespace

std::list<CPL::Subscription*> CPLSubscriptionListParser::parse(xercesc::DOMDocument* document) {
    Owned subscriptions;
    forEachElement(documentElement(document), u"subscription", [&](DOMElement& element) {
        std::string const type = attributeOf(element, u"xsi:type");
        if (type == "parameterSubscription")
            addParameters(subscriptions, element);
        else if (type == "listSubscription")
            addLists(subscriptions, element);
    });
    std::list<CPL::Subscription*> result(subscriptions.size());
    auto place = result.begin();
    for (auto& subscription : subscriptions)
        *place++ = subscription.release();
    return result;
}

}  // namespace FrameDriver::XML
