#include <lumcommon/dom/LumNamedNodeMap.h>
#include <lumcommon/dom/LumNodeIterable.h>

namespace LumCommon {

// LumNodeIterator

LumNodeIterator::LumNodeIterator(const LumNode* node, const LumNode* start) {
    if (!node) return;
    nodes_ = node->getDescendantNodes();
    current_ = start ? nodes_->getNextNode(start) : nodes_->getFirstNode();
}

LumNodeIterator::LumNodeIterator(const LumNodeIterable* nodes)
    : nodes_(const_cast<LumNodeIterable*>(nodes)), current_(nodes ? nodes->getFirstNode() : nullptr) {}

LumNode* LumNodeIterator::nextNode() { return current_ = current_ ? nodes_->getNextNode(current_) : nullptr; }

LumNode* LumNodeIterator::previousNode() { return current_ = current_ ? nodes_->getPreviousNode(current_) : nullptr; }

// The collections

LumNodeIterator LumNodeIterable::getIterator() const { return LumNodeIterator(this); }

bool LumNodeList::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumNodeIterable::isA(typeId); }

bool LumNamedNodeMap::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumNodeIterable::isA(typeId); }

namespace {

int countNodes(const LumNodeList& list) {
    int count = 0;
    for (const LumNode* node = list.getFirstNode(); node; node = list.getNextNode(node)) ++count;
    return count;
}

LumNode* nodeAt(const LumNodeList& list, int index) {
    if (index < 0) return nullptr;
    LumNode* node = list.getFirstNode();
    while (node && index-- > 0) node = list.getNextNode(node);
    return node;
}

}  // namespace

// ChildNodeList

bool ChildNodeList::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumNodeList::isA(typeId); }

UnicodeString ChildNodeList::getTypeName() const { return u"ChildNodeList"; }

LumNode* ChildNodeList::getFirstNode() const { return node_->getFirstChild(); }

LumNode* ChildNodeList::getLastNode() const { return node_->getLastChild(); }

LumNode* ChildNodeList::getNextNode(const LumNode* node) const { return node ? node->getNextSibling() : nullptr; }

LumNode* ChildNodeList::getPreviousNode(const LumNode* node) const {
    return node ? node->getPreviousSibling() : nullptr;
}

int ChildNodeList::getCount() const { return countNodes(*this); }

LumNode* ChildNodeList::item(int index) const { return nodeAt(*this, index); }

// TreeNodeList

namespace {

LumNode* nextInDocumentOrder(const LumNode* node, const LumNode* root) {
    if (node->hasChildNodes()) return node->getFirstChild();
    while (node && node != root) {
        if (LumNode* next = node->getNextSibling()) return next;
        node = node->getParentNode();
    }
    return nullptr;
}

LumNode* lastBelow(const LumNode* node) {
    LumNode* last = const_cast<LumNode*>(node);
    while (last->hasChildNodes()) last = last->getLastChild();
    return last;
}

LumNode* previousInDocumentOrder(const LumNode* node, const LumNode* root) {
    if (node == root) return nullptr;
    if (const LumNode* previous = node->getPreviousSibling()) return lastBelow(previous);
    LumNode* const parent = node->getParentNode();
    return parent == root ? nullptr : parent;
}

}  // namespace

TreeNodeList::TreeNodeList(const LumNode* root, FilterMode mode, LumName namespaceUri, LumName localName)
    : root_(root), mode_(mode), namespaceUri_(namespaceUri), localName_(localName) {
    if (mode != FILTER_NONE) any_ = LumName(UnicodeString(u'*'));
}

bool TreeNodeList::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumNodeList::isA(typeId); }

UnicodeString TreeNodeList::getTypeName() const { return u"TreeNodeList"; }

bool TreeNodeList::passes(const LumNode* node) const {
    if (mode_ == FILTER_NONE) return true;
    if (node->getNodeType() != LumNode::ELEMENT_NODE) return false;
    if (localName_ != any_ && localName_ != node->getLocalName()) return false;
    return mode_ == FILTER_LOCAL_NAME || namespaceUri_ == any_ || namespaceUri_ == node->getNamespaceUri();
}

LumNode* TreeNodeList::getFirstNode() const { return getNextNode(root_); }

LumNode* TreeNodeList::getLastNode() const {
    LumNode* const last = lastBelow(root_);
    if (last == root_) return nullptr;
    return passes(last) ? last : getPreviousNode(last);
}

LumNode* TreeNodeList::getNextNode(const LumNode* node) const {
    if (!node) return nullptr;
    LumNode* next = nextInDocumentOrder(node, root_);
    while (next && !passes(next)) next = nextInDocumentOrder(next, root_);
    return next;
}

LumNode* TreeNodeList::getPreviousNode(const LumNode* node) const {
    if (!node) return nullptr;
    LumNode* previous = previousInDocumentOrder(node, root_);
    while (previous && !passes(previous)) previous = previousInDocumentOrder(previous, root_);
    return previous;
}

int TreeNodeList::getCount() const { return countNodes(*this); }

LumNode* TreeNodeList::item(int index) const { return nodeAt(*this, index); }

}  // namespace LumCommon
