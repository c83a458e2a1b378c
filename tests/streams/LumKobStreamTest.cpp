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
    {"ja", "EUC-JP", "euc-jp", "EUC-JP"},
    {"ja", "ISO-2022-JP", "iso-2022-jp", "ISO-2022-JP"},
    {"ja", "UTF-8", "UTF-8", "UTF-8"},
    {"ja", "UTF-16LE", "UTF-16LE", "UTF-16LE"},
    {"ja", "UTF-16BE", "utf-16be", "UTF-16BE"},
    {"ja", "UTF-16", "UTF-16", "UTF-16LE"},  // iconv writes a mark
    {"../cjk/help.utf8", "GB2312", "gb2312", "GB18030"},
    {"../cjk/help.utf8", "GB18030", "gb18030", "GB18030"},
    {"zh_TW", "BIG5", "big5", "ChineseBIG5"},
    {"ko", "EUC-KR", "EUC-KR", "KoreanKSC"},
    {"ko", "UHC", "ks_c_5601-1987", "KoreanKSC"},
    {"ru", "CP1251", "windows-1251", "windows-1251"},
    {"ru", "KOI8-R", "koi8-r", "KOI8-R"},
    {"de", "CP1252", "windows-1252", "windows-1252"},
    {"de", "ISO-8859-1", "iso-8859-1", "windows-1252"},
    {"ar", "CP1256", "windows-1256", "windows-1256"},
};

LumTest::Twins makeTwins(const TwinCase& c) { return LumTest::makeTwins("charsets/"s + c.file + ".xml", c.iconvName); }

TEST(LumKobStream, decodesLikeTheTwinAtEveryPieceSize) {
    for (const TwinCase& c : twinCases) {
        SCOPED_TRACE(c.iconvName);
        const LumTest::Twins twins = makeTwins(c);
        for (const std::size_t pieceBytes : {1u, 3u, 4096u}) {
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
    {"the mark of UTF-8 is not seen", "\xEF\xBB\xBF<a/>"sv, "UTF-8", true},
    {"plain text needs a guess", "<a/>\r\n"sv, "US-ASCII", false},
    {"UTF-8 cut inside a character is refused", "price: 5 \xE2\x82"sv, "UTF-8", false},
    {"one bad byte makes it another charset",
     "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82 \xFF \xD0\xBC\xD0\xB8\xD1\x80\xD1\x83\xD1\x83"sv, "UTF-8",
     false},
    {"an overlong form passes as UTF-8", "<a>\xC0\xAF</a>"sv, nullptr, false},
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

TEST(LumKobStream, givesTheConversionItsOwnNames) {
    constexpr const char* cases[][2] = {
        {"big5", "ChineseBIG5"},
        {"ChineseBig5", "ChineseBIG5"},
        {"gb2312", "ChineseGBK"},
        {"Gbk", "ChineseGBK"},
        {"chinesegbk", "ChineseGBK"},
        {"iso-ir-149", "KoreanKSC"},
        {"korean", "KoreanKSC"},
        {"ks_c_5601-1987", "KoreanKSC"},
        {"KoreanKSC", "KoreanKSC"},
        {"Shift_JIS", "WINDOWS31J"},
        {"shift-jis", "WINDOWS31J"},
        {"windows-31j", "WINDOWS31J"},
        {"windows31j", "WINDOWS31J"},
        {"euc-jp", "EUC-JP"},
        {"iso-2022-jp", "ISO-2022-JP"},
        {"big5-hkscs", "big5-hkscs"},
        {"", ""},
    };
    for (const auto& [given, name] : cases) EXPECT_STREQ(LumKobStreamBuf::getLibraryName(given), name);
}

TEST(LumKobStream, staysClosedForWhatIsNotACharset) {
    for (const char* name : {"", "no-such-charset", "../UTF-8", "UTF-8,version=1", "Shift_JIS "}) {
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
    {"a bad four-byte form swallows what follows", "GB18030", "\x81\x30\x81<x"sv, u"\uFFFD0\uFFFD<x"},
    {"a malformed byte becomes a control character", "Shift_JIS", "a\xFF\xFD\xA0z"sv, u"a\uFFFD\uFFFD\uFFFDz"},
    {"a code without a character becomes a control character", "EUC-JP", "\xA9\xA1z"sv, u"\uFFFDz"},
    {"control characters change places", "Shift_JIS", "\x1A\x1C\x7F"sv, u"\x1A\x1C\x7F"},
    {"line ends are changed", "Shift_JIS", "a\r\nb\rc\n"sv, u"a\r\nb\rc\n"},
    {"a zero byte ends the text", "Shift_JIS", "a\0b"sv, u"a\0b"sv},
    {"a lone surrogate ends the text", "UTF-16BE", "\xD8\x00\x00<"sv, u"\uFFFD<"},
    {"a character cut off at the end is lost", "Shift_JIS", "a\x81"sv, u"a\uFFFD"},
    {"a character cut off at the end is lost", "GB18030", "a\x81\x30\x81"sv, u"a\uFFFD"},
    {"a character cut off at the end is lost", "UTF-16LE", "a\0\x40\xD8"sv, u"a\uFFFD"},
    {"the wave dash is that of another table", "Shift_JIS", "\x81\x60"sv, u"\uFF5E"},
};

TEST(LumKobStream, replacesMalformedBytesAndNothingElse) {
    for (const MalformedCase& c : malformedCases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(decode(c.bytes, c.encoding), c.units);
        EXPECT_EQ(decodeInBlocks(c.bytes, LumKobStreamBuf::getLibraryName(c.encoding), 1, 16), c.units);
    }
}

TEST(LumKobStream, givesTheSameForAnyBytesInAnyBlocks) {
    for (const char* encoding :
         {"WINDOWS31J", "ISO-2022-JP", "GB18030", "HZ", "UTF-8", "UTF-7", "UTF-16", "windows-1255"}) {
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
    EXPECT_FALSE(in.is_open()) << "the end ends the conversion";
    EXPECT_NE(in.rdbuf()->sungetc(), eof) << "what was read last can be put back at the end";
}

TEST(LumKobStream, endsWhereTheSourceFails) {
    for (const std::size_t failAt : {0u, 5u, 5000u}) {
        PieceStream source(std::string(9000, 'x'), 7);
        source.getBuffer().failAfter(failAt);
        LumKobStream in(&source, "Shift_JIS");
        EXPECT_EQ(readAll(in).size(), 2 * failAt);
    }
}

}  // namespace
}  // namespace LumCommon
