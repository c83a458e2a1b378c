#pragma once

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/names/LumName.h>
#include <lumcommon/xml/LumXmlParser.h>

#include <istream>

namespace LumCommon::detail {

/// Iterates over the children of the root of a part that describes an office package: a flat list of elements with all
/// their data in attributes. A root with another name or namespace is skipped with its children, as are elements in
/// another namespace and everything deeper.
///
/// Nothing outside the part is opened: external entities and definitions give error 0x183A.
/// Errors: those of the parser, also for what follows the last element.
class PackagePartReader {
public:
    /// @param in  must outlive the reader.
    PackagePartReader(std::istream& in, const UnicodeString& namespaceUri, const UnicodeString& rootName);

    /// Moves to the next child of the root; false at the end of the part.
    bool next();
    bool isAt(const UnicodeString& localName) const;
    /// An attribute without a prefix of the element that next() has moved to; bogus if absent.
    UnicodeString getAttribute(const UnicodeString& localName) const;

private:
    LumPtr<LumXmlParser> parser_;
    LumName namespaceUri_, rootName_;
    bool isRootKnown_ = false;
};

}  // namespace LumCommon::detail
