#include "xml/XMLText.h"

#include <algorithm>

namespace FrameDriver::XML {
namespace {

constexpr bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

constexpr char toByte(char16_t unit) {
    return unit <= 0xFF ? static_cast<char>(static_cast<unsigned char>(unit)) : '?';
}

constexpr bool fitsXML(char16_t unit) {
    return unit >= 0x20 || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

}  // namespace

// A character above U+FFFF comes as two units: the first gives the "?", the second nothing.
void appendBytes(std::string& bytes, std::u16string_view text) {
    std::size_t size = bytes.size();
    bytes.resize(size + text.size());
    for (char16_t const unit : text)
        if (!isLowSurrogate(unit))
            bytes[size++] = toByte(unit);
    bytes.resize(size);
}

std::string toBytes(std::u16string_view text) {
    std::string bytes;
    appendBytes(bytes, text);
    return bytes;
}

std::string toBytes(char16_t const* text) {
    return text ? toBytes(std::u16string_view(text)) : std::string();
}

std::u16string widen(std::string_view bytes) {
    std::u16string text(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](char byte) { return static_cast<unsigned char>(byte); });
    return text;
}

std::u16string toXMLText(std::string_view bytes) {
    std::u16string text = widen(bytes);
    std::replace_if(
        text.begin(), text.end(), [](char16_t unit) { return !fitsXML(unit); }, u'?');
    return text;
}

}  // namespace FrameDriver::XML
