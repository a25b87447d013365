#pragma once

#include "cpl/ListItem.h"
#include "cpl/Message.h"
#include "foundation/DataType.h"

#include <cstdint>
#include <string>
#include <utility>

namespace FrameDriver::CPL {

/// What the frame reports: a parameter's value or an item of a list. An issue lives for one
/// dispatch, on the client library's callback thread.
class Issue : public Message {
  public:
    /// 3 a parameter, 4 a list; the numbers of the client library's services.
    std::int32_t getServiceType() const { return serviceType; }
    /// Whether this answers a question, in place of telling a change.
    bool isMarked() const { return marked; }
    void setMarked() { marked = true; }

  protected:
    explicit Issue(std::int32_t service) : Message(eIssue), serviceType(service) {}
    Issue(Issue const&) = default;
    Issue& operator=(Issue const&) = default;

  private:
    std::int32_t serviceType;
    bool marked = false;
};

/// The value of one parameter.
///
///     log line = "Parameter Issue (pid=" n ", did=" hex ", val=" value ", flag=" n ")"
class ParameterIssue : public Issue {
  public:
    /// All numbers 0, no value.
    ParameterIssue();
    /// No value.
    ParameterIssue(std::int32_t parameter, std::uint32_t device, std::int32_t setFlag);
    /// Takes the pointer; see DataValue.h for how it must be obtained. Kinds that are not
    /// released may point anywhere, for as long as the issue lives.
    ParameterIssue(std::int32_t parameter, std::uint32_t device, std::int32_t tag, void* value,
                   std::int32_t setFlag);
    /// Deep; of a kind that is not copied, the copy has a null `data`.
    ParameterIssue(ParameterIssue const& other);
    ParameterIssue& operator=(ParameterIssue const&) = delete;
    ~ParameterIssue() override;

    std::string toString() const override;

    std::int32_t getPid() const { return pid; }
    std::uint32_t getDid() const { return did; }
    std::int32_t getFlag() const { return flag; }
    std::int32_t getDataType() const { return dataType; }
    void* getData() const { return data; }

  private:
    std::int32_t pid = 0;
    std::uint32_t did = 0;
    std::int32_t flag = 0;
    std::int32_t dataType = NoValue;
    void* data = nullptr;
};

/// One item of a list.
///
///     log line = "List Issue (lid=" n ", did=" hex ", number=" n ", item=" item
///
/// The bracket stays open.
class ListIssue : public Issue {
  public:
    ListIssue(std::int32_t list, std::uint32_t device, ListItem listItem, std::uint16_t listNumber);

    std::string toString() const override;

    std::int32_t getLid() const { return lid; }
    std::uint32_t getDid() const { return did; }
    std::uint16_t getNumber() const { return number; }
    ListItem getItem() const { return item; }
    /// The item itself; stays the issue's.
    ListItem const& viewItem() const { return item; }

  private:
    std::int32_t lid;
    ListItem item;
    std::uint32_t did;
    std::uint16_t number;
};

}  // namespace FrameDriver::CPL
