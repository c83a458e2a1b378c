// Any bytes may be text in any charset, and any units may be written in it. The first three bytes choose charset and
// piece sizes, the fourth line ends and a limit; the rest is read as bytes and written as units.
// Laws: pieces change nothing, in either direction; reading agrees with ICU; a Unicode charset gives back what was
// written; what a charset has made of a text stays as it is when it is read and written again; a limit cuts the same
// bytes; what the detector finds can be read.

#include <lumcommon/streams/LumKobOStreamBuf.h>
#include <lumcommon/streams/LumKobStream.h>
#include <unicode/ucnv.h>

#include <iterator>
#include <sstream>
#include <string>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;
using LumFuzz::PieceBuffer;

namespace {

struct Charset {
    const char* name;
    bool isUnicode;   // has every character, and no states
    bool isIcuPlain;  // ICU's converter of this name, without a byte that it gives a control character for
};
constexpr Charset charsets[] = {
    {"UTF-8", true, true},         {"UTF-16LE", true, true},      {"UTF-16BE", true, true},
    {"UTF-32LE", true, false},     {"gb18030", true, false},      {"windows-1252", false, true},
    {"KOI8-R", false, true},       {"WINDOWS31J", false, false},  {"EUC-JP", false, false},
    {"ISO-2022-JP", false, false}, {"ChineseGBK", false, false},  {"ChineseBIG5", false, false},
    {"KoreanKSC", false, false},   {"ISO-2022-KR", false, false}, {"UTF-7", false, false},
};

std::u16string unitsOf(const std::string& bytes) {
    std::u16string units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        units +=
            static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) | static_cast<unsigned char>(bytes[i + 1]) << 8);
    }
    return units;
}

std::u16string read(const std::string& bytes, const char* charset, std::size_t first, std::size_t second) {
    PieceBuffer buffer(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), first, second);
    std::istream in(&buffer);
    LumKobStream stream(&in, charset);
    FUZZ_LAW(stream.is_open());
    const std::string read{std::istreambuf_iterator<char>(stream), {}};
    FUZZ_LAW(read.size() % 2 == 0);
    return unitsOf(read);
}

struct Written {
    std::string bytes;
    bool isOverLimit = false;
};

Written write(const std::u16string& units, const char* charset, LumKobOStreamBuf::LF_CONVERT lines, std::size_t piece,
              unsigned limit) {
    std::ostringstream out;
    Written written;
    {
        LumKobOStreamBuf buffer(&out, charset, false, lines, true);
        FUZZ_LAW(buffer.is_open());
        buffer.setLimit(limit);
        const char* const bytes = reinterpret_cast<const char*>(units.data());
        const std::size_t count = units.size() * 2;
        for (std::size_t at = 0; at < count; at += piece) {
            const auto n = static_cast<std::streamsize>(std::min(piece, count - at));
            FUZZ_LAW(buffer.sputn(bytes + at, n) == n);
            if (piece < count) FUZZ_LAW(buffer.pubsync() == 0);
        }
        buffer.term();
        written.isOverLimit = buffer.isLimitOver();
        FUZZ_LAW(!buffer.is_open());
    }
    written.bytes = out.str();
    return written;
}

void compareWithIcu(const std::string& bytes, const char* charset, const std::u16string& units) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* const converter = ucnv_open(charset, &status);
    std::u16string expected(2 * bytes.size() + 8, u'\0');
    const int length = ucnv_toUChars(converter, expected.data(), static_cast<int>(expected.size()), bytes.data(),
                                     static_cast<int>(bytes.size()), &status);
    ucnv_close(converter);
    FUZZ_LAW(U_SUCCESS(status));
    expected.resize(static_cast<std::size_t>(length));
    FUZZ_LAW(units == expected);
}

bool isWellFormed(const std::u16string& units) {
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (U16_IS_LEAD(units[i]) && i + 1 < units.size() && U16_IS_TRAIL(units[i + 1])) {
            ++i;
        } else if (U16_IS_SURROGATE(units[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const Charset& charset = charsets[input.byte() % std::size(charsets)];
    const std::size_t first = input.byte(), second = input.byte();
    const unsigned how = input.byte();
    const std::string bytes(reinterpret_cast<const char*>(input.data()), input.size());

    const std::u16string units = read(bytes, charset.name, bytes.size(), bytes.size());
    FUZZ_LAW(read(bytes, charset.name, first, second) == units);
    if (charset.isIcuPlain) compareWithIcu(bytes, charset.name, units);
    std::istringstream sample(bytes);
    UnicodeString detected;
    bool hasMark = false;
    if (LumKobStream::detectEncoding(&sample, detected, hasMark)) {
        std::string name;
        FUZZ_LAW(LumKobStreamBuf(&sample, detected.toUTF8String(name).c_str()).is_open());
    }

    const std::u16string text = unitsOf(bytes);
    const auto lines = static_cast<LumKobOStreamBuf::LF_CONVERT>(how % 4);
    const std::string written = write(text, charset.name, lines, bytes.size() + 1, 0).bytes;
    FUZZ_LAW(write(text, charset.name, lines, first + 1, 0).bytes == written);
    if (charset.isUnicode) {
        const Written cut = write(text, charset.name, lines, second + 1, how + 1);
        FUZZ_LAW(cut.bytes.size() <= how + 1 && written.starts_with(cut.bytes));
        FUZZ_LAW(cut.isOverLimit == (written.size() > how + 1));
        FUZZ_LAW(cut.isOverLimit || cut.bytes == written);
    }
    const std::u16string back = read(written, charset.name, first, written.size());
    if (lines == LumKobOStreamBuf::LF_KEEP && charset.isUnicode && isWellFormed(text)) FUZZ_LAW(back == text);
    const std::string again = write(back, charset.name, lines, second + 1, 0).bytes;
    FUZZ_LAW(read(again, charset.name, first, second) == back);
    return 0;
}
