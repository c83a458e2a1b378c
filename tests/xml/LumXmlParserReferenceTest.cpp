// Entity and character references: in text and in values, defined by the caller, undefined, nested and without end.

#include <gtest/gtest.h>

#include "support/ExpectError.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;
using Entities = std::vector<std::pair<std::string, std::string>>;

Setup with(Entities entities, std::vector<LumXmlParser::Feature> features = {}) {
    return {.features = std::move(features), .entities = std::move(entities)};
}

struct ExpansionRow {
    const char* fault;
    const char* document;
    Entities entities;
    std::vector<std::string> events;  // of next(), without the end of the document
    std::vector<LumXmlParser::Feature> features = {};
};
const ExpansionRow expansionRows[] = {
    {"markup in the replacement is text",
     "<a>x&e;y</a>",
     {{"e", "1<b c='2'/>3"}},
     {"START_TAG 1 a", "TEXT 1 \"x1\"", "START_TAG 2 b c=\"2\" /", "END_TAG 2 b", "TEXT 1 \"3y\"", "END_TAG 1 a"}},
    {"an element may not begin before a replacement that ends it",
     "<a><b>x&e;y</a>",
     {{"e", "1</b>2"}},
     {"START_TAG 1 a", "START_TAG 2 b", "TEXT 2 \"x1\"", "END_TAG 2 b", "TEXT 1 \"2y\"", "END_TAG 1 a"}},
    {"a value may not begin in the replacement and end behind it",
     "<a>&e;2'/></a>",
     {{"e", "<b c='1"}},
     {"START_TAG 1 a", "START_TAG 2 b c=\"12\" /", "END_TAG 2 b", "END_TAG 1 a"}},
    {"a comment or a section may not begin in the replacement and end behind it",
     "<a>&e;-->&f;x]]></a>",
     {{"e", "<!--"}, {"f", "<![CDATA["}},
     {"START_TAG 1 a", "TEXT 1 \"x\"", "END_TAG 1 a"}},
    {"a reference may not begin in the replacement and end behind it",
     "<a>&e;x41;&f;t;</a>",
     {{"e", "&#"}, {"f", "&l"}},
     {"START_TAG 1 a", "TEXT 1 \"A<\"", "END_TAG 1 a"}},
    {"brackets across the end of a replacement close a section",
     "<a>&e;></a>",
     {{"e", "]]"}},
     {"START_TAG 1 a", "error Unexpected ']]>'.\nTEXT, Line 1, Col 6."}},
    {"line ends of a replacement are folded once more",
     "<a>&e;</a>",
     {{"e", "1\r\n2"}},
     {"START_TAG 1 a", "TEXT 1 \"1\\u000D\\u000A2\"", "END_TAG 1 a"}},
    {"a supplementary character is torn",
     "<a>&e;</a>",
     {{"e", "\xF0\x9F\x98\x80&#x1F600;"}},
     {"START_TAG 1 a", "TEXT 1 \"\\u1F600\\u1F600\"", "END_TAG 1 a"}},
    {"a predefined entity cannot be redefined",
     "<a b='&lt;'>&lt;</a>",
     {{"lt", "L"}},
     {"START_TAG 1 a b=\"L\"", "TEXT 1 \"L\"", "END_TAG 1 a"}},
    {"the first definition stays",
     "<a>&e;</a>",
     {{"e", "1"}, {"e", "2"}},
     {"START_TAG 1 a", "TEXT 1 \"2\"", "END_TAG 1 a"}},
    {"replacements in values are not read by the rules of values",
     "<a b='&e;&e;'/>",
     {{"e", "1\t&#9;\n&f;\""}, {"f", "'"}},
     {"START_TAG 1 a b=\"1 \\u0009 '\"1 \\u0009 '\"\" /", "END_TAG 1 a"}},
    {"a reference in a value may not end behind its replacement",
     "<a b='&e;t;x'/>",
     {{"e", "&l"}},
     {"START_TAG 1 a b=\"<x\" /", "END_TAG 1 a"}},
    {"an undefined entity is refused against the feature",
     "<a b='x&u;y'>1&u;2<b>&u;</b></a>",
     {},
     {"START_TAG 1 a b=\"xy\"", "TEXT 1 \"12\"", "START_TAG 2 b", "END_TAG 2 b", "END_TAG 1 a"},
     {LumXmlParser::FEATURE_IGNORE_UNDEFINED_ENTITIES}},
};

TEST(LumXmlParserReference, isReplacedByTextThatIsReadOn) {
    for (const ExpansionRow& row : expansionRows) {
        SCOPED_TRACE(row.fault);
        for (const std::size_t pieceBytes : {std::size_t{1}, std::size_t{3}, wholeInput}) {
            std::vector<std::string> events =
                getDescriptions(recordEvents(row.document, Pull::events, with(row.entities, row.features), pieceBytes));
            if (events.back() == "END_DOCUMENT 0") events.pop_back();
            EXPECT_EQ(events, row.events);
        }
    }
}

TEST(LumXmlParserReference, isATokenWithTheValueOfItsEntity) {
    const std::string document = "<a>&e;&amp;&u;&#x26;</a>";
    EXPECT_EQ(
        getDescriptions(recordEvents(document, Pull::tokens, with({{"e", "<b/>"}}))),
        (std::vector<std::string>{"START_TAG 1 a", "ENTITY_REF 1 e \"<b/>\"", "ENTITY_REF 1 amp \"&#38;\"",
                                  "ENTITY_REF 1 u bogus", "ENTITY_REF 1 #x26 \"&\"", "END_TAG 1 a", "END_DOCUMENT 0"}));
    EXPECT_EQ(getDescriptions(
                  recordEvents(document, Pull::tokens, with({}, {LumXmlParser::FEATURE_IGNORE_UNDEFINED_ENTITIES})))[3],
              "ENTITY_REF 1 u \"\"");
}

TEST(LumXmlParserReference, toAnUndefinedEntityIsAnErrorOfNextAlone) {
    PieceStream in("<a>x&c.d;</a>");
    const LumPtr<LumXmlParser> parser = openParser(in);
    parser->next();
    expectParserError(0x181E, "Reference to undefined entity: &c.d;", "ENTITY_REF, Line 1, Col 8.",
                      [&] { parser->next(); });
}

TEST(LumXmlParserReference, isDefinedForOneDocument) {
    PieceStream first("<a>&e;&lt;</a>");
    const LumPtr<LumXmlParser> parser = openParser(first, with({{"e", "1"}}));
    parser->next();
    parser->next();
    EXPECT_EQ(escape(parser->getText()), "\"1<\"");
    PieceStream second("<a>&lt;&e;</a>");
    parser->setInput(second, UnicodeString(), UnicodeString());
    parser->next();
    expectParserError(0x181E, "Reference to undefined entity: &e;", "ENTITY_REF, Line 1, Col 9.",
                      [&] { parser->next(); });
    // A changed predefined entity does not change how many there are, and stays.
    PieceStream third("<a>&lt;</a>");
    parser->setInput(third, UnicodeString(), UnicodeString());
    parser->defineEntityReplacementText(LumCommon::NAME_lt, fromUtf8("L"));
    PieceStream fourth("<a>&lt;</a>");
    parser->setInput(fourth, UnicodeString(), UnicodeString());
    parser->next();
    parser->next();
    EXPECT_EQ(escape(parser->getText()), "\"L\"");
}

// Whoever prepares a parser defines entities before there is an input; they hold for the document that comes first.
TEST(LumXmlParserReference, isDefinedBeforeTheInput) {
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->defineEntityReplacementText(LumName(fromUtf8("e")), fromUtf8("1&gt;"));
    PieceStream first("<a>&e;&lt;</a>");
    parser->setInput(first, UnicodeString(), UnicodeString());
    parser->next();
    parser->next();
    EXPECT_EQ(escape(parser->getText()), "\"1><\"");
    PieceStream second("<a>&e;</a>");
    parser->setInput(second, UnicodeString(), UnicodeString());
    parser->next();
    expectParserError(0x181E, "Reference to undefined entity: &e;", "ENTITY_REF, Line 1, Col 5.",
                      [&] { parser->next(); });
}

struct EndlessRow {
    const char* document;
    Entities entities;
};
const EndlessRow endlessRows[] = {
    {"<a>&e;</a>", {{"e", "&e;"}}},
    {"<a>&e;</a>", {{"e", "<b>&e;</b>"}}},
    {"<a b='&e;'/>", {{"e", "xxxxxxxxxxxxxxxx&f;"}, {"f", "&e;&e;"}}},
};

TEST(LumXmlParserReference, withoutEndIsStopped) {
    for (const EndlessRow& row : endlessRows) {
        SCOPED_TRACE(row.document + row.entities.front().second);
        PieceStream in(row.document);
        const LumPtr<LumXmlParser> parser = openParser(in, with(row.entities));
        try {
            while (parser->next() != LumXmlParser::END_DOCUMENT) {
            }
            ADD_FAILURE() << "nothing thrown";
        } catch (const LumError& error) {
            EXPECT_EQ(error.code, 0x1837u);
            EXPECT_TRUE(utf8(error.message).starts_with("XML parser error.\n")) << utf8(error.message);
        }
    }
}

// A document may expand to a hundred times its size once it is past the threshold, and to anything below that.
TEST(LumXmlParserReference, mayExpandAsFarAsTheLimit) {
    constexpr int thresholdUnits = 8 << 20;
    const std::string thousand(1000, 'x');
    const struct {
        const char* fault;
        int references;
        bool isAccepted;
    } rows[] = {
        {"a short document may not expand to 8 million characters", thresholdUnits / 1000 - 10, true},
        {"the limit never fires", thresholdUnits / 1000 + 10000, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fault);
        std::string document = "<a>";
        for (int i = 0; i < row.references; ++i) document += "&e;";
        document += "</a>";
        const std::vector<EventRecord> records = recordEvents(document, Pull::events, with({{"e", thousand}}));
        EXPECT_EQ(records.back().event == "END_DOCUMENT 0", row.isAccepted) << records.back();
    }
}

}  // namespace
