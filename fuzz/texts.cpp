// Any text may be the format of a number, a text with digits, a language, a script, or base64. The first five bytes are
// a number and a choice; the rest is the text.
// Laws: a number in digits reads back as itself, and its form is that of a simple writer; letters and numerals differ
// for different numbers; Japanese numerals read back; quoting, base64 and printing are undone by their readers;
// languages and scripts agree with ICU.

#include <lumcommon/lumcommon.h>
#include <unicode/uscript.h>

#include <array>
#include <cmath>
#include <map>
#include <sstream>
#include <string>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;

namespace {

std::string utf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

void checkPrinted(int number) {
    FUZZ_LAW(utf8(LumUtil::toString(number)) == std::to_string(number));
    const long long large = static_cast<long long>(number) * 4294967291LL;
    FUZZ_LAW(utf8(LumUtil::toString(large)) == std::to_string(large));
    const double real = std::ldexp(number, number % 64);
    char expected[64];
    std::snprintf(expected, sizeof expected, "%g", real);
    FUZZ_LAW(utf8(LumUtil::toString(real)) == expected);
    // A number without an exponent is scanned to its end, and to the same value.
    const double fraction = number / 64.0;
    std::snprintf(expected, sizeof expected, "%.6f", fraction);
    const UnicodeString text = UnicodeString::fromUTF8(expected);
    const char16_t* end = nullptr;
    bool hasFraction = false;
    UnicodeString terminated = text;
    FUZZ_LAW(LumUtil::parseNumber(terminated.getTerminatedBuffer(), end, &hasFraction) == fraction);
    FUZZ_LAW(*end == 0 && hasFraction);
}

/// The digits of a number in groups, as one writes them by hand.
UnicodeString grouped(std::string digits, std::size_t width, const UnicodeString& separator, int size) {
    const bool isNegative = digits[0] == '-';
    if (digits.size() < width) digits.insert(isNegative ? 1 : 0, width - digits.size(), '0');
    UnicodeString result;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (size > 0 && i > 0 && (digits.size() - i) % static_cast<std::size_t>(size) == 0) result.append(separator);
        result.append(static_cast<char16_t>(digits[i]));
    }
    return result;
}

void checkFormats(int number, const UnicodeString& format, unsigned which) {
    const UnicodeString separator(format, 0, 3);
    const int size = static_cast<int>(which % 8);
    const UnicodeString result = LumUtil::formatNumber(number, format, separator, size);
    FUZZ_LAW(result.isBogus() || LumUtil::formatNumber(number, format, separator, size) == result);
    const std::size_t width = 1 + which % 20;
    const UnicodeString token = UnicodeString::fromUTF8(std::string(width - 1, '0') + "1");
    if (number > 0)
        FUZZ_LAW(LumUtil::formatNumber(number, token, separator, size) ==
                 grouped(std::to_string(number), width, separator, size));
    // Neighbours differ whatever the format, if it says anything about a number at all.
    static const char16_t* const tokens[] = {u"1",      u"A",      u"a",      u"I",      u"i",      u"\u03B1",
                                             u"\u0430", u"\u0410", u"\u0627", u"\u05D0", u"\uAC00", u"\u30A2",
                                             u"\u3042", u"\u4E00", u"\u7532", u"\u5B50"};
    const UnicodeString some = tokens[which % std::size(tokens)];
    const LumLang language(UnicodeString(format, 0, 8));
    const int positive = std::abs(number / 2) + 1;
    FUZZ_LAW(LumUtil::formatNumber(positive, some, u"", 0, language) !=
             LumUtil::formatNumber(positive + 1, some, u"", 0, language));
    checkPrinted(number);
}

/// The value of Japanese numerals as they are read, with the units up to 10^12.
unsigned long long valueOf(const UnicodeString& numerals, const Kansuji& kansuji) {
    unsigned long long total = 0, group = 0, digit = 0;
    bool hasDigit = false;
    for (std::int32_t i = 0; i < numerals.length(); i = numerals.moveIndex32(i, 1)) {
        const UChar32 character = numerals.char32At(i);
        int index = 0;
        while (kansuji.getCharacter(index) != character) FUZZ_LAW(++index < Kansuji::INDEX_POINT);
        if (index < Kansuji::INDEX_SMALL_UNIT) {
            digit = static_cast<unsigned>(index);
            hasDigit = true;
            continue;
        }
        if (index < Kansuji::INDEX_LARGE_UNIT) {
            unsigned long long unit = 10;
            for (int power = Kansuji::INDEX_SMALL_UNIT; power < index; ++power) unit *= 10;
            group += (hasDigit ? digit : 1) * unit;
        } else {
            unsigned long long unit = 10000;
            for (int power = Kansuji::INDEX_LARGE_UNIT; power < index; ++power) unit *= 10000;
            total += (group + digit) * unit;
            group = 0;
        }
        digit = 0;
        hasDigit = false;
    }
    return total + group + digit;
}

void checkKansuji(int number, const UnicodeString& text, unsigned which) {
    Kansuji kansuji;
    const unsigned long long large = static_cast<unsigned>(number) * (1ull + which * 1000003ull);
    UnicodeString digits;
    LumUtil::toString64Sub(digits, large);
    FUZZ_LAW(valueOf(kansuji.convert(digits, Kansuji::STYLE_READABLE), kansuji) == large);
    UnicodeString plain = kansuji.convert(digits, Kansuji::STYLE_DIGITS), back;
    FUZZ_LAW(plain.length() == digits.length());
    if (which % 2 != 0) kansuji.setDigits(text);
    if (which % 3 != 0) kansuji.setUnits(text);
    for (const auto style : {Kansuji::STYLE_DIGITS, Kansuji::STYLE_GROUPING, Kansuji::STYLE_READABLE}) {
        const UnicodeString result = kansuji.convert(text, style);
        FUZZ_LAW(result.length() <= 5 * text.length() + 16);
        // Only digits change: without them the text is what it was.
        UnicodeString other;
        for (std::int32_t i = 0; i < text.length(); ++i) {
            if (text[i] < u'0' || text[i] > u'9') other.append(text[i]);
        }
        FUZZ_LAW(kansuji.convert(other, style) == other);
        if (other == text) FUZZ_LAW(result == text);
    }
}

void checkQuoting(const UnicodeString& text, unsigned which) {
    const std::string bytes = utf8(text);
    std::istringstream in(bytes);
    const UnicodeString base64 = LumUtil::encodeBase64(in, static_cast<int>(bytes.size()));
    std::ostringstream out;
    FUZZ_LAW(LumUtil::decodeBase64(base64, base64.length(), out) && out.str() == bytes);
    std::ostringstream any;
    FUZZ_LAW(LumUtil::decodeBase64(text, text.length(), any));
    FUZZ_LAW(any.str().size() <= static_cast<std::size_t>(text.length()));
    const unsigned mode = which % 16;
    UnicodeString terminated = text;
    const char16_t* const start = terminated.getTerminatedBuffer();
    const char16_t* end = nullptr;
    LumUtil::parseString(start, end, mode);
    FUZZ_LAW(end >= start && end <= start + text.length());
    LumUtil::parseHexNum(start, end, static_cast<int>(which % 10) - 1);
    FUZZ_LAW(end >= start && end <= start + text.length());
    const double number = LumUtil::parseNumber(start, end);
    FUZZ_LAW(!std::isnan(number) && end >= start && end <= start + text.length());
}

void checkLanguage(const UnicodeString& text) {
    const LumLang language(text);
    FUZZ_LAW(language.isEmpty() == (std::string_view(language.getLanguage()).empty()));
    const LumLang same(text);
    FUZZ_LAW(language == same && !(language < same));
    const UnicodeString replaced = ISO639Bibliographic::get(text);
    FUZZ_LAW(ISO639Bibliographic::get(replaced) == replaced);
    FUZZ_LAW(LumLang(replaced) == language);
    const std::string tag = utf8(replaced);
    bool isAscii = true;
    for (char c : tag) isAscii = isAscii && c > ' ' && c < 0x7F && c != ',';
    if (isAscii && tag.size() < 40) FUZZ_LAW(language == icu::Locale(tag.c_str()));

    const LumScript script(text);
    const LumName code = script.getScriptCode();
    if (!code.isNull()) {
        const LumScript again(code.getString());
        FUZZ_LAW(again.getScriptCode() == code);
    }
    FUZZ_LAW(!script.getA().isEmpty());
    LumScript fromText(LumScript::COMMON);
    for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const UChar32 character = text.char32At(i);
        UErrorCode status = U_ZERO_ERROR;
        const LumScript met = LumScript::getScript(character);
        if (character >= 0x3000) FUZZ_LAW(met.getCode() == uscript_getScript(character, &status));
        if (fromText == LumScript::COMMON && met != LumScript::COMMON && met != LumScript::UNKNOWN) fromText = met;
    }
    FUZZ_LAW(LumScript::getScriptFromText(text) == fromText);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const unsigned what = input.byte();
    const auto bits = static_cast<std::uint32_t>(input.number(4));
    const int number = static_cast<int>(bits) >> (what >> 3 & 31u);
    const UnicodeString text = LumFuzz::textOf(input.data(), input.size(), (what & 4u) != 0);
    switch (what & 3u) {
        case 0:
            checkFormats(number, text, bits);
            break;
        case 1:
            checkKansuji(number, text, bits & 0xFFu);
            break;
        case 2:
            checkQuoting(text, bits);
            break;
        case 3:
            checkLanguage(text);
            break;
    }
    return 0;
}
