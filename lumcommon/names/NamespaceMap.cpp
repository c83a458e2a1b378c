#include <lumcommon/names/NamespaceManager.h>
#include <lumcommon/names/NamespaceMap.h>

#include <iterator>

namespace LumCommon {

bool NamespaceMap::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumRCObject::isA(typeId); }

UnicodeString NamespaceMap::getTypeName() const { return UnicodeString(u"NamespaceMap"); }

int NamespaceMap::getCount() const { return static_cast<int>(entries_.size()); }

NamespaceMap::Entries::const_iterator NamespaceMap::entryAt(std::size_t index) const {
    // An untrusted document may declare any number of prefixes on one element, and callers walk them by position: each
    // call continues from where the last one stopped.
    if (cursor_ == entries_.end() || index < cursorIndex_ / 2) {
        cursor_ = entries_.begin();
        cursorIndex_ = 0;
    }
    std::advance(cursor_, static_cast<std::ptrdiff_t>(index) - static_cast<std::ptrdiff_t>(cursorIndex_));
    cursorIndex_ = index;
    return cursor_;
}

LumName NamespaceMap::getNamespacePrefix(int index) const {
    return index < 0 || index >= getCount() ? LumName() : entryAt(static_cast<std::size_t>(index))->first;
}

LumName NamespaceMap::getNamespaceUri(int index) const {
    return index < 0 || index >= getCount() ? LumName() : entryAt(static_cast<std::size_t>(index))->second;
}

LumName NamespaceMap::getDefaultNamespace() const { return lookupNamespace(LumName()); }

bool NamespaceMap::hasNamespace(LumName prefix) const { return entries_.contains(prefix); }

LumName NamespaceMap::lookupNamespace(LumName prefix) const {
    const auto entry = entries_.find(prefix);
    return entry == entries_.end() ? LumName() : entry->second;
}

LumName NamespaceMap::lookupPrefix(LumName uri) const {
    const auto found = prefixesByUri_.lower_bound({uri, LumName()});
    return found == prefixesByUri_.end() || found->first != uri ? LumName() : found->second;
}

void NamespaceMap::addNamespace(LumName prefix, LumName uri) {
    const auto entry = entries_.find(prefix);
    const LumName overwritten = entry == entries_.end() ? LumName() : entry->second;
    if (entry != entries_.end() && overwritten == uri) return;
    if (manager_ != nullptr) manager_->prepareChange(*this, prefix, uri);
    insert(entry, prefix, uri);
    if (manager_ != nullptr) manager_->followChange(*this, prefix, overwritten, uri);
}

/// @param entry  the entry of the prefix, which has a different URI; the end when there is none.
void NamespaceMap::insert(Entries::iterator entry, LumName prefix, LumName uri) {
    // The set is extended first, and restored if the map cannot grow, so that a failure leaves both as they were. New
    // prefixes mostly have the greatest identifiers, which belong at the end.
    const auto end = prefixesByUri_.end();
    const auto added = prefix.isNull() ? end : prefixesByUri_.emplace_hint(end, uri, prefix);
    if (entry != entries_.end()) {
        if (!prefix.isNull()) prefixesByUri_.erase({entry->second, prefix});
        entry->second = uri;
        return;
    }
    try {
        entries_.emplace_hint(entries_.end(), prefix, uri);
    } catch (...) {
        if (added != end) prefixesByUri_.erase(added);
        throw;
    }
    cursor_ = entries_.end();
}

void NamespaceMap::removeNamespace(LumName prefix, LumName uri) {
    const auto entry = entries_.find(prefix);
    if (entry == entries_.end() || entry->second != uri) return;
    if (manager_ != nullptr) manager_->prepareChange(*this, prefix, uri);
    prefixesByUri_.erase({uri, prefix});
    entries_.erase(entry);
    cursor_ = entries_.end();
    if (manager_ != nullptr) manager_->followChange(*this, prefix, uri, uri);
}

NamespaceMapIterator::NamespaceMapIterator(const NamespaceMap* map) : map_(map) { setToStart(); }

std::pair<LumName, LumName> NamespaceMapIterator::next() {
    if (!hasNext()) return {};
    return *position_++;
}

std::pair<LumName, LumName> NamespaceMapIterator::previous() {
    if (!hasPrevious()) return {};
    return *--position_;
}

bool NamespaceMapIterator::hasNext() const { return map_ != nullptr && position_ != map_->getEntries().end(); }

bool NamespaceMapIterator::hasPrevious() const { return map_ != nullptr && position_ != map_->getEntries().begin(); }

void NamespaceMapIterator::setToStart() {
    if (map_ != nullptr) position_ = map_->getEntries().begin();
}

void NamespaceMapIterator::setToEnd() {
    if (map_ != nullptr) position_ = map_->getEntries().end();
}

}  // namespace LumCommon
