// Document type declarations: what they declare, and where external parts come from.

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "support/OnThreads.h"
#include "support/ResourceLibrary.h"
#include "support/TempFolder.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

void expectToldBy(const char* file) {
    ResourceLibrary library;
    int made = 0;
    for (const std::vector<std::string>& row : readEscapedRows(file, 6)) {
        const std::string &kind = row[0], &given = row[1], &content = row[2];
        SCOPED_TRACE(row[4]);
        ParserSetup setup = readSetup(row[5]);
        setup.baseUri = library.getBase();
        std::string expected = row[3];
        const auto expectTold = [&](const std::string& document) {
            EXPECT_EQ(tell(document, setup), expected);
            EXPECT_EQ(tell(document, setup, 1), expected) << "in pieces, or from what is kept";
        };
        const std::string number = std::to_string(++made);
        if (kind == "resource") {
            library.add(given, content);
        } else if (kind == "inside") {
            expected = "<a>" + expected + (expected.starts_with("!") ? "" : "</a>");
            const std::string element = "<a>" + content + "</a>";
            expectTold("<!DOCTYPE a [" + given + "]>" + element);
            library.add(number, given);
            const int opened = library.countOpened();
            expectTold("<!DOCTYPE a SYSTEM '" + library.getBase() + number + "'>" + element);
            EXPECT_LE(library.countOpened(), opened + 1) << "the second time it is read again";
        } else if (kind == "document" || kind == "unopened") {
            const int opened = library.countOpened();
            expectTold(given);
            EXPECT_TRUE(kind == "document" || library.countOpened() == opened) << "a known definition is opened";
            if (!row[5].starts_with("conforming")) continue;
            setup.goesOn = true;
            EXPECT_TRUE(recordEvents(given, Pull::events, setup).back().event.starts_with("END_DOCUMENT"));
        } else if (kind == "mathml") {
            EXPECT_EQ(utf8(LumXmlParser::getMathMLEntity(fromUtf8(given))), expected);
        } else if (kind == "definition") {
            expectTold("<!DOCTYPE a SYSTEM '" + given + "'><a>[&e;]</a>");
        } else {
            library.add("sub/" + number + ".ent", given);
            expectTold("<!DOCTYPE a [<!ENTITY x SYSTEM '" + library.getBase() + "sub/" + number +
                       ".ent'><!ENTITY y PUBLIC 'p' 'y.ent'>]><a>[&x;]&y;</a>");
        }
    }
}

TEST(LumXmlParserDtd, declaresWhatTheRowsTell) { expectToldBy("xml/declarations.txt"); }
TEST(LumXmlParserConforming, readsAsTheRowsTell) { expectToldBy("xml/conforming.txt"); }

TEST(LumXmlParserConforming, tellsWhatIsDeclaredOfAttributes) {
    PieceStream in(
        "<!DOCTYPE a [<!ATTLIST p:a x (b|c) 'b' q:y NOTATION (n) #REQUIRED x ID #IMPLIED z NMTOKENS #FIXED ' 1  2 '>]>"
        "<p:a xmlns:p='u' x='c'/>");
    const LumPtr<LumXmlParser> parser = openParser(in, readSetup("conforming"));
    EXPECT_EQ(parser->next(), LumXmlParser::START_TAG);
    const LumName p(u"p"_text), a(u"a"_text);
    EXPECT_TRUE(parser->getDeclaredAttributes(LumName(), a).empty());
    std::string told;
    for (const LumCommon::LumXmlDeclaredAttribute& one : parser->getDeclaredAttributes(p, a)) {
        told += showName(one.prefix, one.localName, LumName()) + " " + std::to_string(one.type) +
                std::to_string(one.defaultKind) + "[" + utf8(one.value) + "]";
        for (const UnicodeString& choice : one.choices) told += " " + utf8(choice);
        told += "; ";
    }
    EXPECT_EQ(told, "x 93[b] b c; q:y 81[] n; z 72[1 2]; ");
}

// What external definitions declare is kept for the whole process: many threads share it, and nothing is read twice.
TEST(LumXmlParserDtd, threadsShareWhatIsKept) {
    constexpr int threads = 8, definitions = 5, rounds = 20;
    ResourceLibrary library;
    for (int i = 0; i < definitions; ++i) {
        const std::string number = std::to_string(i);
        library.add(number + ".dtd", "<!ENTITY % p \"<!ENTITY e 'text " + number + "'>\">%p;");
    }
    std::atomic<int> ready{0};
    std::atomic<int> wrong{0};
    const auto work = [&] {
        for (++ready; ready < threads;) std::this_thread::yield();
        for (int i = 0; i < rounds * definitions; ++i) {
            const std::string number = std::to_string(i % definitions);
            const std::string document = "<!DOCTYPE a SYSTEM '" + number + ".dtd'><a>&e;</a>";
            if (tell(document, {.baseUri = library.getBase()}) != "<a>text " + number + "</a>") ++wrong;
        }
    };
    onThreads(threads, [&](unsigned) { work(); });
    EXPECT_EQ(wrong, 0);
    // Threads that come at the same time may each read a definition, but nobody reads what is kept.
    EXPECT_GE(library.countOpened(), definitions);
    EXPECT_LE(library.countOpened(), threads * definitions);
    const int opened = library.countOpened();
    work();
    EXPECT_EQ(library.countOpened(), opened);
}

// One definition is kept once however its URI is written, until it is dropped or there are too many.
TEST(LumXmlParserDtd, whatIsKeptHasOneKeyAndALimit) {
    ResourceLibrary library;
    const TempFolder folder;
    const std::string path = folder.getPath(), file = path + "x.dtd";
    const auto define = [](const std::string& value) { return "<!ENTITY e '" + value + "'>"; };
    const auto told = [](const std::string& uri, const std::string& base = {}) {
        return tell("<!DOCTYPE a SYSTEM '" + uri + "'><a>&e;</a>", {.baseUri = base});
    };
    const std::string host =
        "//library.invalid" + library.getBase().substr(library.getBase().rfind('/', library.getBase().size() - 2));
    library.add("x.dtd", define("kept"));
    writeFile(file, define("kept"));
    std::filesystem::create_directory(path + "d");
    std::filesystem::create_symlink(".", path + "link");
    EXPECT_EQ(told("http:" + host + "x.dtd"), "<a>kept</a>");
    EXPECT_EQ(told(file), "<a>kept</a>");
    library.add("x.dtd", define("read again"));
    writeFile(file, define("read again"));
    for (const std::string& uri : {"HTTP:" + host + "x.dtd", "http://Library.Invalid:80" + host.substr(17) + "x.dtd",
                                   "file://" + path + "./x.dtd", path + "d/../x.dtd", path + "link/x.dtd"}) {
        EXPECT_EQ(told(uri), "<a>kept</a>") << uri;
    }
    EXPECT_EQ(told("x.dtd", path), "<a>kept</a>");
    LumXmlParser::clearDefinitionCache();
    EXPECT_EQ(LumXmlParser::getDefinitionCacheSize(), 0u);
    EXPECT_EQ(told(file), "<a>read again</a>");
    const std::size_t one = LumXmlParser::getDefinitionCacheSize();
    EXPECT_EQ(LumXmlParser::setDefinitionCacheLimit(2 * one), LumXmlParser::unlimitedDefinitions);
    for (const char* name : {"a.dtd", "x.dtd", "b.dtd", "x.dtd"}) {  // the one that is used stays
        if (name[0] != 'x') writeFile(path + name, define("read again"));
        told(path + name);
    }
    EXPECT_EQ(LumXmlParser::getDefinitionCacheSize(), 2 * one);
    for (const char* name : {"a.dtd", "x.dtd", "b.dtd"}) writeFile(path + name, define("changed"));
    EXPECT_EQ(told(path + "b.dtd"), "<a>read again</a>");
    EXPECT_EQ(told(file), "<a>read again</a>");
    EXPECT_EQ(told(path + "a.dtd"), "<a>changed</a>");
    LumXmlParser::setDefinitionCacheLimit(0);
    EXPECT_EQ(told(file), "<a>changed</a>");
    EXPECT_EQ(LumXmlParser::getDefinitionCacheSize(), 0u);
    EXPECT_EQ(LumXmlParser::setDefinitionCacheLimit(LumXmlParser::unlimitedDefinitions), 0u);
}

}  // namespace
