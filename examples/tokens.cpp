// Tells every token of a document with its position:  tokens IN
// [tokens]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <fstream>
#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) try {
    std::ifstream in(argv[1], std::ios::binary);
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->setInput(in, UnicodeString(), UnicodeString());
    for (int token = parser->nextToken(); token != LumXmlParser::END_DOCUMENT; token = parser->nextToken()) {
        if (token == LumXmlParser::IGNORABLE_WHITESPACE) continue;
        std::cout << parser->getLineNumber() << ':' << parser->getColumnNumber() << ' '
                  << toUtf8(LumXmlParser::getEventTypeStr(token));
        if (token == LumXmlParser::START_TAG) {
            std::cout << ' ' << parser->getName() << ", depth " << parser->getDepth();
            for (int i = 0; i < parser->getAttributeCount(); ++i) {
                std::cout << ", " << parser->getAttributeName(i) << '=' << toUtf8(parser->getAttributeValue(i));
            }
        } else if (token == LumXmlParser::END_TAG) {
            std::cout << ' ' << parser->getName();
        } else if (token == LumXmlParser::ENTITY_REF) {
            std::cout << " &" << parser->getName() << "; is \"" << toUtf8(parser->getText()) << '"';
        } else if (token != LumXmlParser::TEXT || !parser->isWhitespace()) {
            std::cout << " \"" << toUtf8(parser->getText()) << '"';
        }
        std::cout << '\n';
    }
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [tokens]
