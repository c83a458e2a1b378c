#pragma once

#include <lumcommon/core/LumError.h>
#include <lumcommon/xml/LumXmlParser.h>
#include <lumcommon/xml/detail/EventView.h>
#include <lumcommon/xml/detail/ReaderParts.h>
#include <lumcommon/xml/detail/StreamType.h>
#include <lumcommon/xml/detail/TagReader.h>

#include <algorithm>
#include <limits>

namespace LumCommon {

/// The parser: the interface over its parts, and the order of events.
///
///     std::istream --bytes--> XmlInput --window of units--> InputStack --characters--> readers --event-->
///     XmlParserImpl
///
/// Each reader knows one kind of markup and is given the parts below it that it needs (detail/ReaderParts.h).
class XmlParserImpl final : public LumXmlParser {
public:
    static constexpr unsigned int TYPE_ID = 0x5C58F35Au;

    XmlParserImpl() { parts_.markup.askAtEnds(tags_); }

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override { return typeId == TYPE_ID || LumXmlParser::isA(typeId); }
    UnicodeString getTypeName() const override { return u"XmlParserImpl"; }

    void setFeature(Feature feature, bool value) override { parts_.policy.set(feature, value); }
    bool getFeature(Feature feature) const override { return parts_.policy.get(feature); }
    void setStreamType(const UnicodeString& mediaType, const UnicodeString& extension) override {
        streamType_.set(mediaType, extension);
    }
    void setCallbackError(void (*callback)(const LumError&, void*), void* data) override {
        parts_.errors.setListener(callback, data);
    }
    void setInput(std::istream& in, const UnicodeString& encoding, const UnicodeString& baseUri) override;
    void setInput(const UnicodeString& uri, const UnicodeString& encoding, const UnicodeString& baseUri) override;
    void closeStream() override { parts_.inputs.close(); }
    UnicodeString getInputEncoding() const override { return parts_.inputs.encodingName(); }
    void defineEntityReplacementText(LumName name, const UnicodeString& text) override {
        parts_.entities.define(name, text, !parts_.inputs.isOpen());
    }
    int getNamespaceCount(int depth) const override { return tags_.namespaceCount(depth); }
    LumName getNamespacePrefix(int index) const override { return tags_.namespacePrefix(index); }
    LumName getNamespaceUri(int index) const override { return tags_.namespaceUri(index); }
    LumName getNamespace(LumName prefix) const override { return tags_.lookupNamespace(prefix); }
    int getDepth() const override { return tags_.depth(); }
    UnicodeString getPositionDescription() const override { return parts_.errors.describePosition(); }
    int getLineNumber() const override { return toInt(parts_.inputs.position().line); }
    int getColumnNumber() const override { return toInt(parts_.inputs.position().column); }
    bool isWhitespace() const override;
    const UnicodeString& getText() const override { return parts_.eventText(); }
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
    EventType getEventType() const override { return parts_.event.type; }
    EventType next() override;
    EventType nextToken() override;
    UnicodeString getBaseUri() const override { return parts_.inputs.baseUri(); }
    void addMathMLEntityMap() override { parts_.entities.addMathML(); }
    bool isXhtmlType() const override { return streamType_.isXhtml(tags_.rootName(), tags_.rootNamespace()); }
    bool isHtmlType() const override { return streamType_.isHtml(tags_.rootName(), tags_.rootNamespace()); }
    void setLimits(const LumXmlLimits& limits) override { limits_ = limits; }
    LumXmlLimits getLimits() const override { return limits_; }
    std::vector<LumXmlDeclaredAttribute> getDeclaredAttributes(LumName prefix, LumName localName) const override;

    // The current event without copies: the same answers as the accessors above give, but not checked against the
    // event.

    /// Of START_TAG and END_TAG.
    const detail::TagView& tagView() const noexcept { return tags_.element(); }
    /// Of START_TAG.
    std::size_t attributeViewCount() const noexcept { return tags_.attributes().size(); }
    /// @param index  below attributeViewCount().
    detail::AttributeView attributeView(std::size_t index) const noexcept { return tags_.attributes().view(index); }
    /// Of every event but tags and ENTITY_REF.
    std::u16string_view textView() const noexcept { return parts_.event.textView(); }

private:
    std::unique_ptr<detail::XmlInput> prepareInput(const UnicodeString& encoding);  // in place of the one before
    std::size_t checkAttribute(int index, LumCommonErrorSource source) const;
    bool isTag() const noexcept { return parts_.event.type == START_TAG || parts_.event.type == END_TAG; }
    static int toInt(std::int64_t place) noexcept {
        return static_cast<int>(std::min<std::int64_t>(place, std::numeric_limits<int>::max()));
    }
    EventType startDocument();
    EventType endDocument();
    void cutOff();
    EventType endAtLimit(detail::XmlError::Code code);
    // `isTextPending`: next() holds text, which a construct that makes no event joins with the text after it. Such a
    // construct then ends the call and leaves the event as it was, or a tag after it would take the text's place.
    EventType readEvent(bool isTextPending);
    bool readPlainEvent(bool& isTextPending);  // false: there is more to it
    EventType readJoinedEvent(bool isTextPending);
    bool readToken(bool isTextPending);  // false at the end of the input
    bool readDeclaration();              // whether there is an event to report
    void readDocType();
    bool endsText(detail::TokenKind following);

    LumXmlLimits limits_;
    detail::ReaderParts parts_;
    detail::TagReader tags_{parts_.event,      parts_.inputs, parts_.names,  parts_.literals,
                            parts_.attributes, parts_.meter,  parts_.policy, parts_.errors};
    detail::StreamType streamType_;
    bool isCutOff_ = false;  // by a limit
};

}  // namespace LumCommon
