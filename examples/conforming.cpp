// Tells whether a file is well-formed XML:  conforming FILE
// [conforming]
#include <lumcommon/lumcommon.h>

#include <fstream>
#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) {
    std::ifstream in(argv[1], std::ios::binary);
    LumPtr<LumDocument> document = makeLum<LumDocument>();
    document->setConforming(true);  // before it loads
    try {
        document->load(in);
    } catch (const LumError& error) {
        std::string message;
        std::cout << "not well-formed: " << error.getMessage().toUTF8String(message) << '\n';
        return 1;
    }
    std::cout << "well-formed\n";
}
// [conforming]
