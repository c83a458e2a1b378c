// Names as constants of a program:  names IN
// [names]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <filesystem>
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
        LumPtr<LumDocument> document = makeLum<LumDocument>();
        document->load(std::filesystem::path(argv[1]));
        const LumElement* const root = document->getDocumentElement();
        if (root->getLocalName() == names.invoice) std::cout << root->getAttribute(names.amount) << '\n';
    }
    std::cout << names.invoice << ", " << LumName(NAME_block) << '\n';
    std::cout << (LumName(u"block") == NAME_block ? "one name" : "two names") << '\n';
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [names]
