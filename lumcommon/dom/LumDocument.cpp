#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/LumAttr.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/LumTextNode.h>
#include <lumcommon/dom/LumXmlSerializer.h>
#include <lumcommon/dom/detail/LoadedTexts.h>
#include <lumcommon/dom/detail/LocalFile.h>
#include <lumcommon/dom/detail/QualifiedName.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/xml/LumXmlParser.h>

#include <istream>

namespace LumCommon {

LumDocument::LumDocument() : LumNode(this), nameTable_(LumNameTable::addRefSharedNameTable()) {}

LumDocument::~LumDocument() {
    // Nodes that outlive this document must not ask it for more input.
    for (LumNode* node = loadCursor_; node; node = node->parent_) node->flags_ &= ~unsigned{FLAG_LOADING};
    setCursor(nullptr);
    removeAllChildNodes();
    parser_ = nullptr;
    serializer_ = nullptr;
    LumNameTable::releaseSharedNameTable();
}

UnicodeString LumDocument::uriOfPath(std::string_view path) {
    return detail::copyOf(LumUri::fromLocalPath(path).toString());
}

bool LumDocument::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumNode::isA(typeId); }

UnicodeString LumDocument::getTypeName() const { return u"LumDocument"; }

LumName LumDocument::getLocalName() const { return NAME_HASH_document; }

int LumDocument::getNodeType() const { return DOCUMENT_NODE; }

LumDocument* LumDocument::getOwnerDocument() const { return nullptr; }

LumElement* LumDocument::getDocumentElement() const {
    LumNode* child = getFirstChild();
    while (child && child->getNodeType() != ELEMENT_NODE) child = child->getNextSibling();
    return static_cast<LumElement*>(child);
}

// The factory

LumPtr<LumElement> LumDocument::createElement(LumName qualifiedName) {
    const detail::QualifiedName name = detail::splitQualifiedName(qualifiedName);
    return firstPointer<LumElement>(new Element(this, name.prefix, name.localName));
}

LumPtr<LumElement> LumDocument::createElementNS(LumName namespaceUri, LumName qualifiedName) {
    const detail::QualifiedName name = detail::splitQualifiedName(qualifiedName);
    return createElementNS(namespaceUri, name.prefix, name.localName);
}

LumPtr<LumElement> LumDocument::createElementNS(LumName namespaceUri, LumName prefix, LumName localName) {
    return firstPointer<LumElement>(new ElementNS(this, namespaceUri, prefix, localName));
}

LumPtr<LumTextNode> LumDocument::createTextNode(const UnicodeString& text) {
    return firstPointer(new LumTextNode(this, text));
}

LumPtr<LumPINode> LumDocument::createProcessingInstruction(const UnicodeString& content) {
    return firstPointer(new LumPINode(this, content));
}

LumPtr<LumDocumentFragment> LumDocument::createDocumentFragment() {
    return firstPointer(new LumDocumentFragment(this));
}

LumPtr<LumAttr> LumDocument::createAttribute(LumName qualifiedName) {
    if (qualifiedName == NAME_xmlns) {
        return firstPointer<LumAttr>(new AttrNS(this, NAME_NS_XMLNS, LumName(), NAME_xmlns));
    }
    const detail::QualifiedName name = detail::splitQualifiedName(qualifiedName);
    if (name.prefix.isNull()) return firstPointer<LumAttr>(new Attr(this, qualifiedName));
    LumName namespaceUri;
    if (name.prefix == NAME_xmlns) namespaceUri = NAME_NS_XMLNS;
    if (name.prefix == NAME_xml) namespaceUri = NAME_NS_XML;
    return firstPointer<LumAttr>(new AttrNS(this, namespaceUri, name.prefix, name.localName));
}

LumPtr<LumAttr> LumDocument::createAttributeNS(LumName namespaceUri, LumName qualifiedName) {
    const detail::QualifiedName name = detail::splitQualifiedName(qualifiedName);
    return createAttributeNS(namespaceUri, name.prefix, name.localName);
}

LumPtr<LumAttr> LumDocument::createAttributeNS(LumName namespaceUri, LumName prefix, LumName localName) {
    if (namespaceUri.isNull() && prefix.isNull()) return firstPointer<LumAttr>(new Attr(this, localName));
    return firstPointer<LumAttr>(new AttrNS(this, namespaceUri, prefix, localName));
}

LumPtr<LumNode> LumDocument::createTextNodeElement(const UnicodeString& text, LumNode*) { return createTextNode(text); }

}  // namespace LumCommon
