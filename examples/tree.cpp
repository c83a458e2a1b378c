// Searches a tree, walks it and changes it:  tree IN OUT
// [tree]
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) try {
    LumPtr<LumDocument> document(new LumDocument);
    document->load(UnicodeString::fromUTF8(argv[1]));
    LumElement* const root = document->getDocumentElement();
    const LumName item(u"item"), price(u"price"), sold(u"sold");

    // Children, one after the other; the next one is taken before the current one may go.
    for (LumNode *child = root->getFirstChild(), *next; child; child = next) {
        next = child->getNextSibling();
        if (child->isText()) {
            root->removeChild(child);
        } else if (child->getLocalName() == sold) {
            root->removeChild(child);
        }
    }

    // Elements by name, wherever they are.
    const LumPtr<LumNodeList> items = root->getElementsByTagName(item);
    for (LumNode* node = items->getFirstNode(); node; node = items->getNextNode(node)) {
        LumElement* const element = static_cast<LumElement*>(node);
        std::cout << toUtf8(element->getAttribute(NAME_id).toString()) << ": " << toUtf8(element->getInnerText())
                  << '\n';
        element->setAttribute(price, LumValue(20));
    }

    // All nodes below one.
    int texts = 0;
    for (LumNodeIterator it = root->getIterator(); LumNode* node = it.getCurrentNode(); it.nextNode()) {
        if (node->isText()) ++texts;
    }
    std::cout << texts << " texts\n";

    // New nodes, and a copy of old ones.
    if (LumNode* const first = root->getChildNodeByName(item)) {
        const LumPtr<LumNode> copy = first->cloneNode(true);
        static_cast<LumElement*>(copy.get())->setAttribute(NAME_id, LumValue(u"copy"));
        root->insertBefore(copy.get(), first);
        root->appendChild(document->createElement(LumName(u"total")).get())->appendChildText(u"3");
    }

    // Attributes, in their order. A namespace declaration is one of them.
    const LumNamedNodeMap* const attributes = root->getAttributes();
    for (const LumNode* attribute = attributes->getFirstNode(); attribute;
         attribute = attributes->getNextNode(attribute)) {
        std::cout << toUtf8(attribute->getNodeName().getString()) << " = " << toUtf8(attribute->getText()) << '\n';
    }
    root->removeAttribute(LumName(u"draft"));
    document->save(UnicodeString::fromUTF8(argv[2]));
} catch (const LumError& error) {
    std::cerr << toUtf8(error.getMessage()) << '\n';
    return 1;
}
// [tree]
