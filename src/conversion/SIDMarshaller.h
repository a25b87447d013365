#pragma once

#include "conversion/Marshaller.h"
#include "foundation/SpinLock.h"

#include <string>
#include <string_view>
#include <utility>

namespace FrameDriver::Conversion {

/// State identifiers with their value, as text.
///
///     text = "SID: id=" name ", value=" value        the value runs to the end, commas included
///
/// Reads by position and validates nothing. Thread: any; the operations share no state.
class SIDMarshaller : public Tools::Marshaller<std::pair<std::string, std::string>> {
  public:
    std::string marshal(Value const& value) const;
    Value unmarshal(std::string_view text) const;

  private:
    // Both directions could be serialised as in the other marshallers; there is nothing to guard.
    [[maybe_unused]] Tools::SpinRecursiveMutex marshalLock;
    [[maybe_unused]] Tools::SpinRecursiveMutex unmarshalLock;
};

}  // namespace FrameDriver::Conversion
