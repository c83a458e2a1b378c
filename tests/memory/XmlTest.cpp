// What xml/ does when memory runs out.

#include <lumcommon/core/LumError.h>
#include <lumcommon/names/LumName.h>
#include <lumcommon/xml/LumXmlParser.h>
#include <lumcommon/xml/XmlParserFactoryImpl.h>
#include <support/FailingMemory.h>
#include <support/TempFolder.h>
#include <support/Utf8.h>
#include <support/XmlEvents.h>

#include <memory>
#include <sstream>

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

std::string parse(LumXmlParser& parser, const std::string& source, const UnicodeString& encoding, Pull how) {
    std::istringstream in(source);
    parser.setInput(in, encoding, u"a/base/uri/that/is/too/long/for/the/string"_text);
    return eventsOf(parser, how);
}

const std::string longWords = " and more words than the string object has room for";

struct Row {
    const char* fault;
    std::string source;
    const char16_t* encoding = u"";
};
const std::string longName(60, 'n');
const Row rows[] = {
    {"a name is none, or that of another",
     "<svg><" + longName + ":a xmlns:" + longName + "='urn:" + longName + "' " + longName + ":b='1'/><chart/></svg>"},
    {"the root has no namespace", "<chart><x xlink:href='a'/></chart>"},
    {"a declared entity is empty", "<!DOCTYPE a [<!ENTITY e 'text" + longWords + "'><!ENTITY % p '<!ENTITY f \"&e;" +
                                       longWords +
                                       "\">'>%p;]>"
                                       "<a b='&e;&f;&#233;'>&e;&f;&lt;</a>"},
    {"a text, a comment or an instruction is cut",
     "<a><!--" + longWords + "--><?pi " + longWords + "?><![CDATA[" + longWords + "]]>" + longWords + "&amp;</a>"},
    {"bytes are decoded in another charset",
     "<?xml version='1.0' encoding='windows-1251'?><a>\xC0\xC1" + longWords + "</a>"},
    {"bytes are decoded in another charset than the one given", "<a>\x83\x41" + longWords + "</a>", u"Shift_JIS"},
};

TEST(XmlMemory, eventsFailAloud) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        for (const Pull how : {Pull::events, Pull::tokens}) {
            forEveryFailure(makeXmlParser, [&](LumPtr<LumXmlParser>& parser) {
                parser->setFeature(LumXmlParser::FEATURE_IGNORE_UNSUPPORTED_ENCODING, true);
                return parse(*parser, row.source, row.encoding, how);
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

// The message lacks what was read, or the resource.
TEST(XmlMemory, errorsFailAloud) {
    for (const std::string& source :
         {"<a><" + longName + "></b></a>", "<a>&" + longName + ";</a>", "<a>&#x" + std::string(60, '1') + ";</a>",
          "<" + longName + " a='1' a='2'/>", "<!DOCTYPE a [<!ENTITY " + longName + " " + longName + ">]><a/>"}) {
        SCOPED_TRACE(source);
        forEveryFailure(makeXmlParser, [&](LumPtr<LumXmlParser>& parser) {
            try {
                return parse(*parser, source, {}, Pull::events);
            } catch (const LumError& error) {
                if ((error.code & 0xFF00u) != 0x1800) throw;
                return utf8(error.getMessage());
            }
        });
    }
}

}  // namespace
