#pragma once

#include <string>
#include <string_view>

/// Text between the driver and the XML library: one byte of the driver's is one character of
/// XML, U+0001 to U+00FF, whatever the process's locale. So the closing byte of the text forms
/// stands in a file as U+0092. Thread: any.
namespace FrameDriver::XML {

/// A character above U+00FF gives one "?". Null gives the empty text.
std::string toBytes(char16_t const* text);
std::string toBytes(std::u16string_view text);
void appendBytes(std::string& bytes, std::u16string_view text);

/// Every byte as one character.
std::u16string widen(std::string_view bytes);

/// The same, with "?" for the control bytes that no XML document can hold.
std::u16string toXMLText(std::string_view bytes);

}  // namespace FrameDriver::XML
