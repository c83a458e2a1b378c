// Copies a document of any size in constant memory: reads, writes and drops the children of its root element one after
// the other.
//
//     stream_large in.xml out.xml
// [stream_large]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

namespace {

/// Returns the number of children of the root element.
long copy(const UnicodeString& from, const UnicodeString& to) {
    const LumPtr<LumDocument> document = makeLum<LumDocument>();
    document->setDeferredLoad(true);
    document->load(from);
    document->saveDocumentElement(to);
    long count = 0;
    LumElement* const root = document->getDocumentElement();
    LumNode* child = root ? root->getFirstChild() : nullptr;
    while (child) {
        document->saveChildElement(child);  // reads the child as it writes it
        LumNode* const next = child->getNextSibling();
        child->deleteAllChildNodes();
        root->removeChild(child);
        child = next;
        ++count;
    }
    document->closeDocumentElement();
    return count;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: stream_large in.xml out.xml\n";
        return 2;
    }
    try {
        const long count = copy(UnicodeString::fromUTF8(argv[1]), UnicodeString::fromUTF8(argv[2]));
        std::cout << count << " children of the root element copied\n";
        return 0;
    } catch (const LumError& error) {
        std::cerr << error << '\n';
        return 1;
    }
}
// [stream_large]
