#include <lumcommon/core/LumMutex.h>
#include <lumcommon/values/LumNamedValueMap.h>

#include <algorithm>
#include <utility>

namespace LumCommon {

// Destroying nested maps from within this destructor would recurse once per level, and the depth is up to the caller's
// data. Instead, every nested map whose count reaches zero is taken out of its entry and queued in a list linked
// through the maps themselves, so that the release does not allocate either.
LumNamedValueMap::~LumNamedValueMap() {
    LumNamedValueMap* pending = nullptr;
    releaseNestedMaps(pending);
    while (pending) {
        LumNamedValueMap* map = std::exchange(pending, pending->nextPending_);
        map->releaseNestedMaps(pending);
        delete map;
    }
}

void LumNamedValueMap::releaseNestedMaps(LumNamedValueMap*& pending) noexcept {
    for (LumNamedValue& entry : entries_) {
        LumNamedValueMap* map = entry.detachMap();
        if (map && map->dropRef()) {
            map->nextPending_ = pending;
            pending = map;
        }
    }
}

bool LumNamedValueMap::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumRCObject::isA(typeId); }

UnicodeString LumNamedValueMap::getTypeName() const { return UnicodeString(u"LumNamedValueMap"); }

LumPtr<LumNamedValueMap> LumNamedValueMap::clone() const {
    LumPtr<LumNamedValueMap> copy(new LumNamedValueMap);
    copy->entries_ = entries_;
    return copy;
}

int LumNamedValueMap::getCount() const { return static_cast<int>(entries_.size()); }

LumNamedValue LumNamedValueMap::item(int index) const {
    if (index < 0 || index >= getCount()) return LumNamedValue();
    return entries_[static_cast<std::size_t>(index)];
}

std::vector<LumNamedValue>::const_iterator LumNamedValueMap::find(LumName name) const {
    return std::lower_bound(entries_.begin(), entries_.end(), name,
                            [](const LumNamedValue& entry, LumName key) { return entry.getName() < key; });
}

LumNamedValue LumNamedValueMap::getNamedItem(LumName name) const {
    const auto found = find(name);
    if (found != entries_.end() && found->getName() == name) return *found;
    return LumNamedValue(name, LumValue());
}

void LumNamedValueMap::setNamedItem(LumName name, const LumValue& value) { setNamedItem(LumNamedValue(name, value)); }

void LumNamedValueMap::setNamedItem(const LumNamedValue& value) {
    const auto place = entries_.begin() + (find(value.getName()) - entries_.cbegin());
    if (place != entries_.end() && place->getName() == value.getName()) {
        *place = value;
    } else {
        entries_.insert(place, value);
    }
}

void LumNamedValueMap::removeNamedItem(LumName name) {
    const auto found = find(name);
    if (found != entries_.end() && found->getName() == name) entries_.erase(found);
}

void LumNamedValueMap::removeNamedItem(LumName name, const LumValue& value) {
    const auto found = find(name);
    if (found != entries_.end() && found->getName() == name && *found == value) entries_.erase(found);
}

LumNamedValueMapIterator::LumNamedValueMapIterator(const LumNamedValueMap* map) : map_(map) {}

LumNamedValue LumNamedValueMapIterator::next() { return hasNext() ? map_->entries_[position_++] : LumNamedValue(); }

LumNamedValue LumNamedValueMapIterator::previous() {
    return hasPrevious() ? map_->entries_[--position_] : LumNamedValue();
}

bool LumNamedValueMapIterator::hasNext() const { return map_ && position_ < map_->entries_.size(); }

bool LumNamedValueMapIterator::hasPrevious() const { return map_ && position_ > 0; }

void LumNamedValueMapIterator::setToStart() { position_ = 0; }

void LumNamedValueMapIterator::setToEnd() { position_ = map_ ? map_->entries_.size() : 0; }

}  // namespace LumCommon
