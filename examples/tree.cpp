// Searches a tree, walks it and changes it:  tree IN OUT
// [tree]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/bridge/LumRanges.h>
#include <lumcommon/lumcommon.h>

#include <filesystem>
#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) try {
    const LumPtr<LumDocument> document = makeLum<LumDocument>();
    document->load(std::filesystem::path(argv[1]));
    LumElement* const root = document->getDocumentElement();
    const LumName item(u"item"), price(u"price"), sold(u"sold");

    // Children, one after the other; the current one may go.
    for (LumNode* child : children(root)) {
        if (child->isText() || child->getLocalName() == sold) root->removeChild(child);
    }

    // Elements by name, wherever they are.
    const LumPtr<LumNodeList> items = root->getElementsByTagName(item);
    for (LumNode* node = items->getFirstNode(); node; node = items->getNextNode(node)) {
        LumElement* const element = static_cast<LumElement*>(node);
        std::cout << element->getAttribute(NAME_id) << ": " << toUtf8(element->getInnerText()) << '\n';
        element->setAttribute(price, 20);
    }

    // All texts below a node.
    std::cout << std::ranges::distance(descendants<LumTextNode>(root)) << " texts\n";

    // New nodes, and a copy of old ones.
    if (LumNode* const first = root->getChildNodeByName(item)) {
        const LumPtr<LumNode> copy = first->cloneNode(true);
        static_cast<LumElement*>(copy.get())->setAttribute(NAME_id, u"copy");
        root->insertBefore(copy.get(), first);
        root->appendChild(document->createElement(LumName(u"total")).get())->appendChildText(u"3");
    }

    // Attributes, in their order. A namespace declaration is one of them.
    for (const LumAttr* attribute : attributes(root)) {
        std::cout << attribute->getNodeName() << " = " << attribute->getValue() << '\n';
    }
    root->removeAttribute(LumName(u"draft"));
    document->save(std::filesystem::path(argv[2]));
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [tree]
