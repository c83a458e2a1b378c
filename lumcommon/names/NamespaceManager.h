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

/// The stack of prefix scopes of a document being read or written, one for each open element.
///
/// The base scope (depth 0) binds `xml` and `xmlns` and is never removed. Within a scope, the element's own prefix
/// comes before the declarations; inner scopes come before outer ones.
///
/// Cost: look-ups are cached, and a scope records only what it changes. Pushing, filling and popping the scope of an
/// element that binds nothing new takes constant time, and allocates nothing once the stack has been that deep before.
/// Threads: one at a time.
class LUM_API NamespaceManager : public LumRCObject {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0x6066CC3Au;

    /// The scope of one element.
    struct NSScope {
        LumPtr<NamespaceMap> map;  ///< the declarations made in this scope; null until the first
        LumName prefix;            ///< of the element that opened the scope
        LumName localName;         ///< of the element, without its prefix
        LumName namespaceUri;      ///< of the element; null for none
    };

    /// The base scope alone. Takes a reference on the shared name table.
    NamespaceManager();
    /// Gives the reference on the name table back.
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
    /// The URI of the same declaration; null when out of range.
    LumName getNamespaceUri(int index) const;
    /// The innermost scope's declarations; may be null. Borrowed until the scope is popped; a map held beyond that
    /// no longer affects the manager. Look-ups see every change to the map.   Cost: a change in the innermost scope
    /// costs the same as through the manager; after a change in an outer scope, the next look-up takes time linear in
    /// all scopes and their declarations, once.
    NamespaceMap* getNamespaceMap() const;
    /// The declarations at that depth; null when there are none or the depth is out of range. As above.
    NamespaceMap* getNamespaceMap(int depth) const;

    /// Declares the binding in the innermost scope, unless the prefix is already bound to that URI.
    void addNamespace(LumName prefix, LumName uri);
    /// Removes the innermost scope's own declaration of exactly this binding.
    void removeNamespace(LumName prefix, LumName uri);
    /// The URI bound to `prefix`, null when unbound.   Cost: constant on average, whatever the depth.
    LumName lookupNamespace(LumName prefix) const;
    /// The innermost non-null prefix that is bound to `uri`, null when there is none. Whether an inner scope rebinds
    /// that prefix is not checked.   Cost: constant on average.
    LumName lookupPrefix(LumName uri) const;
    /// The default namespace as declared, regardless of the elements' own namespaces.   Cost: constant on average.
    LumName getDefaultNamespace() const;
    /// Whether any scope has a declaration of the prefix.   Cost: linear in the depth.
    bool hasNamespace(LumName prefix) const;
    /// Whether an element with exactly these names is open.   Cost: linear in the depth.
    bool hasTagName(LumName prefix, LumName localName) const;

private:
    friend class NamespaceMap;  // reports its changes

    /// Called before the map of a scope changes. If this throws, the map must stay as it is.
    void prepareChange(const NamespaceMap& map, LumName prefix, LumName uri);
    /// Called after the change. `previous` is the URI that the prefix had.
    void followChange(const NamespaceMap& map, LumName prefix, LumName previous, LumName uri) noexcept;
    detail::ScopeAnswers& answers() const;
    bool isFollowed(const NamespaceMap& map) const noexcept;

    std::vector<NSScope> scopes_;
    mutable std::unique_ptr<detail::ScopeAnswers> answers_;  // null: to be rebuilt from the scopes
    LumNameTable* nameTable_;                                // one reference held
};

}  // namespace LumCommon
