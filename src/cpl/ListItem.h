#pragma once

#include "foundation/DataType.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace FrameDriver::CPL {

/// One named field of a list item: a value type, copied deeply. Of a kind that is not copied
/// (DataValue.h), a copy has a null `data`, and so has what is moved to.
class ListItemParameter {
  public:
    ListItemParameter() = default;
    /// Takes the pointer.
    ListItemParameter(std::string_view fieldName, void* value, std::int32_t tag);
    ListItemParameter(ListItemParameter const& other);
    ListItemParameter(ListItemParameter&& other) noexcept;
    /// For a kind that is not copied, `data` stays what it was before, under the new tag. Kept:
    /// the item structures are filled through one parameter that is assigned again and again.
    ListItemParameter& operator=(ListItemParameter const& other);
    ~ListItemParameter();

    std::string const& getName() const { return name; }
    void* getData() const { return data; }
    std::int32_t getDataType() const { return dataType; }
    /// The tag by which `data` was obtained. Differs from `getDataType` only after an
    /// assignment that left `data` as it was.
    std::int32_t getHeldType() const { return heldType; }

  private:
    void* copyData() const;

    std::string name;
    void* data = nullptr;
    std::int32_t dataType = NoValue;
    std::int32_t heldType = NoValue;
};

/// An item of one of the frame's lists: a header and named fields. A value type, copied deeply.
///
///     text  = "List Item (id=" n ", status=" n ", size= " n ", parameters: " { field } ")"
///     field = name " = " value ", "
///
/// The single blank behind "size=" and the comma behind the last field are part of the text.
class ListItem {
  public:
    using Parameters = std::map<std::string, ListItemParameter, std::less<>>;

    /// All numbers 0 but the status, which is 1.
    ListItem() = default;
    ListItem(std::uint32_t id, std::int32_t itemStatus, std::int32_t itemSize, std::uint32_t next);
    ListItem(ListItem const&) = default;
    ListItem(ListItem&&) = default;
    ListItem& operator=(ListItem const&) = default;
    ListItem& operator=(ListItem&&) = default;
    virtual ~ListItem() = default;

    /// Stores a deep copy under the parameter's name; a name already present keeps its value.
    void addParameter(ListItemParameter const& parameter);
    /// The same without the copy; the argument is left without a value.
    void addParameter(ListItemParameter&& parameter);
    /// False if the name is absent; otherwise assigns to `out`, with all that assignment does.
    bool getParameter(std::string_view name, ListItemParameter& out) const;

    void appendText(std::string& out) const;

    std::uint32_t getItemId() const { return itemId; }
    std::uint32_t getNextItemId() const { return nextItemId; }
    std::int32_t getStatus() const { return status; }
    std::int32_t getSize() const { return size; }
    Parameters const& getParameters() const { return parameters; }

  private:
    std::uint32_t itemId = 0;
    std::uint32_t nextItemId = 0;
    std::int32_t status = 1;
    std::int32_t size = 0;
    Parameters parameters;
};

}  // namespace FrameDriver::CPL
