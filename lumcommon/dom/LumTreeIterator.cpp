// The forward and the backward walk mirror each other: first and last child, next and previous sibling, entering and
// leaving change places, and so do the modes ENTER and LEAVE.

#include <lumcommon/dom/LumNodeIterable.h>

namespace LumCommon {

LumNode* LumTreeIterator::nextNode() {
    if (!current_) {
        if (!root_ || isLeaving_) return nullptr;
        current_ = root_;
        if (mode_ != LEAVE) return current_;
    }
    for (;;) {
        if (!isLeaving_) {
            if (LumNode* child = current_->getFirstChild()) {
                current_ = child;
                if (mode_ != LEAVE) return current_;
                continue;
            }
            isLeaving_ = true;
            const bool isReported =
                mode_ == LEAVE || (mode_ == ENTER_AND_LEAVE && current_->getNodeType() == LumNode::ELEMENT_NODE);
            if (isReported) return current_;
        }
        if (current_ == root_) return current_ = nullptr;
        if (LumNode* sibling = current_->getNextSibling()) {
            current_ = sibling;
            isLeaving_ = false;
            if (mode_ != LEAVE) return current_;
        } else {
            current_ = current_->getParentNode();
            if (!current_ || mode_ != ENTER) return current_;
        }
    }
}

LumNode* LumTreeIterator::previousNode() {
    if (!current_) {
        if (!root_ || !isLeaving_) return nullptr;
        current_ = root_;
        if (mode_ != ENTER) return current_;
    }
    for (;;) {
        if (isLeaving_) {
            if (LumNode* child = current_->getLastChild()) {
                current_ = child;
                if (mode_ != ENTER) return current_;
                continue;
            }
            isLeaving_ = false;
            const bool isReported =
                mode_ == ENTER || (mode_ == ENTER_AND_LEAVE && current_->getNodeType() == LumNode::ELEMENT_NODE);
            if (isReported) return current_;
        }
        if (current_ == root_) return current_ = nullptr;
        if (LumNode* sibling = current_->getPreviousSibling()) {
            current_ = sibling;
            isLeaving_ = true;
            if (mode_ != ENTER) return current_;
        } else {
            current_ = current_->getParentNode();
            if (!current_ || mode_ != LEAVE) return current_;
        }
    }
}

bool LumTreeIterator::hasNextNode() const {
    if (!root_) return false;
    if (!current_) return !isLeaving_;
    if (current_ == root_) return !isLeaving_ && root_->hasChildNodes();
    if (mode_ != ENTER) return true;
    if (!isLeaving_ && current_->hasChildNodes()) return true;
    for (const LumNode* node = current_; node && node != root_; node = node->getParentNode()) {
        if (node->getNextSibling()) return true;
    }
    return false;
}

bool LumTreeIterator::hasPreviousNode() const {
    if (!root_) return false;
    if (!current_) return isLeaving_;
    if (current_ == root_) return isLeaving_ && root_->hasChildNodes();
    if (mode_ != LEAVE) return true;
    if (isLeaving_ && current_->hasChildNodes()) return true;
    for (const LumNode* node = current_; node && node != root_; node = node->getParentNode()) {
        if (node->getPreviousSibling()) return true;
    }
    return false;
}

}  // namespace LumCommon
