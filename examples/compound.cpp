// Prints the title of an office document in a compound file:  compound FILE
// [compound]
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

static std::string utf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

int main(int, char* argv[]) {
    OleCompFile file;
    if (!file.OLEopen(argv[1])) return 1;
    OlePropertySet properties;
    properties.init(&file);
    std::cout << utf8(properties.getTitle()) << ", by " << utf8(properties.getAuthor()) << '\n';

    OleDirPath way{"WordDocument"};
    if (OleStream* const stream = file.OLEopenStream(&way)) {
        std::cout << stream->GetStreamSize() << " bytes of text and layout\n";
        file.OLEcloseStream(stream);
    }
}
// [compound]
