// What the parser makes of documents: events, their data and the position at each, or an error, however the input
// arrives.

#include <gtest/gtest.h>

#include "support/ExpectError.h"
#include "support/Sweeps.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

/// Positions that a row does not tell are not compared.
std::vector<EventRecord> dropUntold(std::vector<EventRecord> records, const std::vector<EventRecord>& expected) {
    for (std::size_t i = 0; i < std::min(records.size(), expected.size()); ++i)
        if (expected[i].position == Position{}) records[i].position = {};
    return records;
}

/// Shifts the document after a comment so that a block border of the input falls on each of its bytes.
void expectSameAfterFiller(const EventRow& row, Pull how, std::size_t border, std::size_t step) {
    constexpr std::string_view open = "<!--", close = "-->";
    for (std::size_t inside = 0; inside <= row.document.size(); inside += step) {
        const std::size_t prefixBytes = border - inside;
        std::string document(open);
        document.append(prefixBytes - open.size() - close.size(), 'x').append(close).append(row.document);
        std::vector<EventRecord> records = recordEvents(document, how, row.setup);
        if (how == Pull::tokens) records.erase(records.begin());
        // The document's own first "<" counts now, the comment's does not.
        const std::size_t shift = row.document.starts_with("<") ? prefixBytes : prefixBytes - 1;
        for (EventRecord& record : records)
            if (record.position.line == 1) record.position.column -= static_cast<int>(shift);
        ASSERT_EQ(dropUntold(records, row.records), row.records) << "border " << border << " at byte " << inside;
    }
}

TEST(LumXmlParserEvents, areThoseOfTheRowWhereverAPieceOrABlockOfTheInputEnds) {
    for (const EventRow& row : readEventRows("xml/events.txt")) {
        SCOPED_TRACE(row.fault);
        // An XML declaration has to come first; so has what tells the encoding; messages tell columns.
        const bool canBeShifted = !row.document.starts_with("<?xml") && row.document.find('\0') == std::string::npos &&
                                  !row.records.back().event.starts_with("error ");
        for (const Pull how : row.ways) {
            SCOPED_TRACE(how == Pull::events ? "next()" : "nextToken()");
            for (const std::size_t pieceBytes : readSizes)
                EXPECT_EQ(dropUntold(recordEvents(row.document, how, row.setup, pieceBytes), row.records), row.records);
            if (!canBeShifted) continue;
            expectSameAfterFiller(row, how, 4096, 1);
            expectSameAfterFiller(row, how, 16384, 1);
            expectSameAfterFiller(row, how, 65536, 3);
        }
    }
}

// What is asked for is returned as soon as it has been read: a reader at the other end of a pipe may be waiting for
// the answer before it sends more.
TEST(LumXmlParserEvents, doNotWaitForInputAfterThem) {
    constexpr std::size_t lookAheadBytes = 4;
    PieceStream in("<?xml version=\"1.0\"?><a><b>text</b><c/></a>", 1);
    const LumPtr<LumXmlParser> parser = openParser(in);
    for (const std::string_view upTo :
         {"<?xml version=\"1.0\"?><a>", "<?xml version=\"1.0\"?><a><b>", "<?xml version=\"1.0\"?><a><b>text</",
          "<?xml version=\"1.0\"?><a><b>text</b>", "<?xml version=\"1.0\"?><a><b>text</b><c/>"}) {
        parser->next();
        EXPECT_LE(in.getBuffer().getDeliveredBytes(), upTo.size() + lookAheadBytes) << describe(*parser);
    }
}

// Documents that are not well-formed: code, message and position of the error, thrown and called back.

void parse(std::string_view document, Pull how, const ParserSetup& setup, std::size_t pieceBytes,
           LumPtr<LumXmlParser>& parser) {
    PieceStream in(document, pieceBytes);
    parser = openParser(in, setup);
    for (int events = 0; pull(*parser, how) != LumXmlParser::END_DOCUMENT; ++events)
        if (events > 1000) throw std::runtime_error("the document does not come to an end");
}

struct Heard {
    LumPtr<LumXmlParser> parser;
    unsigned code = 0;
    std::string message, position;
};

void hearFirst(const LumError& error, void* data) {
    auto& first = *static_cast<Heard*>(data);
    EXPECT_EQ(utf8(error.source), "LumCommon::XmlParserImpl");
    EXPECT_EQ(utf8(error.getPositionDescription()), "");
    if (first.code == 0)
        first = {first.parser, error.code, utf8(error.message), utf8(first.parser->getPositionDescription())};
}

TEST(LumXmlParserErrors, tellCodeMessageAndPositionThrownOrCalledBack) {
    for (const std::vector<std::string>& row : readEscapedRows("xml/errors.txt", 6)) {
        SCOPED_TRACE(row[1]);
        const MarkedDocument document = readMarks(row[1]);
        ASSERT_EQ(document.positions.size(), 1u);
        const auto code = static_cast<unsigned>(std::stoi(row[0], nullptr, 16));
        const int column = document.positions.front().column + std::atoi(row[4].c_str());
        const std::string line = std::to_string(document.positions.front().line);
        const std::string position = row[2] + ", Line " + line + ", Col " + std::to_string(column) + ".";
        for (const Pull how : {Pull::events, Pull::tokens}) {
            ParserSetup setup = readSetup(row[5]);
            Heard heard;
            for (const std::size_t pieceBytes : readSizes)
                expectParserError(code, row[3], position,
                                  [&] { parse(document.bytes, how, setup, pieceBytes, heard.parser); });
            setup.onError = hearFirst;
            setup.onErrorData = &heard;
            EXPECT_NO_THROW(parse(document.bytes, how, setup, wholeInput, heard.parser));
            const bool canGoOn = code == 0x181D || code == 0x181E;
            EXPECT_EQ(heard.code, canGoOn ? code | 0x600 : code);
            EXPECT_EQ(heard.message, row[3]);
            EXPECT_EQ(heard.position, position);
        }
    }
}

TEST(LumXmlParserErrors, stopWhenTheCallbackThrowsAndAreThrownAgainWithoutIt) {
    struct Stop {};
    PieceStream in("<a>&b;&c;</a>");
    const LumPtr<LumXmlParser> parser = openParser(in, {.onError = [](const LumError& error, void*) {
                                                       EXPECT_EQ(error.code, 0x1E1Eu);
                                                       throw Stop();
                                                   }});
    EXPECT_EQ(parser->next(), LumXmlParser::START_TAG);
    EXPECT_THROW(parser->next(), Stop);
    parser->setCallbackError(nullptr, nullptr);
    expectParserError(0x181E, "Reference to undefined entity: &c;", "ENTITY_REF, Line 1, Col 8.",
                      [&] { parser->next(); });
}

// What a listener has been shown goes away when the text or the values grow.
TEST(LumXmlParserErrors, letAListenerLookAtWhatIsBeingRead) {
    struct Seen {
        LumPtr<LumXmlParser> parser;
        std::string text;
    } seen;
    const std::string more(1000, 'x');
    const std::string document = "<a b='v' c='<' d='" + more + "<'>t]]>" + more + "]]></a>";
    PieceStream in(document);
    const auto look = [](const LumError&, void* data) {
        auto& [parser, text] = *static_cast<Seen*>(data);
        const bool isTag = parser->getEventType() == LumXmlParser::START_TAG;
        text += utf8(isTag ? parser->getAttributeValue(0) : parser->getText()) + "|";
    };
    seen.parser = openParser(in, {.onError = look, .onErrorData = &seen});
    while (seen.parser->next() != LumXmlParser::END_DOCUMENT) continue;
    EXPECT_EQ(seen.text, "v|v|t]]|t]]|");
}

}  // namespace
