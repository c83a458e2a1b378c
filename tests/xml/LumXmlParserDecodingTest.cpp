// How bytes become characters, malformed sequences included: over small domains in full, against a decoder that
// follows the rules one byte at a time.

#include <gtest/gtest.h>

#include <array>

#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

constexpr UChar32 replacement = 0xFFFD;

/// The rules for UTF-8: the lead byte tells how many more are read; the first of these that is no continuation is
/// consumed and what was read so far is one U+FFFD. Forms that are too long are accepted.
UnicodeString decodeUtf8(std::string_view bytes) {
    UnicodeString text;
    for (std::size_t i = 0; i < bytes.size();) {
        const auto lead = static_cast<unsigned char>(bytes[i++]);
        int more = 0;
        UChar32 c = lead;
        if (lead >= 0xF8 || (lead >= 0x80 && lead < 0xC0)) {
            c = replacement;
        } else if (lead >= 0xF0) {
            more = 3;
            c = lead & 0x07;
        } else if (lead >= 0xE0) {
            more = 2;
            c = lead & 0x0F;
        } else if (lead >= 0xC0) {
            more = 1;
            c = lead & 0x1F;
        }
        for (; more > 0 && i < bytes.size(); --more) {
            const auto next = static_cast<unsigned char>(bytes[i++]);
            if ((next & 0xC0) != 0x80) {
                c = replacement;
                break;
            }
            c = (c << 6) | (next & 0x3F);
        }
        if (c > 0x10FFFF) c = replacement;
        if (c >= 0xD800 && c < 0xE000) {
            text.append(static_cast<char16_t>(c));
        } else {
            text.append(c);
        }
    }
    return text;
}

/// Line ends as they are read: CR, CR LF, CR NEL, NEL and the line separator are one line feed.
UnicodeString foldLineEnds(const UnicodeString& text) {
    UnicodeString folded;
    for (int32_t i = 0; i < text.length(); ++i) {
        const char16_t unit = text[i];
        if (unit == u'\r' && i + 1 < text.length() && (text[i + 1] == u'\n' || text[i + 1] == 0x85)) ++i;
        folded.append(unit == u'\r' || unit == 0x85 || unit == 0x2028 ? u'\n' : unit);
    }
    return folded;
}

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

void expectDecoded(const std::string& bytes) {
    const UnicodeString expected = foldLineEnds(decodeUtf8("x" + bytes + "zzz"));
    for (const std::size_t pieceBytes : {std::size_t{1}, wholeInput}) {
        const UnicodeString text = readSection("<a><![CDATA[x" + bytes + "zzz]]></a>", pieceBytes);
        if (text != expected) {
            ADD_FAILURE() << escape(UnicodeString(bytes.c_str(), static_cast<int32_t>(bytes.size()), "ISO-8859-1"))
                          << " reads as " << escape(text) << ", not as " << escape(expected);
        }
    }
}

TEST(LumXmlParserDecoding, takesEveryByteBehindEveryClassOfLeadByte) {
    // First and last lead byte of each class, and those whose continuation other decoders restrict.
    constexpr unsigned char leads[] = {0x00, 0x7F, 0x80, 0xBF, 0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xE2,
                                       0xED, 0xEF, 0xF0, 0xF4, 0xF5, 0xF7, 0xF8, 0xFE, 0xFF};
    constexpr std::string_view tails[] = {"", "\x80", "\xBE", "\x80\x80", "\xBF\xBF", "\x9F\x41"};
    for (const unsigned char lead : leads) {
        for (int second = 0; second < 256; ++second) {
            for (const std::string_view tail : tails) {
                std::string bytes{static_cast<char>(lead), static_cast<char>(second)};
                bytes += tail;
                // U+FFFF stands for the end of the input.
                if (decodeUtf8(bytes + "zzz").indexOf(static_cast<char16_t>(0xFFFF)) < 0) expectDecoded(bytes);
            }
        }
    }
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
};

TEST(LumXmlParserDecoding, replacesWhatIsMalformed) {
    for (const SequenceRow& row : sequenceRows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(escape(readSection(std::string("<a><![CDATA[") + row.bytes + "]]></a>")), row.text);
    }
}

// A sequence may lie across any border of a block.
TEST(LumXmlParserDecoding, joinsSequencesAcrossBlocks) {
    const std::string tail = "\xF0\x9F\x98\x80\xE3\x81\x82\xC3\xA9\xE3(\r\n\xC2\x85";
    for (const std::size_t border : {4096, 16384, 65536}) {
        for (std::size_t inside = 0; inside <= tail.size(); ++inside) {
            const std::string filler(border - inside - 12, 'x');
            EXPECT_EQ(readSection("<a><![CDATA[" + filler + tail + "]]></a>"), foldLineEnds(decodeUtf8(filler + tail)));
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
            for (const std::size_t pieceBytes : {std::size_t{1}, std::size_t{3}, wholeInput}) {
                EXPECT_EQ(escape(readSection(makeUtf16(row.units, bigEndian), pieceBytes)),
                          escape(UnicodeString(row.text.data(), static_cast<int32_t>(row.text.size()))));
            }
        }
    }
}

TEST(LumXmlParserDecoding, takesEveryUnitOfUtf16) {
    std::vector<std::uint16_t> units;
    UnicodeString expected;
    for (int unit = 0; unit < 0xFFFF; ++unit) {  // the last one stands for the end of the input
        if (unit >= 0xD800 && unit < 0xDC00) continue;
        units.push_back(static_cast<std::uint16_t>(unit));
        expected.append(static_cast<char16_t>(unit));
        units.push_back('-');
        expected.append(u'-');
    }
    EXPECT_EQ(readSection(makeUtf16(units, false)), foldLineEnds(expected));
    EXPECT_EQ(readSection(makeUtf16(units, true), 4096), foldLineEnds(expected));
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

// 0xFFFFFFFF and its like aside, UTF-8 can reach past U+10FFFF too.
TEST(LumXmlParserDecoding, countsEachReplacedSequenceOnce) {
    const std::vector<EventRecord> records = recordEvents("<a>\xF4\x90\x80\x80\xE3(\xFF</a>", Pull::tokens);
    ASSERT_GE(records.size(), 2u);
    EXPECT_EQ(records[1], (EventRecord{"TEXT 1 \"\\uFFFD\\uFFFD\\uFFFD\"", {1, 6}}));
}

}  // namespace
