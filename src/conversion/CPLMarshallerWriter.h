#pragma once

#include <string>

namespace FrameDriver::CPL {
class Message;
}

namespace FrameDriver::Conversion {

/// Appends a message's text form; see CPLMarshaller.h.
void writeMessage(std::string& out, CPL::Message const& message);

}  // namespace FrameDriver::Conversion
