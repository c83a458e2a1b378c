#pragma once

#include <lumcommon/xml/LumXmlParser.h>

namespace LumCommon {

/// A new parser of the library's only implementation.
LumPtr<LumXmlParser> makeXmlParser();

}  // namespace LumCommon
