#pragma once

#include <lumcommon/core/MaybeOwned.h>
#include <lumcommon/dom/LumXmlSerializer.h>
#include <lumcommon/dom/detail/OutputScopes.h>
#include <lumcommon/dom/detail/XmlWriter.h>

namespace LumCommon {

/// The serializer of the library.
///
/// The stream is used while an operation runs, and by a setOutput() that follows an unfinished document, but never by
/// the destructor, which only closes a file that the serializer opened.
class XmlSerializerImpl final : public LumXmlSerializer {
public:
    static constexpr unsigned int TYPE_ID = 0x5695E1FBu;

    XmlSerializerImpl();
    ~XmlSerializerImpl() override;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;

    /// Both: if the previous output cannot be flushed or closed, it is released all the same, and 0x1007 is thrown
    /// unless an operation has already thrown it for that output. The call can then be repeated.
    void setOutput(std::ostream& out, const UnicodeString& encoding) override;
    void setOutput(const UnicodeString& uri, const UnicodeString& encoding) override;
    void startDocument(const UnicodeString& encoding, const UnicodeString& standalone) override;
    void endDocument() override;
    void setPrefix(LumName prefix, LumName namespaceUri) override;
    LumName getPrefix(LumName namespaceUri, bool generate) const override;
    int getDepth() const override;
    LumName getNamespace() const override;
    LumName getName() const override;
    void startTag(LumName namespaceUri, LumName localName) override;
    void startTag(LumName namespaceUri, LumName prefix, LumName localName) override;
    void attribute(LumName namespaceUri, LumName localName, const UnicodeString& value) override;
    void attribute(LumName namespaceUri, LumName prefix, LumName localName, const UnicodeString& value) override;
    void endTag(LumName namespaceUri, LumName localName) override;
    void text(const UnicodeString& text) override;
    void text(const unsigned short* buffer, int start, int length) override;
    void cdsect(const UnicodeString& text) override;
    void entityRef(const UnicodeString& name) override;
    void processingInstruction(const UnicodeString& content) override;
    void comment(const UnicodeString& text) override;
    void docdecl(const UnicodeString& content) override;
    void ignorableWhitespace(const UnicodeString& text) override;
    void flush() override;
    void setGenerator(const UnicodeString& generator) override;

    /// While gathering, what operations write need not be in the stream when they return; it is handed over in pieces
    /// of up to 32 KB. Turning it off hands over the rest; failure: 0x1007.
    void setGathering(bool isGathering) {
        if (isGathering != writer_.isGathering()) writer_.setGathering(isGathering);
    }
    /// Turns gathering off where nothing may be thrown.
    void stopGatheringQuietly() noexcept { writer_.stopGatheringQuietly(); }

    /// Flushes the output, closes it if it is a file that the serializer opened, and leaves the serializer without an
    /// output.
    void closeStream();

private:
    enum State : int {
        STATE_SETTING_OUTPUT = 0,
        STATE_OUTPUT_SET = 1,
        STATE_PROLOG = 2,
        STATE_ENDED = 3,
        STATE_NO_OUTPUT = 4,
        STATE_PREFIXES_SET = 5,  // a scope without an element is open: it waits for the next start tag
        STATE_TAG_OPEN = 6,
        STATE_ATTRIBUTES = 7,
        STATE_CONTENT = 8,
        STATE_END_TAG = 9,
        STATE_EMPTY_TAG = 10,
    };
    enum class TagEnd { Content, Empty };
    class Operation;

    bool isTagOpen() const noexcept { return state_ == STATE_TAG_OPEN || state_ == STATE_ATTRIBUTES; }
    void resetForOutput();
    void attach(MaybeOwned<std::ostream> out, const UnicodeString& encoding);
    bool releaseOutput() noexcept;
    void dropPrefixScope();
    void writeStartTag(LumName prefix, LumName localName);
    bool declareNamespace(LumName namespaceUri, LumName prefix, LumName localName, const UnicodeString& value);
    void checkAttributeState() const;
    void writeAttribute(LumName prefix, LumName localName, const UnicodeString& value);
    void closeStartTag(TagEnd end) {
        if (isTagOpen()) finishStartTag(end);
    }
    void finishStartTag(TagEnd end);
    void writeEndTag();
    void checkEndTag(LumName namespaceUri, LumName localName) const;
    void writeContent(std::string_view before, const UnicodeString& content, detail::TextMode mode,
                      std::string_view after);

    int state_ = STATE_NO_OUTPUT;
    mutable detail::OutputScopes scopes_;  // getPrefix() may declare a prefix
    MaybeOwned<std::ostream> output_;
    UnicodeString encoding_;
    UnicodeString generator_;
    detail::XmlWriter writer_;
};

}  // namespace LumCommon
