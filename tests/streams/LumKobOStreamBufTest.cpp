#include <gtest/gtest.h>
#include <lumcommon/streams/LumKobOStreamBuf.h>
#include <lumcommon/streams/LumKobStream.h>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "support/CharsetTwins.h"

namespace LumCommon {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

struct Format {
    const char* encoding = "UTF-8";
    bool bom = false;
    LumKobOStreamBuf::LF_CONVERT lineEnds = LumKobOStreamBuf::LF_KEEP;
    bool littleEndian = true;
};

/// The bytes of a text that is written and flushed `pieceBytes` at a time.
std::string encode(std::u16string_view text, const Format& format, std::size_t pieceBytes) {
    std::ostringstream out;
    {
        LumKobOStreamBuf buffer(&out, format.encoding, format.bom, format.lineEnds, format.littleEndian);
        EXPECT_TRUE(buffer.is_open()) << format.encoding;
        const std::u16string units(text);
        const std::string_view bytes = LumTest::asBytes(units);
        for (std::size_t at = 0; at < bytes.size(); at += pieceBytes) {
            const auto size = static_cast<std::streamsize>(std::min(pieceBytes, bytes.size() - at));
            EXPECT_EQ(buffer.sputn(bytes.data() + at, size), size);
            EXPECT_EQ(buffer.pubsync(), 0);
        }
    }
    return out.str();
}

struct TwinCase {
    const char* file;
    const char* iconvName;
    const char* encoding;
};

constexpr TwinCase twinCases[] = {
    {"ja", "CP932", "Shift_JIS"},         {"ja", "EUC-JP", "EUC-JP"},
    {"ja", "ISO-2022-JP", "ISO-2022-JP"}, {"../cjk/help.utf8", "GB18030", "GB18030"},
    {"de", "CP1252", "windows-1252"},
};

TEST(LumKobOStreamBuf, writesWhatIconvWrites) {
    for (const TwinCase& c : twinCases) {
        SCOPED_TRACE(c.iconvName);
        const LumTest::Twins twins = LumTest::makeTwins("charsets/"s + c.file + ".xml", c.iconvName);
        for (const std::size_t pieceBytes : {3u, 4096u, 100000u}) {
            EXPECT_TRUE(encode(twins.units, {c.encoding}, pieceBytes) == twins.bytes) << pieceBytes;
        }
    }
}

struct FormatCase {
    const char* fault;
    std::u16string_view text;
    Format format;
    std::string_view bytes;
};

using Buf = LumKobOStreamBuf;
constexpr std::u16string_view lines = u"a\r\nb\rc\nd\n\re\r\r\n";

constexpr FormatCase formatCases[] = {
    {"line ends are touched", lines, {}, "a\r\nb\rc\nd\n\re\r\r\n"},
    {"a pair becomes two line ends", lines, {"UTF-8", false, Buf::LF_TO_LF}, "a\nb\nc\nd\n\ne\n\n"},
    {"a pair becomes two line ends", lines, {"UTF-8", false, Buf::LF_TO_CR}, "a\rb\rc\rd\r\re\r\r"},
    {"a pair is doubled", lines, {"UTF-8", false, Buf::LF_TO_CRLF}, "a\r\nb\r\nc\r\nd\r\n\r\ne\r\n\r\n"},
    {"the mark is left out", u"x", {"UTF-8", true}, "\xEF\xBB\xBFx"},
    {"a text without units has no mark", u"", {"UTF-8", true}, "\xEF\xBB\xBF"},
    {"a mark that nobody asked for", u"x", {"UTF-16"}, "x\0"sv},
    {"the order of a name without order", u"x", {"utf-16", true}, "\xFF\xFEx\0"sv},
    {"the order of a name without order", u"x", {"UTF-16", true, Buf::LF_KEEP, false}, "\xFE\xFF\0x"sv},
    {"a charset without a mark gets one", u"x", {"Shift_JIS", true}, "x"},
    {"the text's own mark is taken for the order", u"\uFEFFx", {}, "\xEF\xBB\xBFx"},
    {"a narrow character is dropped", u"a\u0E01b", {"Shift_JIS"}, "a?b"},
    {"a wide character is dropped",
     u"a\uAC00b",
     {"Shift_JIS"},
     "a\x81\xAC"
     "b"},
    {"a pair is replaced twice",
     u"a\U00020001b",
     {"Shift_JIS"},
     "a\x81\xAC"
     "b"},
    {"a substitute that the charset lacks", u"a\u4E00b", {"ISO-8859-1"}, "a?b"},
    {"a lone surrogate ends the text", u"a\xD800z\xDC00.", {}, "a\xEF\xBF\xBDz\xEF\xBF\xBD."},
    {"a high surrogate at the end is lost", u"a\xD800", {}, "a\xEF\xBF\xBD"},
    {"a zero unit at the end is lost", u"a\0b\0"sv, {}, "a\0b\0"sv},
    {"control characters change places", u"\x1A\x1C\x7F", {"Shift_JIS"}, "\x1A\x1C\x7F"},
    {"the text ends in a shift", u"\u3042", {"ISO-2022-JP"}, "\x1B$B$\"\x1B(B"},
};

TEST(LumKobOStreamBuf, writesTheSameForAnyPieces) {
    for (const FormatCase& c : formatCases) {
        SCOPED_TRACE(c.fault);
        for (const std::size_t pieceBytes : {1u, 2u, 3u, 100u}) {
            EXPECT_EQ(encode(c.text, c.format, pieceBytes), c.bytes) << pieceBytes;
        }
    }
}

struct LimitCase {
    const char* fault;
    const char* encoding;
    std::u16string_view text;
    unsigned limit;
    std::string_view bytes;
    unsigned length;
    bool isOver;
};

constexpr LimitCase limitCases[] = {
    {"no limit limits", "UTF-8", u"abcdef", 0, "abcdef", 6, false},
    {"fires early", "UTF-8", u"abcde", 6, "abcde", 5, false},
    {"fires at the limit itself", "UTF-8", u"abcdef", 6, "abcdef", 6, false},
    {"counts what it drops", "UTF-8", u"abcdefghijkl", 6, "abcdef", 7, true},
    {"a character is cut", "Shift_JIS", u"a\u3042\u3042\u3042", 6, "a\x82\xA0\x82\xA0", 7, true},
    {"a narrow character slips in behind a dropped one", "UTF-8", u"abcde\u3042f", 6, "abcde", 7, true},
    {"a substitute passes the limit", "Shift_JIS", u"abcde\uAC00", 6, "abcde", 7, true},
};

TEST(LumKobOStreamBuf, neverPassesTheLimit) {
    for (const LimitCase& c : limitCases) {
        SCOPED_TRACE(c.fault);
        const std::u16string units(c.text);
        const std::string_view bytes = LumTest::asBytes(units);
        for (const std::size_t pieceBytes : {std::size_t{1}, bytes.size()}) {
            std::ostringstream out;
            LumKobOStreamBuf buffer(&out, c.encoding, false, Buf::LF_KEEP, true);
            buffer.setLimit(c.limit);
            for (std::size_t at = 0; at < bytes.size(); at += pieceBytes) {
                buffer.sputn(bytes.data() + at, static_cast<std::streamsize>(pieceBytes));
                buffer.pubsync();
            }
            EXPECT_EQ(buffer.isLimitOver(), c.isOver);
            EXPECT_EQ(buffer.getOutputLength(), c.length);
            EXPECT_EQ(out.str(), c.bytes);
        }
    }
}

TEST(LumKobOStreamBuf, stopsAtTheLimitInsideALongText) {
    std::ostringstream out;
    LumKobOStreamBuf buffer(&out, "UTF-8", false, Buf::LF_KEEP, true);
    buffer.setLimit(10000);
    const std::u16string text(50000, u'\u3042');
    const std::string_view bytes = LumTest::asBytes(text);
    EXPECT_EQ(buffer.sputn(bytes.data(), static_cast<std::streamsize>(bytes.size())), 100000);
    EXPECT_TRUE(buffer.isLimitOver());
    EXPECT_EQ(buffer.getOutputLength(), 10001u);
    EXPECT_EQ(out.str().size(), 9999u);
}

TEST(LumKobOStreamBuf, countsRawBytesBehindTheLimit) {
    const std::string raw(300, 'r');
    std::ostringstream out;
    LumKobOStreamBuf buffer(&out, "UTF-8", false, Buf::LF_KEEP, true);
    buffer.setLimit(100);
    buffer.writeRawBuffer(raw.data(), 300);
    EXPECT_EQ(out.str(), std::string(100, 'r'));
    EXPECT_EQ(buffer.getOutputLength(), 300u);
    EXPECT_TRUE(buffer.isLimitOver());
    buffer.writeRawBuffer(raw.data(), 5);
    EXPECT_EQ(buffer.getOutputLength(), 305u);
    std::istringstream more("more");
    buffer.writeRawStream(more);
    EXPECT_EQ(buffer.getOutputLength(), 305u);
    EXPECT_EQ(more.tellg(), 0) << "beyond the limit the stream is left alone";
    buffer.sputn("x\0", 2);
    EXPECT_TRUE(buffer.isLimitOver());
    EXPECT_EQ(buffer.getOutputLength(), 305u) << "text does not set the count back";
    EXPECT_EQ(out.str().size(), 100u);
}

struct RawStreamCase {
    const char* fault;
    std::size_t streamBytes;
    unsigned limit;
    std::size_t written;
    unsigned length;
};

constexpr RawStreamCase rawStreamCases[] = {
    {"an empty stream breaks the destination", 0, 0, 2, 2},
    {"the last block is lost", 8193, 0, 8195, 8195},
    {"the count stops at the limit", 20000, 10000, 10000, 20002},
    {"the limit is passed by one", 99, 100, 100, 101},
};

TEST(LumKobOStreamBuf, copiesARawStreamUpToTheLimit) {
    for (const RawStreamCase& c : rawStreamCases) {
        SCOPED_TRACE(c.fault);
        std::string raw(c.streamBytes, '\0');
        for (std::size_t i = 0; i < raw.size(); ++i) raw[i] = static_cast<char>(i * 7 / 3);
        std::istringstream in(raw);
        std::ostringstream out;
        LumKobOStreamBuf buffer(&out, "UTF-8", false, Buf::LF_KEEP, true);
        buffer.setLimit(c.limit);
        buffer.sputn("a\0b\0", 4);  // goes before the raw bytes
        buffer.writeRawStream(in);
        EXPECT_TRUE(out.str() == ("ab" + raw).substr(0, c.written));
        EXPECT_EQ(buffer.getOutputLength(), c.length);
    }
}

TEST(LumKobOStreamBuf, holdsBackWhatIsNotComplete) {
    std::ostringstream out;
    LumKobOStreamBuf buffer(&out, "UTF-8", false, Buf::LF_KEEP, true);
    struct Step {
        const char* fault;
        std::string_view units;
        std::string_view added;
    };
    constexpr Step steps[] = {
        {"waits without a reason", "a\0"sv, "a"},      {"writes half a unit", "b"sv, ""},
        {"forgets half a unit", "\0"sv, "b"},          {"writes half a pair", "\x40\xD8"sv, ""},
        {"writes half a pair", "\x00"sv, ""},          {"forgets half a pair", "\xDC"sv, "\xF0\xA0\x80\x80"},
        {"writes a last zero unit", "c\0\0\0"sv, "c"}, {"forgets a zero unit", "d\0"sv, "\0d"sv},
    };
    std::string written;
    for (const Step& step : steps) {
        SCOPED_TRACE(step.fault);
        buffer.sputn(step.units.data(), static_cast<std::streamsize>(step.units.size()));
        EXPECT_EQ(buffer.pubsync(), 0);
        EXPECT_EQ(out.str(), written += step.added);
    }
    buffer.term();
    EXPECT_FALSE(buffer.is_open());
    EXPECT_EQ(buffer.sputc('x'), std::char_traits<char>::eof());
}

TEST(LumKobOStreamBuf, reportsADestinationThatFails) {
    for (const bool throws : {false, true}) {
        std::ostream out(nullptr);
        if (throws) {
            EXPECT_THROW(out.exceptions(std::ios_base::badbit), std::ios_base::failure);
        }
        LumKobOStreamBuf buffer(&out, "UTF-8", false, Buf::LF_KEEP, true);
        const std::u16string units(30000, u'x');
        EXPECT_LT(buffer.sputn(LumTest::asBytes(units).data(), 60000), 60000);
        EXPECT_EQ(buffer.pubsync(), 0) << "what could not be written is dropped";
    }
    LumKobOStreamBuf nowhere(nullptr, "UTF-8", false, Buf::LF_KEEP, true);
    nowhere.sputn("x\0", 2);
    EXPECT_EQ(nowhere.pubsync(), -1);
}

TEST(LumKobOStreamBuf, staysClosedForWhatIsNotACharset) {
    std::ostringstream out;
    for (const char* name : {static_cast<const char*>(nullptr), "no-such-charset", "UTF-8,version=1"}) {
        LumKobOStreamBuf buffer(&out, name, true, Buf::LF_KEEP, true);
        EXPECT_FALSE(buffer.is_open());
        EXPECT_EQ(buffer.sputn("x\0", 2), 0);
        EXPECT_EQ(buffer.pubsync(), -1);
        EXPECT_FALSE(buffer.isLimitOver());
        EXPECT_EQ(buffer.getOutputStream(), &out);
    }
    EXPECT_EQ(out.str(), "");
}

}  // namespace
}  // namespace LumCommon
