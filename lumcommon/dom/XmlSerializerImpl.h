#pragma once

#include <lumcommon/core/MaybeOwned.h>
#include <lumcommon/dom/LumXmlSerializer.h>
#include <lumcommon/dom/detail/OutputScopes.h>
#include <lumcommon/dom/detail/XmlWriter.h>

namespace LumCommon {

namespace detail {
class GatheredOutput;
}

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
    void setChecked(bool isChecked) override { writer_.setChecked(isChecked); }
    bool isChecked() const override { return writer_.isChecked(); }

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
    friend class detail::GatheredOutput;

    bool isTagOpen() const noexcept { return state_ == STATE_TAG_OPEN || state_ == STATE_ATTRIBUTES; }
    void resetForOutput();
    void attach(MaybeOwned<std::ostream> out, const UnicodeString& encoding);
    bool releaseOutput() noexcept;
    void dropPrefixScope();
    bool declareNamespace(LumName namespaceUri, LumName prefix, LumName localName, const UnicodeString& value);
    void checkAttributeState() const {
        if (!isTagOpen()) failAttribute();
    }
    [[noreturn]] void failAttribute() const;
    /// Whether the start tag before is still open, without declarations. A tag that has some is ended here.
    bool needsClosing() {
        if (!isTagOpen()) return false;
        if (!scopes_.hasDeclarations()) return true;
        finishStartTag(TagEnd::Content);
        return false;
    }
    void writeStartTag(LumName namespaceUri, LumName prefix, LumName localName) {
        writer_.startTag(needsClosing(), prefix, localName);  // a name that is refused opens nothing
        scopes_.open(namespaceUri, prefix, localName);
        state_ = STATE_TAG_OPEN;
    }
    void writeAttribute(LumName prefix, LumName localName, const UnicodeString& value) {
        state_ = STATE_ATTRIBUTES;
        writer_.attribute(prefix, localName, value);
    }
    void writeText(std::u16string_view text) {
        const bool closesTag = needsClosing();
        if (closesTag) state_ = STATE_CONTENT;
        writer_.content(closesTag, text);
    }
    void closeStartTag(TagEnd end) {
        if (isTagOpen()) finishStartTag(end);
    }
    void finishStartTag(TagEnd end);
    /// Closes the innermost element. No scope may be waiting.
    void writeEndTag() {
        if (isTagOpen() && scopes_.hasDeclarations()) {
            finishStartTag(TagEnd::Empty);
        } else if (isTagOpen()) {
            writer_.closeTag(true);
            state_ = STATE_EMPTY_TAG;
        } else {
            const auto& names = scopes_.innermost();
            writer_.endTag(names.prefix, names.localName);
            state_ = STATE_END_TAG;
        }
        scopes_.close();
    }
    void checkEndTag(LumName namespaceUri, LumName localName) const {
        const auto& open = scopes_.innermost();
        if (!scopes_.hasElement() || open.namespaceUri != namespaceUri || open.localName != localName) {
            failEndTag(namespaceUri, localName);
        }
    }
    [[noreturn]] void failEndTag(LumName namespaceUri, LumName localName) const;
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
