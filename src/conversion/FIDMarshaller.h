#pragma once

#include "conversion/Marshaller.h"
#include "foundation/SpinLock.h"
#include "platform/fid/FIDParameterList.h"

#include <string>
#include <string_view>
#include <utility>

namespace FrameDriver::Conversion {

/// FIDs as text, the input of the FID dictionary and one kind of its results.
///
///     text      = "FID: id=" name ", data=[" [ parameter { ", " parameter } ] closing
///     parameter = name "=" value
///
/// Nothing is quoted. The closing byte is the one of ClosingByte.h. Thread: any; each direction
/// is serialised by a lock of its own.
class FIDMarshaller : public Tools::Marshaller<std::pair<std::string, FIDParameterList*>> {
  public:
    /// The lists stay the caller's.
    std::string marshal(std::string_view name, FIDParameterList const& parameters) const;
    std::string marshal(Value const& value) const { return marshal(value.first, *value.second); }

    /// Reads by position and validates nothing. The list is a new one, the caller's. The last
    /// value runs to the last closing byte of the text; if there is another ahead of that one
    /// the value keeps it, `malformed` becomes true and a line on standard output tells.
    Value unmarshal(std::string_view text, bool& malformed) const;

  private:
    mutable Tools::SpinRecursiveMutex marshalLock;
    mutable Tools::SpinRecursiveMutex unmarshalLock;
};

}  // namespace FrameDriver::Conversion
