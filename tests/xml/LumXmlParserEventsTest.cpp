// What the parser makes of documents: events, their data and the position at each, however the input arrives.

#include <gtest/gtest.h>

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

/// Shifts the document behind a comment so that a block border of the input falls on each of its bytes.
void expectSameBehindFiller(const EventRow& row, Pull how, std::size_t border, std::size_t step) {
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
    for (const std::string_view upTo :
         {"<?xml version=\"1.0\"?><a>", "<?xml version=\"1.0\"?><a><b>", "<?xml version=\"1.0\"?><a><b>text</",
          "<?xml version=\"1.0\"?><a><b>text</b>", "<?xml version=\"1.0\"?><a><b>text</b><c/>"}) {
        parser->next();
        EXPECT_LE(in.getBuffer().getDeliveredBytes(), upTo.size() + lookAheadBytes) << describe(*parser);
    }
}

}  // namespace
