// Namespace lookups by the rules of DOM level 3. Each is one walk up the tree.

#include <lumcommon/dom/LumAttr.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/LumNamedNodeMap.h>
#include <lumcommon/names/detail/UnitHash.h>

#include <unordered_set>

namespace LumCommon {

namespace {

const LumNode* elementOrNull(const LumNode* node) { return node && node->isElementNode() ? node : nullptr; }

/// The element where the lookup for a node starts; null when the answer is null.
const LumNode* lookupStart(const LumNode* node) {
    switch (node->getNodeType()) {
        case LumNode::ELEMENT_NODE:
            return node;
        case LumNode::ATTRIBUTE_NODE:
            return static_cast<const LumAttr*>(node)->getOwnerElement();
        case LumNode::DOCUMENT_NODE:
            return static_cast<const LumDocument*>(node)->getDocumentElement();
        case LumNode::ENTITY_NODE:
        case LumNode::DOCUMENT_TYPE_NODE:
        case LumNode::DOCUMENT_FRAGMENT_NODE:
        case LumNode::NOTATION_NODE:
            return nullptr;
        default:
            return elementOrNull(node->getParentNode());
    }
}

const LumNode* parentElement(const LumNode* element) { return elementOrNull(element->getParentNode()); }

/// The namespace that the element itself carries. A plain Element carries none: it relies on these very lookups.
LumName ownNamespace(const LumNode* element) {
    return element->isA(Element::TYPE_ID) ? LumName() : element->getNamespaceUri();
}

/// Calls `visit(prefix, attribute)` for each namespace declaration among the element's attributes, in order, until it
/// returns true. The null prefix stands for the default namespace.
template <class Visit>
bool visitDeclarations(const LumNode* element, Visit visit) {
    if (!element->hasAttributes()) return false;
    const LumNamedNodeMap* const attributes = element->getAttributes();
    for (const LumNode* attr = attributes->getFirstNode(); attr; attr = attributes->getNextNode(attr)) {
        const LumName localName = attr->getLocalName();
        if (attr->getPrefix() == NAME_xmlns) {
            if (visit(localName, attr)) return true;
        } else if (localName == NAME_xmlns) {
            if (visit(LumName(), attr)) return true;
        }
    }
    return false;
}

}  // namespace

LumName LumNode::lookupNamespaceUri(LumName prefix) const {
    LumName found;
    for (const LumNode* element = lookupStart(this); element; element = parentElement(element)) {
        const LumName own = ownNamespace(element);
        if (!own.isNull() && element->getPrefix() == prefix) return own;
        const bool isDeclared = visitDeclarations(element, [&](LumName declared, const LumNode* attr) {
            if (declared != prefix) return false;
            found = LumName(attr->getNodeValue());
            return true;
        });
        if (isDeclared) break;
    }
    return found;
}

LumName LumNode::lookupPrefix(LumName namespaceUri) const {
    if (namespaceUri.isNull()) return LumName();
    // A prefix maps back to the namespace exactly when the binding found is the innermost one of the prefix, so it is
    // enough to remember the prefixes bound further in.
    std::unordered_set<LumName, detail::KeyedHash> bound;
    LumName found;
    for (const LumNode* element = lookupStart(this); element; element = parentElement(element)) {
        const LumName own = ownNamespace(element);
        if (!own.isNull()) {
            const LumName prefix = element->getPrefix();
            if (bound.insert(prefix).second && own == namespaceUri && !prefix.isNull()) return prefix;
        }
        const bool isFound = visitDeclarations(element, [&](LumName prefix, const LumNode* attr) {
            if (!bound.insert(prefix).second || prefix.isNull()) return false;
            if (attr->getNodeValue().toString() != namespaceUri.getString()) return false;
            found = prefix;
            return true;
        });
        if (isFound) break;
    }
    return found;
}

bool LumNode::isDefaultNamespace(LumName namespaceUri) const {
    for (const LumNode* element = lookupStart(this); element; element = parentElement(element)) {
        if (element->getPrefix().isNull()) return element->getNamespaceUri() == namespaceUri;
        if (!element->hasAttributes()) continue;
        const LumNamedNodeMap* const attributes = element->getAttributes();
        for (const LumNode* attr = attributes->getFirstNode(); attr; attr = attributes->getNextNode(attr)) {
            if (attr->getLocalName() == NAME_xmlns) return attr->getNodeValue() == LumValue(namespaceUri);
        }
    }
    return false;
}

}  // namespace LumCommon
