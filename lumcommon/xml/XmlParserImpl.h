#pragma once

#include <lumcommon/core/LumError.h>
#include <lumcommon/xml/LumXmlParser.h>
#include <lumcommon/xml/detail/ReaderParts.h>
#include <lumcommon/xml/detail/StreamType.h>
#include <lumcommon/xml/detail/TagReader.h>

namespace LumCommon {

/// The parser: the interface over its parts, and the order of events.
///
///     std::istream --bytes--> XmlInput --window of units--> InputStack --characters--> readers --event-->
///     XmlParserImpl
///
/// Each reader knows one kind of markup and is given the parts below it that it needs (detail/ReaderParts.h).
class XmlParserImpl : public LumXmlParser {
public:
    static constexpr unsigned int TYPE_ID = 0x5C58F35Au;

    XmlParserImpl() = default;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override { return typeId == TYPE_ID || LumXmlParser::isA(typeId); }
    UnicodeString getTypeName() const override { return u"XmlParserImpl"; }

    /// From now on no external entity can be opened.
    void refuseExternalInputs() noexcept { policy_.refuseExternalInputs(); }
    void setFeature(Feature feature, bool value) override { policy_.set(feature, value); }
    bool getFeature(Feature feature) const override { return policy_.get(feature); }
    void setStreamType(const UnicodeString& mediaType, const UnicodeString& extension) override {
        streamType_.set(mediaType, extension);
    }
    void setCallbackError(void (*callback)(const LumError&, void*), void* data) override {
        errors_.setListener(callback, data);
    }
    void setInput(std::istream& in, const UnicodeString& encoding, const UnicodeString& baseUri) override;
    void setInput(const UnicodeString& uri, const UnicodeString& encoding, const UnicodeString& baseUri) override;
    void closeStream() override { inputs_.close(); }
    UnicodeString getInputEncoding() const override { return inputs_.encodingName(); }
    void defineEntityReplacementText(LumName name, const UnicodeString& text) override {
        entities_.define(name, text, !inputs_.isOpen());
    }
    int getNamespaceCount(int depth) const override { return tags_.namespaces().getNamespaceCount(depth); }
    LumName getNamespacePrefix(int index) const override { return tags_.namespaces().getNamespacePrefix(index); }
    LumName getNamespaceUri(int index) const override { return tags_.namespaces().getNamespaceUri(index); }
    LumName getNamespace(LumName prefix) const override { return tags_.namespaces().lookupNamespace(prefix); }
    int getDepth() const override { return tags_.depth(); }
    UnicodeString getPositionDescription() const override { return errors_.describePosition(); }
    int getLineNumber() const override { return inputs_.position().line; }
    int getColumnNumber() const override { return inputs_.position().column; }
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
    EventType getEventType() const override { return event_.type; }
    EventType next() override;
    EventType nextToken() override { return readEvent(false); }
    UnicodeString getBaseUri() const override { return inputs_.baseUri(); }
    void addMathMLEntityMap() override { entities_.addMathML(); }
    bool isXhtmlType() const override { return streamType_.isXhtml(tags_.rootName(), tags_.rootNamespace()); }
    bool isHtmlType() const override { return streamType_.isHtml(tags_.rootName(), tags_.rootNamespace()); }

private:
    std::unique_ptr<detail::XmlInput> prepareInput(const UnicodeString& encoding);  // in place of the one before
    std::size_t checkAttribute(int index, LumCommonErrorSource source) const;
    bool isTag() const noexcept { return event_.type == START_TAG || event_.type == END_TAG; }
    EventType startDocument();
    // `isTextPending`: next() holds text, which a construct that makes no event joins with the text after it. Such a
    // construct then ends the call and leaves the event as it was, or a tag after it would take the text's place.
    EventType readEvent(bool isTextPending);
    bool readToken(bool isTextPending);  // false at the end of the input
    void readReference();
    bool readDeclaration();  // whether there is an event to report
    void readDocType();
    void addExternalDtd(const UnicodeString& systemId);
    bool endsText(detail::TokenKind following);

    detail::ReaderParts parts_;
    detail::ParserPolicy& policy_ = parts_.policy;
    detail::ParserEvent& event_ = parts_.event;
    detail::InputStack& inputs_ = parts_.inputs;
    detail::ErrorReporter& errors_ = parts_.errors;
    detail::EntityTable& entities_ = parts_.entities;
    detail::MarkupReader& markup_ = parts_.markup;
    detail::TagReader tags_{event_, inputs_, parts_.names, parts_.literals, policy_, errors_};
    detail::StreamType streamType_;
    bool isDocTypeSeen_ = false;
};

}  // namespace LumCommon
