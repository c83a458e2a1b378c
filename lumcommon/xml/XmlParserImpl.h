#pragma once

#include <lumcommon/core/LumError.h>
#include <lumcommon/names/NamespaceManager.h>
#include <lumcommon/xml/LumXmlParser.h>
#include <lumcommon/xml/detail/NameCache.h>
#include <lumcommon/xml/detail/UnitBuffer.h>
#include <lumcommon/xml/detail/XmlInput.h>
#include <lumcommon/xml/detail/XmlParserError.h>

#include <unicode/utf16.h>

#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace LumCommon {

class LumUri;

namespace detail {
struct ExternalDtd;
// Bound without a declaration where a document is SVG.
inline constexpr char16_t svgNamespace[] = u"http://www.w3.org/2000/svg";
inline constexpr char16_t xlinkNamespace[] = u"http://www.w3.org/1999/xlink";
}  // namespace detail

/// The parser.
///
///     std::istream --bytes--> XmlInput --window of units--> scanners --events--> XmlParserImpl
///
/// What is read lies in a stack of frames: open inputs, replacement texts of entities, and the raw text of a literal
/// that is being looked through. The scanners read the window of the topmost frame; frames that are used up are popped
/// when the next character is asked for, so that markup may begin in a replacement text and end after it.
class XmlParserImpl : public LumXmlParser {
public:
    static constexpr unsigned int TYPE_ID = 0x5C58F35Au;

    XmlParserImpl();
    ~XmlParserImpl() override;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;

    /// From now on no external entity can be opened.
    void refuseExternalInputs() noexcept { opensExternalInputs_ = false; }
    void setFeature(Feature feature, bool value) override;
    bool getFeature(Feature feature) const override;
    void setStreamType(const UnicodeString& mediaType, const UnicodeString& extension) override;
    void setCallbackError(void (*callback)(const LumError&, void*), void* data) override;
    void setInput(std::istream& in, const UnicodeString& encoding, const UnicodeString& baseUri) override;
    void setInput(const UnicodeString& uri, const UnicodeString& encoding, const UnicodeString& baseUri) override;
    void closeStream() override;
    UnicodeString getInputEncoding() const override;
    void defineEntityReplacementText(LumName name, const UnicodeString& text) override;
    int getNamespaceCount(int depth) const override;
    LumName getNamespacePrefix(int index) const override;
    LumName getNamespaceUri(int index) const override;
    LumName getNamespace(LumName prefix) const override;
    int getDepth() const override;
    UnicodeString getPositionDescription() const override;
    int getLineNumber() const override;
    int getColumnNumber() const override;
    bool isWhitespace() const override;
    const UnicodeString& getText() const override;
    LumName getNamespace() const override;
    LumName getName() const override;
    LumName getPrefix() const override;
    bool isEmptyElementTag() const override;
    int getAttributeCount() const override;
    LumName getAttributeNamespace(int index) const override;
    LumName getAttributeName(int index) const override;
    LumName getAttributePrefix(int index) const override;
    const UnicodeString& getAttributeValue(int index) const override;
    const UnicodeString& getAttributeValue(LumName namespaceUri, LumName localName) const override;
    EventType getEventType() const override { return eventType_; }
    EventType next() override;
    EventType nextToken() override;
    UnicodeString getBaseUri() const override;
    void addMathMLEntityMap() override;
    bool isXhtmlType() const override;
    bool isHtmlType() const override;

private:
    /// The kind of the next token, as the look-ahead finds it.
    enum TokenState : int {
        TOKEN_UNKNOWN = 0,
        TOKEN_IN_CALLBACK = 1,
        TOKEN_EMPTY_TAG = 2,  ///< the current start tag is an empty-element tag
        TOKEN_START_TAG = 3,
        TOKEN_END_TAG = 4,
        TOKEN_TEXT = 5,
        TOKEN_REFERENCE = 6,
        TOKEN_PI = 7,
        TOKEN_DECLARATION = 8,
        TOKEN_END = 9,
    };

    enum LiteralType : int {
        LITERAL_PLAIN = 0,      ///< XML declaration, system and public identifiers
        LITERAL_ATTRIBUTE = 1,  ///< references are expanded
        LITERAL_ENTITY = 2,     ///< character references are expanded
        LITERAL_OPTIONAL = 3,   ///< quotes may be missing
        LITERAL_OFFENDING = 4,  ///< as 3, and the quotes are part of the result
    };

    struct Frame {
        enum Kind { Stream, Replacement, Literal } kind = Replacement;
        detail::XmlCursor cursor;                 // while another frame is on top of it
        std::unique_ptr<detail::XmlInput> input;  // Stream
        bool isBarrier = false;                   // its end is the end of input, whatever lies below
        std::size_t source = 0;                   // the nearest frame from here down that is no replacement
        UnicodeString text;                       // Replacement: keeps the units alive
        std::vector<std::uint32_t> entityKeys;    // Replacement: the entities that end with it
        const char16_t* start = nullptr;          // Literal: its first unit
    };

    struct Attribute {
        LumName prefix;
        LumName localName;
        LumName namespaceUri;
        std::size_t valueStart;  // in attributeText_
        std::size_t valueSize;
    };

    using EntityMap = std::unordered_map<LumName, UnicodeString>;

    // Input (XmlParserInput.cpp)
    std::unique_ptr<detail::XmlInput> prepareInput(const UnicodeString& encoding);  // in place of the one before
    void startInput(std::unique_ptr<detail::XmlInput> input, std::istream* in, bool ownsStream,
                    const UnicodeString& systemId, const UnicodeString& baseUri);
    void reset();
    void loadPredefinedEntities();
    void checkStream(std::istream& in) const;
    void detectEncoding(detail::XmlInput& input);
    void setEncoding(detail::XmlInput& input, const UnicodeString& name);
    void pushStream(const UnicodeString& systemId);
    void readTextDeclaration();
    void applyTextEncoding();
    Frame& pushFrame(Frame::Kind kind);
    void popFrame();
    void pushReplacement(LumName entity, const UnicodeString& text, bool isParameter = false);
    bool isWithinExpansionLimit(std::uint64_t moreUnits);
    bool pull();  // makes the cursor point at a unit; false at the end of input
    std::int32_t readCharSlow();
    void closeFrames();
    detail::XmlInput* currentInput() const noexcept;
    void rememberPosition() const;
    detail::TextPosition positionOf(std::size_t frameIndex) const;

    /// The next character as a code point, -1 at the end of input.
    std::int32_t readChar() {
        if (cursor_.cur != cursor_.end) {
            const char16_t unit = *cursor_.cur;
            if (!U16_IS_LEAD(unit)) {
                ++cursor_.cur;
                cursor_.touch(cursor_.cur);
                return unit;
            }
        }
        return readCharSlow();
    }
    /// Takes back the character that was read last.
    void unreadChar(std::int32_t c) noexcept {
        if (c >= 0) cursor_.cur -= c > 0xFFFF ? 2 : 1;
    }

    // Markup (XmlParserMarkup.cpp, XmlParserTags.cpp)
    TokenState whatsNext();
    EventType startDocument();
    bool endsText(TokenState following);
    // `isTextPending`: next() holds text, which a construct that makes no event joins with the text after it. Such a
    // construct then ends the call and leaves the event as it was, or a tag after it would take the text's place.
    EventType readEvent(bool isTextPending);
    bool readToken(bool isTextPending);  // false at the end of the input
    void parseStartTag();
    void parseAttributes();
    void parseAttribute();
    void finishStartTag();
    void bindRootNamespaces(LumName localName);
    void resolveAttributes();
    void parseEndTag();
    bool parseEndTagFast();
    void parseText();
    void parseTopLevelText();
    void parseCDSect();
    void parseComment();
    // These answer whether there is an event to report.
    bool parsePiOrXmlDecl();
    bool parseDeclEtc();
    void parsePi(const UnicodeString& target);
    void parseXmlDecl();
    void applyDeclaredEncoding(const UnicodeString& name);
    void expectXmlDeclEquals(const char16_t* what);
    void expectDeclEnd();
    void skipSection();
    bool skipWhitespace();
    LumName readNCName();
    bool readQName(LumName& prefix, LumName& localName);
    const detail::CachedName* readQNameFast();  // null when it takes more than a look at the window
    const detail::CachedName* findQName();
    void scanNCName(detail::UnitBuffer& out);
    UnicodeString readLiteral(LiteralType type);
    bool readLiteral(LiteralType type, detail::UnitBuffer& out);
    bool readAttributeValueFast();
    bool readRawLiteral(std::int32_t delimiter, std::uint16_t unterminated, const UnicodeString& argument);
    void processRawLiteral(LiteralType type, detail::UnitBuffer& out);
    void expandLiteral(LiteralType type, std::size_t from, detail::UnitBuffer& out);
    void expandReferenceInLiteral(LiteralType type, detail::UnitBuffer& out);

    // Entities (XmlParserEntities.cpp)
    std::int32_t readCharEntityRef(LumName& name, bool wantValue, UnicodeString& value);
    std::int32_t readCharacterReference();
    UnicodeString lookupEntityValue(LumName name, bool isParameter) const;
    void expandEntityInContent(LumName name);
    /// The character of a character reference, or of a reference to a predefined entity that means what XML says, that
    /// lies behind "&" before `end`; -1, and nothing passed over, when it is another one or wrong.
    std::int32_t matchSimpleReference(const char16_t*& position, const char16_t* end) const;
    std::int32_t readSimpleReference();
    bool isEntityDefined(const EntityMap& internal, const EntityMap& external, LumName name) const;

    // The document type declaration (XmlParserDtd.cpp); what is read goes into text_ as it stands
    struct ExternalId {
        UnicodeString publicId;
        UnicodeString systemId;
    };
    void parseDocDecl();
    void parseEntityDecl();
    bool parseExternalDtd(const LumUri& resource, const UnicodeString& baseUri);  // false when it cannot be had
    void readDeclaration(const char16_t* what);
    void readDeclarationChar(std::int32_t c, int& nesting);
    template <class IsEnd>
    void readDeclUntil(const IsEnd& isEnd);
    bool isIgnoreSection() const;
    void skipIgnoreSection();
    void readParameterReference(bool isInDeclaration);
    bool readDeclSpace();
    LumName readDeclName();
    void requireDeclSpace(const UnicodeString& after);
    UnicodeString readDeclLiteral(std::uint16_t missing, const UnicodeString& after);
    ExternalId readExternalId(const UnicodeString& start);
    UnicodeString readEntityValue();
    void readNotation(const UnicodeString& start, const UnicodeString& systemId);
    void addExternalDtd(const UnicodeString& systemId);
    std::shared_ptr<const detail::ExternalDtd> readExternalDtd(const LumUri& resource,
                                                               const UnicodeString& baseUri) const;
    void addDefinitions(const std::vector<std::pair<UnicodeString, UnicodeString>>& from, EntityMap& to,
                        const EntityMap& internal, const EntityMap& external);

    // Errors
    void throwError(std::uint16_t code, const UnicodeString& a = UnicodeString(),
                    const UnicodeString& b = UnicodeString());
    [[noreturn]] void throwNotAllowed(LumCommonErrorSource source) const;
    const Attribute& attributeAt(int index, LumCommonErrorSource source) const;
    static UnicodeString charText(std::int32_t c);  // for messages; empty at the end of input
    static UnicodeString makeQName(LumName prefix, LumName localName);

    bool features_[6] = {};
    bool opensExternalInputs_ = true;
    EventType eventType_ = START_DOCUMENT;
    TokenState tokenState_ = TOKEN_UNKNOWN;
    detail::XmlCursor cursor_;                    // of the topmost frame
    std::vector<std::unique_ptr<Frame>> frames_;  // [0, frameCount_) are in use; the rest is kept for reuse
    std::size_t frameCount_ = 0;
    int streamCount_ = 0;

    detail::UnitBuffer text_;
    std::size_t textStart_ = 0;
    mutable UnicodeString textCache_;
    mutable bool isTextCached_ = false;

    LumPtr<NamespaceManager> namespaces_;
    detail::NameCache names_;
    const detail::CachedName* lastName_ = nullptr;
    std::vector<const detail::CachedName*> openNames_;  // as written; null where the cache does not know the name
    std::vector<Attribute> attributes_;
    detail::UnitBuffer attributeText_;
    mutable std::vector<UnicodeString> attributeViews_;
    mutable std::size_t viewCount_ = 0;                // attributeViews_ before this are valid
    std::unordered_set<std::uint64_t> attributeKeys_;  // for tags with many attributes

    LumName entityName_;
    std::int32_t entityChar_ = 0;      // of a character reference
    bool isPredefinedIntact_ = false;  // the predefined entities mean what XML says
    bool hasMathMLEntities_ = false;   // those of MathML stand behind the document's own
    EntityMap generalEntities_;
    EntityMap parameterEntities_;
    EntityMap generalExternals_;
    EntityMap parameterExternals_;
    EntityMap earlyDefinitions_;                      // made before the input that they are for
    std::unordered_set<std::uint32_t> openEntities_;  // whose replacement text is being read
    std::uint64_t expandedUnits_ = 0;
    std::uint64_t allowedUnits_ = 0;  // by the bytes read when they were counted last
    std::uint64_t closedBytes_ = 0;   // read from inputs that are closed by now

    mutable int line_ = -1;  // when no input is open
    mutable int column_ = -1;
    UnicodeString encodingName_;  // of the last input when none is open
    UnicodeString systemId_;
    UnicodeString baseUri_;
    bool isStarted_ = false;  // the first event of the input has been asked for
    bool xmlDeclSeen_ = false;
    bool docTypeSeen_ = false;
    bool rootSeen_ = false;
    LumName rootName_;
    LumName rootNamespace_;
    LumName documentKind_;
    UnicodeString mediaType_;
    UnicodeString extension_;
    void (*errorCallback_)(const LumError&, void*) = nullptr;
    void* errorCallbackData_ = nullptr;

    detail::UnitBuffer nameBuffer_;
    detail::UnitBuffer rawLiteral_;
    detail::UnitBuffer scratch_;
};

}  // namespace LumCommon
