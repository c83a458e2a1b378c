// Loads documents from every kind of source:  loading IN
// [loading]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string_view>

using namespace LumCommon;

static void tell(const char* source, const LumDocument& document) {
    std::cout << source << ": " << document.getDocumentElement()->getNodeName() << '\n';
}

int main(int, char* argv[]) try {
    const std::filesystem::path path(argv[1]);
    const LumPtr<LumDocument> document = makeLum<LumDocument>();
    document->load(path);  // compressed with gzip or not
    tell("file", *document);

    document->load(pathToUri(path));  // a URI: file:, http:, jar:
    tell("URI", *document);

    std::ifstream stream(path, std::ios::binary);
    document->setInputOption(u"file:///srv/forms/");  // what relative references are resolved against
    document->load(stream);
    tell("stream", *document);

    document->loadXml(u"<string/>");  // UTF-16 in memory
    tell("string", *document);

    constexpr std::string_view bytes = "<?xml version='1.0' encoding='ISO-8859-1'?><bytes>\xE4</bytes>";
    LumStrStream memory(bytes.data(), bytes.size(), false);  // not copied: the bytes outlive the loading
    document->load(memory);
    tell("memory", *document);

    // From a parser that somebody has begun to read: the content of the element that it stands in.
    std::ifstream again(path, std::ios::binary);
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->setInput(again, UnicodeString(), UnicodeString());
    const LumName entry(u"entry");
    const LumPtr<LumDocument> part = makeLum<LumDocument>();
    part->setParser(parser.get());
    while (parser->next() != LumXmlParser::END_DOCUMENT) {
        if (parser->getEventType() != LumXmlParser::START_TAG || parser->getName() != entry) continue;
        part->load();
        std::cout << "parser: " << toUtf8(part->getFirstChild()->getText()) << '\n';
    }

    // Deferred: the tree is read as far as it is asked for.
    const LumPtr<LumDocument> deferred = makeLum<LumDocument>();
    deferred->setDeferredLoad(true);
    deferred->load(path);
    std::cout << "deferred: " << toUtf8(deferred->getDocumentElement()->getFirstChild()->getInnerText()) << '\n';
    deferred->abort();  // the rest is not read

    // Into a node of another tree: a fragment, whose children then move to where they belong.
    LumPtr<LumDocumentFragment> fragment = document->createDocumentFragment();
    document->loadXml(u"<all><one/>and<two/></all>", fragment.get());
    LumNode* const all = fragment->getFirstChild();
    while (LumNode* child = all->getFirstChild()) document->getDocumentElement()->appendChild(child);
    std::cout << "fragment: " << toUtf8(document->saveXml(document->getDocumentElement())) << '\n';
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [loading]
