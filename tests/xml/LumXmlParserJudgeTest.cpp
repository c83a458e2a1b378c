// Well-formed documents and real definitions, read by this parser and by another one: both must tell the same elements,
// attributes, text and entities. Out of the comparison stay what XML 1.0 leaves to XML 1.1 (the next-line character),
// and instructions without data, which this parser refuses.

#include <expat.h>
#include <gtest/gtest.h>

#include <random>

#include "support/ResourceLibrary.h"
#include "support/TempFolder.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

std::string toBraces(const XML_Char* name) {
    const std::string text = name;
    const std::size_t separator = text.find('\x1F');
    return separator == std::string::npos ? text : "{" + text.substr(0, separator) + "}" + text.substr(separator + 1);
}

/// In the words of tell().
std::string tellByExpat(const std::string& document) {
    std::string story;
    const XML_Parser parser = XML_ParserCreateNS(nullptr, '\x1F');
    XML_SetUserData(parser, &story);
    XML_SetElementHandler(
        parser,
        [](void* data, const XML_Char* name, const XML_Char** pairs) {
            std::string tag = "<" + toBraces(name);
            for (; *pairs; pairs += 2) tag += " " + toBraces(pairs[0]) + "='" + pairs[1] + "'";
            *static_cast<std::string*>(data) += tag + ">";
        },
        [](void* data, const XML_Char* name) { *static_cast<std::string*>(data) += "</" + toBraces(name) + ">"; });
    XML_SetCharacterDataHandler(parser, [](void* data, const XML_Char* text, int size) {
        static_cast<std::string*>(data)->append(text, static_cast<std::size_t>(size));
    });
    EXPECT_EQ(XML_Parse(parser, document.data(), static_cast<int>(document.size()), 1), XML_STATUS_OK) << document;
    XML_ParserFree(parser);
    return story;
}

using Grammar = std::map<std::string, std::vector<std::string>>;

/// One of the part's choices, with the parts in it written too.
std::string write(const Grammar& grammar, const std::string& part, std::mt19937& random, int depth) {
    const std::vector<std::string>& choices = grammar.at(part);
    const std::string& choice = choices[depth > 24 ? 0 : random() % choices.size()];
    std::string written;
    for (std::size_t at = 0, open; (open = choice.find('{', at)) != std::string::npos || at < choice.size();) {
        written += choice.substr(at, open - at);
        if (open == std::string::npos) break;
        at = choice.find('}', open) + 1;
        written += write(grammar, choice.substr(open + 1, at - open - 2), random, depth + 1);
    }
    return written;
}

TEST(LumXmlParserJudge, agreesAboutWellFormedDocuments) {
    Grammar grammar;
    for (const std::vector<UnicodeString>& row : readRows("xml/grammar.txt"))
        for (std::size_t i = 1; i < row.size(); ++i) grammar[utf8(row[0])].push_back(unescape(utf8(row[i])));
    for (unsigned seed = 0; seed < 1000; ++seed) {
        std::mt19937 random(seed);
        const std::string document = write(grammar, "document", random, 0);
        ASSERT_EQ(tell(document, {}, seed % 3 == 0 ? 1 : seed % 3 == 1 ? 7 : wholeInput), tellByExpat(document));
    }
}

/// Opens what has an address in the net from the package, leaves files to the library, and counts.
class Modules : public LumCommon::LumUriReferenceResolver {
public:
    explicit Modules(std::string folder)
        : folder_(std::move(folder)), previous_(LumCommon::LumUri::setUriReferenceResolver(this)) {}
    ~Modules() override { LumCommon::LumUri::setUriReferenceResolver(previous_); }
    std::istream* getStream(const UnicodeString& uri) override {
        ++opened;
        const std::string name = utf8(uri), file = name.substr(name.rfind('/') + 1);
        if (!name.starts_with("http:") && std::filesystem::exists(folder_ + file)) return nullptr;
        // The package keeps the modules in a folder beside that of the definition.
        const std::string modules = "/usr/share/xml/w3c-sgml-lib/schema/dtd/REC-xhtml-modularization-20100729/";
        const std::string path = (std::filesystem::exists(folder_ + file) ? folder_ : modules) + file;
        return std::filesystem::exists(path) ? new std::istringstream(readFile(path)) : nullptr;
    }
    int opened = 0;

private:
    std::string folder_;
    LumCommon::LumUriReferenceResolver* previous_;
};

TEST(LumXmlParserJudge, realDefinitionsDeclareWhatAnotherParserFinds) {
    for (const std::string path : {"/usr/share/xml/w3c-sgml-lib/schema/dtd/REC-xhtml11-20101123/xhtml11.dtd",
                                   "/usr/share/xml/docbook/schema/dtd/4.5/docbookx.dtd"}) {
        SCOPED_TRACE(path);
        ASSERT_TRUE(std::filesystem::exists(path)) << "the packages w3c-sgml-lib and docbook-xml have it";
        const std::string file = path.substr(path.rfind('/') + 1), folder = path.substr(0, path.size() - file.size());
        std::map<std::string, std::string> entities;
        for (const std::vector<std::string>& row : readEscapedRows("xml/entities.txt", 3))
            if (row[0] == file) entities.emplace(row[1], row[2]);
        // References as tokens tell the replacement texts.
        std::string content;
        for (const auto& [name, text] : entities) content += "&" + name + ";";
        Modules modules(folder);
        for (const std::string& systemId : {path, path, file}) {  // the relative one names the same definition
            const int before = modules.opened;
            PieceStream in("<!DOCTYPE a SYSTEM '" + systemId + "'><a>" + content + "</a>");
            const LumPtr<LumXmlParser> parser = openParser(in, {.baseUri = folder});
            std::size_t compared = 0;
            while (parser->nextToken() != LumXmlParser::END_DOCUMENT) {
                if (parser->getEventType() != LumXmlParser::ENTITY_REF) continue;
                const std::string name = utf8(parser->getName().getString());
                ++compared;
                EXPECT_EQ(utf8(parser->getText()), entities.at(name)) << name;
            }
            EXPECT_EQ(compared, entities.size());
            EXPECT_EQ(modules.opened > before, before == 0) << "what is kept is read again";
        }
    }
}

}  // namespace
