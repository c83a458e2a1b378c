#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumTextNode.h>

namespace LumCommon {

bool LumTextNode::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumNode::isA(typeId); }

UnicodeString LumTextNode::getTypeName() const { return u"LumTextNode"; }

LumName LumTextNode::getLocalName() const { return NAME_HASH_text; }

LumValue LumTextNode::getNodeValue() const { return LumValue(text_.toString()); }

void LumTextNode::setNodeValue(const LumValue& value) { text_.assign(value.toString()); }

int LumTextNode::getNodeType() const { return TEXT_NODE; }

bool LumTextNode::isText() const { return true; }

UnicodeString LumTextNode::getText() const { return text_.toString(); }

void LumTextNode::setText(const UnicodeString& text) { text_.assign(text); }

LumPtr<LumNode> LumTextNode::cloneNode(bool) const { return ownerDocument_->createTextNode(text_.toString()); }

int LumTextNode::getLength() const { return text_.length(); }

UnicodeString LumTextNode::getData() const { return text_.toString(); }

void LumTextNode::setData(const UnicodeString& text) { text_.assign(text); }

bool LumPINode::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumTextNode::isA(typeId); }

UnicodeString LumPINode::getTypeName() const { return u"LumPINode"; }

int LumPINode::getNodeType() const { return PROCESSING_INSTRUCTION_NODE; }

bool LumDocumentFragment::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumNode::isA(typeId); }

UnicodeString LumDocumentFragment::getTypeName() const { return u"LumDocumentFragment"; }

LumName LumDocumentFragment::getLocalName() const { return NAME_HASH_document_fragment; }

int LumDocumentFragment::getNodeType() const { return DOCUMENT_FRAGMENT_NODE; }

}  // namespace LumCommon
