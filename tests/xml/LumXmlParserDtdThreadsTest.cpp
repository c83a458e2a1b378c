// What external definitions declare is kept for the whole process: many threads share it, nothing is read twice, and
// what is kept of real definitions is what another parser finds in them.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "support/ResourceLibrary.h"
#include "support/TempFolder.h"
#include "support/XmlEvents.h"

#ifdef LUM_TEST_EXPAT
#include <expat.h>
#endif

namespace {

using namespace LumTest;

TEST(LumXmlParserDtdThreads, shareWhatIsKept) {
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
        for (int round = 0; round < rounds; ++round) {
            for (int i = 0; i < definitions; ++i) {
                const std::string number = std::to_string(i);
                const std::string document = "<!DOCTYPE a SYSTEM '" + number + ".dtd'><a>&e;</a>";
                if (tell(document, {.baseUri = library.getBase()}) != "<a>text " + number + "</a>") ++wrong;
            }
        }
    };
    std::vector<std::thread> pool;
    for (int i = 0; i < threads; ++i) pool.emplace_back(work);
    for (std::thread& thread : pool) thread.join();
    EXPECT_EQ(wrong, 0);
    // Threads that come at the same time may each read a definition, but nobody reads what is kept.
    EXPECT_GE(library.countOpened(), definitions);
    EXPECT_LE(library.countOpened(), threads * definitions);
    const int opened = library.countOpened();
    work();
    EXPECT_EQ(library.countOpened(), opened);
}

#ifdef LUM_TEST_EXPAT

/// The file of a module that a definition in a folder names by its address in the net, or that such a module names.
std::string findModule(const std::string& folder, const std::string& systemId) {
    if (systemId[0] == '/') return systemId;
    const std::string name = systemId.substr(systemId.rfind('/') + 1);
    // The judge tells identifiers as they are written; those of the other package lie in folders.
    if (!systemId.starts_with("http:") && std::filesystem::exists(folder + systemId)) return folder + systemId;
    if (std::filesystem::exists(folder + name)) return folder + name;
    return "/usr/share/xml/w3c-sgml-lib/schema/dtd/REC-xhtml-modularization-20100729/" + name;
}

struct Judge {
    std::map<std::string, std::string> entities;  // general ones with a text
    std::string folder;
};

/// Opens the modules of a definition in its folder; one level of C++ calls for each file inside another.
int openModule(XML_Parser parser, const XML_Char* context, const XML_Char*, const XML_Char* systemId, const XML_Char*) {
    const Judge& judge = *static_cast<Judge*>(XML_GetUserData(parser));
    const std::string bytes = readFile(findModule(judge.folder, systemId));
    const XML_Parser inner = XML_ExternalEntityParserCreate(parser, context, nullptr);
    const XML_Status status = XML_Parse(inner, bytes.data(), static_cast<int>(bytes.size()), 1);
    XML_ParserFree(inner);
    return status;
}

Judge judgeDefinition(const std::string& file) {
    Judge judge;
    judge.folder = file.substr(0, file.rfind('/') + 1);
    const XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, &judge);
    XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_ALWAYS);
    XML_SetExternalEntityRefHandler(parser, openModule);
    XML_SetEntityDeclHandler(parser, [](void* data, const XML_Char* name, int isParameter, const XML_Char* value,
                                        int size, const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*) {
        if (!isParameter && value)
            static_cast<Judge*>(data)->entities.emplace(name, std::string(value, static_cast<std::size_t>(size)));
    });
    const std::string document = "<!DOCTYPE a SYSTEM '" + file + "'><a/>";
    EXPECT_EQ(XML_Parse(parser, document.data(), static_cast<int>(document.size()), 1), XML_STATUS_OK)
        << XML_ErrorString(XML_GetErrorCode(parser));
    XML_ParserFree(parser);
    return judge;
}

/// Opens what has an address in the net from the package, leaves files to the library, and counts.
class Modules : public LumCommon::LumUriReferenceResolver {
public:
    explicit Modules(std::string folder)
        : folder_(std::move(folder)), previous_(LumCommon::LumUri::setUriReferenceResolver(this)) {}
    ~Modules() override { LumCommon::LumUri::setUriReferenceResolver(previous_); }
    std::istream* getStream(const UnicodeString& uri) override {
        ++opened;
        // The package keeps the modules in a folder beside that of the definition.
        const std::string name = utf8(uri), file = name.substr(name.rfind('/') + 1);
        const std::string path = findModule(folder_, file);
        const bool isElsewhere = name.starts_with("http:") || !std::filesystem::exists(folder_ + file);
        return isElsewhere && std::filesystem::exists(path) ? new std::istringstream(readFile(path)) : nullptr;
    }
    int opened = 0;

private:
    std::string folder_;
    LumCommon::LumUriReferenceResolver* previous_;
};

struct RealRow {
    const char* package;
    const char* folder;
    const char* file;
    std::size_t leastEntities;  // or the judge has not seen the modules
};
constexpr RealRow realRows[] = {
    {"w3c-sgml-lib", "/usr/share/xml/w3c-sgml-lib/schema/dtd/REC-xhtml11-20101123/", "xhtml11.dtd", 249},
    {"docbook-xml", "/usr/share/xml/docbook/schema/dtd/4.5/", "docbookx.dtd", 900},
};

TEST(LumXmlParserDtdThreads, realDefinitionsDeclareWhatAnotherParserFinds) {
    std::string absent;
    for (const RealRow& row : realRows) {
        SCOPED_TRACE(row.file);
        const std::string folder = row.folder, path = folder + row.file;
        if (!std::filesystem::exists(path)) {
            absent += std::string(" ") + row.package;
            continue;
        }
        const Judge judge = judgeDefinition(path);
        EXPECT_GE(judge.entities.size(), row.leastEntities);
        // References as tokens tell the replacement texts.
        std::string content;
        for (const auto& [name, text] : judge.entities) content += "&" + name + ";";
        Modules modules(folder);
        for (const std::string& systemId : {path, std::string(row.file)}) {
            SCOPED_TRACE(systemId);
            for (const bool isFirst : {true, false}) {
                const int before = modules.opened;
                PieceStream in("<!DOCTYPE a SYSTEM '" + systemId + "'><a>" + content + "</a>");
                const LumPtr<LumXmlParser> parser = openParser(in, {.baseUri = folder});
                std::size_t compared = 0;
                while (parser->nextToken() != LumXmlParser::END_DOCUMENT) {
                    if (parser->getEventType() != LumXmlParser::ENTITY_REF) continue;
                    const std::string name = toUtf8(parser->getName().getString());
                    const std::string text = utf8(parser->getText());
                    ++compared;
                    // Which characters are written by number in these is each parser's own affair, and
                    // references to parameter entities stay as they are in the texts of this one.
                    if (name == "lt" || name == "amp" || name == "gt" || name == "quot" || name == "apos") continue;
                    if (text.find('%') != std::string::npos && text.find(';') != std::string::npos) continue;
                    EXPECT_EQ(text, judge.entities.at(name)) << name;
                }
                EXPECT_EQ(compared, judge.entities.size());
                // The relative identifier names the same definition.
                EXPECT_EQ(modules.opened > before, isFirst && systemId == path);
            }
        }
    }
    if (!absent.empty()) GTEST_SKIP() << "not installed:" << absent;
}

#endif

}  // namespace
