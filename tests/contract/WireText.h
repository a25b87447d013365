#pragma once

#include "platform/cplclient/wire/MessageSplitter.h"

#include <string>
#include <string_view>

/// Bytes as two hexadecimal digits each.
std::string hex(std::string_view bytes);

/// A message as the frame sees it: its name, then its fields in decimal in wire order, devices
/// and bytes in hexadecimal; "garbage" if it can't be read.
std::string wireText(cplwire::RawMessage const& message);
