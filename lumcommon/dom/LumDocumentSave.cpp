// Saving: turns nodes into calls to the serializer.

#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/LumAttr.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/LumNamedNodeMap.h>
#include <lumcommon/dom/LumTextNode.h>
#include <lumcommon/dom/LumXmlSerializer.h>
#include <lumcommon/dom/XmlSerializerImpl.h>
#include <lumcommon/dom/detail/ExactType.h>
#include <lumcommon/dom/detail/GatheredOutput.h>
#include <lumcommon/dom/detail/LocalFile.h>
#include <lumcommon/dom/detail/NodeFields.h>
#include <lumcommon/dom/detail/ReplacingFile.h>
#include <lumcommon/dom/detail/Utf8Text.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumNamedValueMap.h>

#include <ostream>
#include <utility>

namespace LumCommon {

namespace {

using detail::isExactly;
using detail::NodeFields;

/// Writes nodes to a serializer. Nodes of the library's own classes lend their content; of others, and where an
/// operation can come to others, every operation is called that a derived class may override. Output is gathered only
/// while nothing but the library's own nodes is read, and they are completely loaded.
template <class Serializer, class Output>
class NodeWriter {
public:
    NodeWriter(Serializer& serializer, const LumDocument& document)
        : serializer_(serializer), document_(document), output_(serializer) {}

    /// @param startTagOnly  ends after the attributes of the first element.
    void write(LumNode* root, bool startTagOnly) {
        if (!root) return;
        walk(root, startTagOnly);
        output_.setGathering(false);
    }

private:
    enum class Own { ELEMENT, TEXT, INSTRUCTION, NONE };

    /// What a node is if its class is the library's own.
    static Own classify(const LumNode& node) noexcept {
        if (isExactly<ElementNS>(node)) return Own::ELEMENT;
        if (isExactly<LumTextNode>(node)) return Own::TEXT;
        return isExactly<LumPINode>(node) ? Own::INSTRUCTION : Own::NONE;
    }

    /// The order is that of a LumTreeIterator that enters and leaves.
    void walk(LumNode* node, bool startTagOnly) {
        const LumNode* const root = node;
        for (;;) {
            Own own = classify(*node);
            const bool isElement = enter(*node, own);
            if (startTagOnly && isElement) return;
            if (LumNode* const child = firstChild(*node, own)) {
                node = child;
                continue;
            }
            if (isElement) leave(*node, own);
            for (;;) {
                if (node == root) return;
                if (LumNode* const sibling = nextSibling(*node, own)) {
                    node = sibling;
                    break;
                }
                node = own == Own::NONE ? node->getParentNode() : NodeFields::getParent(*node);
                if (!node) return;
                own = classify(*node);
                leave(*node, own);
            }
        }
    }

    LumNode* firstChild(const LumNode& node, Own own) {
        if (own == Own::NONE) return node.getFirstChild();
        if (LumNode* const child = NodeFields::peekFirstChild(node)) return child;
        if (!(node.getFlags() & LumNode::FLAG_LOADING)) return nullptr;
        output_.setGathering(false);
        return node.getFirstChild();
    }

    LumNode* nextSibling(const LumNode& node, Own own) {
        if (own == Own::NONE) return node.getNextSibling();
        if (LumNode* const sibling = NodeFields::peekNextSibling(node)) return sibling;
        const LumNode* const parent = NodeFields::getParent(node);
        if (!parent || !(parent->getFlags() & LumNode::FLAG_LOADING)) return nullptr;
        output_.setGathering(false);
        return node.getNextSibling();
    }

    /// Returns whether it is an element.
    bool enter(const LumNode& node, Own own) {
        output_.setGathering(own != Own::NONE);
        switch (own) {
            case Own::ELEMENT:
                enterElement(static_cast<const ElementNS&>(node));
                return true;
            case Own::TEXT:
                output_.text(static_cast<const LumTextNode&>(node));
                return false;
            case Own::INSTRUCTION:
                output_.processingInstruction(static_cast<const LumPINode&>(node).LumTextNode::getText());
                return false;
            default:
                const int type = node.getNodeType();
                reportUnknown(node, type, false);
                return type == LumNode::ELEMENT_NODE;
        }
    }

    /// Nodes other than elements are left only if they have children, and are then written again.
    void leave(const LumNode& node, Own own) {
        if (own == Own::ELEMENT) {
            output_.setGathering(true);
            const ElementNS& element = static_cast<const ElementNS&>(node);
            output_.endTag(NodeFields::getNamespaceUri(element), NodeFields::getLocalName(element));
        } else if (own == Own::NONE) {
            output_.setGathering(false);
            reportUnknown(node, node.getNodeType(), true);
        } else {
            enter(node, own);
        }
    }

    void enterElement(const ElementNS& element) {
        output_.startTag(NodeFields::getNamespaceUri(element), NodeFields::getPrefix(element),
                         NodeFields::getLocalName(element));
        LumNode* const last = NodeFields::getLastAttribute(element);
        for (const LumNode* attr = NodeFields::getFirstAttribute(last); attr;
             attr = NodeFields::getNextAttribute(*attr, last)) {
            writeAttribute(*attr);
        }
    }

    void reportUnknown(const LumNode& node, int type, bool isLeaving) {
        switch (type) {
            case LumNode::ELEMENT_NODE:
                if (isLeaving) {
                    serializer_.endTag(node.getNamespaceUri(), node.getLocalName());
                    break;
                }
                serializer_.startTag(node.getNamespaceUri(), node.getPrefix(), node.getLocalName());
                if (node.hasAttributes()) {
                    const LumNamedNodeMap& map = *node.getAttributes();
                    for (const LumNode* attr = map.getFirstNode(); attr; attr = map.getNextNode(attr)) {
                        writeAttribute(*attr);
                        output_.setGathering(false);
                    }
                }
                break;
            case LumNode::TEXT_NODE:
                serializer_.text(node.getText());
                break;
            case LumNode::PROCESSING_INSTRUCTION_NODE:
                serializer_.processingInstruction(node.getText());
                break;
            case LumNode::DOCUMENT_NODE:
            case LumNode::DOCUMENT_FRAGMENT_NODE:
                break;
            default:
                throwCommonError(LumErrorCodeLumLIB::UnsupportedNodeType, LumCommonErrorSource::DocumentDoSave);
        }
    }

    /// Writes an attribute from its typed value: nothing for a null or an object, one attribute per entry for a
    /// compound.
    void writeAttribute(const LumNode& attr) {
        if (isExactly<Attr>(attr)) {
            const Attr& own = static_cast<const Attr&>(attr);
            const LumValue& value = own.peekValue();
            const UnicodeString* const plain = value.getUnit() == UNIT_NONE ? value.getStringPointer() : nullptr;
            if (plain) {
                output_.setGathering(true);
                output_.attribute(own.Attr::getLocalName(), *plain);
                return;
            }
        }
        output_.setGathering(false);
        if (isExactly<Attr>(attr) || isExactly<AttrNS>(attr)) {
            writeValue(attr, static_cast<const Attr&>(attr).peekValue());
        } else {
            writeValue(attr, attr.getNodeValue());
        }
    }

    void writeValue(const LumNode& attr, const LumValue& value) {
        const LumValueKind kind = value.getKind();
        if (kind == KIND_NULL || kind == KIND_OBJECT) return;
        if (value.getUnit() == UNIT_COLOR && (kind == KIND_INTEGER || kind == KIND_COMPOUND)) {
            put(attr, attr.getLocalName(), LumColor(value).toString(isSvg()));
        } else if (kind == KIND_COMPOUND) {
            writeEntries(attr, *value.getNamedValueMap());
        } else {
            const UnicodeString* const plain = value.getUnit() == UNIT_NONE ? value.getStringPointer() : nullptr;
            put(attr, attr.getLocalName(), plain ? *plain : value.toString());
        }
    }

    void writeEntries(const LumNode& attr, const LumNamedValueMap& map) {
        LumNamedValueMapIterator entries(&map);
        while (entries.hasNext()) {
            const LumNamedValue entry = entries.next();
            LumName name = attr.getLocalName();
            if (!entry.getName().isNull()) {
                UnicodeString compound = detail::copyOf(name.getString());
                detail::append(compound, u'.');
                detail::append(compound, entry.getName().getString());
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

    Serializer& serializer_;
    const LumDocument& document_;
    Output output_;
    bool isSvg_ = false;
    bool isSvgKnown_ = false;  // determined at the first colour
};

/// Has the serializer check what it writes while this lives, where the document wants that.
class CheckScope {
public:
    CheckScope(LumXmlSerializer& serializer, bool wantsCheck)
        : serializer_(&serializer), wasChecked_(serializer.isChecked()) {
        if (wantsCheck) serializer.setChecked(true);
    }
    CheckScope(const CheckScope&) = delete;
    CheckScope& operator=(const CheckScope&) = delete;
    ~CheckScope() { serializer_->setChecked(wasChecked_); }

private:
    const LumPtr<LumXmlSerializer> serializer_;  // held: a node's operation may replace that of the document
    const bool wasChecked_;
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
    const CheckScope checks(serializer, isSaveChecked_);
    if (XmlSerializerImpl* const own = detail::asExactly<XmlSerializerImpl>(serializer)) {
        NodeWriter<XmlSerializerImpl, detail::GatheredOutput>(*own, *this).write(node, startTagOnly);
    } else {
        NodeWriter<LumXmlSerializer, detail::DirectOutput>(serializer, *this).write(node, startTagOnly);
    }
}

/// Everything between setting the output and releasing it.
void LumDocument::writeAll(LumNode* node, const UnicodeString& comment, const UnicodeString& doctype,
                           const UnicodeString& processingInstruction) {
    LumXmlSerializer* const serializer = getSerializer();
    const CheckScope checks(*serializer, isSaveChecked_);
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
    checkOutput(uri);
    OutputScope output(getSerializer());
    output->setOutput(uri, encoding);
    writeAll(node, UnicodeString(), UnicodeString(), processingInstruction);
    output.close();
}

/// Refuses the file that is still being read.
void LumDocument::checkOutput(const UnicodeString& uri) const {
    if (!loadCursor_ || !input_ || !(detail::FileIdentity::ofResource(uri) == *input_)) return;
    UnicodeString told = detail::copyOf(uri);
    throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::SerializerSetOutput,
                     detail::append(told, u" (it is still being read)"));
}

void LumDocument::saveReplacing(const UnicodeString& uri, LumNode* node, const UnicodeString& encoding,
                                const UnicodeString& processingInstruction) {
    detail::ReplacingFile file(uri);
    save(file.stream(), node, encoding, processingInstruction);
    file.replace();
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
    detail::Utf8Output text;
    std::ostream out(&text);
    OutputScope output(getSerializer());
    output->setOutput(out, u"UTF-8");
    const CheckScope checks(*getSerializer(), isSaveChecked_);
    if (!node || node == this) output->startDocument(UnicodeString(), UnicodeString());
    doSave(node ? node : this, false);
    output->endDocument();
    output.close();
    return text.decode();
}

void LumDocument::saveDocumentElement(const UnicodeString& uri) {
    checkOutput(uri);
    getSerializer()->setOutput(uri, UnicodeString());
    const CheckScope checks(*serializer_, isSaveChecked_);
    serializer_->startDocument(UnicodeString(), UnicodeString());
    doSave(getDocumentElement(), true);
}

void LumDocument::saveDocumentElement(std::ostream& out) {
    getSerializer()->setOutput(out, UnicodeString());
    const CheckScope checks(*serializer_, isSaveChecked_);
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
