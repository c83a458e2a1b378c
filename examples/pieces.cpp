// Adds up the items of a document of any size, each in a small tree of its own:  pieces IN
// [pieces]
#include <lumcommon/lumcommon.h>

#include <fstream>
#include <iostream>

using namespace LumCommon;

int main(int, char* argv[]) try {
    std::ifstream in(argv[1], std::ios::binary);
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->setInput(in, UnicodeString(), UnicodeString());
    LumPtr<LumDocument> piece = makeLum<LumDocument>();
    piece->setParser(parser.get());
    const LumName item(u"item"), price(u"price");
    int items = 0, total = 0;
    while (parser->next() != LumXmlParser::END_DOCUMENT) {
        if (parser->getEventType() != LumXmlParser::START_TAG || parser->getName() != item) continue;
        piece->load();  // the content of the element, in place of that of the one before
        for (LumNode* node = piece->getFirstChild(); node; node = node->getNextSibling()) {
            if (node->getLocalName() == price) total += LumValue::parse(node->getInnerText()).getIntegerValue();
        }
        ++items;
    }
    std::cout << items << " items, " << total << " in all\n";
} catch (const LumError& error) {
    std::string message;
    std::cerr << error.getMessage().toUTF8String(message) << '\n';
    return 1;
}
// [pieces]
