#include <lumcommon/dom/LumNodeIterable.h>

namespace LumCommon {
namespace {

// The two walks mirror each other: first and last child, next and previous sibling, entering and leaving trade places,
// and so do the modes ENTER and LEAVE. So one implementation serves both directions.

struct Forward {
    static constexpr bool DONE = true;  // isLeaving() of a node whose subtree this walk is done with
    static constexpr int BEFORE_SUBTREE = LumTreeIterator::ENTER;  // the mode that reports nodes only before it
    static constexpr int AFTER_SUBTREE = LumTreeIterator::LEAVE;
    static LumNode* firstChild(const LumNode* node) { return node->getFirstChild(); }
    static LumNode* sibling(const LumNode* node) { return node->getNextSibling(); }
};

struct Backward {
    static constexpr bool DONE = false;
    static constexpr int BEFORE_SUBTREE = LumTreeIterator::LEAVE;
    static constexpr int AFTER_SUBTREE = LumTreeIterator::ENTER;
    static LumNode* firstChild(const LumNode* node) { return node->getLastChild(); }
    static LumNode* sibling(const LumNode* node) { return node->getPreviousSibling(); }
};

}  // namespace

template <class Way>
LumNode* LumTreeIterator::step() {
    if (!current_) {
        if (!root_ || isLeaving_ == Way::DONE) return nullptr;
        current_ = root_;
        if (mode_ != Way::AFTER_SUBTREE) return current_;
    }
    for (;;) {
        if (isLeaving_ != Way::DONE) {
            if (LumNode* child = Way::firstChild(current_)) {
                current_ = child;
                if (mode_ != Way::AFTER_SUBTREE) return current_;
                continue;
            }
            isLeaving_ = Way::DONE;
            const bool isReported = mode_ == Way::AFTER_SUBTREE ||
                                    (mode_ == ENTER_AND_LEAVE && current_->getNodeType() == LumNode::ELEMENT_NODE);
            if (isReported) return current_;
        }
        if (current_ == root_) return current_ = nullptr;
        if (LumNode* sibling = Way::sibling(current_)) {
            current_ = sibling;
            isLeaving_ = !Way::DONE;
            if (mode_ != Way::AFTER_SUBTREE) return current_;
        } else {
            current_ = current_->getParentNode();
            if (!current_ || mode_ != Way::BEFORE_SUBTREE) return current_;
        }
    }
}

template <class Way>
bool LumTreeIterator::hasStep() const {
    if (!root_) return false;
    const bool isDone = isLeaving_ == Way::DONE;
    if (!current_) return !isDone;
    if (current_ == root_) return !isDone && root_->hasChildNodes();
    if (mode_ != Way::BEFORE_SUBTREE) return true;
    if (!isDone && current_->hasChildNodes()) return true;
    for (const LumNode* node = current_; node && node != root_; node = node->getParentNode()) {
        if (Way::sibling(node)) return true;
    }
    return false;
}

LumNode* LumTreeIterator::nextNode() { return step<Forward>(); }

LumNode* LumTreeIterator::previousNode() { return step<Backward>(); }

bool LumTreeIterator::hasNextNode() const { return hasStep<Forward>(); }

bool LumTreeIterator::hasPreviousNode() const { return hasStep<Backward>(); }

}  // namespace LumCommon
