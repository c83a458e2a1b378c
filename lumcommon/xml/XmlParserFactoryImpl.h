#pragma once

#include <lumcommon/xml/LumXmlParser.h>

namespace LumCommon {

/// A new parser of the library's only implementation.
LumPtr<LumXmlParser> makeXmlParser();

/// A parser for documents that must not reach outside of themselves, as they come with a file from a stranger: it skips
/// the external DTD, and an external entity that is referred to is error 0x183A.
LumPtr<LumXmlParser> makeClosedXmlParser();

}  // namespace LumCommon
