#include "conversion/SIDMarshaller.h"

#include "conversion/TextForm.h"

namespace FrameDriver::Conversion {

std::string SIDMarshaller::marshal(Value const& value) const {
    return writePair("SID: id=", value.first, ", value=", value.second);
}

SIDMarshaller::Value SIDMarshaller::unmarshal(std::string_view text) const {
    return {std::string(readName(text)), std::string(readRest(text, text.find(',')))};
}

}  // namespace FrameDriver::Conversion
