#include <lumcommon/dom/LumAttr.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/LumTextNode.h>
#include <lumcommon/dom/detail/NodeFields.h>

#include <utility>
#include <vector>

namespace LumCommon {

using detail::NodeFields;

namespace {

constexpr unsigned loadingFlags = LumNode::FLAG_LOADING | LumNode::FLAG_COMPLETE | LumNode::FLAG_STEP_OVER;

}  // namespace

/// The copy without descendants.
LumPtr<LumNode> LumDocument::importAlone(const LumNode& node) {
    switch (node.getNodeType()) {
        case ELEMENT_NODE: {
            LumPtr<LumElement> copy = createElementNS(node.getNamespaceUri(), node.getPrefix(), node.getLocalName());
            if (!copy || !node.isA(LumElement::TYPE_ID)) return copy;
            LumNode* const last = NodeFields::getLastAttribute(static_cast<const LumElement&>(node));
            for (const LumNode* attr = NodeFields::getFirstAttribute(last); attr;
                 attr = NodeFields::getNextAttribute(*attr, last)) {
                copy->setAttributeNS(attr->getNamespaceUri(), attr->getPrefix(), attr->getLocalName(),
                                     attr->getNodeValue());
            }
            copy->setFlags(node.getFlags() & ~loadingFlags);
            return copy;
        }
        case ATTRIBUTE_NODE: {
            LumPtr<LumAttr> copy = createAttributeNS(node.getNamespaceUri(), node.getPrefix(), node.getLocalName());
            if (copy) copy->setNodeValue(node.getNodeValue());
            return copy;
        }
        case TEXT_NODE:
            return createTextNode(node.getText());
        case PROCESSING_INSTRUCTION_NODE:
            return createProcessingInstruction(node.getText());
        case DOCUMENT_FRAGMENT_NODE:
            return createDocumentFragment();
        default:
            return nullptr;
    }
}

LumPtr<LumNode> LumDocument::importNode(const LumNode& node, bool deep) {
    LumPtr<LumNode> whole = importAlone(node);
    if (!whole || !deep) return whole;
    std::vector<LumPtr<LumNode>> parents{whole};  // the copies of what `from` is in
    const LumNode* from = node.getFirstChild();
    while (from) {
        if (LumPtr<LumNode> copy = importAlone(*from)) {
            parents.back()->appendChild(copy.get());
            if (const LumNode* const child = from->getFirstChild()) {
                parents.push_back(std::move(copy));
                from = child;
                continue;
            }
        }
        const LumNode* next = from->getNextSibling();
        while (!next) {
            from = from->getParentNode();
            if (from == &node) return whole;
            parents.pop_back();
            next = from->getNextSibling();
        }
        from = next;
    }
    return whole;
}

}  // namespace LumCommon
