#pragma once

#include <lumcommon/names/NamespaceManager.h>
#include <lumcommon/xml/detail/AttributeList.h>
#include <lumcommon/xml/detail/EventView.h>
#include <lumcommon/xml/detail/MarkupReader.h>
#include <lumcommon/xml/detail/NameReader.h>
#include <lumcommon/xml/detail/ParserEvent.h>

#include <cstdint>
#include <vector>

namespace LumCommon {
struct LumXmlDeclaredAttribute;
}

namespace LumCommon::detail {

class DeclaredAttributes;
class ErrorReporter;
class InputMeter;
class LiteralReader;
class ParserPolicy;

/// Reads start and end tags, and knows the elements that are open and the namespaces that are bound in them.
class TagReader : public EntityEnds, private WindowBorrower {
public:
    TagReader(ParserEvent& event, InputStack& inputs, NameReader& names, LiteralReader& literals,
              const DeclaredAttributes& declared, InputMeter& meter, const ParserPolicy& policy, ErrorReporter& errors);

    void reset(const LumXmlLimits& limits);

    // After "<" and "</".
    void readStartTag();
    void readEndTag() {
        event_.type = LumXmlParser::END_TAG;
        event_.next = TokenKind::Unknown;
        // Nearly always it is the name of the start tag as it was written.
        const CachedName* const open = open_.back().written;
        XmlCursor& cursor = inputs_.cursor();
        if (!open || !open->begins(cursor.cur, cursor.end) || cursor.cur[open->size] != '>') return readOtherEndTag();
        cursor.cur += open->size + 1;
        cursor.touch(cursor.cur);
    }
    /// Leaves the innermost element, after its end has been reported.
    void closeElement() {
        if (depth() == 0) return;
        if (bindsOwn()) namespaces_->popScope();
        open_.pop_back();
    }
    /// After an entity has been referred to: where it lies on the inputs, its elements must begin and end in it.
    void enterEntity();
    bool leaveEntity() override;
    /// Binds the namespaces that a document type implies outside of all elements.
    void bindDocType(const UnicodeString& publicId);

    /// The first attribute of that local name whose prefix is bound to the namespace here; their number when there is
    /// none.
    std::size_t findAttribute(LumName namespaceUri, LumName localName) const;
    /// Of the last start tag.
    const AttributeList& attributes() const noexcept { return attributes_; }
    /// The number of open elements.
    int depth() const noexcept { return static_cast<int>(open_.size()) - 1; }
    /// The names of the innermost element; null names outside of all elements.
    const TagView& element() const noexcept { return open_.back().names; }
    /// The number of prefixes bound by the element at that depth, and those of the innermost one by index.
    int namespaceCount(int depth) const;
    LumName namespacePrefix(int index) const;
    LumName namespaceUri(int index) const;
    LumName lookupNamespace(LumName prefix) const { return namespaces_->lookupNamespace(prefix); }
    bool isRootSeen() const noexcept { return isRootSeen_; }
    LumName rootName() const noexcept { return rootName_; }
    LumName rootNamespace() const noexcept { return rootNamespace_; }

private:
    struct OpenElement {
        TagView names;
        int scopes;                 // of namespaces_ that are open in it
        const CachedName* written;  // null where the cache does not know the name
        std::uint64_t bindings;     // a number that no other set of bindings has had
    };

    void readAttributes();
    bool readPlainAttributes();
    void readAttribute();
    Attribute& addAttribute(const QName& name, const CachedName* written, std::u16string_view borrowedValue);
    void windowMoves() override;
    void bindDeclaration(Attribute& attribute);
    void checkBinding(LumName prefix, bool isDefault, LumName uri);
    void conform(const QName& element);
    void addDefault(const LumXmlDeclaredAttribute& declared);
    void finishStartTag();
    void bind(LumName prefix, LumName uri);
    void bindRootNamespaces(LumName localName);
    bool bindsOwn() const noexcept {
        return open_.size() == 1 || open_.back().scopes != open_[open_.size() - 2].scopes;
    }
    LumName namespaceOf(const CachedName& name) const;
    void resolveAttributes();
    void checkAttributes();
    void readOtherEndTag();

    ParserEvent& event_;
    InputStack& inputs_;
    NameReader& names_;
    LiteralReader& literals_;
    const DeclaredAttributes& declared_;
    InputMeter& meter_;
    const ParserPolicy& policy_;
    ErrorReporter& errors_;

    bool isConforming_ = false;  // the document is read as the standard says
    std::uint64_t mostDepth_ = LumXmlLimits::off;
    std::uint64_t mostAttributes_ = LumXmlLimits::off;
    AttributeList attributes_;
    UnitBuffer value_{XmlError::ValueLimit};  // of the attribute being read, where it is not plain
    bool mayRepeat_ = false;                  // two attributes may have the same name as written
    bool hasPrefixes_ = false;                // some attributes may be in a namespace
    std::uint64_t tagCount_ = 0;
    LumPtr<NamespaceManager> namespaces_;  // has a scope for each open element that binds a prefix
    std::uint64_t bindingsCount_ = 0;
    std::vector<OpenElement> open_{OpenElement{}};  // after one that stands for the document
    struct Entity {
        std::size_t inputDepth;
        int elements;  // that are open around it
    };
    std::vector<Entity> entities_;  // that are open
    bool isRootSeen_ = false;
    LumName rootName_;
    LumName rootNamespace_;
};

}  // namespace LumCommon::detail
