// Counts the elements of a document and finds its longest text without building a tree:  events FILE
// [events]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <fstream>
#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) try {
    std::ifstream in(argv[1], std::ios::binary);
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->setInput(in, UnicodeString(), UnicodeString());
    int elements = 0, longest = 0, line = 0;
    while (parser->next() != LumXmlParser::END_DOCUMENT) {
        if (parser->getEventType() == LumXmlParser::START_TAG) ++elements;
        if (parser->getEventType() == LumXmlParser::TEXT && parser->getText().length() > longest) {
            longest = parser->getText().length();
            line = parser->getLineNumber();
        }
    }
    std::cout << elements << " elements; the longest text has " << longest << " units and ends on line " << line
              << '\n';
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [events]
