// How bytes become characters, malformed sequences included.

#include <gtest/gtest.h>

#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

/// The text of a CDATA section, in which every character but "]]>" is data.
UnicodeString readSection(const std::string& document, std::size_t pieceBytes = wholeInput) {
    PieceStream in(document, pieceBytes);
    const LumPtr<LumXmlParser> parser = openParser(in);
    parser->nextToken();
    parser->nextToken();
    EXPECT_EQ(parser->getEventType(), LumXmlParser::CDSECT);
    const UnicodeString text = parser->getText();
    EXPECT_EQ(parser->nextToken(), LumXmlParser::END_TAG);
    return text;
}

struct SequenceRow {
    const char* fault;
    const char* bytes;
    const char* text;
};
constexpr SequenceRow sequenceRows[] = {
    {"a good sequence is refused", "\xC3\xA9\xE3\x81\x82\xF0\x9F\x98\x80", "\"\\u00E9\\u3042\\u1F600\""},
    {"the bad byte is read again", "\xC3(\xE3(\xE3\x81(\xF0\x9F\x98(", "\"\\uFFFD\\uFFFD\\uFFFD\\uFFFD\""},
    {"a lead byte in place of a continuation starts a sequence", "\xC3\xC3\xA9", "\"\\uFFFD\\uFFFD\""},
    {"a stray continuation takes its neighbour", "\x80y\xBFy", "\"\\uFFFDy\\uFFFDy\""},
    {"a byte that leads nothing takes its neighbour", "\xF8y\xFEy\xFFy", "\"\\uFFFDy\\uFFFDy\\uFFFDy\""},
    {"a form that is too long is refused", "\xC1\x81\xE0\x81\x81\xF0\x80\x81\x81", "\"AAA\""},
    {"a line end in a form that is too long is kept", "\xC0\x8D\xC0\x8Ay", "\"\\u000Ay\""},
    {"a number above the last character is kept", "\xF4\x90\x80\x80y\xF7\xBF\xBF\xBFy", "\"\\uFFFDy\\uFFFDy\""},
    {"a surrogate is replaced", "\xED\xA0\x80y\xED\xBF\xBFy", "\"\\uD800y\\uDFFFy\""},
    {"a run of ideographs hides a bad sequence, a line end or a form that is too long",
     "\xE4\xB8\x80\xE4\xB8\x80\xE4(\xE4\xB8\x80\xE2\x80\xA8\xE4\xB8\x80\xE0\x81\x81\xE4\xB8\x80",
     "\"\\u4E00\\u4E00\\uFFFD\\u4E00\\u000A\\u4E00A\\u4E00\""},
};

// Behind ASCII of every length that ends in another place of a vector.
TEST(LumXmlParserDecoding, replacesWhatIsMalformed) {
    for (const SequenceRow& row : sequenceRows) {
        SCOPED_TRACE(row.fault);
        for (std::size_t before = 0; before < 34; ++before) {
            const std::string filler(before, 'x');
            for (const std::size_t pieceBytes : {std::size_t{1}, wholeInput}) {
                EXPECT_EQ(escape(readSection("<a><![CDATA[" + filler + row.bytes + "]]></a>", pieceBytes)),
                          "\"" + filler + (row.text + 1));
            }
        }
    }
}

// A sequence may lie across any border of a block.
TEST(LumXmlParserDecoding, joinsSequencesAcrossBlocks) {
    const std::string tail = "\xF0\x9F\x98\x80\xE3\x81\x82\xC3\xA9\xE3(\r\n\xC2\x85";
    for (const std::size_t border : {4096, 16384, 65536}) {
        for (std::size_t inside = 0; inside <= tail.size(); ++inside) {
            const std::string filler(border - inside - 12, 'x');
            UnicodeString expected = fromUtf8(filler);
            expected.append(u"\U0001F600\u3042\u00E9\uFFFD\n\n");
            EXPECT_EQ(readSection("<a><![CDATA[" + filler + tail + "]]></a>"), expected);
        }
    }
}

/// A document in UTF-16 whose section holds these units.
std::string makeUtf16(const std::vector<std::uint16_t>& units, bool bigEndian) {
    std::string bytes;
    const auto put = [&](std::uint16_t unit) {
        bytes += static_cast<char>(bigEndian ? unit >> 8 : unit & 0xFF);
        bytes += static_cast<char>(bigEndian ? unit & 0xFF : unit >> 8);
    };
    for (const char c : std::string_view("<a><![CDATA[")) put(static_cast<unsigned char>(c));
    for (const std::uint16_t unit : units) put(unit);
    for (const char c : std::string_view("]]></a>")) put(static_cast<unsigned char>(c));
    return bytes;
}

struct UnitRow {
    const char* fault;
    std::vector<std::uint16_t> units;
    std::u16string text;
};
const UnitRow unitRows[] = {
    {"the first pair is no pair", {0xD800, 0xDC00}, u"\U00010000"},
    {"the last pair is no pair", {0xDBFF, 0xDFFF}, u"\U0010FFFF"},
    {"a low surrogate alone is replaced", {'x', 0xDC00, 0xDFFF, 'y'}, std::u16string{u'x', 0xDC00, 0xDFFF, u'y'}},
    {"what follows a high surrogate is kept", {'x', 0xD800, 'y', 'z'}, u"x\uFFFDz"},
    {"a second high surrogate starts a pair", {0xD800, 0xD800, 0xDC00, 'z'}, std::u16string{0xFFFD, 0xDC00, u'z'}},
    {"the units beside the surrogates are taken for them", {0xD7FF, 0xE000}, u"\uD7FF\uE000"},
    {"line ends are not folded", {'x', '\r', '\n', 0x2028, 0x85, '\r', 0x85, '\r', 'y'}, u"x\n\n\n\n\ny"},
};

TEST(LumXmlParserDecoding, pairsTheUnitsOfUtf16) {
    for (const UnitRow& row : unitRows) {
        SCOPED_TRACE(row.fault);
        for (const bool bigEndian : {false, true}) {
            for (std::size_t before = 0; before < 18; ++before) {
                std::vector<std::uint16_t> units(before, 'x');
                units.insert(units.end(), row.units.begin(), row.units.end());
                const std::u16string text = std::u16string(before, u'x') + row.text;
                for (const std::size_t pieceBytes : {std::size_t{1}, std::size_t{3}, wholeInput}) {
                    EXPECT_EQ(escape(readSection(makeUtf16(units, bigEndian), pieceBytes)),
                              escape(UnicodeString(text.data(), static_cast<int32_t>(text.size()))));
                }
            }
        }
    }
}

TEST(LumXmlParserDecoding, endsAtHalfACharacter) {
    const std::string cut[] = {"<a>\xC3",
                               "<a>\xE3\x81",
                               "<a>\xF0\x9F\x98",
                               makeUtf16({0xD83D}, false).substr(0, 26),
                               makeUtf16({'x'}, true).substr(0, 25),
                               std::string("\0\0\0<\0\0\0a\0\0", 10),
                               std::string("\xFF\xFE\0\0<\0\0\0a\0\0\0>\0\0", 15)};
    for (const std::string& bytes : cut) {
        for (const std::size_t pieceBytes : {std::size_t{1}, wholeInput}) {
            const std::vector<EventRecord> records = recordEvents(bytes, Pull::events, {}, pieceBytes);
            EXPECT_TRUE(records.back().event.starts_with("error ")) << records.back();
        }
    }
}

// Numbers above U+10FFFF and surrogates in UTF-32 have no reading of their own; they must not harm.
TEST(LumXmlParserDecoding, survivesNumbersThatAreNoCharacters) {
    for (const char* bytes : {"\0\x11\0\0", "\xFF\xFF\xFF\xFF", "\0\0\xD8\0", "\x7F\xFF\xFF\xFF", "\x80\0\0\0"}) {
        const std::string document = std::string("\0\0\0<\0\0\0a\0\0\0>\0\0\0x", 16) + std::string(bytes, 4) +
                                     std::string("\0\0\0y\0\0\0<\0\0\0/\0\0\0a\0\0\0>", 20);
        const std::vector<EventRecord> records = recordEvents(document, Pull::events);
        ASSERT_GE(records.size(), 2u);
        EXPECT_EQ(records[0].event, "START_TAG 1 a");
    }
}

}  // namespace
