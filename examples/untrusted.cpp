// Loads an untrusted document and opens nothing that it refers to:  untrusted IN
// [untrusted]
#include <lumcommon/lumcommon.h>

#include <fstream>
#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) {
    std::ifstream in(argv[1], std::ios::binary);
    LumPtr<LumDocument> document = makeLum<LumDocument>();
    document->setUntrusted();  // before it loads
    try {
        document->load(in);
        std::cout << "loaded\n";
    } catch (const LumError& error) {
        std::string message;
        std::cout << error.getMessage().toUTF8String(message) << '\n';
    }
}
// [untrusted]
