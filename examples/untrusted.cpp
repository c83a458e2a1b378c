// Loads an untrusted document and opens nothing that it refers to:  untrusted IN
// [untrusted]
#include <lumcommon/lumcommon.h>

#include <fstream>
#include <iostream>
#include <stdexcept>

using namespace LumCommon;

/// Asked before anything is opened. Returning null would leave the URI to the library; throwing refuses to open it.
class RefuseAll : public LumUriReferenceResolver {
public:
    std::istream* getStream(const UnicodeString& uri) override {
        std::string bytes;
        std::cout << "refused: " << uri.toUTF8String(bytes) << '\n';
        throw std::runtime_error("refused");
    }
};

int main(int, char* argv[]) {
    RefuseAll resolver;
    LumUri::setUriReferenceResolver(&resolver);   // for the whole process, before documents are read
    std::ifstream in(argv[1], std::ios::binary);  // opening a path would ask the resolver as well
    LumPtr<LumDocument> document(new LumDocument);
    try {
        document->load(in);
        std::cout << "loaded\n";
    } catch (const LumError& error) {
        std::string message;
        std::cout << error.getMessage().toUTF8String(message) << '\n';
    }
    LumUri::setUriReferenceResolver(nullptr);
}
// [untrusted]
