#pragma once

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/names/LumName.h>

#include <iosfwd>

namespace LumCommon {

class LumXmlParser;
class LumXmlSerializer;

/// Creates parsers and serializers, and inspects the root of a document without building a tree. Implemented in
/// dom/LumXmlUtil.cpp.
/// Errors: those of the parser; an input that cannot be opened throws code 0x1003.
/// Names that are not built in outlive the parser that read them only while something else holds the shared name table
/// (see LumNameTable).
/// Threads: any; the stream belongs to the calling thread.
class LUM_API LumXmlUtil {
public:
    LumXmlUtil() = delete;

    /// A new parser of the library, without input.
    static LumPtr<LumXmlParser> createXmlParser();
    /// A new serializer of the library, without output.
    static LumPtr<LumXmlSerializer> createXmlSerializer();

    /// A parser positioned on the start tag of the root element; null when the input ends before one. It skips external
    /// DTDs, ignores undefined entities and unsupported encodings, and uses an undeclared prefix of an attribute as its
    /// namespace. An undeclared prefix of an element, including the root, is error 0x1807.
    /// @param streamType1, streamType2  media type and file extension, for LumXmlParser::setStreamType.
    /// Ownership: `in` stays the caller's and must outlive the parser.
    /// @param in  read from its position on.
    static LumPtr<LumXmlParser> getRootParser(std::istream& in, const UnicodeString& streamType1 = UnicodeString(),
                                              const UnicodeString& streamType2 = UnicodeString());
    /// The same for a resource that the parser opens, and closes with itself.
    static LumPtr<LumXmlParser> getRootParser(const UnicodeString& uri);

    /// The namespace URI of the root element; `localName` gets its local name. Both are null when there is no root
    /// element.
    static LumName getRootName(LumName& localName, std::istream& in, const UnicodeString& streamType1 = UnicodeString(),
                               const UnicodeString& streamType2 = UnicodeString());
    /// The same for a resource that is opened for this call alone.
    static LumName getRootName(LumName& localName, const UnicodeString& uri);

    /// As getRootName, except that an fo:root with an xsl:version attribute (a simplified stylesheet whose result is
    /// XSL-FO) gives the XSLT namespace. The stream must be able to seek to its start.
    static LumName getXSLStylesheetNamespace(LumName& localName, std::istream& in,
                                             const UnicodeString& streamType1 = UnicodeString(),
                                             const UnicodeString& streamType2 = UnicodeString());
    /// The same for a resource, which is opened for this call alone and read once.
    static LumName getXSLStylesheetNamespace(LumName& localName, const UnicodeString& uri);

    /// A qualified name for messages: "a", "xml:a", "xmlns", "xmlns:a" or "{uri}:a".
    static UnicodeString makeNSQNameStr(const UnicodeString& namespaceUri, const UnicodeString& localName);
};

}  // namespace LumCommon
