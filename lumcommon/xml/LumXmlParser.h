#pragma once

#include <lumcommon/core/LocalPath.h>
#include <lumcommon/core/LumPtr.h>
#include <lumcommon/names/LumName.h>
#include <lumcommon/xml/LumXmlDeclaredAttribute.h>
#include <lumcommon/xml/LumXmlLimits.h>

#include <cstddef>
#include <iosfwd>
#include <string_view>
#include <vector>

namespace LumCommon {

class LumError;

/// A pull parser for XML 1.0 with namespaces: the caller asks for one event at a time and reads its data through the
/// accessors, which speak of the current event only.
///
///     LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
///     parser->setInput(in, UnicodeString(), UnicodeString());
///     while (parser->next() != LumXmlParser::END_DOCUMENT) ...
///
/// Errors: malformed input throws a LumError with a code from 0x1801 on whose message ends with the position, unless a
/// callback is installed; wrong use of an accessor throws code 0x80B or 0x804.
/// An input that ends because it cannot be read any further is error 0x1006 with the position, wherever that is and
/// whether or not a callback is installed: its stream has badbit set, or its buffer has thrown, or is a
/// LumRefillStreamBuf that has failed (a connection that breaks, a body shorter than announced, damaged gzip data).
/// This also holds for external entities and the external DTD, but not where a feature forgives what goes wrong in
/// them. A stream that merely has failbit set has ended.
///
/// Positions: line and column of the furthest character read so far, which may lie a character or two after the
/// event, as telling its end takes looking ahead. Lines count from 1; the column is the number of characters read on
/// the line. One that an int does not hold is told as the greatest int, and as it is in messages. Replacement text of
/// entities does not count, nor do the first characters of an input where they served to recognise its encoding.
///
/// Encodings: a byte order mark tells what the bytes are. They are read by it even where the document, the text
/// declaration of an external entity or the caller names a charset that needs a converter (windows-1252, say), as
/// converting would only spoil them. Without a mark the zero bytes of UTF-16 and UTF-32 overrule such a declaration,
/// but not the caller. An XML declaration after a mark that names another one of the built-in encodings is a conflict,
/// error 0x1839. With a mark too, an unknown name is error 0x1835, and so is every name that is not built in when
/// FEATURE_BUILTIN_ENCODINGS_ONLY is on.
///
/// Characters: U+FFFF is error 0x1834 wherever it stands: in text, CDATA sections, comments, processing instructions,
/// values and other literals. Everything else is let through as it is, U+FFFE, control characters and halves of
/// surrogate pairs included; only a character reference must name a character of XML (error 0x1833).
///
/// Borrowed references (texts, values) are valid until the next call of next(), nextToken() or setInput().
/// Threads: one at a time.
class LUM_API LumXmlParser : public LumRCObject {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x07416767u;

    /// What the parser is at; the numbers do not change.
    enum EventType : int {
        START_DOCUMENT = 0,          ///< before the first event
        END_DOCUMENT = 1,            ///< the input has ended
        START_TAG = 2,               ///< also that of an empty element
        END_TAG = 3,                 ///< also that made for an empty element
        TEXT = 4,                    ///< character data, with references expanded by next()
        CDSECT = 5,                  ///< a CDATA section
        ENTITY_REF = 6,              ///< an entity or character reference
        IGNORABLE_WHITESPACE = 7,    ///< white space outside of the root element
        PROCESSING_INSTRUCTION = 8,  ///< "<?...?>", the XML declaration not included
        COMMENT = 9,                 ///< "<!--...-->"
        DOCDECL = 10,                ///< "<!DOCTYPE ...>"
    };

    /// All features are off in a new parser; other values are ignored and read as false.
    /// With FEATURE_CONFORMING, which counts from the next setInput() on, the parser is a conforming processor of
    /// XML 1.0 (fifth edition) and Namespaces 1.0 (third edition) that does not validate and reads all external
    /// entities and definitions: everything that is not well-formed is an error, attributes have the defaults and the
    /// forms that the document type declares, and nothing is bound or folded that the document does not say. The events
    /// are the same. nextToken() does not look into entities, and so finds nothing wrong in them. What the other
    /// features forgive stays forgiven. docs/conformance.md tells the difference line by line. With FEATURE_NO_EXTERNAL
    /// the parser reads the document that it is given and nothing else: an external entity that is referred to, general
    /// or parameter, and the external DTD are error 0x183A, even where the process keeps the definitions of that DTD.
    /// The built-in entities of MathML are not external. A DTD that another feature skips or whose errors it forgives
    /// is left out without an error, as is a parameter entity whose errors are forgiven.
    enum Feature : int {
        FEATURE_SKIP_EXTERNAL_DTD = 0,            ///< the external DTD is not read
        FEATURE_IGNORE_UNDEFINED_ENTITIES = 1,    ///< an undefined entity is empty text
        FEATURE_ALLOW_UNDECLARED_PREFIX = 2,      ///< an attribute's undeclared prefix is its own namespace
        FEATURE_IGNORE_EXTERNAL_DTD_ERRORS = 3,   ///< an error ends the external DTD; what stood before it holds
        FEATURE_IGNORE_UNSUPPORTED_ENCODING = 4,  ///< bytes in an unknown encoding are read as they are
        FEATURE_BUILTIN_ENCODINGS_ONLY = 5,       ///< any encoding but the built-in ones is an error
        FEATURE_CONFORMING = 6,                   ///< reads XML 1.0 as the standard says, and nothing else
        FEATURE_NO_EXTERNAL = 7,                  ///< nothing that the document names is opened
    };

    bool isA(unsigned int typeId) const override;

    /// "START_TAG" and so on; empty for other values.
    static UnicodeString getEventTypeStr(int eventType);
    /// The replacement text of a MathML 2.0 entity; empty for an unknown name.
    static UnicodeString getMathMLEntity(const UnicodeString& name);

    /// What external DTDs declare is kept for the whole process, so that each is read once: under the URI in one form
    /// however it is written, for a file the path without links and relative parts. A DTD that has changed is not read
    /// again unless clearDefinitionCache() lets go of what is kept; neither a resolver nor the file system is then
    /// asked. Threads: any.
    static void clearDefinitionCache();
    /// The limit of the cache of definitions that is none.
    static constexpr std::size_t unlimitedDefinitions = static_cast<std::size_t>(-1);
    /// How many bytes of definitions are kept at most: those that were not used for longest go. No limit at first; with
    /// 0 none are kept.
    static std::size_t getDefinitionCacheLimit();
    /// Sets it, which may let go of some at once, and returns the limit before.
    static std::size_t setDefinitionCacheLimit(std::size_t bytes);
    /// How many bytes are kept: of names, values and the tables that hold them.
    static std::size_t getDefinitionCacheSize();

    /// For documents from strangers: FEATURE_NO_EXTERNAL and the limits LumXmlLimits::untrusted(). They hold for all
    /// documents that this parser opens from then on; each can be changed afterwards.
    void setUntrusted();

    /// Turns a feature on or off.
    virtual void setFeature(Feature feature, bool value) = 0;
    /// Whether the feature is on.
    virtual bool getFeature(Feature feature) const = 0;
    /// Media type ("text/html") and file extension (".html") of the input, for isXhtmlType() and isHtmlType().
    virtual void setStreamType(const UnicodeString& mediaType, const UnicodeString& extension) = 0;
    /// Hands errors to `callback` instead of throwing them; null removes it. When the callback returns, parsing
    /// continues after the error; to stop it, the callback throws. The error that it gets has no position.
    virtual void setCallbackError(void (*callback)(const LumError&, void*), void* data) = 0;
    /// Starts a new document.
    /// @param in        must outlive the parsing; stays the caller's. It is read in blocks, as far as it has data.
    /// @param encoding  the encoding if it is known from outside, else empty.
    /// @param baseUri   what relative references in the document are resolved against.
    /// Errors: 0x1004 for an empty input, 0x1006 for a failed one; also for a stream that is set to throw by itself.
    /// 0x1835 for an unknown encoding, before the stream is looked at.
    virtual void setInput(std::istream& in, const UnicodeString& encoding, const UnicodeString& baseUri) = 0;
    /// The same for a resource that the parser opens, and decompresses when it is compressed with gzip. An empty base
    /// is replaced by the directory of an absolute URI. Errors: also 0x1003 when it cannot be opened, and 0x183A when
    /// the resolver refuses it (LumUriReferenceResolver::refusal()), which no callback can accept; an unknown encoding
    /// is told first.
    virtual void setInput(const UnicodeString& uri, const UnicodeString& encoding, const UnicodeString& baseUri) = 0;
    /// The same for the file of that path, whatever is in its name; see LocalPath.
    template <LocalPath Path>
    void setInput(const Path& path, const UnicodeString& encoding = UnicodeString(),
                  const UnicodeString& baseUri = UnicodeString()) {
        setInput(uriOfPath(path.native()), encoding, baseUri);
    }
    /// Lets go of the input; streams that the parser opened are closed. Position, base and encoding that are told from
    /// then on are those of the document, also when an external entity was being read.
    virtual void closeStream() = 0;
    /// The encoding of the input being read, as declared, as named by the caller, or as recognised. Where what the
    /// bytes have shown overrules a charset, it is what was recognised: "UTF-8", "UTF-16" or "UTF-32" after a mark.
    virtual UnicodeString getInputEncoding() const = 0;
    /// Defines a general entity, in place of an earlier definition: for the current document, or, while no input is
    /// open (before setInput() and after END_DOCUMENT), for the next.
    virtual void defineEntityReplacementText(LumName name, const UnicodeString& text) = 0;

    /// The number of prefixes declared by the element at that depth (1 is the root).
    virtual int getNamespaceCount(int depth) const = 0;
    /// The declarations of the current element by index; null when out of range.
    virtual LumName getNamespacePrefix(int index) const = 0;
    /// The namespace of the same declaration; null when out of range.
    virtual LumName getNamespaceUri(int index) const = 0;
    /// The namespace bound to `prefix` here, null when unbound.
    virtual LumName getNamespace(LumName prefix) const = 0;
    /// The number of open elements; at an END_TAG its element still counts.
    virtual int getDepth() const = 0;

    /// For instance "START_TAG, 'doc.xml', Line 3, Col 14.".
    virtual UnicodeString getPositionDescription() const = 0;
    /// -1 before input has started.
    virtual int getLineNumber() const = 0;
    /// -1 before input has started.
    virtual int getColumnNumber() const = 0;

    /// Whether the text of a TEXT, CDSECT or IGNORABLE_WHITESPACE event is white space only. Other events throw 0x80B.
    virtual bool isWhitespace() const = 0;
    /// The text of the event; of a named ENTITY_REF the entity's value.
    virtual const UnicodeString& getText() const = 0;
    /// Of a START_TAG or END_TAG, else null.
    virtual LumName getNamespace() const = 0;
    /// Of a START_TAG or END_TAG; of an ENTITY_REF the entity ("#x" and hexadecimal digits for a character).
    virtual LumName getName() const = 0;
    /// Of a START_TAG or END_TAG, null without one; null for other events.
    virtual LumName getPrefix() const = 0;
    /// Whether a START_TAG ended with "/>". Other events throw 0x80B.
    virtual bool isEmptyElementTag() const = 0;

    /// The number of attributes of a START_TAG, namespace declarations included; -1 for other events.
    virtual int getAttributeCount() const = 0;
    /// An index outside 0 to count-1 throws 0x804.
    virtual LumName getAttributeNamespace(int index) const = 0;
    /// Without its prefix. An index outside 0 to count-1 throws 0x804.
    virtual LumName getAttributeName(int index) const = 0;
    /// Null without one. An index outside 0 to count-1 throws 0x804.
    virtual LumName getAttributePrefix(int index) const = 0;
    /// The value as the mode normalises it; borrowed. An index outside 0 to count-1 throws 0x804.
    virtual const UnicodeString& getAttributeValue(int index) const = 0;
    /// The first attribute of that local name whose prefix is bound to the namespace here, bogus when absent. An
    /// attribute without a prefix so answers to the default namespace, and to the null namespace only where there is
    /// none. Only at a START_TAG; other events throw 0x804.
    virtual const UnicodeString& getAttributeValue(LumName namespaceUri, LumName localName) const = 0;

    /// The event that next() or nextToken() returned last; START_DOCUMENT before the first.
    virtual EventType getEventType() const = 0;
    /// The next tag or run of text: adjacent character data is one event, references are expanded, comments,
    /// processing instructions, the document type declaration and white space outside the root are passed over, and so
    /// is what makes no event at all: marked sections other than CDATA, and wrong markup that a callback has accepted.
    virtual EventType next() = 0;
    /// The next token, each as its own event.
    virtual EventType nextToken() = 0;
    /// What relative references are resolved against here: the base of the input being read.
    virtual UnicodeString getBaseUri() const = 0;
    /// Defines the MathML 2.0 entities that the document has not defined itself.
    virtual void addMathMLEntityMap() = 0;

    /// Whether the document read so far is XHTML or HTML: by its document kind, its root, or its stream type.
    virtual bool isXhtmlType() const = 0;
    /// Whether the document read so far is HTML: by its stream type if one was set, else by its root.
    virtual bool isHtmlType() const = 0;

    /// The limits of the documents that follow, from the next setInput() on. A parser of another class may have none:
    /// it then ignores them.
    virtual void setLimits(const LumXmlLimits& limits);
    /// Those that were set, else the defaults.
    virtual LumXmlLimits getLimits() const;
    /// The attributes that the document type declares for an element, in the order of their declarations, of which the
    /// first for a name counts. Known with FEATURE_CONFORMING, from the DOCDECL on and until the next setInput(); empty
    /// otherwise, and from a parser of another class.   Cost: copies them.
    virtual std::vector<LumXmlDeclaredAttribute> getDeclaredAttributes(LumName prefix, LumName localName) const;

private:
    /// The bytes of a path as the URI of that file.
    static UnicodeString uriOfPath(std::string_view path);
};

}  // namespace LumCommon
