#pragma once

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/names/LumName.h>

#include <iosfwd>

namespace LumCommon {

/// Writes XML event by event, in UTF-8 or Shift_JIS, and adds no line breaks. It keeps track of namespace scopes,
/// declares namespaces where they are needed and makes up prefixes when asked to.
///
/// Order: setOutput, startDocument, (docdecl), elements and content, endDocument.
/// Errors: calls out of order throw 0x80C to 0x810; no output 0x1005, a failed one 0x1007; what is not XML, where that
/// is checked (see setChecked), 0x813. What was written before stays. When an operation returns or throws, what it
/// wrote is in the stream. Threads: one at a time.
class LUM_API LumXmlSerializer : public LumRCObject {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xB2E73DE2u;

    bool isA(unsigned int typeId) const override;

    /// Begins a new output. The previous output is flushed and, if it is a file that the serializer opened, closed.
    /// @param out  stays the caller's. It may be destroyed after an endDocument() or flush() that no other operation
    ///             follows; otherwise it must live until the next setOutput().
    /// @param encoding  for startDocument(), which says what is known; may be empty.
    virtual void setOutput(std::ostream& out, const UnicodeString& encoding) = 0;
    /// The same for a file (a path or file: URI), which is created or truncated. Errors: 0x1003.
    virtual void setOutput(const UnicodeString& uri, const UnicodeString& encoding) = 0;
    /// Writes the XML declaration and the generator comment.
    /// @param encoding    "UTF-8" or "Shift_JIS" in any case; when empty, that of setOutput. Others give UTF-8 without
    ///                    a declaration. Without startDocument() the output is UTF-8.
    /// @param standalone  "yes", "no", or empty to leave it out.
    virtual void startDocument(const UnicodeString& encoding, const UnicodeString& standalone) = 0;
    /// Closes the open elements and flushes.
    virtual void endDocument() = 0;
    /// Declares a prefix for the next element. Without a next element the declaration is lost.
    virtual void setPrefix(LumName prefix, LumName namespaceUri) = 0;
    /// The prefix in scope for a namespace, else null, or, with `generate`, a new one declared in the current scope.
    /// The declaration is written when a start tag closes: generate only while one is open or after setPrefix().
    /// A namespace that is the default in scope gets no new prefix.
    virtual LumName getPrefix(LumName namespaceUri, bool generate) const = 0;
    /// The number of open scopes.
    virtual int getDepth() const = 0;
    /// The names of the innermost open element; null when none is open.
    virtual LumName getNamespace() const = 0;
    /// The local name of the innermost open element; null when none is open.
    virtual LumName getName() const = 0;
    /// The form without a prefix chooses one.
    virtual void startTag(LumName namespaceUri, LumName localName) = 0;
    /// The same with a given prefix.
    virtual void startTag(LumName namespaceUri, LumName prefix, LumName localName) = 0;
    /// Only directly after startTag() or another attribute. A namespace declaration is kept and written when the tag is
    /// closed.
    virtual void attribute(LumName namespaceUri, LumName localName, const UnicodeString& value) = 0;
    /// The same with a given prefix.
    virtual void attribute(LumName namespaceUri, LumName prefix, LumName localName, const UnicodeString& value) = 0;
    /// Ends the innermost open element, as "/>" when it has no content. Errors: 0x80E without one, 0x80F for other
    /// names.
    virtual void endTag(LumName namespaceUri, LumName localName) = 0;
    /// Markup characters are escaped; control characters that XML does not allow are left out. A surrogate whose
    /// partner is not in the same call is written as three bytes. In Shift_JIS, a character that the code page lacks
    /// becomes a decimal reference; a surrogate pair becomes a single one.
    virtual void text(const UnicodeString& text) = 0;
    /// The same of `length` units of `buffer` from the index `start` on.
    virtual void text(const unsigned short* buffer, int start, int length) = 0;
    /// The following are written as they are, names as well: the caller must make sure that "--", "?>" and "]]>" do not
    /// occur inside, or have it checked.
    virtual void cdsect(const UnicodeString& text) = 0;
    /// Writes "&", the name and ";".
    virtual void entityRef(const UnicodeString& name) = 0;
    /// Writes "<?", everything that stands between, and "?>".
    virtual void processingInstruction(const UnicodeString& content) = 0;
    /// Writes the text between "<!--" and "-->".
    virtual void comment(const UnicodeString& text) = 0;
    /// Only directly after startDocument().
    virtual void docdecl(const UnicodeString& content) = 0;
    /// Writes the text as it is.
    virtual void ignorableWhitespace(const UnicodeString& text) = 0;
    /// Closes a pending start tag and flushes the output.
    virtual void flush() = 0;
    /// The text of the generator comment; empty for none.
    virtual void setGenerator(const UnicodeString& generator) = 0;

    /// Whether what a parser would take for other markup, or refuse, is refused here, with error 0x813. Off in a new
    /// serializer; LumDocument turns it on while it saves. Then
    /// - a name must be one of XML, or two with a colon between them, and the encoding must have all its characters;
    /// - a comment, and the generator, must not hold "--" or end with "-", a CDATA section must not hold "]]>";
    /// - a processing instruction must begin with a name other than "xml", and must not hold "?>";
    /// - `standalone` must be "yes" or "no", and ignorable white space must be white space;
    /// - no text may hold U+FFFF, which the library's parser refuses everywhere. In Shift_JIS that goes for U+FFFE and
    ///   halves of surrogate pairs as well, because a reference to them is not well-formed.
    /// The content of docdecl() is not checked.   Cost: next to none: names are remembered.
    /// A serializer of a caller's class need not check; this one ignores the wish.
    virtual void setChecked(bool isChecked);
    /// What setChecked() set; false for a serializer that does not check.
    virtual bool isChecked() const;
};

}  // namespace LumCommon
