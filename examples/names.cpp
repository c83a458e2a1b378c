// Names as constants of a program:  names IN
// [names]
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

static std::string utf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

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
            std::cout << utf8(root->getAttribute(names.amount).toString()) << '\n';
    }
    std::cout << utf8(names.invoice.getString()) << ", " << utf8(LumName(NAME_block).getString()) << '\n';
    std::cout << (LumName(u"block") == NAME_block ? "one name" : "two names") << '\n';
} catch (const LumError& error) {
    std::cerr << utf8(error.getMessage()) << '\n';
    return 1;
}
// [names]
