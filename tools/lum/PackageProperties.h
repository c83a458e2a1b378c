#pragma once

#include <istream>

#include "Json.h"

namespace LumTool {

/// The properties of a package of Office Open XML, as `lum props` prints them: those of docProps/core.xml under
/// "properties", of app.xml under "document", of custom.xml under "user". A part that is missing has none.
/// @param in  a zip archive; must be able to seek.
/// Failure: LumError of the parser for a part that is no well-formed XML, or exceeds what is due to a stranger's
/// document.
Json readPackageProperties(std::istream& in);

}  // namespace LumTool
