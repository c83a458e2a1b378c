// Tells every token of a document with its position:  tokens IN
// [tokens]
#include <lumcommon/bridge/LumText.h>
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
            std::cout << ' ' << toUtf8(parser->getName().getString()) << ", depth " << parser->getDepth();
            for (int i = 0; i < parser->getAttributeCount(); ++i) {
                std::cout << ", " << toUtf8(parser->getAttributeName(i).getString()) << '='
                          << toUtf8(parser->getAttributeValue(i));
            }
        } else if (token == LumXmlParser::END_TAG) {
            std::cout << ' ' << toUtf8(parser->getName().getString());
        } else if (token == LumXmlParser::ENTITY_REF) {
            std::cout << " &" << toUtf8(parser->getName().getString()) << "; is \"" << toUtf8(parser->getText()) << '"';
        } else if (token != LumXmlParser::TEXT || !parser->isWhitespace()) {
            std::cout << " \"" << toUtf8(parser->getText()) << '"';
        }
        std::cout << '\n';
    }
} catch (const LumError& error) {
    std::cerr << toUtf8(error.getMessage()) << '\n';
    return 1;
}
// [tokens]
