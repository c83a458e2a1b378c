// What the parser says about documents that are not well-formed: code, message and position, thrown and called back.

#include <gtest/gtest.h>

#include "ErrorRows.h"
#include "support/ExpectError.h"

namespace {

using namespace LumTest;

std::string getPositionText(const ErrorRow& row) {
    const MarkedDocument document = readMarks(row.document);
    EXPECT_EQ(document.positions.size(), 1u) << "the row lacks its bar";
    const Position position = document.positions.front();
    return toUtf8(LumXmlParser::getEventTypeStr(row.event)) + ", Line " + std::to_string(position.line) + ", Col " +
           std::to_string(position.column + row.rescanned) + ".";
}

void parse(const ErrorRow& row, Pull how, std::size_t pieceBytes) {
    PieceStream in(readMarks(row.document).bytes, pieceBytes);
    const LumPtr<LumXmlParser> parser = openParser(in, row.setup);
    while (pull(*parser, how) != LumXmlParser::END_DOCUMENT) {
    }
}

TEST(LumXmlParserErrors, tellCodeMessageAndPosition) {
    for (const ErrorRow& row : errorRows) {
        SCOPED_TRACE(row.document);
        for (const Pull how : {Pull::events, Pull::tokens}) {
            for (const std::size_t pieceBytes : {std::size_t{1}, std::size_t{2}, std::size_t{3}, wholeInput}) {
                expectParserError(row.code, row.message, getPositionText(row), [&] { parse(row, how, pieceBytes); });
            }
        }
    }
}

struct Heard {
    LumXmlParser* parser = nullptr;
    std::vector<unsigned> codes;
    std::string firstMessage;
    std::string firstPosition;
};

/// Notes the error; a parser that goes on for ever is stopped.
void hear(const LumError& error, void* data) {
    constexpr std::size_t tooManyErrors = 1000;
    Heard& heard = *static_cast<Heard*>(data);
    EXPECT_EQ(utf8(error.source), "LumCommon::XmlParserImpl");
    EXPECT_EQ(utf8(error.getPositionDescription()), "");
    if (heard.codes.empty()) {
        heard.firstMessage = utf8(error.message);
        heard.firstPosition = utf8(heard.parser->getPositionDescription());
    }
    heard.codes.push_back(error.code);
    if (heard.codes.size() > tooManyErrors) throw std::runtime_error("the parser does not come to an end");
}

std::vector<std::string> parseOn(const std::string& bytes, Pull how, const Setup& setup, Heard& heard,
                                 std::size_t pieceBytes = wholeInput) {
    constexpr std::size_t tooManyEvents = 1000;
    std::vector<std::string> events;
    PieceStream in(bytes, pieceBytes);
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    heard.parser = parser.get();
    for (const LumXmlParser::Feature feature : setup.features) parser->setFeature(feature, true);
    parser->setCallbackError(hear, &heard);
    parser->setInput(in, UnicodeString(), UnicodeString());
    for (const auto& [name, text] : setup.entities)
        parser->defineEntityReplacementText(LumName(fromUtf8(name)), fromUtf8(text));
    while (pull(*parser, how) != LumXmlParser::END_DOCUMENT) {
        events.push_back(describe(*parser));
        if (events.size() > tooManyEvents) throw std::runtime_error("the document does not come to an end");
    }
    return events;
}

TEST(LumXmlParserErrors, areCalledBackWithoutPositionAndParsingEnds) {
    for (const ErrorRow& row : errorRows) {
        SCOPED_TRACE(row.document);
        for (const Pull how : {Pull::events, Pull::tokens}) {
            Heard heard;
            EXPECT_NO_THROW(parseOn(readMarks(row.document).bytes, how, row.setup, heard));
            ASSERT_FALSE(heard.codes.empty());
            const bool canGoOn = row.code == 0x181D || row.code == 0x181E;
            EXPECT_EQ(heard.codes.front(), canGoOn ? row.code | 0x600 : row.code);
            EXPECT_EQ(heard.firstMessage, row.message);
            EXPECT_EQ(heard.firstPosition, getPositionText(row));
        }
    }
}

struct GoingOnRow {
    const char* fault;
    const char* document;
    std::vector<unsigned> codes;
    std::vector<std::string> events;
};
const GoingOnRow goingOnRows[] = {
    {"a bad character behind / is read again, or the tag goes on",
     "<r><a/x>y</r>",
     {0x180C},
     {"START_TAG 1 r", "START_TAG 2 a /", "END_TAG 2 a", "TEXT 1 \">y\"", "END_TAG 1 r"}},
    {"an undefined entity leaves something in a value",
     "<a b='x&c;y'/>",
     {0x1E1E},
     {"START_TAG 1 a b=\"xy\" /", "END_TAG 1 a"}},
    {"an undefined entity leaves something in the text",
     "<a>x&c;y</a>",
     {0x1E1E},
     {"START_TAG 1 a", "TEXT 1 \"xy\"", "END_TAG 1 a"}},
    {"a duplicate is dropped", "<a b='1' b='2'/>", {0x1808}, {"START_TAG 1 a b=\"1\" b=\"2\" /", "END_TAG 1 a"}},
    {"an element without namespace is dropped", "<p:a/>", {0x1807}, {"START_TAG 1 p:a /", "END_TAG 1 p:a"}},
    {"a second root is dropped",
     "<a/><b/>",
     {0x1802},
     {"START_TAG 1 a /", "END_TAG 1 a", "START_TAG 1 b /", "END_TAG 1 b"}},
    {"the first root's name binds the namespaces of the others",
     "<svg/><b/><chart/>",
     {0x1802, 0x1802},
     {"START_TAG 1 {http://www.w3.org/2000/svg}svg /", "END_TAG 1 {http://www.w3.org/2000/svg}svg", "START_TAG 1 b /",
      "END_TAG 1 b", "START_TAG 1 {http://ns.diagrix.example/names/Diagrix}chart /",
      "END_TAG 1 {http://ns.diagrix.example/names/Diagrix}chart"}},
    {"text behind the root is told once, or dropped",
     "<a/>A B",
     {0x180E, 0x180E},
     {"START_TAG 1 a /", "END_TAG 1 a", "TEXT 0 \"A B\""}},
    {"an end tag of another name closes nothing",
     "<a><b></c></a>",
     {0x1806},
     {"START_TAG 1 a", "START_TAG 2 b", "END_TAG 2 b", "END_TAG 1 a"}},
    {"an end tag too many closes the document",
     "<a/></a><!-- -->",
     {0x1806},
     {"START_TAG 1 a /", "END_TAG 1 a", "END_TAG 0 "}},
    {"text before markup that makes no event is lost",
     "<a>x<!FOO<b/>y<?xml version='1.0'?></a>A<!FOO",
     {0x182A, 0x1821, 0x180E, 0x182A},
     {"START_TAG 1 a", "TEXT 1 \"x\"", "START_TAG 2 b /", "END_TAG 2 b", "TEXT 1 \"y\"", "END_TAG 1 a",
      "TEXT 0 \"A\""}},
    {"a wrong version ends the declaration",
     "<?xml version='2.0' standalone='maybe'?><a/>",
     {0x1826, 0x1827},
     {"START_TAG 1 a /", "END_TAG 1 a"}},
    {"an unknown encoding stops the reading",
     "<?xml version='1.0' encoding='no-such-charset'?><a>x</a>",
     {0x1835},
     {"START_TAG 1 a", "TEXT 1 \"x\"", "END_TAG 1 a"}},
};

TEST(LumXmlParserErrors, leaveWhatWasReadWhenTheCallbackReturns) {
    for (const GoingOnRow& row : goingOnRows) {
        SCOPED_TRACE(row.fault);
        Heard heard;
        EXPECT_EQ(parseOn(row.document, Pull::events, {}, heard), row.events);
        EXPECT_EQ(heard.codes, row.codes);
    }
}

TEST(LumXmlParserErrors, stopWhenTheCallbackThrowsAndAreThrownAgainWithoutIt) {
    struct Stop {
        unsigned code;
    };
    PieceStream in("<a>&b;&c;</a>");
    const LumPtr<LumXmlParser> parser = openParser(in);
    parser->setCallbackError([](const LumError& error, void*) { throw Stop{error.code}; }, nullptr);
    EXPECT_EQ(parser->next(), LumXmlParser::START_TAG);
    try {
        parser->next();
        ADD_FAILURE() << "the callback's exception was kept back";
    } catch (const Stop& stop) {
        EXPECT_EQ(stop.code, 0x1E1Eu);
    }
    parser->setCallbackError(nullptr, nullptr);
    expectParserError(0x181E, "Reference to undefined entity: &c;", "ENTITY_REF, Line 1, Col 8.",
                      [&] { parser->next(); });
}

// Behind an error the parser may be asked on, looked at, given another document or destroyed.
TEST(LumXmlParserErrors, leaveTheParserUsable) {
    for (const ErrorRow& row : errorRows) {
        SCOPED_TRACE(row.document);
        PieceStream bad(readMarks(row.document).bytes, 2);
        const LumPtr<LumXmlParser> parser = openParser(bad, row.setup);
        int errors = 0;
        for (int calls = 0; calls < 50 && errors < 10; ++calls) {
            try {
                parser->next();
                describe(*parser);
            } catch (const LumError&) {
                ++errors;
            }
        }
        EXPECT_GT(errors, 0);
        PieceStream good("<a>x</a>");
        parser->setInput(good, UnicodeString(), UnicodeString());
        EXPECT_EQ(parser->getDepth(), 0);
        parser->next();
        EXPECT_EQ(describe(*parser), "START_TAG 1 a");
        EXPECT_EQ(getPosition(*parser), (Position{1, 2}));
        parser->next();
        EXPECT_EQ(describe(*parser), "TEXT 1 \"x\"");
    }
}

}  // namespace
