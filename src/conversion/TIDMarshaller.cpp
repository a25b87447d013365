#include "conversion/TIDMarshaller.h"

#include "conversion/TextForm.h"

namespace FrameDriver::Conversion {

std::string TIDMarshaller::marshal(Value const& value) const {
    return writePair("TID: id=", value.first, ", parameter=", value.second);
}

TIDMarshaller::Value TIDMarshaller::unmarshal(std::string_view text) const {
    return {std::string(readName(text)), std::string(readRest(text, text.find(',')))};
}

}  // namespace FrameDriver::Conversion
