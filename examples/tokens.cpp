// Tells every token of a document with its position:  tokens IN
// [tokens]
#include <lumcommon/lumcommon.h>

#include <fstream>
#include <iostream>

using namespace LumCommon;

static std::string utf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

int main(int, char* argv[]) try {
    std::ifstream in(argv[1], std::ios::binary);
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->setInput(in, UnicodeString(), UnicodeString());
    for (int token = parser->nextToken(); token != LumXmlParser::END_DOCUMENT; token = parser->nextToken()) {
        if (token == LumXmlParser::IGNORABLE_WHITESPACE) continue;
        std::cout << parser->getLineNumber() << ':' << parser->getColumnNumber() << ' '
                  << utf8(LumXmlParser::getEventTypeStr(token));
        if (token == LumXmlParser::START_TAG) {
            std::cout << ' ' << utf8(parser->getName().getString()) << ", depth " << parser->getDepth();
            for (int i = 0; i < parser->getAttributeCount(); ++i) {
                std::cout << ", " << utf8(parser->getAttributeName(i).getString()) << '='
                          << utf8(parser->getAttributeValue(i));
            }
        } else if (token == LumXmlParser::END_TAG) {
            std::cout << ' ' << utf8(parser->getName().getString());
        } else if (token == LumXmlParser::ENTITY_REF) {
            std::cout << " &" << utf8(parser->getName().getString()) << "; is \"" << utf8(parser->getText()) << '"';
        } else if (token != LumXmlParser::TEXT || !parser->isWhitespace()) {
            std::cout << " \"" << utf8(parser->getText()) << '"';
        }
        std::cout << '\n';
    }
} catch (const LumError& error) {
    std::cerr << utf8(error.getMessage()) << '\n';
    return 1;
}
// [tokens]
