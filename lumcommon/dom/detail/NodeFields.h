#pragma once

#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/LumTextNode.h>

namespace LumCommon::detail {

/// What nodes of the library's own classes answer, without a call. See isExactly().
class NodeFields {
public:
    static LumNode* getParent(const LumNode& node) noexcept { return node.parent_; }
    /// Null also when the first child has yet to be loaded.
    static LumNode* peekFirstChild(const LumNode& node) noexcept {
        return node.lastChild_ ? node.lastChild_->nextSibling_ : nullptr;
    }
    /// Null also when the next sibling has yet to be loaded.
    static LumNode* peekNextSibling(const LumNode& node) noexcept {
        return node.parent_ && node.parent_->lastChild_ != &node ? node.nextSibling_ : nullptr;
    }
    static LumName getNamespaceUri(const ElementNS& element) noexcept { return element.namespaceUri_; }
    static LumName getPrefix(const ElementNS& element) noexcept { return element.prefix_; }
    static LumName getLocalName(const ElementNS& element) noexcept { return element.localName_; }
    /// Valid until the text changes.
    static std::u16string_view viewText(const LumTextNode& node) noexcept { return node.text_.view(); }
    static LumNode* getLastAttribute(const LumElement& element) noexcept { return element.lastAttribute(); }
    /// @param last  of the element's attributes; null when it has none.
    static LumNode* getFirstAttribute(LumNode* last) noexcept { return last ? last->nextSibling_ : nullptr; }
    static LumNode* getNextAttribute(const LumNode& node, const LumNode* last) noexcept {
        return &node == last ? nullptr : node.nextSibling_;
    }
};

}  // namespace LumCommon::detail
