#include "conversion/CPLMarshallerReader.h"

#include "conversion/CPLMarshallerKeywords.h"
#include "conversion/CPLMarshallerText.h"
#include "conversion/ClosingByte.h"
#include "conversion/DeviceIdentifier.h"
#include "cpl/DataValue.h"
#include "cpl/Issue.h"
#include "cpl/ListItem.h"
#include "cpl/Message.h"
#include "cpl/SendEventMessage.h"
#include "cpl/SetListMessage.h"
#include "cpl/SetMessage.h"
#include "cpl/Subscription.h"
#include "foundation/NumberText.h"
#include "foundation/TextSearch.h"
#include "foundation/ValueConversions.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <utility>
#include <vector>

// The readers go from delimiter to delimiter. A delimiter that isn't there is at npos; "behind"
// it lies the start of the text, and a field that would end at it runs to the end. So malformed
// text is read somehow, and always in the same way.

namespace FrameDriver::Conversion {
namespace {

using Tools::cut;

constexpr auto nowhere = std::string_view::npos;

std::size_t findBehind(std::string_view text, char delimiter, std::size_t position) {
    return text.find(delimiter, position + 1);
}

/// Numbers that can't be read are 0.
std::int32_t signedIn(std::string_view text) { return Tools::int32Or(text, 0); }

std::uint32_t unsignedIn(std::string_view text) {
    std::uint32_t number = 0;
    Tools::readUInt32(text, number);
    return number;
}

std::uint16_t unsigned16In(std::string_view text) {
    std::uint16_t number = 0;
    Tools::readUInt16(text, number);
    return number;
}

/// A number with or without a label: "pid=17" and "17" alike.
std::int32_t numberField(std::string_view field) {
    return signedIn(cut(field, field.find('=') + 1));
}

eCpl2SetType setFlagIn(std::string_view word) {
    return static_cast<eCpl2SetType>(valueOf(setFlagWords, word, invalidSetFlag));
}

eSubscribeFlags subscriptionFlagIn(std::string_view word) {
    return static_cast<eSubscribeFlags>(valueOf(subscriptionFlagWords, word, eSubscribeAppend));
}

/// A value out of a text, until someone takes it.
///
///     text = ... "[" "type=" name ", value=" value closing
///
/// The value may hold commas and equal signs, but no closing byte.
class ReadData {
  public:
    explicit ReadData(std::string_view text) {
        std::size_t const typeStart = findBehind(text, '=', text.find('[')) + 1;
        std::size_t const comma = text.find(',', typeStart);
        std::size_t const start = findBehind(text, '=', comma) + 1;
        std::size_t const end = text.find(closingByte, start);
        dataType = CPL::dataTypeOf(cut(text, typeStart, comma - typeStart));
        data = CPL::readValue(cut(text, start, end - start), CPL::dataTypeRow(dataType).read);
        if (dataType == CPL::Double)
            number.reset(static_cast<double*>(data));
    }
    ~ReadData() { CPL::releaseValue(data, dataType); }
    ReadData(ReadData const&) = delete;
    ReadData& operator=(ReadData const&) = delete;

    std::int32_t type() const { return dataType; }
    /// To an owner that releases what it owns of that kind.
    void* take() { return std::exchange(data, nullptr); }
    /// No one releases a "Double", so it needs an owner of its own; null for all others.
    std::unique_ptr<double> takeDouble() { return std::move(number); }

  private:
    void* data;
    std::int32_t dataType;
    std::unique_ptr<double> number;
};

/// A message made of text whose value is a "Double", which the message itself doesn't release.
template <typename T>
class WithDouble final : public T {
  public:
    template <typename... Arguments>
    explicit WithDouble(std::unique_ptr<double> value, Arguments... arguments)
        : T(arguments...), number(std::move(value)) {}

  private:
    std::unique_ptr<double> number;
};

template <typename T, typename... Arguments>
std::unique_ptr<T> makeMessage(ReadData& value, Arguments... arguments) {
    if (auto number = value.takeDouble())
        return std::make_unique<WithDouble<T>>(std::move(number), arguments...);
    return std::make_unique<T>(arguments...);
}

/// What most forms begin with.
///
///     head = tag ": " [ label "=" ] n ", " did
struct Head {
    std::int32_t number;
    std::uint32_t did;
    std::size_t end;  ///< where the did closes
};

/// `comma` is the one behind the number.
Head readHead(std::string_view text, std::size_t comma) {
    std::size_t const start = text.find(':') + 2;
    std::size_t const didStart = comma + 2;
    std::size_t const end = text.find(closingByte, didStart);
    return {numberField(cut(text, start, comma - start)),
            readDeviceId(cut(text, didStart, end - didStart)), end};
}

Head readHead(std::string_view text) { return readHead(text, text.find(',')); }

/// The head of the list forms, whose comma is sought behind the tag.
Head readListHead(std::string_view text) {
    return readHead(text, text.find(',', text.find(':') + 2));
}

/// The value and the flag of a parameter, behind its head at `position`.
///
///     ", " data ", flag=" set-flag
struct ValueAndFlag {
    ReadData value;
    eCpl2SetType flag;

    static ValueAndFlag read(std::string_view text, std::size_t position) {
        std::size_t const start = findBehind(text, ',', position) + 2;
        std::size_t const end = text.find(closingByte, start);
        std::size_t const equals = findBehind(text, '=', findBehind(text, ',', end));
        return {ReadData(cut(text, start, end - start)), setFlagIn(cut(text, equals + 1))};
    }
};

std::unique_ptr<CPL::Message> readSetMessage(std::string_view text) {
    Head const head = readHead(text);
    ValueAndFlag rest = ValueAndFlag::read(text, head.end);
    auto message = makeMessage<CPL::SetMessage>(rest.value, static_cast<PIDType>(head.number),
                                                head.did, rest.flag);
    message->setData(rest.value.take());
    message->setDataType(rest.value.type());
    return message;
}

std::unique_ptr<CPL::Message> readParameterIssue(std::string_view text) {
    Head const head = readHead(text);
    ValueAndFlag rest = ValueAndFlag::read(text, head.end);
    return makeMessage<CPL::ParameterIssue>(rest.value, head.number, head.did, rest.value.type(),
                                            rest.value.take(), std::int32_t{rest.flag});
}

/// The event's data fill all that is reserved: more is refused, less is padded with 0.
void readEventData(std::string_view text, std::size_t position, CPL::SendEventMessage& message) {
    std::size_t const sizeStart = findBehind(text, '=', text.find('[', position)) + 1;
    std::uint16_t const size = unsigned16In(cut(text, sizeStart));
    std::size_t const start = text.find('=', sizeStart) + 1;
    std::size_t const end = text.find(closingByte, start);
    message.reserve(size);
    for (std::uint8_t const byte : Tools::hexStringToBytes(cut(text, start, end - start)))
        message.addByte(byte);
    while (message.addByte(0)) {
    }
}

std::unique_ptr<CPL::Message> readSendEventMessage(std::string_view text) {
    Head const head = readHead(text);
    auto message =
        std::make_unique<CPL::SendEventMessage>(static_cast<EIDType>(head.number), head.did);
    std::size_t const data = text.find("data");
    if (data != nowhere)
        readEventData(text, data, *message);
    return message;
}

/// A field of an item.
///
///     text = ... "[" "name=" name ", " data
CPL::ListItemParameter readItemParameter(std::string_view text) {
    std::size_t const start = findBehind(text, '=', text.find('[')) + 1;
    std::size_t const comma = text.find(',', start);
    ReadData value(cut(text, comma));
    // The parameter of a "Double" loses its value when it is moved or copied, so that the number
    // itself may end here.
    return {cut(text, start, comma - start), value.take(), value.type()};
}

// The third number is written as the next item's id and read as the size: dictionaries are
// written for that.
CPL::ListItem readItem(std::string_view text) {
    std::size_t const id = findBehind(text, '=', text.find('['));
    std::size_t const status = findBehind(text, '=', id);
    std::size_t const size = findBehind(text, '=', status);
    CPL::ListItem item(unsignedIn(cut(text, id + 1)), signedIn(cut(text, status + 1)),
                       signedIn(cut(text, size + 1)), 0);
    std::size_t comma = findBehind(text, ',', size);
    while (comma != nowhere) {
        std::size_t const end = findBehind(text, closingByte, comma);
        if (end == nowhere)
            break;
        item.addParameter(readItemParameter(cut(text, comma + 1, end - comma)));
        comma = findBehind(text, ',', end);
    }
    return item;
}

std::unique_ptr<CPL::Message> readSetListMessage(std::string_view text) {
    Head const head = readListHead(text);
    std::size_t const number = findBehind(text, '=', head.end);
    std::size_t const action = findBehind(text, '=', number);
    std::size_t const item = findBehind(text, ',', action) + 2;
    return std::make_unique<CPL::SetListMessage>(
        static_cast<eListIDType>(head.number), unsigned16In(cut(text, number + 1)), head.did,
        static_cast<eListItemAction>(unsigned16In(cut(text, action + 1))),
        readItem(cut(text, item)));
}

std::unique_ptr<CPL::Message> readListIssue(std::string_view text) {
    Head const head = readListHead(text);
    std::size_t const number = findBehind(text, '=', head.end);
    std::size_t const item = findBehind(text, ',', number) + 2;
    return std::make_unique<CPL::ListIssue>(head.number, head.did, readItem(cut(text, item)),
                                            unsigned16In(cut(text, number + 1)));
}

/// The flag behind the did that closes at `position`. Without one there, some longer text is
/// looked at, which is no flag's word; so members of a batch need none.
eSubscribeFlags readSubscriptionFlag(std::string_view text, std::size_t position) {
    return subscriptionFlagIn(cut(text, findBehind(text, '=', position) + 1));
}

std::unique_ptr<CPL::Subscription> readParameterSubscription(std::string_view text) {
    std::size_t const start = text.find(':') + 1;
    std::size_t const comma = text.find(',');
    std::size_t const end = text.find(closingByte);
    return std::make_unique<CPL::ParameterSubscription>(
        static_cast<PIDType>(numberField(cut(text, start, comma - start))),
        readDeviceId(cut(text, comma + 1, end - comma - 1)), readSubscriptionFlag(text, end));
}

std::unique_ptr<CPL::Subscription> readListSubscription(std::string_view text) {
    std::size_t const start = text.find(':') + 1;
    std::size_t const comma = text.find(',');
    std::size_t const number = findBehind(text, '=', comma) + 1;
    std::size_t const didStart = text.find(',', number) + 1;
    std::size_t const end = text.rfind(closingByte);
    return std::make_unique<CPL::ListSubscription>(
        static_cast<eListIDType>(numberField(cut(text, start, comma - start))),
        unsigned16In(cut(text, number)), readDeviceId(cut(text, didStart, end - didStart)),
        readSubscriptionFlag(text, end));
}

/// Whatever stands between the tag and the flag is read as a parameter subscription.
std::unique_ptr<CPL::Subscription> readBatchSubscription(std::string_view text) {
    std::vector<std::string_view> const tokens = Tools::split(text, "|");
    std::vector<std::unique_ptr<CPL::Subscription>> members;
    for (std::size_t i = 1; i + 1 < tokens.size(); ++i)
        members.push_back(readParameterSubscription(trim(tokens[i])));
    std::string_view const flag = trim(tokens.back());
    std::list<CPL::Subscription*> list;
    for (auto const& member : members)
        list.push_back(member.get());
    auto batch = std::make_unique<CPL::BatchSubscription>(
        std::move(list), subscriptionFlagIn(cut(flag, flag.find('=') + 1)));
    for (auto& member : members)
        static_cast<void>(member.release());  // the batch has it
    return batch;
}

template <typename T, std::unique_ptr<T> (*read)(std::string_view)>
std::unique_ptr<CPL::Message> asMessage(std::string_view text) {
    return read(text);
}

struct Form {
    std::string_view tag;
    std::unique_ptr<CPL::Message> (*read)(std::string_view);
};
constexpr Form forms[] = {
    {"Parameter Subscription", asMessage<CPL::Subscription, readParameterSubscription>},
    {"List Subscription", asMessage<CPL::Subscription, readListSubscription>},
    {"Batch Subscription", asMessage<CPL::Subscription, readBatchSubscription>},
    {"Set Message", readSetMessage},
    {"Send Event Message", readSendEventMessage},
    {"Set List Message", readSetListMessage},
    {"Parameter Issue", readParameterIssue},
    {"List Issue", readListIssue},
};

}  // namespace

std::unique_ptr<CPL::Message> readMessage(std::string_view text) {
    std::string_view const tag = text.substr(0, text.find(':'));
    for (Form const& form : forms)
        if (form.tag == tag)
            return form.read(text);
    return nullptr;
}

}  // namespace FrameDriver::Conversion
