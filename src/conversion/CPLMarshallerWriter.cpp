#include "conversion/CPLMarshallerWriter.h"

#include "conversion/CPLMarshallerKeywords.h"
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

#include <cstdint>
#include <string_view>

namespace FrameDriver::Conversion {
namespace {

void writeSigned(std::string& out, std::string_view label, std::int32_t number) {
    out += label;
    Tools::appendInt32(out, number);
}

void writeUnsigned(std::string& out, std::string_view label, std::uint32_t number) {
    out += label;
    Tools::appendUInt32(out, number);
}

void writeDeviceId(std::string& out, std::uint32_t did) {
    out += ", ";
    appendDeviceId(out, did);
}

void writeData(std::string& out, void const* data, std::int32_t dataType) {
    CPL::DataTypeRow const& row = CPL::dataTypeRow(dataType);
    out += "data=[";
    if (row.name.empty()) {
        writeSigned(out, "datatype not recognized! (", dataType);
        out += ')';
    } else {
        out += "type=";
        out += row.name;
        out += ", value=";
        CPL::appendValue(out, data, row.written);
    }
    out += closingByte;
}

void writeItem(std::string& out, CPL::ListItem const& item) {
    writeUnsigned(out, ", item=[itemId=", item.getItemId());
    writeSigned(out, ", status=", item.getStatus());
    writeUnsigned(out, ", nextItemId=", item.getNextItemId());
    for (auto const& [name, parameter] : item.getParameters()) {
        out += ", param=[name=";
        out += name;
        out += ", ";
        writeData(out, parameter.getData(), parameter.getDataType());
        out += closingByte;
    }
    out += closingByte;
}

void write(std::string& out, CPL::SetMessage const& message) {
    writeSigned(out, "Set Message: pid=", message.getPid());
    writeDeviceId(out, message.getDid());
}

void write(std::string& out, CPL::SendEventMessage const& message) {
    writeSigned(out, "Send Event Message: eid=", message.getEid());
    writeDeviceId(out, message.getDid());
    writeUnsigned(out, ", message_size=", message.getSize());
}

void write(std::string& out, CPL::SetListMessage const& message) {
    writeSigned(out, "Set List Message: lid=", message.getLid());
    writeDeviceId(out, message.getDid());
    writeUnsigned(out, ", number=", message.getNumber());
    writeSigned(out, ", action=", message.getAction());
    writeItem(out, message.viewItem());
}

void write(std::string& out, CPL::ParameterIssue const& issue) {
    writeSigned(out, "Parameter Issue: pid=", issue.getPid());
    writeDeviceId(out, issue.getDid());
    out += ", ";
    writeData(out, issue.getData(), issue.getDataType());
    out += ", flag=";
    out += wordOf(setFlagWords, issue.getFlag(), invalidSetFlagWord);
}

void write(std::string& out, CPL::ListIssue const& issue) {
    writeSigned(out, "List Issue: lid=", issue.getLid());
    writeDeviceId(out, issue.getDid());
    writeUnsigned(out, ", number=", issue.getNumber());
    writeItem(out, issue.viewItem());
}

void write(std::string& out, CPL::ParameterSubscription const& subscription) {
    writeSigned(out, "Parameter Subscription: pid=", subscription.getPid());
    writeDeviceId(out, subscription.getDid());
    out += ", flag=";
    out += wordOf(subscriptionFlagWords, subscription.getFlag(), "append");
}

void write(std::string& out, CPL::ListSubscription const& subscription) {
    writeSigned(out, "List Subscription: lid=", subscription.getLid());
    writeUnsigned(out, ", number=", subscription.getNumber());
    writeDeviceId(out, subscription.getDid());
}

void writeIssue(std::string& out, CPL::Issue const& issue) {
    switch (issue.getServiceType()) {
    case eParameterService:
        return write(out, static_cast<CPL::ParameterIssue const&>(issue));
    case eListService:
        return write(out, static_cast<CPL::ListIssue const&>(issue));
    default:
        writeSigned(out, "undefined issue service type (", issue.getServiceType());
        out += ')';
    }
}

// A batch has no text: no one looks one up.
void writeSubscription(std::string& out, CPL::Subscription const& subscription) {
    switch (subscription.getKind()) {
    case CPL::eParameterSubscription:
        return write(out, static_cast<CPL::ParameterSubscription const&>(subscription));
    case CPL::eListSubscription:
        return write(out, static_cast<CPL::ListSubscription const&>(subscription));
    default:
        out += "undefined subscription type.";
    }
}

}  // namespace

void writeMessage(std::string& out, CPL::Message const& message) {
    switch (message.getType()) {
    case CPL::eSendEventMessage:
        return write(out, static_cast<CPL::SendEventMessage const&>(message));
    case CPL::eSetMessage:
        return write(out, static_cast<CPL::SetMessage const&>(message));
    case CPL::eSubscription:
        return writeSubscription(out, static_cast<CPL::Subscription const&>(message));
    case CPL::eIssue:
        return writeIssue(out, static_cast<CPL::Issue const&>(message));
    case CPL::eSetListMessage:
        return write(out, static_cast<CPL::SetListMessage const&>(message));
    default:
        out += "undefined";
    }
}

}  // namespace FrameDriver::Conversion
