#pragma once

#include <memory>
#include <string_view>

namespace FrameDriver::CPL {
class Message;
}

namespace FrameDriver::Conversion {

/// Reads a message's text form; see CPLMarshaller.h. Null for a text of another form.
std::unique_ptr<CPL::Message> readMessage(std::string_view text);

}  // namespace FrameDriver::Conversion
