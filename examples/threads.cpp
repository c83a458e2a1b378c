// Reads a document on several threads at once:  threads IN
// [threads]
#include <lumcommon/lumcommon.h>

#include <atomic>
#include <fstream>
#include <iostream>
#include <thread>
#include <vector>

using namespace LumCommon;

static int countAttributes(const char* path, LumName name) {
    std::ifstream in(path, std::ios::binary);
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();  // of this thread
    parser->setInput(in, UnicodeString(), UnicodeString());
    int count = 0;
    for (auto event = parser->next(); event != LumXmlParser::END_DOCUMENT; event = parser->next()) {
        if (event != LumXmlParser::START_TAG) continue;
        for (int i = 0; i < parser->getAttributeCount(); ++i) count += parser->getAttributeName(i) == name;
    }
    return count;
}

int main(int, char* argv[]) {
    LumNameTable::addRefSharedNameTable();  // so that names mean the same from the first document to the last
    const LumName name(u"font-size");       // a value: every thread may use it
    const XlsFormat format(u"#,##0");       // does not change when it is used
    std::atomic<int> total = 0;
    std::vector<std::string> reports(4);
    {
        std::vector<std::jthread> threads;
        for (std::string& report : reports)
            threads.emplace_back([&] {
                const int count = countAttributes(argv[1], name);
                total += count;
                format.format(count).text.toUTF8String(report);
            });
    }
    for (const std::string& report : reports) std::cout << report << ' ';
    std::cout << "of " << total << '\n';
    LumNameTable::releaseSharedNameTable();
}
// [threads]
