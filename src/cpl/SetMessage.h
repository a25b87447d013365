#pragma once

#include "cpl/Message.h"
#include "foundation/DataType.h"
#include "platform/cplclient/CPLTypes.h"

#include <cstdint>
#include <string>

namespace FrameDriver::CPL {

/// Sets one parameter of the frame.
///
///     log line = "Set Message (pid = " n ", did = 0x" hex ", val = " value ", flag = " n ")"
class SetMessage : public Message {
  public:
    /// Without a value, until `setData` and `setDataType` give one.
    SetMessage(PIDType parameter, std::uint32_t device, eCpl2SetType setType);
    ~SetMessage() override;
    SetMessage(SetMessage const&) = delete;
    SetMessage& operator=(SetMessage const&) = delete;

    /// Takes the pointer, whose kind `setDataType` tells; see DataValue.h for how it must be
    /// obtained and which kinds are released. A pointer given earlier is not released.
    void setData(void* value) { data = value; }
    void setDataType(std::int32_t tag) { dataType = tag; }

    std::string toString() const override;

    PIDType getPid() const { return pid; }
    std::uint32_t getDid() const { return did; }
    eCpl2SetType getFlag() const { return flag; }
    void* getData() const { return data; }
    std::int32_t getDataType() const { return dataType; }

  private:
    PIDType pid;
    std::uint32_t did;
    eCpl2SetType flag;
    void* data = nullptr;
    std::int32_t dataType = NoValue;
};

}  // namespace FrameDriver::CPL
