// Names as constants of a program:  names IN
// [names]
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

namespace {

/// The names of this program. It holds the table for as long as it lives, and with it the names.
class Names {
public:
    Names() { LumNameTable::addRefSharedNameTable(); }
    ~Names() { LumNameTable::releaseSharedNameTable(); }
    Names(const Names&) = delete;
    Names& operator=(const Names&) = delete;

    const LumName invoice{u"invoice"}, amount{u"amount"};
};

}  // namespace

int main(int, char* argv[]) try {
    const Names names;
    for (int round = 0; round < 2; ++round) {  // between the rounds there is no document
        LumPtr<LumDocument> document(new LumDocument);
        document->load(UnicodeString::fromUTF8(argv[1]));
        const LumElement* const root = document->getDocumentElement();
        if (root->getLocalName() == names.invoice)
            std::cout << toUtf8(root->getAttribute(names.amount).toString()) << '\n';
    }
    std::cout << toUtf8(names.invoice.getString()) << ", " << toUtf8(LumName(NAME_block).getString()) << '\n';
    std::cout << (LumName(u"block") == NAME_block ? "one name" : "two names") << '\n';
} catch (const LumError& error) {
    std::cerr << toUtf8(error.getMessage()) << '\n';
    return 1;
}
// [names]
