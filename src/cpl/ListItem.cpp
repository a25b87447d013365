#include "cpl/ListItem.h"

#include "cpl/DataValue.h"
#include "cpl/LogText.h"

#include <utility>

namespace FrameDriver::CPL {

ListItemParameter::ListItemParameter(std::string_view fieldName, void* value, std::int32_t tag)
    : name(fieldName), data(value), dataType(tag), heldType(tag) {}

ListItemParameter::ListItemParameter(ListItemParameter const& other)
    : name(other.name),
      data(other.copyData()),
      dataType(other.dataType),
      heldType(other.dataType) {}

// A move must not show more than a copy would.
ListItemParameter::ListItemParameter(ListItemParameter&& other) noexcept
    : name(std::move(other.name)), dataType(other.dataType), heldType(other.dataType) {
    if (dataTypeRow(dataType).owned)
        data = std::exchange(other.data, nullptr);
}

ListItemParameter& ListItemParameter::operator=(ListItemParameter const& other) {
    if (this == &other)
        return *this;
    name = other.name;
    dataType = other.dataType;
    if (dataTypeRow(dataType).owned) {
        releaseValue(data, heldType);
        data = other.copyData();
        heldType = dataType;
    }
    return *this;
}

// A value that an assignment left behind under a kind that is not owned has no copy either.
void* ListItemParameter::copyData() const { return copyValue(data, dataType); }

ListItemParameter::~ListItemParameter() { releaseValue(data, heldType); }

ListItem::ListItem(std::uint32_t id, std::int32_t itemStatus, std::int32_t itemSize,
                   std::uint32_t next)
    : itemId(id), nextItemId(next), status(itemStatus), size(itemSize) {}

void ListItem::addParameter(ListItemParameter const& parameter) {
    parameters.try_emplace(parameter.getName(), parameter);
}

void ListItem::addParameter(ListItemParameter&& parameter) {
    parameters.try_emplace(parameter.getName(), std::move(parameter));
}

bool ListItem::getParameter(std::string_view name, ListItemParameter& out) const {
    auto const found = parameters.find(name);
    if (found == parameters.end())
        return false;
    out = found->second;
    return true;
}

void ListItem::appendText(std::string& out) const {
    appendUnsigned(out, "List Item (id=", itemId);
    appendSigned(out, ", status=", status);
    appendSigned(out, ", size= ", size);
    out += ", parameters: ";
    for (auto const& [name, parameter] : parameters) {
        out += name;
        out += " = ";
        appendLogValue(out, parameter.getData(), parameter.getDataType());
        out += ", ";
    }
    out += ')';
}

}  // namespace FrameDriver::CPL
