// How the parser finds out an input's encoding: from its first bytes, from its declaration, from the caller.

#include <gtest/gtest.h>

#include "support/ExpectError.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

/// The text in one of the Unicode forms.
std::string encode(std::string_view utf8Text, std::string_view form) {
    const UnicodeString text = fromUtf8(utf8Text);
    std::string bytes;
    const auto put = [&bytes, &form](std::uint32_t value, int size) {
        for (int i = 0; i < size; ++i) {
            const int shift = form.ends_with("LE") ? 8 * i : 8 * (size - 1 - i);
            bytes += static_cast<char>(value >> shift & 0xFF);
        }
    };
    if (form.starts_with("UTF-16")) {
        for (int32_t i = 0; i < text.length(); ++i) put(text[i], 2);
    } else if (form.starts_with("UTF-32")) {
        for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1))
            put(static_cast<std::uint32_t>(text.char32At(i)), 4);
    } else {
        bytes = utf8Text;
    }
    return bytes;
}
constexpr std::string_view mark = "\xEF\xBB\xBF";

struct DetectionRow {
    const char* form;
    bool hasMark;
    const char* encoding;  // as told by getInputEncoding
    bool startCounts;      // whether the first character is read as one, not to recognise the encoding
};
constexpr DetectionRow detectionRows[] = {
    {"UTF-8", false, "UTF-8", false},       {"UTF-8", true, "UTF-8", true},
    {"UTF-16LE", false, "UTF-16LE", false}, {"UTF-16LE", true, "UTF-16", false},
    {"UTF-16BE", false, "UTF-16BE", false}, {"UTF-16BE", true, "UTF-16", true},
    {"UTF-32LE", false, "UTF-32LE", false}, {"UTF-32LE", true, "UTF-32", true},
    {"UTF-32BE", false, "UTF-32BE", false}, {"UTF-32BE", true, "UTF-32", true},
};

TEST(LumXmlParserEncoding, isRecognisedFromTheFirstBytes) {
    for (const DetectionRow& row : detectionRows) {
        SCOPED_TRACE(testing::Message() << row.form << (row.hasMark ? " with mark" : ""));
        const int first = row.startCounts ? 1 : 0;
        const std::vector<EventRecord> expected = {
            {"START_TAG 1 a b=\"\\u00E9\"", {1, 8 + first}},
            {"TEXT 1 \"\\u3042\\u000A\\u1F600\"", {2, 3}},
            {"END_TAG 1 a", {2, 5}},
            {"END_DOCUMENT 0", {2, 5}},
        };
        const std::string document = "<a b='\xC3\xA9'>\xE3\x81\x82\r\n\xF0\x9F\x98\x80</a>";
        const std::string bytes = encode((row.hasMark ? std::string(mark) : std::string()) + document, row.form);
        // The same named from outside: a mark wins, and a name without byte order leaves the recognised one.
        const std::string family = std::string(row.form).substr(0, 6);
        for (const std::string& given : {std::string(), family == "UTF-8" ? std::string() : family}) {
            for (const std::size_t pieceBytes : {std::size_t{1}, std::size_t{3}, wholeInput}) {
                PieceStream in(bytes, pieceBytes);
                const LumPtr<LumXmlParser> parser = openParser(in, {.encoding = given});
                parser->next();
                EXPECT_EQ(utf8(parser->getInputEncoding()), row.encoding);
                EXPECT_EQ(recordEvents(bytes, Pull::events, {.encoding = given}, pieceBytes), expected);
            }
        }
    }
}

struct DeclarationRow {
    const char* fault;
    const char* form;  // of the bytes
    bool hasMark;
    const char* given;     // by the caller
    const char* declared;  // null: no declaration
    const char* encoding;  // as told by getInputEncoding
    const char* text;      // what the bytes C3 A9 in the form read as
};
constexpr const char* utf8Text = "\"\\u00E9\"";
constexpr const char* bytesText = "\"\\u00C3\\u00A9\"";
constexpr DeclarationRow declarationRows[] = {
    {"a declaration of what was recognised changes it", "UTF-8", false, "", "UTF-8", "UTF-8", utf8Text},
    {"names are told apart by case", "UTF-8", false, "", "utf-8", "utf-8", utf8Text},
    {"white space around the name counts", "UTF-8", false, "", " Utf-8 ", " Utf-8 ", utf8Text},
    {"Latin-1 is not switched to", "UTF-8", false, "", "ISO-8859-1", "ISO-8859-1", bytesText},
    {"a lower-case alias is unknown", "UTF-8", false, "", "latin1", "latin1", bytesText},
    {"an alias with a colon is unknown", "UTF-8", false, "", "ISO_8859-1:1987", "ISO_8859-1:1987", bytesText},
    {"ASCII rejects bytes above 0x7F", "UTF-8", false, "", "US-ASCII", "US-ASCII", bytesText},
    {"UTF-16 without byte order reads pairs", "UTF-8", false, "", "UTF-16", "UTF-16", bytesText},
    {"UCS-4 without byte order reads fours", "UTF-8", false, "", "ucs-4", "ucs-4", bytesText},
    {"UTF-8 declared with a mark is a conflict", "UTF-8", true, "", "UTF-8", "UTF-8", utf8Text},
    {"the declaration wins over the recognised form", "UTF-16LE", false, "", "UTF-8", "UTF-16LE", utf8Text},
    {"the declared byte order wins", "UTF-16LE", false, "", "UTF-16BE", "UTF-16LE", utf8Text},
    {"UTF-16 declared without byte order is a change", "UTF-16LE", false, "", "UTF-16", "UTF-16", utf8Text},
    {"UTF-16 declared with a mark is a conflict", "UTF-16LE", true, "", "UTF-16", "UTF-16", utf8Text},
    {"the declared byte order that is there is a conflict", "UTF-16BE", true, "", "UTF-16BE", "UTF-16BE", utf8Text},
    {"UCS-4 declared with a mark is a conflict", "UTF-32BE", true, "", "UCS-4", "UCS-4", utf8Text},
    {"a charset declared with a mark is a conflict", "UTF-8", true, "", "windows-1252", "UTF-8", utf8Text},
    {"a charset declared with a mark is converted", "UTF-16LE", true, "", "windows-1252", "UTF-16", utf8Text},
    {"what the caller says is forgotten", "UTF-8", false, "iso-8859-1", nullptr, "iso-8859-1", bytesText},
    {"what the caller says is overridden by a guess", "UTF-8", false, "UTF-8", nullptr, "UTF-8", utf8Text},
    {"what the caller says wins over the declaration", "UTF-8", false, "ISO-8859-1", "UTF-8", "UTF-8", utf8Text},
    {"what the caller says wins over the mark", "UTF-8", true, "ISO-8859-1", nullptr, "UTF-8", utf8Text},
    {"what the caller says wins over the mark", "UTF-16LE", true, "UTF-8", nullptr, "UTF-16", utf8Text},
    {"a charset from the caller hides the mark", "UTF-8", true, "windows-1252", "Shift_JIS", "UTF-8", utf8Text},
    {"a charset from the caller hides the mark", "UTF-32BE", true, "Shift_JIS", nullptr, "UTF-32", utf8Text},
    {"the byte order that the caller says is forgotten", "UTF-16LE", false, "utf-16le", nullptr, "utf-16le", utf8Text},
    {"zero bytes do not tell the form", "UTF-16BE", false, "ISO-8859-1", nullptr, "UTF-16BE", utf8Text},
    {"UTF-16 from the caller hides the form", "UTF-8", false, "UTF-16", nullptr, "UTF-8", utf8Text},
};

std::string makeDeclared(const DeclarationRow& row) {
    std::string document = row.hasMark ? std::string(mark) : std::string();
    if (row.declared) document += std::string("<?xml version='1.0' encoding='") + row.declared + "'?>";
    return encode(document + "<a>\xC3\xA9</a>", row.form);
}

TEST(LumXmlParserEncoding, isThatOfTheDeclarationOrTheCallerWhereTheBytesLeaveIt) {
    for (const DeclarationRow& row : declarationRows) {
        SCOPED_TRACE(row.fault);
        SCOPED_TRACE(testing::Message() << row.form << ' ' << row.given << ' ' << (row.declared ? row.declared : ""));
        for (const std::size_t pieceBytes : {std::size_t{1}, wholeInput}) {
            PieceStream in(makeDeclared(row), pieceBytes);
            const LumPtr<LumXmlParser> parser = openParser(in, {.encoding = row.given});
            ASSERT_EQ(parser->next(), LumXmlParser::START_TAG);
            EXPECT_EQ(utf8(parser->getInputEncoding()), row.encoding);
            parser->next();
            EXPECT_EQ(escape(parser->getText()), row.text);
            EXPECT_EQ(parser->next(), LumXmlParser::END_TAG);
        }
    }
}

constexpr DeclarationRow conflictRows[] = {
    {"", "UTF-8", true, "", "ISO-8859-1", "", ""},  {"", "UTF-8", true, "", "UTF-16", "", ""},
    {"", "UTF-16LE", true, "", "UTF-8", "", ""},    {"", "UTF-16LE", true, "", "UTF-16BE", "", ""},
    {"", "UTF-16BE", true, "", "UCS-4", "", ""},    {"", "UTF-32LE", true, "", "UTF-16", "", ""},
    {"", "UTF-32BE", true, "", "UTF-32LE", "", ""},
};

TEST(LumXmlParserEncoding, mayNotContradictTheMark) {
    for (const DeclarationRow& row : conflictRows) {
        SCOPED_TRACE(testing::Message() << row.form << " declares " << row.declared);
        PieceStream in(makeDeclared(row));
        const LumPtr<LumXmlParser> parser = openParser(in);
        const bool startCounts = std::string_view(row.form) != "UTF-16LE";
        const std::size_t column =
            std::string_view("<?xml version='1.0' encoding=''").size() + std::string_view(row.declared).size();
        expectParserError(0x1839, std::string("Conflict encoding: ") + row.declared + ".",
                          "START_DOCUMENT, Line 1, Col " + std::to_string(column - (startCounts ? 0 : 1)) + ".",
                          [&] { parser->next(); });
    }
}

TEST(LumXmlParserEncoding, mayBeUnknownWhenTheCallerSaysSo) {
    const std::string document = "<?xml version='1.0' encoding='no-such-charset'?><a>x</a>";
    EXPECT_EQ(getDescriptions(recordEvents(document, Pull::events,
                                           {.features = {LumXmlParser::FEATURE_IGNORE_UNSUPPORTED_ENCODING}})),
              (std::vector<std::string>{"START_TAG 1 a", "TEXT 1 \"x\"", "END_TAG 1 a", "END_DOCUMENT 0"}));
    // Only the built-in decoders: the other feature does not soften that.
    PieceStream in("<a/>");
    expectParserError(0x1835, "Unknown or unsupported encoding: EUC-JP.", "START_DOCUMENT.", [&] {
        openParser(in, {.features = {LumXmlParser::FEATURE_IGNORE_UNSUPPORTED_ENCODING,
                                     LumXmlParser::FEATURE_BUILTIN_ENCODINGS_ONLY},
                        .encoding = "EUC-JP",
                        .baseUri = "file:///base/"});
    });
}

// A first byte that begins no mark and no "<" leaves the encoding open: bytes are characters.
TEST(LumXmlParserEncoding, staysOpenBehindWhiteSpace) {
    PieceStream in(" <a>\xC3\xA9</a>");
    const LumPtr<LumXmlParser> parser = openParser(in);
    ASSERT_EQ(parser->next(), LumXmlParser::START_TAG);
    EXPECT_EQ(utf8(parser->getInputEncoding()), "");
    parser->next();
    EXPECT_EQ(escape(parser->getText()), bytesText);
}

}  // namespace
