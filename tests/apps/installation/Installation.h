#pragma once

#include "conversion/TemplateConversionCollection.h"
#include "conversion/TemplateConversionCollectionParser.h"

#include <string>
#include <vector>

/// The sample installation, read for the tests. Paths are relative to the installation.
namespace Installation {

std::string read(std::string const& path);
/// The files of the manifest, by element: "fidToCPLDictionary" and so on.
std::vector<std::string> files(std::string const& kind);

/// All dictionaries of a kind, merged in the manifest's order.
FrameDriver::Conversion::TemplateConversionCollection dictionary(std::string const& kind);
std::vector<FrameDriver::XML::ConversionTexts> texts(std::string const& kind);

/// All registered names.
std::vector<std::string> registeredFIDs();

/// "~" for the closing byte, so that rows can be read.
std::string bytes(std::string text);

constexpr char fids[] = "fidToCPLDictionary";
constexpr char issues[] = "issueToSIDDictionary";

}  // namespace Installation
