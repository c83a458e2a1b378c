// Releasing subtrees with a constant amount of stack, whatever their depth.

#include <lumcommon/dom/LumNode.h>

#include <cstdint>

namespace LumCommon {

namespace {

/// While this thread deletes nodes: the queue of nodes whose count has reached 0, chained by their previous-sibling
/// links. A node that dies meanwhile adds its children to the queue instead of deleting them itself, so that the depth
/// of the tree never becomes depth of the stack, whoever starts the release and whatever derived destructors do.
constinit thread_local LumNode** condemned = nullptr;

void prefetch([[maybe_unused]] std::uintptr_t address) noexcept {
#ifdef __GNUC__
    __builtin_prefetch(reinterpret_cast<const void*>(address), 1);
#endif
}

/// Asks for the node some places further on: those of a wide parent mostly lie at equal distances. Any address will do.
void prefetchFrom(const LumNode* node, const LumNode* next) noexcept {
    const auto here = reinterpret_cast<std::uintptr_t>(node);
    const auto there = reinterpret_cast<std::uintptr_t>(next);
    prefetch(there + 6 * (there - here));
}

}  // namespace

void LumNode::releaseChildren() noexcept {
    LumNode* child = lastChild_;
    if (!child) return;
    lastChild_ = nullptr;
    // All children are detached before the first of them dies, so that no destructor sees a half-destroyed parent.
    // Children that somebody else holds live on with everything below them.
    LumNode* chain = nullptr;
    LumNode** end = &chain;
    while (child) {
        LumNode* const previous = child->previousSibling_;
        prefetchFrom(child, previous);
        child->parent_ = child->nextSibling_ = child->previousSibling_ = nullptr;
        if (child->dropRef()) {
            *end = child;
            end = &child->previousSibling_;
        }
        child = previous;
    }
    if (!chain) return;
    if (condemned) {
        *end = *condemned;
        *condemned = chain;
        return;
    }
    condemned = &chain;
    while (chain) {
        LumNode* const node = chain;
        chain = node->previousSibling_;
        prefetch(reinterpret_cast<std::uintptr_t>(chain));
        prefetch(reinterpret_cast<std::uintptr_t>(chain) + 64);
        node->previousSibling_ = nullptr;
        delete node;
    }
    condemned = nullptr;
}

void LumNode::removeAllChildNodes() { releaseChildren(); }

int LumNode::deleteAllChildNodes() { return deleteAllChildNodes(lastChild_); }

int LumNode::deleteAllChildNodes(LumNode* last) {
    if (!last) return 0;
    LumNode* const parent = last->parent_;
    int count = 0;
    LumNode* node = last;
    for (;;) {
        while (node->lastChild_) node = node->lastChild_;
        if (node == last && !parent) return count;
        LumNode* const holder = node->parent_;
        LumNode* const previous = node->previousSibling_;
        holder->unlinkChild(node);
        ++count;
        if (node->dropRefUnshared()) delete node;
        if (holder != parent) {
            node = holder;
        } else if (previous) {
            node = previous;
        } else {
            return count;
        }
    }
}

}  // namespace LumCommon
