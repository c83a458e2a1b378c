// Reads an archive that lies 5 GiB deep in a file, which takes hardly any disk space:  sizes PACKAGE
// [sizes]
#include <lumcommon/lumcommon.h>

#include <fstream>
#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) {
    const std::streamoff start = std::streamoff{5} << 30;  // 64 bits on every machine
    LumTempFile file(nullptr, "large", ".bin");
    const std::string path = LumCStr(file.getFileName()).getMBString();
    {
        std::ifstream package(argv[1], std::ios::binary);
        std::ofstream large(path, std::ios::binary);
        large.seekp(start);
        large << package.rdbuf();
    }
    std::ifstream large(path, std::ios::binary);
    large.seekg(start);
    const LumZipFile archive(&large, false);
    std::cout << archive.getFileEntryCount() << " members, the first is ";
    std::string name;
    std::cout << archive.getFileEntry(0u)->getFileName().toUTF8String(name) << '\n';
    std::cout << "a value takes " << sizeof(LumValue) / sizeof(void*) << " words, an integer of it "
              << sizeof(LumValue().getIntegerValue()) << " bytes\n";
}
// [sizes]
