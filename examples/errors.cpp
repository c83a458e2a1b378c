// Reads a document with faults, once up to the first one and once to its end:  errors IN
// [errors]
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/lumcommon.h>

#include <fstream>
#include <iostream>

using namespace LumCommon;

namespace {

/// Is told every error, with the parser, which knows where it stands.
void listen(const LumError& error, void* data) {
    const LumXmlParser& parser = *static_cast<const LumXmlParser*>(data);
    std::cout << std::hex << "0x" << error.code << std::dec << " on line " << parser.getLineNumber() << ": "
              << toUtf8(error.getMessage()) << '\n';
    if (error.code == LumXmlErrorCode::ExpansionLimit) throw error;  // ends the reading
}

}  // namespace

int main(int, char* argv[]) {
    try {
        LumPtr<LumDocument> document(new LumDocument);
        document->load(UnicodeString::fromUTF8(argv[1]));
    } catch (const LumError& error) {
        std::cout << (error.code == LumXmlErrorCode::DuplicateAttribute ? "twice! " : "") << toUtf8(error.getMessage())
                  << '\n';
    }

    std::ifstream in(argv[1], std::ios::binary);
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->setCallbackError(listen, parser.get());
    try {
        parser->setInput(in, UnicodeString(), UnicodeString());
        int events = 0;
        while (parser->next() != LumXmlParser::END_DOCUMENT) ++events;
        std::cout << events << " events\n";
    } catch (const LumError& error) {  // what the listener threw, or an input that broke off
        std::cout << "given up: " << toUtf8(error.getMessage()) << '\n';
        return 1;
    }
}
// [errors]
