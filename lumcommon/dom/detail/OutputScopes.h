#pragma once

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/names/LumName.h>
#include <lumcommon/names/NamespaceManager.h>

#include <array>
#include <cstdint>
#include <vector>

namespace LumCommon::detail {

/// The open elements of a document being written, and the prefixes in scope.
///
/// Most elements use a prefix that an outer element has declared. They get no scope of the namespace manager unless
/// something is declared in them later: their names answer every question as the outer scopes do.
/// Threads: one at a time.
class OutputScopes {
public:
    struct ElementNames {
        LumName namespaceUri, prefix, localName;
    };

    /// Closes everything.
    void reset();
    /// The open elements, and a waiting scope.
    int getDepth() const noexcept { return static_cast<int>(elements_.size()) + (isWaiting_ ? 1 : 0); }
    bool hasElement() const noexcept { return !elements_.empty(); }
    /// The innermost element; all null when none is open.
    const ElementNames& innermost() const noexcept { return elements_.empty() ? none : elements_.back().names; }

    /// Opens a scope for the next element to use, unless one is waiting.
    void openWaiting();
    void dropWaiting() {
        if (isWaiting_) closeWaiting();
    }
    /// Opens an element and declares what its names need.
    void open(LumName namespaceUri, LumName prefix, LumName localName) {
        if (isWaiting_ || !isInScope(namespaceUri, prefix)) return openWithScope(namespaceUri, prefix, localName);
        elements_.push_back({{namespaceUri, prefix, localName}, false});
    }
    /// The same with a prefix of its own choice.
    void open(LumName namespaceUri, LumName localName);
    /// Closes the innermost element, of which there must be one; no scope may be waiting.
    void close() {
        if (elements_.back().hasScope) popScope();
        elements_.pop_back();
    }

    /// Declares the prefix in the innermost scope, unless it has that meaning already.
    void declare(LumName prefix, LumName namespaceUri);
    /// declare(), for a prefix and a namespace that are not null.
    void declareForAttribute(LumName prefix, LumName namespaceUri) {
        if (!isInScope(namespaceUri, prefix)) declare(prefix, namespaceUri);
    }
    /// See LumXmlSerializer::getPrefix().
    LumName getPrefix(LumName namespaceUri, bool generate);
    /// Whether the innermost element may have declarations.
    bool hasDeclarations() const noexcept { return !elements_.empty() && elements_.back().hasScope; }
    /// Its declarations, or null.
    const NamespaceMap* getDeclarations() const;

private:
    struct OpenElement {
        ElementNames names;
        bool hasScope;
    };
    struct Known {
        LumName namespaceUri, prefix;
        std::uint64_t generation = 0;
    };

    static constexpr ElementNames none{};

    NamespaceManager& manager();
    /// Whether an element of these names declares nothing and changes no answer.
    bool isInScope(LumName namespaceUri, LumName prefix) {
        const Known& known = known_[prefix.getEnum() % known_.size()];
        return (known.generation == generation_ && known.prefix == prefix && known.namespaceUri == namespaceUri) ||
               findInScope(namespaceUri, prefix);
    }
    bool findInScope(LumName namespaceUri, LumName prefix);
    void openWithScope(LumName namespaceUri, LumName prefix, LumName localName);
    void useWaiting(LumName namespaceUri, LumName prefix, LumName localName);
    void undeclareDefault();
    void giveScope();
    void popScope();
    void closeWaiting();

    LumPtr<NamespaceManager> manager_;  // created when first needed
    std::vector<OpenElement> elements_;
    bool isWaiting_ = false;        // the manager's innermost scope has no element yet
    std::uint64_t generation_ = 1;  // changes with the scopes; what was known before is no longer sure
    std::array<Known, 8> known_{};  // names that are in scope
};

}  // namespace LumCommon::detail
