#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/NamespaceManager.h>
#include <lumcommon/names/detail/ScopeAnswers.h>

#include <algorithm>

namespace LumCommon {

using detail::ScopeAnswers;

NamespaceManager::NamespaceManager() : answers_(std::make_unique<ScopeAnswers>()) {
    scopes_.emplace_back();
    scopes_.back().map = new NamespaceMap;  // a statement of its own: it would be made before its place is
    addNamespace(NAME_xml, NAME_NS_XML);
    addNamespace(NAME_xmlns, NAME_NS_XMLNS);
    nameTable_ = LumNameTable::addRefSharedNameTable();  // last: a failure above would keep the reference for ever
}

NamespaceManager::~NamespaceManager() { LumNameTable::releaseSharedNameTable(); }

bool NamespaceManager::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumRCObject::isA(typeId); }

UnicodeString NamespaceManager::getTypeName() const { return UnicodeString(u"NamespaceManager"); }

void NamespaceManager::pushScope() {
    scopes_.emplace_back();
    try {
        answers_->openScope();
    } catch (...) {
        scopes_.pop_back();
        throw;
    }
}

bool NamespaceManager::popScope() {
    if (scopes_.size() == 1) return false;
    answers_->closeScope();
    scopes_.pop_back();
    return true;
}

LumName NamespaceManager::namespaceAnswer(LumName prefix, LumName outer) const {
    const NSScope& scope = scopes_.back();
    if (scope.prefix == prefix && !scope.namespaceUri.isNull()) return scope.namespaceUri;
    if (!scope.map) return outer;
    const LumName uri = scope.map->lookupNamespace(prefix);
    // A null URI takes the default namespace back, but lets another prefix keep its outer meaning.
    return !uri.isNull() || (prefix.isNull() && scope.map->hasNamespace(prefix)) ? uri : outer;
}

LumName NamespaceManager::prefixAnswer(LumName uri, LumName outer) const {
    const NSScope& scope = scopes_.back();
    if (scope.namespaceUri == uri && !scope.prefix.isNull()) return scope.prefix;
    const LumName prefix = scope.map ? scope.map->lookupPrefix(uri) : LumName();
    return prefix.isNull() ? outer : prefix;
}

LumName NamespaceManager::defaultAnswer(LumName outer) const {
    const NSScope& scope = scopes_.back();
    return scope.map && scope.map->hasNamespace(LumName()) ? scope.map->getDefaultNamespace() : outer;
}

void NamespaceManager::prepare(LumName prefix, LumName uri) {
    answers_->prepare(ScopeAnswers::NAMESPACE_OF_PREFIX, prefix);
    if (prefix.isNull()) {
        answers_->prepare(ScopeAnswers::DECLARED_DEFAULT, prefix);
    } else {
        answers_->prepare(ScopeAnswers::PREFIX_OF_NAMESPACE, uri);
    }
}

void NamespaceManager::refreshNamespace(LumName prefix) noexcept {
    const LumName outer = answers_->getOuter(ScopeAnswers::NAMESPACE_OF_PREFIX, prefix);
    answers_->set(ScopeAnswers::NAMESPACE_OF_PREFIX, prefix, namespaceAnswer(prefix, outer));
}

void NamespaceManager::refreshPrefix(LumName uri) noexcept {
    const LumName outer = answers_->getOuter(ScopeAnswers::PREFIX_OF_NAMESPACE, uri);
    answers_->set(ScopeAnswers::PREFIX_OF_NAMESPACE, uri, prefixAnswer(uri, outer));
}

void NamespaceManager::refreshDeclaration(LumName prefix, LumName uri) noexcept {
    refreshNamespace(prefix);
    if (prefix.isNull()) {
        const LumName outer = answers_->getOuter(ScopeAnswers::DECLARED_DEFAULT, prefix);
        answers_->set(ScopeAnswers::DECLARED_DEFAULT, prefix, defaultAnswer(outer));
    } else {
        refreshPrefix(uri);
    }
}

void NamespaceManager::setElement(LumName prefix, LumName localName, LumName namespaceUri) {
    NSScope& scope = scopes_.back();
    const LumName oldPrefix = scope.prefix;
    const LumName oldUri = scope.namespaceUri;
    // The element answers before the declarations, so where the answers are already its names nothing is to be done.
    // This is the case of nearly every tag.
    const bool replaces = !oldPrefix.isNull() || !oldUri.isNull();
    const bool differs = (!namespaceUri.isNull() && lookupNamespace(prefix) != namespaceUri) ||
                         (!prefix.isNull() && lookupPrefix(namespaceUri) != prefix);
    if (replaces || differs) prepare(prefix, namespaceUri);
    scope.prefix = prefix;
    scope.localName = localName;
    scope.namespaceUri = namespaceUri;
    if (!replaces && !differs) return;
    if (!oldUri.isNull()) refreshNamespace(oldPrefix);
    if (!oldPrefix.isNull()) refreshPrefix(oldUri);
    if (!namespaceUri.isNull()) refreshNamespace(prefix);
    if (!prefix.isNull()) refreshPrefix(namespaceUri);
}

int NamespaceManager::getNamespaceCount(int depth) const {
    const NamespaceMap* const map = getNamespaceMap(depth);
    return map ? map->getCount() : 0;
}

LumName NamespaceManager::getNamespacePrefix(int index) const {
    const NamespaceMap* const map = getNamespaceMap();
    return map ? map->getNamespacePrefix(index) : LumName();
}

LumName NamespaceManager::getNamespaceUri(int index) const {
    const NamespaceMap* const map = getNamespaceMap();
    return map ? map->getNamespaceUri(index) : LumName();
}

NamespaceMap* NamespaceManager::getNamespaceMap() const { return scopes_.back().map.get(); }

NamespaceMap* NamespaceManager::getNamespaceMap(int depth) const {
    return depth < 0 || depth > getScopeDepth() ? nullptr : scopes_[static_cast<std::size_t>(depth)].map.get();
}

void NamespaceManager::addNamespace(LumName prefix, LumName uri) {
    if (lookupNamespace(prefix) == uri) return;
    prepare(prefix, uri);
    LumPtr<NamespaceMap> map = scopes_.back().map;
    if (!map) map = new NamespaceMap;
    const LumName overwritten = map->lookupNamespace(prefix);
    map->addNamespace(prefix, uri);
    scopes_.back().map = map;
    refreshDeclaration(prefix, uri);
    if (!prefix.isNull() && overwritten != uri) refreshPrefix(overwritten);
}

void NamespaceManager::removeNamespace(LumName prefix, LumName uri) {
    NamespaceMap* const map = getNamespaceMap();
    if (map == nullptr) return;
    prepare(prefix, uri);
    map->removeNamespace(prefix, uri);
    refreshDeclaration(prefix, uri);
}

LumName NamespaceManager::lookupNamespace(LumName prefix) const {
    return answers_->get(ScopeAnswers::NAMESPACE_OF_PREFIX, prefix);
}

LumName NamespaceManager::lookupPrefix(LumName uri) const {
    return answers_->get(ScopeAnswers::PREFIX_OF_NAMESPACE, uri);
}

LumName NamespaceManager::getDefaultNamespace() const {
    return answers_->get(ScopeAnswers::DECLARED_DEFAULT, LumName());
}

bool NamespaceManager::hasNamespace(LumName prefix) const {
    return std::any_of(scopes_.rbegin(), scopes_.rend(),
                       [=](const NSScope& scope) { return scope.map && scope.map->hasNamespace(prefix); });
}

bool NamespaceManager::hasTagName(LumName prefix, LumName localName) const {
    return std::any_of(scopes_.rbegin(), scopes_.rend(),
                       [=](const NSScope& scope) { return scope.prefix == prefix && scope.localName == localName; });
}

}  // namespace LumCommon
