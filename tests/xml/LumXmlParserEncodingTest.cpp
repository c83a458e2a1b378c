// How the parser finds out an input's encoding, from its first bytes, from its declaration and from the caller, and how
// bytes become characters, malformed sequences and the charsets of the world included; iconv made the twins.

#include <gtest/gtest.h>

#include "support/CharsetTwins.h"
#include "support/ExpectError.h"
#include "support/Sweeps.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

constexpr std::string_view mark = "\xEF\xBB\xBF";

std::string convert(std::string_view utf8Text, const std::string& form) {
    return convertByIconv("UTF-8", form.c_str(), utf8Text).value().bytes;
}

/// Event and encoding after the first `events` events.
std::string readUpTo(int events, std::string_view bytes, const ParserSetup& setup, std::size_t pieceBytes) {
    PieceStream in(bytes, pieceBytes);
    const LumPtr<LumXmlParser> parser = openParser(in, setup);
    while (events-- > 0) parser->next();
    return utf8(parser->getInputEncoding()) + " " + describe(*parser);
}

TEST(LumXmlParserEncoding, isRecognisedFromTheFirstBytes) {
    const std::string document = "<a b='\xC3\xA9'>\xE3\x81\x82\r\n\xF0\x9F\x98\x80</a>";
    for (const std::string form : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        for (const bool hasMark : {false, true}) {
            SCOPED_TRACE(form + (hasMark ? " with mark" : ""));
            // Whether the first character is read as one, not to recognise the encoding.
            const int first = hasMark && form != "UTF-16LE" ? 1 : 0;
            const std::vector<EventRecord> expected = {
                {"START_TAG 1 a b=\"\\u00E9\"", {1, 8 + first}},
                {"TEXT 1 \"\\u3042\\u000A\\u1F600\"", {2, 3}},
                {"END_TAG 1 a", {2, 5}},
                {"END_DOCUMENT 0", {2, 5}},
            };
            const std::string bytes = convert((hasMark ? std::string(mark) : "") + document, form);
            for (const std::size_t pieceBytes : readSizes)
                EXPECT_EQ(recordEvents(bytes, Pull::events, {}, pieceBytes), expected);
        }
    }
}

TEST(LumXmlParserEncoding, isThatOfTheDeclarationOrTheCallerWhereTheBytesLeaveIt) {
    for (const std::vector<std::string>& row : readEscapedRows("xml/encodings.txt", 6)) {
        SCOPED_TRACE(row[5] + ": " + row[0] + " " + row[1] + " " + row[2]);
        const std::string form = row[0].substr(0, row[0].find(' '));
        std::string document = form == row[0] ? "" : std::string(mark);
        const std::size_t start = form == "UTF-16LE" ? 1 : 0;
        if (row[2] != "-") document += "<?xml version='1.0' encoding='" + row[2] + "'?>";
        const std::string bytes = convert(document + "<a>\xC3\xA9</a>", form),
                          column = std::to_string(31 + row[2].size() - start);
        for (const std::size_t pieceBytes : readSizes) {
            const auto read = [&] { return readUpTo(2, bytes, {.encoding = row[1]}, pieceBytes); };
            if (row[4] == "conflict") {
                expectParserError(0x1839, "Conflict encoding: " + row[2] + ".",
                                  "START_DOCUMENT, Line 1, Col " + column + ".", read);
            } else {
                EXPECT_EQ(read(), row[3] + " TEXT 1 " + row[4]);
            }
        }
    }
    const ParserSetup builtinOnly{.features = readSetup("ignore-encoding builtin-only").features, .encoding = "EUC-JP"};
    expectParserError(0x1835, "Unknown or unsupported encoding: EUC-JP.", "START_DOCUMENT.",
                      [&] { readUpTo(0, "<a/>", builtinOnly, wholeInput); });
    // A section that is passed over leaves the document at its start.
    for (const std::size_t pieceBytes : readSizes) {
        EXPECT_EQ(readUpTo(2, "<![x[]]><?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA9</a>", {}, pieceBytes),
                  "ISO-8859-1 TEXT 1 \"\\u00C3\\u00A9\"");
    }
    // A first byte that begins no mark and no "<" leaves the encoding open: bytes are characters.
    EXPECT_EQ(readUpTo(2, " <a>\xC3\xA9</a>", {}, wholeInput), " TEXT 1 \"\\u00C3\\u00A9\"");
}

// After ASCII of every length that ends in another place of a vector.
TEST(LumXmlParserEncoding, replacesWhatIsMalformedAndPairsUnits) {
    for (const std::vector<std::string>& row : readEscapedRows("xml/sequences.txt", 4)) {
        SCOPED_TRACE(row[3]);
        for (std::size_t before = 0; before < 34; ++before) {
            const std::string filler(before, 'x'), start = "<a><![CDATA[" + filler, end = "]]></a>";
            std::vector<std::string> documents = {start + row[1] + end};
            if (row[0] == "UTF-16") {
                std::istringstream units(row[1]);
                std::string little, big;
                for (int unit; units >> std::hex >> unit;) {
                    big += {static_cast<char>(unit >> 8), static_cast<char>(unit)};
                    little += {static_cast<char>(unit), static_cast<char>(unit >> 8)};
                }
                documents = {convert(start, "UTF-16BE") + big + convert(end, "UTF-16BE"),
                             convert(start, "UTF-16LE") + little + convert(end, "UTF-16LE")};
            }
            for (const std::string& document : documents) {
                for (const std::size_t pieceBytes : readSizes) {
                    const std::vector<EventRecord> records = recordEvents(document, Pull::tokens, {}, pieceBytes);
                    EXPECT_EQ(records.at(1).event, "CDSECT 1 \"" + filler + row[2].substr(1));
                    EXPECT_EQ(records.at(2).event + ", " + records.back().event, "END_TAG 1 a, END_DOCUMENT 0");
                }
            }
        }
    }
}

/// The document after another declaration; names of one width, as columns count them.
std::string declare(std::string_view document, std::string charset) {
    charset += "'";
    charset.resize(16, ' ');
    return "<?xml version='1.0' encoding='" + charset + std::string(document.substr(document.find("?>")));
}

TEST(LumXmlParserEncoding, mayBeAnyCharsetInTextAndMarkup) {
    for (const std::vector<std::string>& row : readEscapedRows("xml/charsets.txt", 3)) {
        SCOPED_TRACE(row[0]);
        const Twins twins = makeTwins(row[2], row[1].c_str());
        std::string twin;
        UnicodeString(twins.units.data(), static_cast<int32_t>(twins.units.size())).toUTF8String(twin);
        const std::string document = declare(twins.bytes, row[0]);
        const std::vector<EventRecord> expected = recordEvents(declare(twin, "UTF-8"), Pull::tokens);
        ASSERT_EQ(expected.back().event, "END_DOCUMENT 0");
        for (const std::size_t pieceBytes : {std::size_t{1}, std::size_t{7}, wholeInput})
            EXPECT_TRUE(recordEvents(document, Pull::tokens, {}, pieceBytes) == expected) << pieceBytes;
        EXPECT_TRUE(readUpTo(1, document, {}, wholeInput).starts_with(row[0]));
        // The caller knows the charset of a document that does not tell it.
        EXPECT_TRUE(recordEvents(document.substr(document.find('<', 1)), Pull::tokens, {.encoding = row[0]}) ==
                    recordEvents(twin.substr(twin.find('<', 1)), Pull::tokens, {.encoding = "UTF-8"}));
    }
}

}  // namespace
