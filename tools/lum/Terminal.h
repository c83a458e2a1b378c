#pragma once

#include <string>
#include <string_view>

namespace LumTool {

/// How text looks on a terminal.
enum class Look { ELEMENT, ATTRIBUTE, TEXT, TYPE };

/// Whether standard output is a terminal that shows colours and the user has not refused them (NO_COLOR).
bool isColored();
/// The text in that look if isColored(), else as it is.
std::string painted(Look look, std::string_view text);
/// Six columns in a colour 00RRGGBB, after two spaces; empty unless isColored().
std::string swatchOf(unsigned rgb);
/// The text with its control characters as escapes of JSON, so that a document cannot command the terminal.
std::string harmless(std::string_view text);

}  // namespace LumTool
