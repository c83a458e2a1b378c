// Prints the title of an office document in a compound file:  compound FILE
// [compound]
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) {
    OleCompFile file;
    if (!file.OLEopen(argv[1])) return 1;
    OlePropertySet properties;
    properties.init(&file);
    std::cout << toUtf8(properties.getTitle()) << ", by " << toUtf8(properties.getAuthor()) << '\n';

    OleDirPath way{"WordDocument"};
    if (OleStream* const stream = file.OLEopenStream(&way)) {
        std::cout << stream->GetStreamSize() << " bytes of text and layout\n";
        file.OLEcloseStream(stream);
    }
}
// [compound]
