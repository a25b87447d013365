#pragma once

#include "conversion/Marshaller.h"
#include "platform/fid/FIDParameterList.h"

#include <string>
#include <string_view>
#include <utility>

namespace FrameDriver::Conversion {

/// DFIDs, the FIDs that the driver handles itself, as text. (The class has nothing to do with
/// device identifiers.)
///
///     text = "DFID: id=" name ", data=[" [ parameter { ", " parameter } ] closing
///
/// Thread: any; there is no state.
class DIDMarshaller : public Tools::Marshaller<std::pair<std::string, FIDParameterList*>> {
  public:
    /// The list stays the caller's.
    std::string marshal(Value const& value) const;

    /// Reads by position and validates nothing. The list is a new one, the caller's. The last
    /// value ends at the first closing byte and silently loses what stands behind it, unlike
    /// that of a FID.
    Value unmarshal(std::string_view text) const;
};

}  // namespace FrameDriver::Conversion
