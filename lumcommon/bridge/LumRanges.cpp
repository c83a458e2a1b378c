#include <lumcommon/bridge/LumRanges.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/detail/NodeFields.h>

#include <algorithm>
#include <utility>

namespace LumCommon {

using detail::NodeFields;

// Nodes

LumNodeWalk::LumNodeWalk(const LumNode& root, Axis axis, unsigned typeId) : root_(&root), axis_(axis), typeId_(typeId) {
    if (axis == Axis::ATTRIBUTES) {
        goTo(NodeFields::getFirstAttribute(NodeFields::getLastAttribute(static_cast<const LumElement&>(root))));
    } else {
        goTo(root.getFirstChild());
    }
    if (current_ && !current_->isA(typeId_)) advance();
}

void LumNodeWalk::advance() {
    do step();
    while (current_ && !current_->isA(typeId_));
}

/// The sibling after the current node, from where it stands now.
LumNode* LumNodeWalk::follower() const {
    if (axis_ != Axis::ATTRIBUTES) return current_->getNextSibling();
    return NodeFields::getNextAttribute(*current_,
                                        NodeFields::getLastAttribute(static_cast<const LumElement&>(*root_)));
}

void LumNodeWalk::goTo(LumNode* node) {
    if (node && node == next_.get()) {
        current_ = std::move(next_);
    } else {
        current_ = node;
    }
    if (!node) {
        next_ = nullptr;
    } else if (axis_ == Axis::DESCENDANTS) {
        next_ = NodeFields::peekNextSibling(*node);
    } else {
        next_ = follower();
    }
}

void LumNodeWalk::step() {
    LumNode* next = nullptr;
    if (NodeFields::getParent(*current_) == parent()) {
        if (axis_ == Axis::DESCENDANTS) {
            if (LumNode* const child = current_->getFirstChild()) {
                parent_ = std::move(current_);
                goTo(child);
                return;
            }
        }
        next = follower();
    } else if (next_ && NodeFields::getParent(*next_) == parent()) {
        next = next_.get();
    }
    // The walk only climbs where it has gone down, so a whole one climbs each edge once.
    while (!next && parent_) {
        next = parent_->getNextSibling();  // null where it was taken out
        LumNode* const above = NodeFields::getParent(*parent_);
        parent_ = above == root_ ? nullptr : above;
    }
    goTo(next);
}

// Named values

LumItemRange::Iterator::Iterator(LumPtr<const LumNamedValueMap> map) : map_(std::move(map)) {
    if (map_) stopAt(0);
}

void LumItemRange::Iterator::stopAt(int index) {
    isAtEnd_ = index >= map_->getCount();
    index_ = index;
    name_ = isAtEnd_ ? LumName() : nameAt(index);
}

LumNamedValue LumItemRange::Iterator::operator*() const { return map_->getNamedItem(name_); }

LumItemRange::Iterator& LumItemRange::Iterator::operator++() {
    if (index_ < map_->getCount() && nameAt(index_) == name_) {
        stopAt(index_ + 1);
        return *this;
    }
    int low = 0;  // the entries before it have a name up to this one
    for (int high = map_->getCount(); low < high;) {
        const int middle = low + (high - low) / 2;
        nameAt(middle) <= name_ ? low = middle + 1 : high = middle;
    }
    stopAt(low);
    return *this;
}

// Compound files

LumOleEntries::LumOleEntries(const OleCompFile& file) {
    struct Waiting {
        long index;
        std::ptrdiff_t storage;
        bool isListed;  // its siblings to the left have been
    };
    const OleDirInfo* const root = file.getDirInfo(0);
    if (!root) return;
    std::vector<bool> isMet(static_cast<std::size_t>(file.getDirCount()));
    isMet[0] = true;
    std::vector<Waiting> waiting{{root->getChild(), -1, false}};
    while (!waiting.empty()) {
        const Waiting at = waiting.back();
        waiting.pop_back();
        const OleDirInfo* const info = file.getDirInfo(at.index);
        if (!info) continue;
        if (!at.isListed) {
            if (isMet[static_cast<std::size_t>(at.index)]) continue;
            isMet[static_cast<std::size_t>(at.index)] = true;
            waiting.push_back({info->getRight(), at.storage, false});
            waiting.push_back({at.index, at.storage, true});
            waiting.push_back({info->getLeft(), at.storage, false});
        } else if (info->getType() != OleDirInfo::EMPTY) {
            const auto position = static_cast<std::ptrdiff_t>(entries_.size());
            entries_.push_back({info, at.storage});
            waiting.push_back({info->getChild(), position, false});
        }
    }
}

OleDirPath LumOleEntries::getPath(const LumOleEntry& entry) const {
    std::vector<std::string> names{detail::utf8Of(entry.info->getName())};
    for (std::ptrdiff_t storage = entry.storage; storage >= 0;) {
        const LumOleEntry& above = entries_[static_cast<std::size_t>(storage)];
        names.push_back(detail::utf8Of(above.info->getName()));
        storage = above.storage;
    }
    std::ranges::reverse(names);
    return OleDirPath(std::move(names));
}

}  // namespace LumCommon
