#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace FrameDriver::XML {

/// What Template::TemplateParser would pass over in the source text of a template, each as a
/// sentence without a full stop: words that are no decorators, tokens without a name, and braces
/// that don't do what they look like. Thread: any.
std::vector<std::string> checkTemplate(std::string_view text);

}  // namespace FrameDriver::XML
