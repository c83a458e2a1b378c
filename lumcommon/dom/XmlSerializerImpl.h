#pragma once

#include <lumcommon/core/MaybeOwned.h>
#include <lumcommon/dom/LumXmlSerializer.h>
#include <lumcommon/dom/detail/XmlWriter.h>
#include <lumcommon/names/NamespaceManager.h>

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
    struct ElementNames {
        LumName namespaceUri, prefix, localName;
    };
    class Operation;

    bool isTagOpen() const noexcept { return state_ == STATE_TAG_OPEN || state_ == STATE_ATTRIBUTES; }
    NamespaceManager& namespaces() const;
    void resetForOutput();
    void attach(MaybeOwned<std::ostream> out, const UnicodeString& encoding);
    bool releaseOutput() noexcept;
    void openScope();
    void dropPrefixScope();
    void writeStartTag(LumName prefix, LumName localName, LumName namespaceUri);
    void undeclareDefaultNamespace();
    bool declareNamespace(LumName namespaceUri, LumName prefix, LumName localName, const UnicodeString& value);
    void checkAttributeState() const;
    void writeAttribute(LumName prefix, LumName localName, const UnicodeString& value);
    void closeStartTag(TagEnd end);
    void writeEndTag();
    ElementNames innermostElement() const;
    void checkEndTag(LumName namespaceUri, LumName localName) const;
    void writeContent(std::string_view before, const UnicodeString& content, unsigned mode, std::string_view after);

    int state_ = STATE_NO_OUTPUT;
    mutable LumPtr<NamespaceManager> namespaces_;  // created by the first operation that needs it
    ElementNames enclosing_;                       // in STATE_PREFIXES_SET, the element around the waiting scope
    MaybeOwned<std::ostream> output_;
    UnicodeString encoding_;
    UnicodeString generator_;
    detail::XmlWriter writer_;
};

}  // namespace LumCommon
