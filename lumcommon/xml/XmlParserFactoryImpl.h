#pragma once

#include <lumcommon/xml/LumXmlParser.h>

namespace LumCommon {

/// A new parser of the library's only implementation.
LumPtr<LumXmlParser> makeXmlParser();

/// A parser for documents that must not reach outside of themselves, as they come with a file from a stranger: it skips
/// the external DTD, and an external entity is one that cannot be opened (error 0x1003 for files, else empty).
LumPtr<LumXmlParser> makeClosedXmlParser();

}  // namespace LumCommon
