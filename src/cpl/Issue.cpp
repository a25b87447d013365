#include "cpl/Issue.h"

#include "cpl/DataValue.h"
#include "cpl/LogText.h"
#include "platform/cplclient/CPLTypes.h"

#include <utility>

namespace FrameDriver::CPL {

ParameterIssue::ParameterIssue() : Issue(eParameterService) {}

ParameterIssue::ParameterIssue(std::int32_t parameter, std::uint32_t device, std::int32_t setFlag)
    : Issue(eParameterService), pid(parameter), did(device), flag(setFlag) {}

ParameterIssue::ParameterIssue(std::int32_t parameter, std::uint32_t device, std::int32_t tag,
                               void* value, std::int32_t setFlag)
    : Issue(eParameterService),
      pid(parameter),
      did(device),
      flag(setFlag),
      dataType(tag),
      data(value) {}

ParameterIssue::ParameterIssue(ParameterIssue const& other)
    : Issue(other),
      pid(other.pid),
      did(other.did),
      flag(other.flag),
      dataType(other.dataType),
      data(copyValue(other.data, other.dataType)) {}

ParameterIssue::~ParameterIssue() { releaseValue(data, dataType); }

std::string ParameterIssue::toString() const {
    std::string out = "Parameter Issue (";
    appendSigned(out, "pid=", pid);
    appendHex(out, ", did=", did);
    out += ", val=";
    appendLogValue(out, data, dataType);
    appendSigned(out, ", flag=", flag);
    out += ')';
    return out;
}

ListIssue::ListIssue(std::int32_t list, std::uint32_t device, ListItem listItem,
                     std::uint16_t listNumber)
    : Issue(eListService), lid(list), item(std::move(listItem)), did(device), number(listNumber) {}

std::string ListIssue::toString() const {
    std::string out = "List Issue (";
    appendSigned(out, "lid=", lid);
    appendHex(out, ", did=", did);
    appendUnsigned(out, ", number=", number);
    out += ", item=";
    item.appendText(out);
    return out;
}

}  // namespace FrameDriver::CPL
