// Documents in the charsets of the world, read as their twins in UTF-8; iconv made the twins.

#include <gtest/gtest.h>

#include "support/CharsetTwins.h"
#include "support/ExpectError.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

struct CharsetRow {
    const char* charset;    // as a document names it
    const char* iconvName;  // of the same code
    const char* language;
};
constexpr CharsetRow charsetRows[] = {
    {"Shift_JIS", "SHIFT_JIS", "ja"},   {"EUC-JP", "EUC-JP", "ja"},       {"ISO-2022-JP", "ISO-2022-JP", "ja"},
    {"GB2312", "GB2312", "zh"},         {"Big5", "BIG5", "zh_TW"},        {"KS_C_5601-1987", "CP949", "ko"},
    {"EUC-KR", "EUC-KR", "ko"},         {"windows-1252", "CP1252", "de"}, {"windows-1256", "CP1256", "ar"},
    {"ISO-8859-8", "ISO-8859-8", "he"}, {"TIS-620", "TIS-620", "th"},     {"KOI8-R", "KOI8-R", "ru"},
};

std::string toBytes(const std::u16string& units) {
    return toUtf8(UnicodeString(units.data(), static_cast<int32_t>(units.size())));
}
std::string getFile(const std::string& language) {
    return language == "zh" ? "cjk/help.utf8.xml" : "charsets/" + language + ".xml";
}
/// The document behind another declaration of the encoding.
std::string declare(std::string_view document, const std::string& charset) {
    const std::size_t end = document.find("?>");
    EXPECT_NE(end, std::string_view::npos);
    return "<?xml version='1.0' encoding='" + charset + "'?>" + std::string(document.substr(end + 2));
}

TEST(LumXmlParserCharset, isConvertedToTheEventsOfTheTwin) {
    for (const CharsetRow& row : charsetRows) {
        SCOPED_TRACE(row.charset);
        const Twins twins = makeTwins(getFile(row.language), row.iconvName);
        // The column behind the declaration counts the name.
        const std::string name = row.charset;
        std::string twin = declare(toBytes(twins.units), "UTF-8");
        twin.insert(twin.find("?>"), name.size() - std::min<std::size_t>(name.size(), 5), ' ');
        const std::string document =
            declare(twins.bytes, name + std::string(name.size() < 5 ? 5 - name.size() : 0, ' '));
        const std::vector<EventRecord> expected = recordEvents(twin, Pull::tokens);
        ASSERT_EQ(expected.back().event, "END_DOCUMENT 0");
        for (const std::size_t pieceBytes : {std::size_t{1}, std::size_t{7}, wholeInput}) {
            EXPECT_TRUE(recordEvents(document, Pull::tokens, {}, pieceBytes) == expected) << pieceBytes;
        }
        PieceStream in(document);
        const LumPtr<LumXmlParser> parser = openParser(in);
        parser->next();
        EXPECT_EQ(utf8(parser->getInputEncoding()).substr(0, name.size()), name);
    }
}

// Names and attributes too are in the charset, and a second byte may look like markup.
TEST(LumXmlParserCharset, holdsInMarkupToo) {
    const std::string body =
        "<\xE8\xA1\xA8 \xE5\x8D\x81='\xE3\x82\xBD\xE8\xA1\xA8'>\xE3\x83\x9D<!--\xE8\xA1\xA8--></\xE8\xA1\xA8>";
    const std::vector<std::string> expected = {"START_TAG 1 \xE8\xA1\xA8 \xE5\x8D\x81=\"\\u30BD\\u8868\"",
                                               "TEXT 1 \"\\u30DD\"", "COMMENT 1 \"\\u8868\"", "END_TAG 1 \xE8\xA1\xA8",
                                               "END_DOCUMENT 0"};
    for (const char* charset : {"Shift_JIS", "ISO-2022-JP", "EUC-JP", "GB18030"}) {
        SCOPED_TRACE(charset);
        const auto bytes = convertByIconv("UTF-8", charset, body);
        ASSERT_TRUE(bytes.has_value());
        const std::string document = "<?xml version='1.0' encoding='" + std::string(charset) + "'?>" + bytes->bytes;
        EXPECT_EQ(getDescriptions(recordEvents(document, Pull::tokens)), expected);
        EXPECT_EQ(getDescriptions(recordEvents(document, Pull::tokens, {}, 1)), expected);
        // The caller knows the charset of a document that does not tell it.
        const LumTest::Setup given{.encoding = charset};
        EXPECT_EQ(getDescriptions(recordEvents(bytes->bytes, Pull::tokens, given)), expected);
    }
}

TEST(LumXmlParserCharset, doesNotOverruleTheFormOfUnicodeThatTheBytesShow) {
    const std::string document = "<?xml version='1.0' encoding='Shift_JIS'?><a>\xE8\xA1\xA8</a>";
    for (const char* form : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        SCOPED_TRACE(form);
        const auto bytes = convertByIconv("UTF-8", form, document);
        ASSERT_TRUE(bytes.has_value());
        for (const std::size_t pieceBytes : {std::size_t{1}, std::size_t{7}, wholeInput}) {
            PieceStream in(bytes->bytes, pieceBytes);
            const LumPtr<LumXmlParser> parser = openParser(in);
            parser->next();
            EXPECT_EQ(utf8(parser->getInputEncoding()), form);
            parser->next();
            EXPECT_EQ(describe(*parser), "TEXT 1 \"\\u8868\"");
        }
    }
}

}  // namespace
