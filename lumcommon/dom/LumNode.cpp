#include <lumcommon/core/LumError.h>
#include <lumcommon/core/LumMutex.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumNode.h>
#include <lumcommon/dom/LumNodeIterable.h>

namespace LumCommon {

LumNode::~LumNode() { releaseChildren(); }

bool LumNode::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumRCObject::isA(typeId); }

UnicodeString LumNode::getTypeName() const { return u"LumNode"; }

// Names and values

LumName LumNode::getNodeName() const {
    const LumName prefix = getPrefix();
    if (prefix.isNull()) return getLocalName();
    UnicodeString qualified = detail::copyOf(prefix.getString());
    detail::append(qualified, u':');
    detail::append(qualified, getLocalName().getString());
    return LumName(qualified);
}

LumName LumNode::getNamespaceUri() const { return LumName(); }

LumName LumNode::getPrefix() const { return LumName(); }

void LumNode::setPrefix(LumName) {}

LumValue LumNode::getNodeValue() const { return LumValue(); }

void LumNode::setNodeValue(const LumValue&) {
    throwCommonError(LumErrorCodeLumLIB::NotAllowed, LumCommonErrorSource::NodeSetNodeValue, getTypeName());
}

UnicodeString LumNode::getText() const { return UnicodeString(); }

void LumNode::setText(const UnicodeString&) {}

LumNamedNodeMap* LumNode::getAttributes() const { return nullptr; }

bool LumNode::hasAttributes() const { return false; }

LumPtr<LumNode> LumNode::cloneNode(bool) const { return nullptr; }

LumDocument* LumNode::getOwnerDocument() const { return ownerDocument_; }

// Hooks of derived classes

void LumNode::finishAttributes() {}

bool LumNode::isElementNode() const { return false; }

bool LumNode::isText() const { return false; }

bool LumNode::isFO() const { return false; }

bool LumNode::isLUMX() const { return false; }

bool LumNode::isArea() const { return false; }

bool LumNode::isBlock() const { return false; }

bool LumNode::isInline() const { return false; }

bool LumNode::isNeutral() const { return false; }

bool LumNode::isInlineBlock() const { return false; }

bool LumNode::isOutOfLine() const { return false; }

// Navigation, which may load

LumNode* LumNode::getParentNode() const { return parent_; }

bool LumNode::hasChildNodes() const {
    if (lastChild_) return true;
    return (flags_ & FLAG_LOADING) && ownerDocument_->loadNextNode() && lastChild_;
}

LumNode* LumNode::getFirstChild() const {
    if (lastChild_) return lastChild_->nextSibling_;
    // One step decides: the next thing in the input is this node's first child or its end.
    const bool isRead = (flags_ & FLAG_LOADING) && ownerDocument_->loadNextNode() && lastChild_;
    return isRead ? lastChild_->nextSibling_ : nullptr;
}

LumNode* LumNode::getLastChild() const {
    while ((flags_ & FLAG_LOADING) && ownerDocument_->loadNextNode()) {
    }
    return lastChild_;
}

LumNode* LumNode::getPreviousSibling() const { return previousSibling_; }

bool LumNode::isLastChildOfLoading() const noexcept {
    return parent_ && parent_->lastChild_ == this && (parent_->flags_ & FLAG_LOADING);
}

LumNode* LumNode::getNextSibling() const {
    while (isLastChildOfLoading() && ownerDocument_->loadNextNode()) {
    }
    return parent_ && parent_->lastChild_ != this ? nextSibling_ : nullptr;
}

// Changing the tree

void LumNode::checkNewChild(const LumNode* newChild, LumCommonErrorSource source) const {
    // A document is its own owner, so this also lets it take the nodes that it created.
    if (newChild->ownerDocument_ != ownerDocument_) {
        throwCommonError(LumErrorCodeLumLIB::DifferentDocument, source, u"newChild");
    }
}

/// Takes a count for the new parent and takes the node out of its old one.
void LumNode::moveOut(LumNode* newChild) {
    newChild->addRef();
    if (!newChild->parent_) return;
    LumPtr<LumNode> held(newChild, false);  // gives the count back if the old parent throws
    newChild->parent_->removeChild(newChild);
    static_cast<void>(held.detach());
}

/// Takes `child` out of the list of children. Its count stays as it is.
void LumNode::unlinkChild(LumNode* child) noexcept {
    LumNode* const next = child->nextSibling_;
    LumNode* const previous = child->previousSibling_;
    child->parent_ = child->nextSibling_ = child->previousSibling_ = nullptr;
    if (lastChild_ == child) {
        lastChild_ = previous;
    } else {
        next->previousSibling_ = previous;
    }
    if (previous) {
        previous->nextSibling_ = next;
    } else if (lastChild_) {
        lastChild_->nextSibling_ = next;
    }
}

LumNode* LumNode::appendChild(LumNode* newChild) {
    constexpr auto source = LumCommonErrorSource::NodeAppendChild;
    if (!newChild) throwCommonError(LumErrorCodeLumLIB::NullArgument, source, u"newChild");
    checkNewChild(newChild, source);
    moveOut(newChild);
    linkLast(newChild);
    return newChild;
}

/// Puts a node without a parent at the end of the children. Its count stays as it is.
void LumNode::linkLast(LumNode* child) noexcept {
    child->parent_ = this;
    child->previousSibling_ = lastChild_;
    if (lastChild_) {
        child->nextSibling_ = lastChild_->nextSibling_;
        lastChild_->nextSibling_ = child;
    } else {
        child->nextSibling_ = child;
    }
    lastChild_ = child;
}

LumNode* LumNode::insertBefore(LumNode* newChild, LumNode* refChild) {
    constexpr auto source = LumCommonErrorSource::NodeInsertBefore;
    if (!newChild) throwCommonError(LumErrorCodeLumLIB::NullArgument, source, u"newChild");
    if (!refChild) return appendChild(newChild);
    // getParentNode() rather than the field: an attribute stores its owner element there, although it is not a child.
    if (refChild->getParentNode() != this) throwCommonError(LumErrorCodeLumLIB::NotAChild, source, u"refChild");
    if (newChild == refChild) return newChild;
    checkNewChild(newChild, source);
    moveOut(newChild);
    LumNode* const previous = refChild->previousSibling_;
    newChild->parent_ = this;
    newChild->previousSibling_ = previous;
    newChild->nextSibling_ = refChild;
    refChild->previousSibling_ = newChild;
    (previous ? previous : lastChild_)->nextSibling_ = newChild;
    return newChild;
}

LumPtr<LumNode> LumNode::replaceChild(LumNode* newChild, LumNode* oldChild) {
    constexpr auto source = LumCommonErrorSource::NodeReplaceChild;
    if (!newChild) throwCommonError(LumErrorCodeLumLIB::NullArgument, source, u"newChild");
    if (!oldChild) throwCommonError(LumErrorCodeLumLIB::NullArgument, source, u"oldChild");
    if (oldChild->getParentNode() != this) throwCommonError(LumErrorCodeLumLIB::NotAChild, source, u"oldChild");
    if (newChild == oldChild) return LumPtr<LumNode>(oldChild);
    checkNewChild(newChild, source);
    moveOut(newChild);
    LumNode* const next = oldChild->nextSibling_;
    LumNode* const previous = oldChild->previousSibling_;
    oldChild->parent_ = oldChild->nextSibling_ = oldChild->previousSibling_ = nullptr;
    newChild->parent_ = this;
    newChild->nextSibling_ = next;
    newChild->previousSibling_ = previous;
    if (lastChild_ == oldChild) {
        lastChild_ = newChild;
    } else {
        next->previousSibling_ = newChild;
    }
    (previous ? previous : lastChild_)->nextSibling_ = newChild;  // closes the ring even when it was an only child
    return LumPtr<LumNode>(oldChild, false);
}

LumPtr<LumNode> LumNode::removeChild(LumNode* oldChild) {
    constexpr auto source = LumCommonErrorSource::NodeRemoveChild;
    if (!oldChild) throwCommonError(LumErrorCodeLumLIB::NullArgument, source, u"oldChild");
    if (oldChild->getParentNode() != this) throwCommonError(LumErrorCodeLumLIB::NotAChild, source, u"oldChild");
    unlinkChild(oldChild);
    return LumPtr<LumNode>(oldChild, false);
}

LumNode* LumNode::appendChildEx(LumNode* newChild) { return appendChild(newChild); }

LumNode* LumNode::appendChildText(const UnicodeString& text) {
    const LumPtr<LumNode> node = ownerDocument_->createTextNodeElement(text, this);
    return node ? appendChild(node.get()) : nullptr;
}

// Collections

LumPtr<LumNodeList> LumNode::getChildNodes() const { return LumPtr<LumNodeList>(new ChildNodeList(this)); }

LumPtr<LumNodeList> LumNode::getElementsByTagName(LumName localName) const {
    return LumPtr<LumNodeList>(new TreeNodeList(this, TreeNodeList::FILTER_LOCAL_NAME, LumName(), localName));
}

LumPtr<LumNodeList> LumNode::getElementsByTagNameNS(LumName namespaceUri, LumName localName) const {
    return LumPtr<LumNodeList>(new TreeNodeList(this, TreeNodeList::FILTER_NAME_NS, namespaceUri, localName));
}

LumPtr<LumNodeList> LumNode::getDescendantNodes() const {
    return LumPtr<LumNodeList>(new TreeNodeList(this, TreeNodeList::FILTER_NONE));
}

LumNodeIterator LumNode::getIterator() const { return LumNodeIterator(this); }

}  // namespace LumCommon
