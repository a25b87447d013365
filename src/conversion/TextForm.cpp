#include "conversion/TextForm.h"

#include "conversion/ClosingByte.h"

namespace FrameDriver::Conversion {

namespace {

// Labels, brackets and the like around a FID's name, and what a parameter is likely to need:
// most texts fit without a second allocation.
constexpr std::size_t frameSize = 24;
constexpr std::size_t parameterSize = 32;

}  // namespace

std::string writePair(std::string_view tagAndLabel, std::string_view first, std::string_view label,
                      std::string_view second) {
    std::string text;
    text.reserve(tagAndLabel.size() + first.size() + label.size() + second.size());
    return text.append(tagAndLabel).append(first).append(label).append(second);
}

std::string_view readName(std::string_view text) {
    auto const start = text.find('=') + 1;
    return Tools::cut(text, start, text.find(',') - start);
}

std::string_view readRest(std::string_view text, std::size_t position) {
    return Tools::cut(text, text.find('=', position) + 1);
}

std::string writeFID(std::string_view tag, std::string_view name,
                     FIDParameterList const& parameters) {
    std::string text;
    text.reserve(frameSize + name.size() + parameters.size() * parameterSize);
    text.append(tag).append("id=").append(name).append(", data=[");
    std::string_view separator;
    for (auto const& parameter : parameters) {
        text.append(separator).append(parameter.getName()).append("=");
        text.append(parameter.getValue());
        separator = ", ";
    }
    text += closingByte;
    return text;
}

}  // namespace FrameDriver::Conversion
