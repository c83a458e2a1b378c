#include <gtest/gtest.h>
#include <lumcommon/streams/LumKobStream.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <string_view>

#include "support/CharsetTwins.h"
#include "support/PieceStream.h"
#include "support/Utf8.h"

namespace LumCommon {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using LumTest::PieceStream;

std::string readAll(std::istream& in) {
    std::string all;
    char block[1000];
    while (in.read(block, sizeof block), in.gcount() > 0) all.append(block, static_cast<std::size_t>(in.gcount()));
    return all;
}

std::u16string decode(std::string_view bytes, const char* encoding, std::size_t pieceBytes = LumTest::wholeInput) {
    PieceStream source(bytes, pieceBytes);
    LumKobStream in(&source, encoding);
    EXPECT_TRUE(in.is_open()) << encoding;
    return LumTest::toUnits(readAll(in));
}

/// The same by the functions below the streams, with blocks as small as one byte in and room for one character out.
std::u16string decodeInBlocks(std::string_view bytes, const char* encoding, unsigned blockBytes, unsigned roomBytes) {
    CConvContext context;
    EXPECT_EQ(cconvInitConvert(context, {}, "UTF-16"), 0);
    EXPECT_EQ(cconvChgCharset(context, {}, encoding), 0);
    std::string result;
    std::string room(roomBytes, '\0');
    context.output = room.data();
    context.outputCapacity = roomBytes;
    for (std::size_t at = 0; context.status == 0;) {
        const std::string block(bytes.substr(at, blockBytes));
        at += block.size();
        context.input = block.data();
        context.inputConsumed = 0;
        context.inputAvailable = static_cast<unsigned>(block.size());
        context.isLastInput = at == bytes.size();
        do {
            EXPECT_EQ(cconvConvert(context), 0);
            result.append(room, 0, context.outputProduced);
        } while (context.outputProduced > 0);
        EXPECT_EQ(context.inputConsumed, context.inputAvailable) << "input is left although there was room";
    }
    cconvTermConvert(context);
    return LumTest::toUnits(result);
}

struct TwinCase {
    const char* file;
    const char* iconvName;
    const char* encoding;
    const char* detected;  // null: the statistics may take it for a neighbour
};

constexpr TwinCase twinCases[] = {
    {"ja", "CP932", "Shift_JIS", "WINDOWS31J"},
    {"ja", "SHIFT_JIS", "shift-jis", "WINDOWS31J"},
    {"ja", "CP932", "windows-31j", "WINDOWS31J"},
    {"ja", "EUC-JP", "euc-jp", "EUC-JP"},
    {"ja", "ISO-2022-JP", "iso-2022-jp", "ISO-2022-JP"},
    {"ja", "UTF-8", "UTF-8", "UTF-8"},
    {"ja", "UTF-16LE", "UTF-16LE", "UTF-16LE"},
    {"ja", "UTF-16BE", "utf-16be", "UTF-16BE"},
    {"ja", "UTF-16", "UTF-16", "UTF-16LE"},  // iconv writes a mark
    {"ja", "UTF-32BE", "UTF-32BE", "UTF-32BE"},
    {"ja", "UTF-7", "UTF-7", nullptr},
    {"../cjk/help.utf8", "GB2312", "gb2312", "GB18030"},
    {"../cjk/help.utf8", "GBK", "GBK", "GB18030"},
    {"../cjk/help.utf8", "GB18030", "gb18030", "GB18030"},
    {"ja", "GB18030", "GB18030", nullptr},
    {"ru", "GB18030", "GB18030", nullptr},
    {"zh_TW", "BIG5", "big5", "ChineseBIG5"},
    {"ko", "EUC-KR", "EUC-KR", "KoreanKSC"},
    {"ko", "UHC", "ks_c_5601-1987", "KoreanKSC"},
    {"ko", "UHC", "Korean", "KoreanKSC"},
    {"cs", "CP1250", "windows-1250", nullptr},
    {"cs", "ISO-8859-2", "ISO-8859-2", nullptr},
    {"ru", "CP1251", "windows-1251", "windows-1251"},
    {"ru", "ISO-8859-5", "ISO-8859-5", "ISO-8859-5"},
    {"ru", "KOI8-R", "koi8-r", "KOI8-R"},
    {"de", "CP1252", "windows-1252", "windows-1252"},
    {"de", "ISO-8859-1", "iso-8859-1", "windows-1252"},
    {"de", "ISO-8859-15", "ISO-8859-15", nullptr},
    {"el", "CP1253", "windows-1253", nullptr},
    {"el", "ISO-8859-7", "ISO-8859-7", "ISO-8859-7"},
    {"tr", "CP1254", "windows-1254", nullptr},
    {"tr", "ISO-8859-9", "ISO-8859-9", nullptr},
    {"he", "CP1255", "windows-1255", nullptr},
    {"he", "ISO-8859-8", "ISO-8859-8", nullptr},
    {"ar", "CP1256", "windows-1256", "windows-1256"},
    {"ar", "ISO-8859-6", "ISO-8859-6", "ISO-8859-6"},
    {"lt", "CP1257", "windows-1257", nullptr},
    {"lt", "ISO-8859-4", "ISO-8859-4", nullptr},
    {"lt", "ISO-8859-13", "ISO-8859-13", nullptr},
    {"th", "ISO-8859-11", "ISO-8859-11", nullptr},
};

LumTest::Twins makeTwins(const TwinCase& c) { return LumTest::makeTwins("charsets/"s + c.file + ".xml", c.iconvName); }

TEST(LumKobStream, decodesLikeTheTwinAtEveryPieceSize) {
    for (const TwinCase& c : twinCases) {
        SCOPED_TRACE(c.iconvName);
        const LumTest::Twins twins = makeTwins(c);
        for (const std::size_t pieceBytes : {1u, 2u, 3u, 7u, 4096u}) {
            EXPECT_TRUE(decode(twins.bytes, c.encoding, pieceBytes) == twins.units) << pieceBytes;
        }
    }
}

TEST(LumKobStream, recognisesACharsetWithoutItsName) {
    for (const TwinCase& c : twinCases) {
        if (!c.detected) continue;
        SCOPED_TRACE(c.iconvName);
        const LumTest::Twins twins = makeTwins(c);
        std::istringstream source(twins.bytes);
        UnicodeString name;
        bool bom = true;
        ASSERT_TRUE(LumKobStream::detectEncoding(&source, name, bom));
        EXPECT_EQ(LumTest::utf8(name), c.detected);
        EXPECT_EQ(bom, std::string_view(c.iconvName) == "UTF-16");
        EXPECT_EQ(source.tellg(), 0);
        LumKobStream in(&source, nullptr);
        EXPECT_TRUE(LumTest::toUnits(readAll(in)) == twins.units);
    }
}

struct DetectCase {
    const char* fault;
    std::string_view bytes;
    const char* name;  // null: anything but UTF-8
    bool bom;
};

constexpr DetectCase detectCases[] = {
    {"the mark of UTF-32 is taken for that of UTF-16", "\xFF\xFE\0\0<\0\0\0"sv, "UTF-32LE", true},
    {"a mark without text is not enough", "\xFE\xFF"sv, "UTF-16BE", true},
    {"the mark of UTF-8 is not seen", "\xEF\xBB\xBF<a/>"sv, "UTF-8", true},
    {"plain text needs a guess", "<a/>\r\n"sv, "US-ASCII", false},
    {"UTF-8 cut inside a character is refused", "price: 5 \xE2\x82"sv, "UTF-8", false},
    {"one bad byte makes it another charset",
     "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82 \xFF \xD0\xBC\xD0\xB8\xD1\x80\xD1\x83\xD1\x83"sv, "UTF-8",
     false},
    {"an overlong form passes as UTF-8", "<a>\xC0\xAF</a>"sv, nullptr, false},
    {"a surrogate passes as UTF-8", "<a>\xED\xA0\x80</a>"sv, nullptr, false},
};

TEST(LumKobStream, recognisesMarksAndWellFormedText) {
    for (const DetectCase& c : detectCases) {
        SCOPED_TRACE(c.fault);
        std::istringstream source{std::string(c.bytes)};
        UnicodeString name = u"untouched";
        bool bom = false;
        const bool isFound = LumKobStream::detectEncoding(&source, name, bom);
        if (c.name) {
            EXPECT_TRUE(isFound);
            EXPECT_EQ(LumTest::utf8(name), c.name);
            EXPECT_EQ(bom, c.bom);
        } else {
            EXPECT_NE(name, u"UTF-8");
        }
        EXPECT_TRUE(source.good());
    }
}

TEST(LumKobStream, leavesTheAnswerAloneWithoutText) {
    UnicodeString name = u"untouched";
    bool bom = true;
    std::istringstream empty;
    EXPECT_FALSE(LumKobStream::detectEncoding(&empty, name, bom));
    EXPECT_TRUE(empty.good());
    EXPECT_FALSE(LumKobStream::detectEncoding(static_cast<std::istream*>(nullptr), name, bom));
    EXPECT_FALSE(LumKobStream::detectEncoding(LUM_TEST_DATA "/charsets/no-such-file.xml", name, bom));
    EXPECT_EQ(name, u"untouched");
    EXPECT_TRUE(bom);
    EXPECT_TRUE(LumKobStream::detectEncoding(LUM_TEST_DATA "/charsets/ru.xml", name, bom));
    EXPECT_EQ(LumTest::utf8(name), "UTF-8");
    EXPECT_FALSE(bom);
}

TEST(LumKobStream, dropsADetectedMarkOnce) {
    std::istringstream source("\xEF\xBB\xBF\xEF\xBB\xBFx");
    LumKobStream in(&source, nullptr);
    EXPECT_EQ(LumTest::toUnits(readAll(in)), u"\uFEFFx");
    EXPECT_EQ(decode("\xEF\xBB\xBFx", "UTF-8"), u"\uFEFFx") << "nobody said that there is a mark";
}

struct NameCase {
    const char* given;
    const char* libraryName;
};

constexpr NameCase nameCases[] = {
    {"big5", "ChineseBIG5"},      {"gb2312", "ChineseGBK"},        {"Gbk", "ChineseGBK"},
    {"iso-ir-149", "KoreanKSC"},  {"ks_c_5601-1987", "KoreanKSC"}, {"KoreanKSC", "KoreanKSC"},
    {"Shift_JIS", "WINDOWS31J"},  {"shift-jis", "WINDOWS31J"},     {"windows-31j", "WINDOWS31J"},
    {"euc-jp", "EUC-JP"},         {"iso-2022-jp", "ISO-2022-JP"},  {"koi8-r", "koi8-r"},
    {"big5-hkscs", "big5-hkscs"}, {"gb2312x", "gb2312x"},          {"", ""},
};

TEST(LumKobStream, givesTheConversionItsOwnNames) {
    for (const NameCase& c : nameCases) EXPECT_STREQ(LumKobStreamBuf::getLibraryName(c.given), c.libraryName);
}

TEST(LumKobStream, staysClosedForWhatIsNotACharset) {
    for (const char* name : {"", "no-such-charset", "../UTF-8", "/etc/passwd", "ISO-2022,locale=ja,version=1",
                             "UTF-8,version=1", "Shift_JIS ", "%s%s", "ISO-8859-99"}) {
        SCOPED_TRACE(name);
        std::istringstream source("text");
        LumKobStream in(&source, name);
        EXPECT_FALSE(in.is_open());
        EXPECT_TRUE(in.fail());
        EXPECT_EQ(in.rdbuf()->sgetc(), std::char_traits<char>::eof());
        EXPECT_EQ(source.tellg(), 0);
        EXPECT_TRUE(in.rdbuf()->init("UTF-8", false)) << "a closed buffer can be opened with a better name";
        EXPECT_EQ(in.rdbuf()->sgetc(), 't');
    }
    LumKobStream nothing(nullptr, "UTF-8");
    EXPECT_TRUE(nothing.is_open());
    EXPECT_EQ(nothing.get(), std::char_traits<char>::eof());
    EXPECT_FALSE(LumKobStream(nullptr, nullptr).is_open());
}

struct MalformedCase {
    const char* fault;
    const char* encoding;
    std::string_view bytes;
    std::u16string_view units;
};

constexpr MalformedCase malformedCases[] = {
    {"a lead byte swallows markup", "Shift_JIS", "\x81<a>"sv, u"\uFFFD<a>"},
    {"a lead byte swallows markup", "EUC-JP", "\xA4<a>"sv, u"\uFFFD<a>"},
    {"a lead byte swallows markup", "GBK", "\x81\"x"sv, u"\uFFFD\"x"},
    {"a lead byte swallows markup", "Big5", "\xA4<x"sv, u"\uFFFD<x"},
    {"a lead byte swallows markup", "KS_C_5601-1987", "\xB0<x"sv, u"\uFFFD<x"},
    {"a bad four-byte form swallows what follows", "GB18030", "\x81\x30\x81<x"sv, u"\uFFFD0\uFFFD<x"},
    {"a malformed byte becomes a control character", "Shift_JIS", "a\xFF\xFD\xA0z"sv, u"a\uFFFD\uFFFD\uFFFDz"},
    {"a code without a character becomes a control character", "EUC-JP", "\xA9\xA1z"sv, u"\uFFFDz"},
    {"control characters change places", "Shift_JIS", "\x1A\x1C\x7F"sv, u"\x1A\x1C\x7F"},
    {"control characters change places", "windows-1252", "\x1A\x1C\x7F"sv, u"\x1A\x1C\x7F"},
    {"line ends are changed", "Shift_JIS", "a\r\nb\rc\n"sv, u"a\r\nb\rc\n"},
    {"a zero byte ends the text", "Shift_JIS", "a\0b"sv, u"a\0b"sv},
    {"a lone surrogate ends the text", "UTF-16BE", "\xD8\x00\x00<"sv, u"\uFFFD<"},
    {"overlong UTF-8 gives the character", "UTF-8", "\xC0\xBC"sv, u"\uFFFD\uFFFD"},
    {"a kana of one byte is malformed", "Shift_JIS", "\xB1\xDE"sv, u"\uFF71\uFF9E"},
    {"the wave dash is that of another table", "Shift_JIS", "\x81\x60"sv, u"\uFF5E"},
};

TEST(LumKobStream, replacesMalformedBytesAndNothingElse) {
    for (const MalformedCase& c : malformedCases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(decode(c.bytes, c.encoding), c.units);
        EXPECT_EQ(decodeInBlocks(c.bytes, LumKobStreamBuf::getLibraryName(c.encoding), 1, 16), c.units);
    }
}

struct CutCase {
    const char* iconvName;
    const char* encoding;
    std::u16string_view text;
};

constexpr CutCase cutCases[] = {
    {"CP932", "Shift_JIS", u"\u8868a\u793A\uFF71\u5642"},
    {"EUC-JP", "EUC-JP", u"\u8868a\u793A\uFF71\u4E02"},
    {"GBK", "GBK", u"\u9555a\u4E2D\u6587"},
    {"GB18030", "GB18030", u"\u3400a\u4E2D\U00020000\u6587"},
    {"BIG5", "Big5", u"\u8A31a\u529F\u84CB"},
    {"UHC", "KS_C_5601-1987", u"\uB620a\uBC29\uAC01"},
    {"UTF-8", "UTF-8", u"\u00E9\u6F22\U00020000x"},
    {"UTF-16LE", "UTF-16LE", u"x\U00020000y"},
};

TEST(LumKobStream, replacesACharacterThatIsCutOffAtTheEnd) {
    for (const CutCase& c : cutCases) {
        const std::string units = std::string(LumTest::asBytes(std::u16string(c.text)));
        const auto whole = LumTest::convertByIconv("UTF-16LE", c.iconvName, units);
        ASSERT_TRUE(whole.has_value()) << c.iconvName;
        for (std::size_t size = 0; size <= whole->bytes.size(); ++size) {
            SCOPED_TRACE(c.encoding + " cut to "s + std::to_string(size));
            const std::string bytes = whole->bytes.substr(0, size);
            const auto judged = LumTest::convertByIconv(c.iconvName, "UTF-16LE", bytes);
            ASSERT_TRUE(judged.has_value());
            EXPECT_EQ(decode(bytes, c.encoding, 1),
                      LumTest::toUnits(judged->bytes) + (judged->isComplete ? u"" : u"\uFFFD"));
        }
    }
}

TEST(LumKobStream, givesTheSameForAnyBytesInAnyBlocks) {
    for (const char* encoding : {"WINDOWS31J", "EUC-JP", "ISO-2022-JP", "ISO-2022-KR", "ChineseGBK", "GB18030", "HZ",
                                 "ChineseBIG5", "KoreanKSC", "UTF-8", "UTF-7", "UTF-16", "UTF-32LE", "windows-1255"}) {
        std::mt19937 random(20240517);
        // Many bytes that open something: escapes, "(", "$", lead bytes of both halves.
        constexpr std::string_view often = "\x1B($)B@JA~{}+-/\x0E\x0F\x81\x8E\x8F\xA4\xE0\xFE\xFF\xD8"sv;
        std::string bytes;
        for (int i = 0; i < 9000; ++i) {
            const auto drawn = random();
            bytes += drawn % 3 ? static_cast<char>(drawn >> 8) : often[(drawn >> 8) % often.size()];
        }
        const std::u16string units = decode(bytes, encoding);
        EXPECT_GT(units.size(), 1000u) << encoding;
        EXPECT_TRUE(decodeInBlocks(bytes, encoding, 1, 16) == units) << encoding;
        EXPECT_TRUE(decodeInBlocks(bytes, encoding, 3, 4096) == units) << encoding;
        EXPECT_TRUE(decodeInBlocks(bytes, encoding, 9000, 18) == units) << encoding;
    }
}

TEST(LumKobStream, goesOnBehindABlockThatHoldsNoCharacter) {
    std::string bytes;
    for (int i = 0; i < 3000; ++i) bytes += "~\n";  // a line that goes on
    EXPECT_EQ(decode(bytes + "end", "HZ"), u"end");
}

TEST(LumKobStream, keepsSixteenBytesForPuttingBack) {
    constexpr int eof = std::char_traits<char>::eof();
    std::istringstream source(std::string(6000, 'a') + "z");
    LumKobStream in(&source, "US-ASCII");
    std::string block(4096, '\0');
    in.read(block.data(), 4096);
    EXPECT_EQ(in.get(), 'a');  // from the second block
    int steps = 0;
    while (steps < 100 && in.rdbuf()->sungetc() != eof) ++steps;
    EXPECT_EQ(steps, 17);
    const std::string rest = readAll(in);
    EXPECT_EQ(rest.size(), 2u * 6001 - 4097 + 17);
    EXPECT_EQ(LumTest::toUnits(rest).back(), u'z');
    EXPECT_FALSE(in.is_open()) << "the end ends the conversion";
    EXPECT_NE(in.rdbuf()->sungetc(), eof) << "what was read last can be put back at the end";
}

TEST(LumKobStream, endsWhereTheSourceFails) {
    for (const std::size_t failAt : {0u, 1u, 5u, 4096u, 5000u}) {
        PieceStream source(std::string(9000, 'x'), 7);
        source.getBuffer().failAfter(failAt);
        LumKobStream in(&source, "Shift_JIS");
        EXPECT_EQ(readAll(in).size(), 2 * failAt);
    }
}

}  // namespace
}  // namespace LumCommon
