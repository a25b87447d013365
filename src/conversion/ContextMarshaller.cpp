#include "conversion/ContextMarshaller.h"

#include "conversion/TextForm.h"

#include <mutex>

namespace FrameDriver::Conversion {

std::string ContextMarshaller::marshal(Value const& value) const {
    std::lock_guard const guard(marshalLock);
    return writePair("Context: name=", value.first, ", value=", value.second);
}

ContextMarshaller::Value ContextMarshaller::unmarshal(std::string_view text) const {
    std::lock_guard const guard(unmarshalLock);
    return {std::string(readName(text)), std::string(readRest(text, text.find('=') + 1))};
}

}  // namespace FrameDriver::Conversion
