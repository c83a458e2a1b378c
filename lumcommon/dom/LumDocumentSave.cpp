// Saving: turns nodes into calls to the serializer.

#include <lumcommon/core/LumError.h>
#include <lumcommon/dom/LumAttr.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/LumNamedNodeMap.h>
#include <lumcommon/dom/LumNodeIterable.h>
#include <lumcommon/dom/LumXmlSerializer.h>
#include <lumcommon/dom/XmlSerializerImpl.h>
#include <lumcommon/dom/detail/ExactType.h>
#include <lumcommon/dom/detail/Utf8Text.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumNamedValueMap.h>

#include <sstream>
#include <utility>

namespace LumCommon {

namespace {

using detail::isExactly;

/// Writes one attribute from its typed value: nothing for a null or an object, one attribute per entry for a compound.
class AttributeWriter {
public:
    AttributeWriter(LumXmlSerializer& serializer, const LumDocument& document)
        : serializer_(serializer), document_(document) {}

    void write(const LumNode& attr) {
        // The library's own classes lend their value; others are asked for a copy.
        if (isExactly<Attr>(attr) || isExactly<AttrNS>(attr)) {
            writeValue(attr, static_cast<const Attr&>(attr).peekValue());
        } else {
            writeValue(attr, attr.getNodeValue());
        }
    }

private:
    void writeValue(const LumNode& attr, const LumValue& value) {
        const LumValueKind kind = value.getKind();
        if (kind == KIND_NULL || kind == KIND_OBJECT) return;
        const UnicodeString* const plain = value.getUnit() == UNIT_NONE ? value.getStringPointer() : nullptr;
        if (plain) {
            put(attr, attr.getLocalName(), *plain);
        } else if (value.getUnit() == UNIT_COLOR && (kind == KIND_INTEGER || kind == KIND_COMPOUND)) {
            put(attr, attr.getLocalName(), LumColor(value).toString(isSvg()));
        } else if (kind == KIND_COMPOUND) {
            writeEntries(attr, *value.getNamedValueMap());
        } else {
            put(attr, attr.getLocalName(), value.toString());
        }
    }

    void writeEntries(const LumNode& attr, const LumNamedValueMap& map) {
        LumNamedValueMapIterator entries(&map);
        while (entries.hasNext()) {
            const LumNamedValue entry = entries.next();
            LumName name = attr.getLocalName();
            if (!entry.getName().isNull()) {
                UnicodeString compound(name.getString());
                compound.append(u'.').append(entry.getName().getString());
                name = LumName(compound);
            }
            put(attr, name, entry.toString());
        }
    }

    /// Whether the document is an SVG drawing, whose colours are written in SVG syntax.
    bool isSvg() {
        if (!isSvgKnown_) {
            const LumElement* const root = document_.getDocumentElement();
            isSvg_ = root && root->getNamespaceUri().getString() == u"http://www.w3.org/2000/svg";
            isSvgKnown_ = true;
        }
        return isSvg_;
    }

    void put(const LumNode& attr, LumName name, const UnicodeString& text) {
        serializer_.attribute(attr.getNamespaceUri(), attr.getPrefix(), name, text);
    }

    LumXmlSerializer& serializer_;
    const LumDocument& document_;
    bool isSvg_ = false;
    bool isSvgKnown_ = false;  // determined at the first colour
};

/// Makes the serializer release its output however the saving ends: the caller may destroy it before setting another.
class OutputScope {
public:
    explicit OutputScope(LumXmlSerializer* serializer) : serializer_(serializer) {}
    OutputScope(const OutputScope&) = delete;
    OutputScope& operator=(const OutputScope&) = delete;
    ~OutputScope() {
        try {
            close();
        } catch (...) {
            // The exception that ends the saving is already in flight.
        }
    }

    /// The normal end: if the output fails only now, saving fails.
    void close() {
        const LumPtr<LumXmlSerializer> serializer = std::move(serializer_);
        // The interface has no operation for closing; a caller's own serializer takes care of its output itself.
        if (!serializer || !serializer->isA(XmlSerializerImpl::TYPE_ID)) return;
        static_cast<XmlSerializerImpl*>(serializer.get())->closeStream();
    }

    LumXmlSerializer* operator->() const noexcept { return serializer_.get(); }

private:
    LumPtr<LumXmlSerializer> serializer_;
};

}  // namespace

LumXmlSerializer* LumDocument::getSerializer() {
    if (!serializer_) serializer_ = LumXmlUtil::createXmlSerializer();
    return serializer_.get();
}

void LumDocument::setSerializer(LumXmlSerializer* serializer) { serializer_ = serializer; }

void LumDocument::doSave(LumNode* node) { doSave(node, false); }

void LumDocument::doSave(LumNode* node, bool startTagOnly) {
    LumXmlSerializer& serializer = *getSerializer();
    AttributeWriter attributes(serializer, *this);
    LumTreeIterator walk(node, LumTreeIterator::ENTER_AND_LEAVE);
    while (const LumNode* current = walk.nextNode()) {
        switch (current->getNodeType()) {
            case ELEMENT_NODE:
                if (walk.isLeaving()) {
                    serializer.endTag(current->getNamespaceUri(), current->getLocalName());
                    break;
                }
                serializer.startTag(current->getNamespaceUri(), current->getPrefix(), current->getLocalName());
                if (current->hasAttributes()) {
                    const LumNamedNodeMap& map = *current->getAttributes();
                    for (const LumNode* attr = map.getFirstNode(); attr; attr = map.getNextNode(attr)) {
                        attributes.write(*attr);
                    }
                }
                if (startTagOnly) return;
                break;
            case TEXT_NODE:
                serializer.text(current->getText());
                break;
            case PROCESSING_INSTRUCTION_NODE:
                serializer.processingInstruction(current->getText());
                break;
            case DOCUMENT_NODE:
            case DOCUMENT_FRAGMENT_NODE:
                break;
            default:
                throwCommonError(LumErrorCodeLumLIB::UnsupportedNodeType, LumCommonErrorSource::DocumentDoSave);
        }
    }
}

/// Everything between setting the output and releasing it.
void LumDocument::writeAll(LumNode* node, const UnicodeString& comment, const UnicodeString& doctype,
                           const UnicodeString& processingInstruction) {
    LumXmlSerializer* const serializer = getSerializer();
    serializer->startDocument(UnicodeString(), UnicodeString());
    if (!comment.isEmpty()) serializer->comment(comment);
    if (!doctype.isEmpty()) serializer->docdecl(doctype);
    if (!processingInstruction.isEmpty()) serializer->processingInstruction(processingInstruction);
    doSave(node ? node : this, false);
    serializer->endDocument();
}

void LumDocument::save(const UnicodeString& uri, LumNode* node) { save(uri, node, UnicodeString(), UnicodeString()); }

void LumDocument::save(const UnicodeString& uri, LumNode* node, const UnicodeString& encoding) {
    save(uri, node, encoding, UnicodeString());
}

void LumDocument::save(const UnicodeString& uri, LumNode* node, const UnicodeString& encoding,
                       const UnicodeString& processingInstruction) {
    OutputScope output(getSerializer());
    output->setOutput(uri, encoding);
    writeAll(node, UnicodeString(), UnicodeString(), processingInstruction);
    output.close();
}

void LumDocument::save(std::ostream& out, LumNode* node, const UnicodeString& encoding) {
    save(out, node, encoding, UnicodeString());
}

void LumDocument::save(std::ostream& out, LumNode* node, const UnicodeString& encoding,
                       const UnicodeString& processingInstruction) {
    OutputScope output(getSerializer());
    output->setOutput(out, encoding);
    writeAll(node, UnicodeString(), UnicodeString(), processingInstruction);
    output.close();
}

void LumDocument::save(const UnicodeString& comment, const UnicodeString& doctype, std::ostream& out, LumNode* node,
                       const UnicodeString& encoding) {
    OutputScope output(getSerializer());
    output->setOutput(out, encoding);
    writeAll(node, comment, doctype, UnicodeString());
    output.close();
}

UnicodeString LumDocument::saveXml(LumNode* node) {
    std::ostringstream bytes;
    OutputScope output(getSerializer());
    output->setOutput(bytes, u"UTF-8");
    if (!node || node == this) output->startDocument(UnicodeString(), UnicodeString());
    doSave(node ? node : this, false);
    output->endDocument();
    output.close();
    return detail::decodeUtf8(bytes.view());
}

void LumDocument::saveDocumentElement(const UnicodeString& uri) {
    getSerializer()->setOutput(uri, UnicodeString());
    serializer_->startDocument(UnicodeString(), UnicodeString());
    doSave(getDocumentElement(), true);
}

void LumDocument::saveDocumentElement(std::ostream& out) {
    getSerializer()->setOutput(out, UnicodeString());
    serializer_->startDocument(UnicodeString(), UnicodeString());
    doSave(getDocumentElement(), true);
}

void LumDocument::saveChildElement(LumNode* node) { doSave(node, false); }

void LumDocument::closeDocumentElement() {
    OutputScope output(getSerializer());
    if (const LumElement* const element = getDocumentElement()) {
        output->endTag(element->getNamespaceUri(), element->getLocalName());
    }
    output->endDocument();
    output.close();
}

}  // namespace LumCommon
