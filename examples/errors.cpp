// Reads a document with faults, once up to the first one and once to its end:  errors IN
// [errors]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <filesystem>
#include <fstream>
#include <iostream>

using namespace LumCommon;

namespace {

/// Is told every error, with the parser, which knows where it stands.
void listen(const LumError& error, void* data) {
    const LumXmlParser& parser = *static_cast<const LumXmlParser*>(data);
    std::cout << std::hex << "0x" << error.code << std::dec << " on line " << parser.getLineNumber() << ": " << error
              << '\n';
    if (error.code == LumXmlErrorCode::ExpansionLimit) throw error;  // ends the reading
}

}  // namespace

int main(int, char* argv[]) {
    try {
        const LumPtr<LumDocument> document = makeLum<LumDocument>();
        document->load(std::filesystem::path(argv[1]));
    } catch (const LumError& error) {
        const LumPosition place = positionOf(error);
        std::cout << (error.code == LumXmlErrorCode::DuplicateAttribute ? "twice" : "another fault") << " in line "
                  << place.line << ", column " << place.column << '\n';
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
        std::cout << "given up: " << error << '\n';
        return 1;
    }
}
// [errors]
