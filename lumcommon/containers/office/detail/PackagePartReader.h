#pragma once

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/names/LumName.h>
#include <lumcommon/xml/LumXmlParser.h>

#include <istream>

namespace LumCommon::detail {

/// Goes through the children of the root of a part that describes an office package: a list of elements whose
/// attributes hold all there is. Elements and a root of other names or of another namespace are passed over, and so
/// is what lies deeper.
///
/// Nothing outside of the part is opened: external entities give error 0x1003, or are empty where they are no files.
/// Errors: those of the parser, also for what follows the last element.
class PackagePartReader {
public:
    /// @param in  must outlive the reader.
    PackagePartReader(std::istream& in, const UnicodeString& namespaceUri, const UnicodeString& rootName);

    /// Moves to the next child of the root; false when the part has come to its end.
    bool next();
    bool isAt(const UnicodeString& localName) const;
    /// An attribute without prefix of the element that next() has moved to; bogus when absent.
    UnicodeString getAttribute(const UnicodeString& localName) const;

private:
    LumPtr<LumXmlParser> parser_;
    LumName namespaceUri_, rootName_;
    bool isRootKnown_ = false;
};

}  // namespace LumCommon::detail
