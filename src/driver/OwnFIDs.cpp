// The FIDs that belong to the driver and not to the frame. Dictionaries reach them through
// "DFID" results: what triggers them is data, what they do is code.
#include "driver/QuillaneQFD.h"

void QuillaneQFD::handleOwnFID(std::string const& name, FIDParameterList const& parameters) {
    static_cast<void>(name);
    static_cast<void>(parameters);
}
