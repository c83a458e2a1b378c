#include <lumcommon/dom/detail/OutputScopes.h>

namespace LumCommon::detail {

NamespaceManager& OutputScopes::manager() {
    if (!manager_) manager_ = new NamespaceManager;
    return *manager_;
}

void OutputScopes::reset() {
    elements_.clear();
    isWaiting_ = false;
    while (manager().popScope()) {
    }
    ++generation_;
}

void OutputScopes::openWaiting() {
    if (isWaiting_) return;
    manager().pushScope();
    isWaiting_ = true;
}

void OutputScopes::closeWaiting() {
    popScope();
    isWaiting_ = false;
}

void OutputScopes::popScope() {
    manager().popScope();
    ++generation_;
}

/// The prefix must also be the one that getPrefix() finds for the namespace, as it prefers that of the element.
bool OutputScopes::findInScope(LumName namespaceUri, LumName prefix) {
    const NamespaceManager& scopes = manager();
    const bool isFound = namespaceUri.isNull() ? scopes.getDefaultNamespace().isNull()
                                               : scopes.lookupNamespace(prefix) == namespaceUri &&
                                                     (prefix.isNull() || scopes.lookupPrefix(namespaceUri) == prefix);
    if (isFound) known_[prefix.getEnum() % known_.size()] = {namespaceUri, prefix, generation_};
    return isFound;
}

void OutputScopes::openWithScope(LumName namespaceUri, LumName prefix, LumName localName) {
    openWaiting();
    if (namespaceUri.isNull()) {
        undeclareDefault();
    } else {
        manager_->addNamespace(prefix, namespaceUri);
    }
    useWaiting(namespaceUri, prefix, localName);
}

void OutputScopes::open(LumName namespaceUri, LumName localName) {
    openWaiting();
    if (namespaceUri.isNull()) undeclareDefault();
    useWaiting(namespaceUri, getPrefix(namespaceUri, true), localName);
}

void OutputScopes::undeclareDefault() {
    if (!manager_->getDefaultNamespace().isNull()) manager_->addNamespace(LumName(), LumName());
}

/// Turns the waiting scope into that of an element.
void OutputScopes::useWaiting(LumName namespaceUri, LumName prefix, LumName localName) {
    elements_.push_back({{namespaceUri, prefix, localName}, true});
    isWaiting_ = false;
    ++generation_;
    manager_->setElement(prefix, localName, namespaceUri);
}

/// Makes the manager's innermost scope that of the innermost element.
void OutputScopes::giveScope() {
    if (isWaiting_ || elements_.empty() || elements_.back().hasScope) return;
    OpenElement& element = elements_.back();
    manager().pushScope();
    element.hasScope = true;
    manager_->setElement(element.names.prefix, element.names.localName, element.names.namespaceUri);
}

void OutputScopes::declare(LumName prefix, LumName namespaceUri) {
    if (manager().lookupNamespace(prefix) == namespaceUri) return;
    giveScope();
    ++generation_;
    manager_->addNamespace(prefix, namespaceUri);
}

LumName OutputScopes::getPrefix(LumName namespaceUri, bool generate) {
    if (namespaceUri.isNull()) return {};
    LumName prefix = manager().lookupPrefix(namespaceUri);
    if (prefix.isNull() && generate && namespaceUri != manager().getDefaultNamespace()) {
        prefix = LumName::generateID(UnicodeString());
        declare(prefix, namespaceUri);
    }
    return prefix;
}

const NamespaceMap* OutputScopes::getDeclarations() const {
    return hasDeclarations() ? manager_->getNamespaceMap() : nullptr;
}

}  // namespace LumCommon::detail
