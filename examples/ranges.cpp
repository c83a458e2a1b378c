// Walks a document with `for` and the algorithms of the standard library:  ranges IN OUT
// [ranges]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/bridge/LumRanges.h>
#include <lumcommon/lumcommon.h>

#include <algorithm>
#include <filesystem>
#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) try {
    const LumPtr<LumDocument> document = makeLum<LumDocument>();
    document->load(std::filesystem::path(argv[1]));
    LumElement* const root = document->getDocumentElement();

    std::cout << root->getNodeName() << " has " << std::ranges::distance(descendants<LumElement>(root))
              << " elements in it, and these texts:\n";
    for (LumTextNode* text : descendants<LumTextNode>(root)) {
        if (!text->getText().trim().isEmpty()) {
            std::cout << "  [" << toUtf8(text->getText()) << "] in line " << positionOf(*text->getParentNode()).line
                      << '\n';
        }
    }
    for (LumElement* element : descendants<LumElement>(root)) {
        for (LumAttr* attribute : attributes(element)) {
            std::cout << "  " << element->getNodeName() << '/' << attribute->getNodeName() << " = "
                      << attribute->getValue() << '\n';
        }
    }
    // The current node may be taken out: the walk holds it, and knows what comes after it.
    for (LumTextNode* space : children<LumTextNode>(root)) {
        if (space->getText().trim().isEmpty()) root->removeChild(space);
    }
    document->save(std::filesystem::path(argv[2]));
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [ranges]
