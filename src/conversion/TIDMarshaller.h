#pragma once

#include "conversion/Marshaller.h"

#include <string>
#include <string_view>
#include <utility>

namespace FrameDriver::Conversion {

/// Text identifiers with their parameter, as text.
///
///     text = "TID: id=" name ", parameter=" parameter      the parameter runs to the end
///
/// Reads by position and validates nothing. Thread: any; there is no state.
class TIDMarshaller : public Tools::Marshaller<std::pair<std::string, std::string>> {
  public:
    std::string marshal(Value const& value) const;
    Value unmarshal(std::string_view text) const;
};

}  // namespace FrameDriver::Conversion
