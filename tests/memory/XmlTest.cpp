// What xml/ does when memory runs out.

#include <lumcommon/xml/XmlParserFactoryImpl.h>
#include <support/FailingMemory.h>
#include <support/Recipe.h>
#include <support/TempFolder.h>
#include <support/XmlEvents.h>

namespace {

using namespace LumCommon;
using namespace LumTest;
using Event = LumXmlParser::EventType;

std::string eventsOf(LumXmlParser& parser, Pull how) {
    std::string told;
    for (Event event = parser.getEventType(); event != LumXmlParser::END_DOCUMENT; told += describe(parser) + "\n") {
        event = pull(parser, how);
    }
    return told;
}

/// With the message of an error in the document.
std::string parse(LumXmlParser& parser, const std::string& source, const UnicodeString& encoding, Pull how) try {
    std::istringstream in(source);
    parser.setInput(in, encoding, u"a/base/uri/that/is/too/long/for/the/string"_text);
    return eventsOf(parser, how);
} catch (const LumError& error) {
    if ((error.code & 0xFF00u) != 0x1800) throw;
    return utf8(error.getMessage());
}

const std::string longWords = " and more words than the string object has room for";
const std::map<std::string, std::string> longTexts{{"words", longWords}, {"name", std::string(60, 'n')}};

TEST(XmlMemory, eventsFailAloud) {
    for (const auto& row : readEscapedRows("xml/memory.txt", 4)) {
        SCOPED_TRACE(row[0]);
        const std::string source = fillIn(row[1], longTexts);
        const UnicodeString encoding = fromUtf8(row[2]);
        for (const Pull how : {Pull::events, Pull::tokens}) {
            forEveryFailure(makeXmlParser, [&](LumPtr<LumXmlParser>& parser) {
                parser->setFeature(LumXmlParser::FEATURE_IGNORE_UNSUPPORTED_ENCODING, true);
                parser->setFeature(LumXmlParser::FEATURE_CONFORMING, !row[3].empty());
                return parse(*parser, source, encoding, how);
            });
        }
    }
}

// An external entity or definition is left out.
TEST(XmlMemory, externalInputsFailAloud) {
    const TempFolder folder;
    writeFile(folder.getPath() + "an-entity-with-a-long-name.xml", "<?xml encoding='UTF-8'?><x>" + longWords + "</x>");
    writeFile(folder.getPath() + "a.dtd", "<!ENTITY d 'defined" + longWords + "'><!ENTITY o SYSTEM 'o'>");
    const UnicodeString base = UnicodeString::fromUTF8(folder.getPath());
    const std::string source =
        "<!DOCTYPE a SYSTEM 'a.dtd' [<!ENTITY e SYSTEM 'an-entity-with-a-long-name.xml'>]><a>&e;&d;</a>";
    for (const bool forgives : {false, true}) {
        forEveryFailure(makeXmlParser, [&](LumPtr<LumXmlParser>& parser) {
            LumXmlParser::clearDefinitionCache();
            parser->setFeature(LumXmlParser::FEATURE_IGNORE_EXTERNAL_DTD_ERRORS, forgives);
            std::istringstream in(source);
            parser->setInput(in, {}, base);
            return eventsOf(*parser, Pull::events) + utf8(parser->getPositionDescription());
        });
    }
}

}  // namespace
