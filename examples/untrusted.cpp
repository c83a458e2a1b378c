// Loads an untrusted document and opens nothing that it refers to:  untrusted IN
// [untrusted]
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) {
    LumPtr<LumDocument> document(new LumDocument);
    document->setUntrusted();
    try {
        document->load(LumUri::fromLocalPath(argv[1]).toString());
        std::cout << "loaded\n";
    } catch (const LumError& error) {
        std::string message;
        std::cout << error.message.toUTF8String(message) << '\n';
    }
}
// [untrusted]
