#pragma once

#include <lumcommon/xml/LumXmlLimits.h>

#include "Command.h"

#include <string>
#include <vector>

namespace LumTool {

/// Declares --limit NAME=VALUE of a command that reads XML.
void addLimitOptions(Syntax& syntax, std::vector<std::string>& limits);
/// The limits after `before`, as the options change them.   Failure: UsageError.
LumCommon::LumXmlLimits readLimits(const std::vector<std::string>& limits, LumCommon::LumXmlLimits before);

/// The name of the limit that an error tells of; null for other errors.
const char* findLimitName(unsigned code);

}  // namespace LumTool
