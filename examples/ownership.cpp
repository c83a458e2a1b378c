// Who keeps what alive:  ownership IN
// [ownership]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <filesystem>
#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) try {
    LumPtr<LumNode> kept;
    {
        LumPtr<LumDocument> document = makeLum<LumDocument>();  // holds the document, which holds its nodes
        document->load(std::filesystem::path(argv[1]));
        LumElement* const root = document->getDocumentElement();  // borrowed: lives while the document has it

        LumPtr<LumElement> fresh = document->createElement(LumName(u"fresh"));  // ours
        root->appendChild(fresh.get());                                         // and the root's
        std::cout << "fresh has " << fresh->getRefCount() << " holders\n";
        fresh = nullptr;  // the tree keeps it

        kept = root->removeChild(root->getLastChild());  // out of the tree: `kept` is its only holder
        std::cout << "kept has " << kept->getRefCount() << ", its parent is "
                  << (kept->getParentNode() ? "there" : "null") << '\n';
    }
    // The document is gone. The node lives; new nodes and copies can no longer be made from it.
    std::cout << toUtf8(kept->getTypeName()) << " lives\n";
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [ownership]
