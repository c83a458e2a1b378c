#pragma once

#include <lumcommon/dom/LumNode.h>

#include <cstdint>
#include <cstring>
#include <string_view>

namespace LumCommon {

/// A run of character data. Its node name is "#text", its value the text.
///
/// Texts that stand next to each other are not merged, and characters that XML does not allow are not rejected; the
/// serializer says what becomes of them.
///
/// Ownership: created by LumDocument::createTextNode().
/// Threads: as for its tree, see LumNode.
class LUM_API LumTextNode : public LumNode {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x92151179u;

    /// @param ownerDocument  not counted, not null.
    /// @param text  copied.
    LumTextNode(LumDocument* ownerDocument, const UnicodeString& text) : LumNode(ownerDocument), text_(text) {}

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumName getLocalName() const override;
    /// The text as a string value.
    LumValue getNodeValue() const override;
    /// Replaces the text by the value's string form.
    void setNodeValue(const LumValue& value) override;
    int getNodeType() const override;
    bool isText() const override;
    /// The text; getData() and setData() are the same under the DOM's names.
    UnicodeString getText() const override;
    /// Replaces the text. Failure: std::bad_alloc; the old one stays then.
    void setText(const UnicodeString& text) override;
    /// What the owner document's createTextNode() returns for the same text, null included.
    [[nodiscard]] LumPtr<LumNode> cloneNode(bool deep) const override;

    /// The length of the text in UTF-16 code units.
    virtual int getLength() const;
    /// The same as getText().
    virtual UnicodeString getData() const;
    /// The same as setText().
    virtual void setData(const UnicodeString& text);

private:
    friend class LumDocument;
    friend class detail::NodeFields;

    struct Loaded {
        std::u16string_view text;
    };
    LumTextNode(LumDocument* ownerDocument, const Loaded& loaded) : LumNode(ownerDocument), text_(loaded.text) {}

    /// The text of a node, in three words: most texts of a document are white space or a few words. Up to 10 units lie
    /// here, up to 27 in a block of their own size; a longer text is a string that its copies share.
    /// Failure: std::bad_alloc; nothing is changed then.
    class Text {
    public:
        Text() noexcept = default;
        explicit Text(const UnicodeString& text) { assign(text); }
        explicit Text(std::u16string_view text) { assign(text); }
        Text(const Text&) = delete;
        Text& operator=(const Text&) = delete;
        ~Text() {
            if (length_ > maxHere) release();
        }

        void assign(const UnicodeString& text);
        /// `text` is shorter than 2^31 units.
        void assign(std::u16string_view text);
        int length() const noexcept { return length_ < 0 ? 0 : length_; }
        /// Valid until the text changes.
        std::u16string_view view() const noexcept;
        /// Equal to the string that was assigned; a long one is not copied.
        UnicodeString toString() const;

    private:
        static constexpr std::int32_t maxHere = 10;
        static constexpr std::int32_t maxInBlock = 27;  // as many as a UnicodeString has inside
        static constexpr std::int32_t bogus = -1;

        template <class T>
        T* pointer() const noexcept {
            T* stored;
            std::memcpy(&stored, units_, sizeof(void*));
            return stored;
        }
        void setPointer(const void* pointer, std::int32_t length) noexcept;
        void release() noexcept;

        alignas(8) std::int32_t length_ = 0;
        char16_t units_[maxHere];  // or a pointer
    };
    static_assert(sizeof(Text) == 24);

    Text text_;
};

/// A processing instruction; its text is everything between "<?" and "?>", target included. In all but its node
/// type and class it behaves as a text node: isText() is true, its name is "#text", and cloneNode() makes a text node.
/// It is saved as it is, so the text must not contain "?>"; that is not checked. Ownership: created by
/// LumDocument::createProcessingInstruction().
class LUM_API LumPINode : public LumTextNode {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x1A6FA3CFu;

    using LumTextNode::LumTextNode;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    int getNodeType() const override;
};

/// A holder of nodes that are to be moved together. Its node name is "#document-fragment", it has no value or text, and
/// cloneNode() returns null. It is inserted as a node, with its children below it, which stay its children; saving
/// writes the children alone.
/// Ownership: created by LumDocument::createDocumentFragment().
class LUM_API LumDocumentFragment : public LumNode {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x319C59B1u;

    /// @param ownerDocument  not counted, not null.
    explicit LumDocumentFragment(LumDocument* ownerDocument) : LumNode(ownerDocument) {}

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumName getLocalName() const override;
    int getNodeType() const override;
};

}  // namespace LumCommon
