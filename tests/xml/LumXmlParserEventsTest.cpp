// What the parser makes of well-formed documents: events, their data and the position at each, however the input
// arrives.

#include <gtest/gtest.h>

#include "EventRows.h"

namespace {

using namespace LumTest;

constexpr std::size_t pieceSizes[] = {1, 2, 3, 7, 4096, wholeInput};
constexpr Pull ways[] = {Pull::events, Pull::tokens};

MarkedDocument getDocument(const EventRow& row, Pull how) {
    return readMarks(how == Pull::events ? row.eventDocument : row.tokenDocument);
}

std::vector<EventRecord> getExpected(const EventRow& row, Pull how) {
    const std::vector<std::string>& events = how == Pull::events ? row.events : row.tokens;
    const MarkedDocument document = getDocument(row, how);
    EXPECT_EQ(document.positions.size(), events.size()) << "a bar is missing in the row";
    std::vector<EventRecord> records;
    for (std::size_t i = 0; i < std::min(events.size(), document.positions.size()); ++i)
        records.push_back({events[i], document.positions[i]});
    records.push_back({"END_DOCUMENT 0", document.end});
    return records;
}

TEST(LumXmlParserEvents, areTheSameForEveryPieceSize) {
    for (const EventRow& row : eventRows) {
        SCOPED_TRACE(row.fault);
        for (const Pull how : ways) {
            SCOPED_TRACE(how == Pull::events ? "next()" : "nextToken()");
            for (const std::size_t pieceBytes : pieceSizes) {
                SCOPED_TRACE(pieceBytes);
                EXPECT_EQ(recordEvents(getDocument(row, how).bytes, how, row.setup, pieceBytes), getExpected(row, how));
            }
        }
    }
}

// The bars of the rows are counted by the tests; these numbers are counted by hand.
TEST(LumXmlParserEvents, tellTheFurthestCharacterReadAsPosition) {
    EXPECT_EQ(recordEvents("<a b=\"1\">x\ny<b\n/><![CDATA[z]]></a>", Pull::tokens),
              std::vector<EventRecord>({{"START_TAG 1 a b=\"1\"", {1, 8}},
                                        {"TEXT 1 \"x\\u000Ay\"", {2, 2}},
                                        {"START_TAG 2 b /", {3, 2}},
                                        {"END_TAG 2 b", {3, 2}},
                                        {"CDSECT 1 \"z\"", {3, 15}},
                                        {"END_TAG 1 a", {3, 19}},
                                        {"END_DOCUMENT 0", {3, 19}}}));
}

/// Shifts the document behind a comment so that a block border of the input falls on each of its bytes.
void expectSameBehindFiller(const EventRow& row, Pull how, std::size_t border, std::size_t step) {
    const std::string document = getDocument(row, how).bytes;
    if (document.starts_with("<?xml")) return;  // has to come first
    std::vector<EventRecord> expected = getExpected(row, how);
    constexpr std::string_view open = "<!--";
    constexpr std::string_view close = "-->";
    for (std::size_t inside = 0; inside <= document.size(); inside += step) {
        const std::size_t prefixBytes = border - inside;
        const std::string filler(prefixBytes - open.size() - close.size(), 'x');
        std::vector<EventRecord> records =
            recordEvents(std::string(open) + filler + std::string(close) + document, how, row.setup);
        if (how == Pull::tokens && !records.empty()) records.erase(records.begin());
        // The document's own first "<" counts now, the comment's does not.
        const std::size_t shift = document.starts_with("<") ? prefixBytes : prefixBytes - 1;
        for (EventRecord& record : records)
            if (record.position.line == 1) record.position.column -= static_cast<int>(shift);
        ASSERT_EQ(records, expected) << "border " << border << " at byte " << inside;
    }
}

TEST(LumXmlParserEvents, areTheSameWhereverABlockOfTheInputEnds) {
    for (const EventRow& row : eventRows) {
        SCOPED_TRACE(row.fault);
        for (const Pull how : ways) {
            expectSameBehindFiller(row, how, 4096, 1);
            expectSameBehindFiller(row, how, 16384, 1);
            expectSameBehindFiller(row, how, 65536, 3);
        }
    }
}

// What is asked for is returned as soon as it has been read: a reader at the other end of a pipe may be waiting for
// the answer before it sends more.
TEST(LumXmlParserEvents, doNotWaitForInputBehindThem) {
    constexpr std::size_t lookAheadBytes = 4;
    PieceStream in("<?xml version=\"1.0\"?><a><b>text</b><c/></a>", 1);
    const LumPtr<LumXmlParser> parser = openParser(in);
    const struct {
        const char* event;
        std::string_view upTo;
    } steps[] = {
        {"START_TAG 1 a", "<?xml version=\"1.0\"?><a>"},
        {"START_TAG 2 b", "<?xml version=\"1.0\"?><a><b>"},
        {"TEXT 2 \"text\"", "<?xml version=\"1.0\"?><a><b>text</"},
        {"END_TAG 2 b", "<?xml version=\"1.0\"?><a><b>text</b>"},
        {"START_TAG 2 c /", "<?xml version=\"1.0\"?><a><b>text</b><c/>"},
    };
    for (const auto& step : steps) {
        parser->next();
        EXPECT_EQ(describe(*parser), step.event);
        EXPECT_LE(in.getBuffer().getDeliveredBytes(), step.upTo.size() + lookAheadBytes) << step.event;
    }
}

struct LineEndRow {
    const char* fault;
    const char* lineEnds;  // between the letters a and b, or where the document ends
    const char* text;
    Position position;  // behind the look-ahead "</"
};
constexpr LineEndRow lineEndRows[] = {
    {"a line feed is no line end", "\n", "\"a\\u000Ab\"", {2, 3}},
    {"a carriage return stays", "\r", "\"a\\u000Ab\"", {2, 3}},
    {"a pair counts twice", "\r\n", "\"a\\u000Ab\"", {2, 3}},
    {"the next-line character stays", "\xC2\x85", "\"a\\u000Ab\"", {2, 3}},
    {"the pair with a next-line character counts twice", "\r\xC2\x85", "\"a\\u000Ab\"", {2, 3}},
    {"the line separator stays", "\xE2\x80\xA8", "\"a\\u000Ab\"", {2, 3}},
    {"a return and a line separator are one", "\r\xE2\x80\xA8", "\"a\\u000A\\u000Ab\"", {3, 3}},
    {"two returns are one", "\r\r", "\"a\\u000A\\u000Ab\"", {3, 3}},
    {"the return that was read ahead is lost", "\r\r\n", "\"a\\u000A\\u000Ab\"", {3, 3}},
    {"the wrong order makes a pair", "\n\r", "\"a\\u000A\\u000Ab\"", {3, 3}},
    {"the paragraph separator is a line end", "\xE2\x80\xA9", "\"a\\u2029b\"", {1, 7}},
    {"what follows a return is lost", "\rc", "\"a\\u000Acb\"", {2, 4}},
};

TEST(LumXmlParserEvents, foldLineEndsAndCountThem) {
    for (const LineEndRow& row : lineEndRows) {
        SCOPED_TRACE(row.fault);
        for (const std::size_t pieceBytes : pieceSizes) {
            const std::string document = std::string("<r>a") + row.lineEnds + "b</r>";
            const std::vector<EventRecord> records = recordEvents(document, Pull::events, {}, pieceBytes);
            ASSERT_EQ(records.size(), 4u);
            EXPECT_EQ(records[1], (EventRecord{std::string("TEXT 1 ") + row.text, row.position}));
        }
        for (std::size_t inside = 0; inside <= 4; ++inside) {  // a block border in the line end
            const std::string filler(4096 - 3 - inside, 'x');
            const std::vector<EventRecord> records =
                recordEvents("<r>" + filler + row.lineEnds + "b</r>", Pull::events);
            ASSERT_EQ(records.size(), 4u);
            std::string text = std::string(row.text).substr(2);
            EXPECT_EQ(records[1].event, "TEXT 1 \"" + filler + text);
        }
    }
}

TEST(LumXmlParserEvents, foldACarriageReturnAtTheEndAndInEveryConstruct) {
    const std::vector<EventRecord> expected = {
        {"COMMENT 0 \"x\\u000Ay\"", {2, 4}},
        {"PROCESSING_INSTRUCTION 0 \"p\\u000Aq\"", {3, 3}},
        {"START_TAG 1 a b=\" \"", {5, 2}},
        {"CDSECT 1 \"\\u000A\" ws", {6, 3}},
        {"END_TAG 1 a", {6, 7}},
        {"IGNORABLE_WHITESPACE 0 \"\\u000A\" ws", {7, 0}},
        {"END_DOCUMENT 0", {7, 0}},
    };
    for (const std::size_t pieceBytes : pieceSizes) {
        EXPECT_EQ(recordEvents("<!--x\ry--><?p\rq?><a\rb='\r'><![CDATA[\r]]></a>\r", Pull::tokens, {}, pieceBytes),
                  expected);
    }
}

}  // namespace
