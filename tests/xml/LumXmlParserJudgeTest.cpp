// Well-formed documents and real definitions, read by this parser and by another one: both must tell the same elements,
// attributes, text and entities. Out of the comparison stay what XML 1.0 leaves to XML 1.1 (the next-line character),
// and instructions without data, which this parser refuses.

#include <gtest/gtest.h>

#include "support/Grammar.h"
#include "support/ResourceLibrary.h"
#include "support/TempFolder.h"
#include "support/XmlPeers.h"

namespace {

using namespace LumTest;

TEST(LumXmlParserJudge, agreesAboutWellFormedDocuments) {
    const Grammar grammar = readGrammar("xml/grammar.txt");
    for (unsigned seed = 0; seed < 1000; ++seed) {
        std::mt19937 random(seed);
        const std::string document = write(grammar, "document", random);
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
        // The relative one names the same definition; what is kept counts by default.
        for (const auto& [systemId, setup] :
             {std::pair(path, ""), std::pair(path, ""), std::pair(file, ""), std::pair(path, "conforming")}) {
            const int before = modules.opened;
            PieceStream in("<!DOCTYPE a SYSTEM '" + systemId + "'><a>" + content + "</a>");
            ParserSetup how = readSetup(setup);
            how.baseUri = folder;
            const LumPtr<LumXmlParser> parser = openParser(in, how);
            std::size_t compared = 0;
            while (parser->nextToken() != LumXmlParser::END_DOCUMENT) {
                if (parser->getEventType() != LumXmlParser::ENTITY_REF) continue;
                const std::string name = utf8(parser->getName().getString());
                ++compared;
                EXPECT_EQ(utf8(parser->getText()), entities.at(name)) << name;
            }
            EXPECT_EQ(compared, entities.size());
            EXPECT_EQ(modules.opened > before, before == 0 || *setup != '\0') << "what is kept is read again";
        }
    }
}

}  // namespace
