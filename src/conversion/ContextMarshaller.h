#pragma once

#include "conversion/Marshaller.h"
#include "foundation/SpinLock.h"

#include <string>
#include <string_view>
#include <utility>

namespace FrameDriver::Conversion {

/// Assignments to the store of switcher state, as text.
///
///     text = "Context: name=" key ", value=" value       the value runs to the end
///
/// Reads by position and validates nothing. The value starts behind the second "=" of the whole
/// text, so a key that holds one loses its own rest to the value. Kept: other forms seek that
/// "=" behind the comma. Thread: any; each direction is serialised by a lock of its own.
class ContextMarshaller : public Tools::Marshaller<std::pair<std::string, std::string>> {
  public:
    std::string marshal(Value const& value) const;
    Value unmarshal(std::string_view text) const;

  private:
    mutable Tools::SpinRecursiveMutex marshalLock;
    mutable Tools::SpinRecursiveMutex unmarshalLock;
};

}  // namespace FrameDriver::Conversion
