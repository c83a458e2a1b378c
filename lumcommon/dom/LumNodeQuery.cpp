// Questions about a node's place in its tree.

#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/LumNode.h>
#include <lumcommon/dom/LumNodeIterable.h>
#include <lumcommon/dom/detail/Restored.h>

#include <vector>

namespace LumCommon {

namespace {

int countAncestors(const LumNode* node) {
    int count = 0;
    while ((node = node->getParentNode())) ++count;
    return count;
}

const LumNode* climb(const LumNode* node, int levels) {
    for (; levels > 0; --levels) node = node->getParentNode();
    return node;
}

/// Where the paths from two nodes to the root diverge.
struct Fork {
    const LumNode* common = nullptr;   // the lowest node that is ancestor or self of both; null in different trees
    const LumNode* aBranch = nullptr;  // the child of `common` towards a; null when `common` is a
    const LumNode* bBranch = nullptr;
};

Fork findFork(const LumNode* a, const LumNode* b) {
    const int aDepth = countAncestors(a);
    const int bDepth = countAncestors(b);
    Fork fork;
    if (aDepth > bDepth) {
        fork.aBranch = climb(a, aDepth - bDepth - 1);
        a = fork.aBranch->getParentNode();
    } else if (bDepth > aDepth) {
        fork.bBranch = climb(b, bDepth - aDepth - 1);
        b = fork.bBranch->getParentNode();
    }
    while (a != b) {
        fork.aBranch = a;
        fork.bBranch = b;
        a = a->getParentNode();
        b = b->getParentNode();
    }
    fork.common = a;
    return fork;
}

bool isEarlierSibling(const LumNode* earlier, const LumNode* later) {
    const LumNode* before = later;
    while ((before = before->getPreviousSibling())) {
        if (before == earlier) return true;
    }
    return false;
}

template <class Matches>
LumNode* findChild(const LumNode* parent, Matches matches) {
    LumNode* child = parent->getFirstChild();
    while (child && !matches(child)) child = child->getNextSibling();
    return child;
}

template <class Matches>
LumNode* findAncestorOrSelf(LumNode* node, Matches matches) {
    while (node && !matches(node)) node = node->getParentNode();
    return node;
}

}  // namespace

bool LumNode::isDescendantOf(const LumNode* other) const {
    if (!other) return false;
    const LumNode* node = getParentNode();
    while (node && node != other) node = node->getParentNode();
    return node != nullptr;
}

bool LumNode::isDescendantOrSelfOf(const LumNode* other) const { return this == other || isDescendantOf(other); }

bool LumNode::isFollowingOf(const LumNode* other) const {
    if (!other || other == this) return false;
    const Fork fork = findFork(this, other);
    return fork.common && fork.aBranch && fork.bBranch && isEarlierSibling(fork.bBranch, fork.aBranch);
}

bool LumNode::isPrecedingOf(const LumNode* other) const { return other && other->isFollowingOf(this); }

int LumNode::countPrecedingSiblings() const {
    int count = 0;
    for (const LumNode* node = getPreviousSibling(); node; node = node->getPreviousSibling()) ++count;
    return count;
}

int LumNode::countFollowingSiblings() const {
    int count = 0;
    for (const LumNode* node = getNextSibling(); node; node = node->getNextSibling()) ++count;
    return count;
}

int LumNode::getChildNodeCount() const {
    int count = 0;
    for (const LumNode* node = getFirstChild(); node; node = node->getNextSibling()) ++count;
    return count;
}

LumNode* LumNode::getChildNodeByName(LumName localName) const {
    return findChild(this, [=](const LumNode* node) { return node->getLocalName() == localName; });
}

LumNode* LumNode::getChildNodeByNameNS(LumName namespaceUri, LumName localName) const {
    return findChild(this, [=](const LumNode* node) {
        return node->getLocalName() == localName && node->getNamespaceUri() == namespaceUri;
    });
}

LumNode* LumNode::getChildNodeByTypeID(unsigned int typeId) const {
    return findChild(this, [=](const LumNode* node) { return node->isA(typeId); });
}

LumNode* LumNode::getAncestorByName(LumName localName) const {
    return findAncestorOrSelf(getParentNode(), [=](const LumNode* node) { return node->getLocalName() == localName; });
}

LumNode* LumNode::getAncestorOrSelfByName(LumName localName) const {
    return findAncestorOrSelf(const_cast<LumNode*>(this),
                              [=](const LumNode* node) { return node->getLocalName() == localName; });
}

LumNode* LumNode::getAncestorByNameNS(LumName namespaceUri, LumName localName) const {
    return findAncestorOrSelf(getParentNode(), [=](const LumNode* node) {
        return node->getLocalName() == localName && node->getNamespaceUri() == namespaceUri;
    });
}

LumNode* LumNode::getAncestorByTypeID(unsigned int typeId) const {
    return findAncestorOrSelf(getParentNode(), [=](const LumNode* node) { return node->isA(typeId); });
}

LumNode* LumNode::getCommonAncestorOrSelf(const LumNode* other) const {
    return other ? const_cast<LumNode*>(findFork(this, other).common) : nullptr;
}

LumNode* LumNode::getCommonAncestor(const LumNode* other) const {
    const LumNode* const parent = getParentNode();
    return parent && other ? parent->getCommonAncestorOrSelf(other->getParentNode()) : nullptr;
}

UnicodeString LumNode::getInnerText() const {
    if (isText() || getNodeType() != ELEMENT_NODE) return getText();
    UnicodeString text;
    LumTreeIterator walk(const_cast<LumNode*>(this), LumTreeIterator::ENTER);
    while (const LumNode* node = walk.nextNode()) {
        if (node != this && node->isText()) detail::append(text, node->getText());
    }
    return text;
}

int LumNode::getNodeDepth() const {
    int depth = 0;
    const LumNode* node = getParentNode();
    for (; node && node->getNodeType() != DOCUMENT_NODE; node = node->getParentNode()) ++depth;
    return depth;
}

// Source positions
//
// A node that is not an element inherits the position of the sibling before it. That sibling's class may give its own
// answer, or inherit in turn by the same rule. As a list of siblings can be long, those back to the nearest element are
// asked in document order, and one that inherits finds its position ready instead of asking the one before it.

namespace {

using detail::Restored;

enum class Axis { Line, Column };

/// The position that a node inherits.
struct Inherited {
    const LumNode* node;
    Axis axis;
    int position;
};

/// For the node that this thread is asking at the moment.
constinit thread_local const Inherited* ready = nullptr;

int positionOf(const LumNode* node, Axis axis) {
    return axis == Axis::Line ? node->getSourceLineNumber() : node->getSourceColumnNumber();
}

int positionOf(const LumNode* node, Axis axis, int inherited) {
    const Inherited answer{node, axis, inherited};
    const Restored<const Inherited*> asking(ready, &answer);
    return positionOf(node, axis);
}

}  // namespace

/// @param parents  the parent's position.
int LumNode::positionFromSiblings(bool isLine, int parents) const {
    const Axis axis = isLine ? Axis::Line : Axis::Column;
    const LumNode* element = previousSibling_;
    while (element && !element->isElementNode()) element = element->previousSibling_;
    const LumNode* sibling = element ? element : previousSibling_ ? parent_->lastChild_->nextSibling_ : this;
    int position = parents;
    for (; sibling != this; sibling = sibling->nextSibling_) {
        position = sibling == element ? positionOf(sibling, axis) : positionOf(sibling, axis, position);
        if (position == -1) position = parents;
    }
    return position;
}

int LumNode::inheritedPosition(bool isLine) const {
    const Axis axis = isLine ? Axis::Line : Axis::Column;
    if (ready && ready->node == this && ready->axis == axis) return ready->position;
    // Parents that are not elements inherit as well; their positions are determined from the outermost one inwards.
    std::vector<const LumNode*> inheriting{this};
    const LumNode* outer = parent_;
    for (; outer && !outer->isElementNode(); outer = outer->parent_) inheriting.push_back(outer);
    int position = outer ? positionOf(outer, axis) : -1;
    for (;;) {
        const LumNode* const node = inheriting.back();
        const int inherited = node->positionFromSiblings(isLine, position);
        if (node == this) return inherited;
        position = positionOf(node, axis, inherited);
        inheriting.pop_back();
    }
}

int LumNode::getSourceLineNumber() const { return inheritedPosition(true); }

void LumNode::setSourceLineNumber(int) {}

int LumNode::getSourceColumnNumber() const { return inheritedPosition(false); }

void LumNode::setSourceColumnNumber(int) {}

}  // namespace LumCommon
