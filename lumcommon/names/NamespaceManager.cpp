#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/NamespaceManager.h>
#include <lumcommon/names/detail/ScopeAnswers.h>

#include <algorithm>
#include <utility>

namespace LumCommon {

using detail::ScopeAnswers;

namespace {

// What lookupNamespace, lookupPrefix and getDefaultNamespace answer in a scope, given the answer without it.

LumName namespaceAnswer(const NamespaceManager::NSScope& scope, LumName prefix, LumName outer) {
    if (scope.prefix == prefix && !scope.namespaceUri.isNull()) return scope.namespaceUri;
    if (!scope.map) return outer;
    const LumName uri = scope.map->lookupNamespace(prefix);
    // A null URI cancels the default namespace, but leaves any other prefix with its outer meaning.
    return !uri.isNull() || (prefix.isNull() && scope.map->hasNamespace(prefix)) ? uri : outer;
}

LumName prefixAnswer(const NamespaceManager::NSScope& scope, LumName uri, LumName outer) {
    if (scope.namespaceUri == uri && !scope.prefix.isNull()) return scope.prefix;
    const LumName prefix = scope.map ? scope.map->lookupPrefix(uri) : LumName();
    return prefix.isNull() ? outer : prefix;
}

LumName defaultAnswer(const NamespaceManager::NSScope& scope, LumName outer) {
    return scope.map && scope.map->hasNamespace(LumName()) ? scope.map->getDefaultNamespace() : outer;
}

/// The answers as seen from the innermost scope.
struct InnermostScope {
    ScopeAnswers& answers;
    const NamespaceManager::NSScope& scope;

    void prepare(LumName prefix, LumName uri) const {
        answers.prepare(ScopeAnswers::NAMESPACE_OF_PREFIX, prefix);
        if (prefix.isNull()) {
            answers.prepare(ScopeAnswers::DECLARED_DEFAULT, prefix);
        } else {
            answers.prepare(ScopeAnswers::PREFIX_OF_NAMESPACE, uri);
        }
    }
    void refreshNamespace(LumName prefix) const noexcept {
        const LumName outer = answers.getOuter(ScopeAnswers::NAMESPACE_OF_PREFIX, prefix);
        answers.set(ScopeAnswers::NAMESPACE_OF_PREFIX, prefix, namespaceAnswer(scope, prefix, outer));
    }
    void refreshPrefix(LumName uri) const noexcept {
        const LumName outer = answers.getOuter(ScopeAnswers::PREFIX_OF_NAMESPACE, uri);
        answers.set(ScopeAnswers::PREFIX_OF_NAMESPACE, uri, prefixAnswer(scope, uri, outer));
    }
    void refreshDeclaration(LumName prefix, LumName uri) const noexcept {
        refreshNamespace(prefix);
        if (prefix.isNull()) {
            const LumName outer = answers.getOuter(ScopeAnswers::DECLARED_DEFAULT, prefix);
            answers.set(ScopeAnswers::DECLARED_DEFAULT, prefix, defaultAnswer(scope, outer));
        } else {
            refreshPrefix(uri);
        }
    }
    void refreshElement(LumName prefix, LumName uri) const noexcept {
        if (!uri.isNull()) refreshNamespace(prefix);
        if (!prefix.isNull()) refreshPrefix(uri);
    }
    /// For a scope that has just been opened.
    void answerAll() const {
        if (scope.map) {
            for (const auto& [prefix, uri] : scope.map->getEntries()) {
                prepare(prefix, uri);
                refreshDeclaration(prefix, uri);
            }
        }
        prepare(scope.prefix, scope.namespaceUri);
        refreshElement(scope.prefix, scope.namespaceUri);
    }
};

}  // namespace

NamespaceManager::NamespaceManager() {
    scopes_.emplace_back();
    scopes_.back().map = new NamespaceMap;  // a separate statement, so that its place exists before it does
    scopes_.back().map->addNamespace(NAME_xml, NAME_NS_XML);
    scopes_.back().map->addNamespace(NAME_xmlns, NAME_NS_XMLNS);
    answers();
    nameTable_ = LumNameTable::addRefSharedNameTable();  // last: a failure above would leak the reference
    scopes_.back().map->manager_ = this;
}

NamespaceManager::~NamespaceManager() {
    for (const NSScope& scope : scopes_) {
        if (scope.map) scope.map->manager_ = nullptr;
    }
    LumNameTable::releaseSharedNameTable();
}

bool NamespaceManager::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumRCObject::isA(typeId); }

UnicodeString NamespaceManager::getTypeName() const { return UnicodeString(u"NamespaceManager"); }

ScopeAnswers& NamespaceManager::answers() const {
    if (answers_) return *answers_;
    auto answers = std::make_unique<ScopeAnswers>();
    for (const NSScope& scope : scopes_) {
        if (&scope != &scopes_.front()) answers->openScope();
        InnermostScope{*answers, scope}.answerAll();
    }
    answers_ = std::move(answers);
    return *answers_;
}

void NamespaceManager::pushScope() {
    scopes_.emplace_back();
    if (!answers_) return;
    try {
        answers_->openScope();
    } catch (...) {
        scopes_.pop_back();
        throw;
    }
}

bool NamespaceManager::popScope() {
    if (scopes_.size() == 1) return false;
    if (answers_) answers_->closeScope();
    if (const NSScope& scope = scopes_.back(); scope.map) scope.map->manager_ = nullptr;
    scopes_.pop_back();
    return true;
}

void NamespaceManager::setElement(LumName prefix, LumName localName, LumName namespaceUri) {
    NSScope& scope = scopes_.back();
    const InnermostScope innermost{answers(), scope};
    const LumName oldPrefix = scope.prefix;
    const LumName oldUri = scope.namespaceUri;
    // The element takes precedence over the declarations, so nothing has to change when the answers are already its
    // names. That is so for nearly every tag.
    const bool replaces = !oldPrefix.isNull() || !oldUri.isNull();
    const bool differs = (!namespaceUri.isNull() && lookupNamespace(prefix) != namespaceUri) ||
                         (!prefix.isNull() && lookupPrefix(namespaceUri) != prefix);
    if (replaces || differs) innermost.prepare(prefix, namespaceUri);
    scope.prefix = prefix;
    scope.localName = localName;
    scope.namespaceUri = namespaceUri;
    if (!replaces && !differs) return;
    innermost.refreshElement(oldPrefix, oldUri);
    innermost.refreshElement(prefix, namespaceUri);
}

/// Whether a change to this map updates the answers. A change below the innermost scope would affect what the scopes
/// above it have logged, so it makes the answers be rebuilt instead.
bool NamespaceManager::isFollowed(const NamespaceMap& map) const noexcept {
    return answers_ && scopes_.back().map.get() == &map;
}

void NamespaceManager::prepareChange(const NamespaceMap& map, LumName prefix, LumName uri) {
    if (isFollowed(map)) InnermostScope{*answers_, scopes_.back()}.prepare(prefix, uri);
}

void NamespaceManager::followChange(const NamespaceMap& map, LumName prefix, LumName previous, LumName uri) noexcept {
    if (!isFollowed(map)) return answers_.reset();
    const InnermostScope innermost{*answers_, scopes_.back()};
    innermost.refreshDeclaration(prefix, uri);
    if (!prefix.isNull() && previous != uri) innermost.refreshPrefix(previous);
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
    if (NamespaceMap* const map = getNamespaceMap()) return map->addNamespace(prefix, uri);
    const LumPtr<NamespaceMap> map(new NamespaceMap);
    map->addNamespace(prefix, uri);
    // The scope gets the map once nothing can fail any more.
    const InnermostScope innermost{answers(), scopes_.back()};
    innermost.prepare(prefix, uri);
    map->manager_ = this;
    scopes_.back().map = map;
    innermost.refreshDeclaration(prefix, uri);
}

void NamespaceManager::removeNamespace(LumName prefix, LumName uri) {
    if (NamespaceMap* const map = getNamespaceMap()) map->removeNamespace(prefix, uri);
}

LumName NamespaceManager::lookupNamespace(LumName prefix) const {
    return answers().get(ScopeAnswers::NAMESPACE_OF_PREFIX, prefix);
}

LumName NamespaceManager::lookupPrefix(LumName uri) const {
    return answers().get(ScopeAnswers::PREFIX_OF_NAMESPACE, uri);
}

LumName NamespaceManager::getDefaultNamespace() const {
    return answers().get(ScopeAnswers::DECLARED_DEFAULT, LumName());
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
