#pragma once

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/names/LumName.h>
#include <lumcommon/names/NamespaceMap.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace LumCommon {

class LumNameTable;

namespace detail {
class ScopeAnswers;
}

/// The stack of scopes of prefix bindings, one for each open element, of a document being read or written.
///
/// The base scope (depth 0) binds `xml` and `xmlns` and is never removed. A scope answers with its element's own
/// prefix first, then with its declarations; inner scopes come before outer ones.
///
/// The answers to look-ups are kept, and a scope records only what it changes: pushing, filling and popping the scope
/// of an element that binds nothing new takes constant time and allocates nothing once the stack has been as deep.
/// Threads: one at a time.
class LUM_API NamespaceManager : public LumRCObject {
public:
    static constexpr unsigned int TYPE_ID = 0x6066CC3Au;

    /// The scope of one element.
    struct NSScope {
        LumPtr<NamespaceMap> map;  ///< the declarations made in this scope; null until the first
        LumName prefix;            ///< of the element that opened the scope
        LumName localName;
        LumName namespaceUri;
    };

    NamespaceManager();
    ~NamespaceManager() override;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;

    /// Opens a scope without declarations and without an element.
    void pushScope();
    /// Closes the innermost scope. False, and nothing changed, when only the base scope is left.
    bool popScope();
    /// Sets the element of the innermost scope.
    void setElement(LumName prefix, LumName localName, LumName namespaceUri);
    /// The innermost scope. The reference is valid until a scope is pushed or popped.
    const NSScope& getInnermostScope() const noexcept { return scopes_.back(); }
    /// The number of scopes above the base scope.
    int getScopeDepth() const noexcept { return static_cast<int>(scopes_.size()) - 1; }

    /// The number of declarations made at that depth; 0 when the depth is out of range.
    int getNamespaceCount(int depth) const;
    /// The declaration of the innermost scope at that position in key order; null when out of range.
    LumName getNamespacePrefix(int index) const;
    LumName getNamespaceUri(int index) const;
    /// The innermost scope's declarations; may be null. Borrowed, until the scope is popped; a map that is held longer
    /// has nothing to do with the manager any more.
    /// What is changed in the map is seen by every look-up.   Cost: of a change in the innermost scope, as of one
    /// through the manager; after one in an outer scope the next look-up takes time linear in all scopes and their
    /// declarations, once.
    NamespaceMap* getNamespaceMap() const;
    /// The declarations at that depth; null when there are none or the depth is out of range. As above.
    NamespaceMap* getNamespaceMap(int depth) const;

    /// Declares the binding in the innermost scope, unless the prefix is already bound to that URI.
    void addNamespace(LumName prefix, LumName uri);
    /// Removes the innermost scope's own declaration of exactly this binding.
    void removeNamespace(LumName prefix, LumName uri);
    /// The URI bound to `prefix`, null when unbound.   Cost: constant on average, whatever the depth.
    LumName lookupNamespace(LumName prefix) const;
    /// The innermost non-null prefix that is bound to `uri`, null when there is none. A rebinding of that prefix in an
    /// inner scope is not looked for.   Cost: constant on average.
    LumName lookupPrefix(LumName uri) const;
    /// The default namespace as declared; the elements' own namespaces are not asked.   Cost: constant on average.
    LumName getDefaultNamespace() const;
    /// Whether any scope has a declaration of the prefix.   Cost: linear in the depth.
    bool hasNamespace(LumName prefix) const;
    /// Whether an element with exactly these names is open.   Cost: linear in the depth.
    bool hasTagName(LumName prefix, LumName localName) const;

private:
    friend class NamespaceMap;  // tells of its changes

    /// Before a change in a map of a scope. After a failure the map must stay as it is.
    void prepareChange(const NamespaceMap& map, LumName prefix, LumName uri);
    /// After it. `previous` is the URI that the prefix had.
    void followChange(const NamespaceMap& map, LumName prefix, LumName previous, LumName uri) noexcept;
    detail::ScopeAnswers& answers() const;
    bool isFollowed(const NamespaceMap& map) const noexcept;

    std::vector<NSScope> scopes_;
    mutable std::unique_ptr<detail::ScopeAnswers> answers_;  // null: to be made from the scopes
    LumNameTable* nameTable_;                                // one reference held
};

}  // namespace LumCommon
