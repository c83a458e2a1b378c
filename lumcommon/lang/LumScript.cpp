#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/lang/LumScript.h>
#include <lumcommon/names/LumNameTable.h>

#include <unicode/uloc.h>
#include <unicode/uscript.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

namespace LumCommon {

namespace {

struct Script {
    LumScript::Code code;
    LumNameEnum name;
    char16_t letter;
};

constexpr Script SCRIPTS[] = {
#define LUM_SCRIPT(constant, code, name, letter) {LumScript::constant, name, letter},
#include <lumcommon/lang/Scripts.inc>
#undef LUM_SCRIPT
};

#define LUM_SCRIPT(constant, code, name, letter) static_assert(LumScript::constant == (code));
#include <lumcommon/lang/Scripts.inc>
#undef LUM_SCRIPT
static_assert(std::ranges::adjacent_find(SCRIPTS, std::ranges::greater_equal{}, &Script::code) == std::end(SCRIPTS));
static_assert(LumScript::LATIN == +USCRIPT_LATIN && LumScript::TRADITIONAL_HAN == +USCRIPT_TRADITIONAL_HAN);
static_assert(LumScript::UNKNOWN == +USCRIPT_INVALID_CODE);

const Script* findScript(std::int32_t code) {
    const Script* found = std::ranges::lower_bound(SCRIPTS, code, {}, &Script::code);
    return found != std::end(SCRIPTS) && found->code == code ? found : nullptr;
}

constexpr std::int32_t UNDECIDED = -100;

/// Codes and keywords that are decided without ICU.
std::int32_t getCodeOfKeyword(LumNameEnum name) {
    switch (name) {
        case NAME_Hira:
            return LumScript::HIRAGANA;
        case NAME_Kana:
            return LumScript::KATAKANA;
        case NAME_Hans:
            return LumScript::SIMPLIFIED_HAN;
        case NAME_Hant:
            return LumScript::TRADITIONAL_HAN;
        case NAME_Jpan:
            return LumScript::JAPANESE;
        case NAME_auto:
            return LumScript::AUTO;
        case NAME_none:
            return LumScript::NONE;
        default:
            return UNDECIDED;
    }
}

/// Tags of the languages that are written with Han, for which ICU returns a list of scripts.
std::int32_t getCodeOfTag(const UnicodeString& lowered) {
    if (lowered == u"zh-tw" || lowered == u"zh-hk") return LumScript::TRADITIONAL_HAN;
    if (lowered.length() > 2 && lowered[2] != u'-') return UNDECIDED;
    if (lowered.startsWith(u"zh")) return LumScript::SIMPLIFIED_HAN;
    if (lowered.startsWith(u"ja")) return LumScript::JAPANESE;
    if (lowered.startsWith(u"ko")) return LumScript::KOREAN;
    return UNDECIDED;
}

std::int32_t getFirstCodeFromIcu(const char* text) {
    std::array<UScriptCode, 16> codes;
    UErrorCode error = U_ZERO_ERROR;
    const int count = uscript_getCode(text, codes.data(), static_cast<int>(codes.size()), &error);
    detail::checkMemory(error);
    return U_SUCCESS(error) && count > 0 ? static_cast<std::int32_t>(codes[0]) : LumScript::UNKNOWN;
}

/// The first of the scripts that ICU lists for a script's name or code, or for a locale.
std::int32_t getCodeFromIcu(const UnicodeString& text) {
    if (text.indexOf(u'\0') >= 0) return LumScript::UNKNOWN;  // ICU would read only what comes before it
    const std::string bytes = detail::utf8Of(text);
    std::int32_t code = getFirstCodeFromIcu(bytes.c_str());
    if (code != LumScript::UNKNOWN) return code;
    // It does not say whether it knows no script or found no memory to look for one.
    std::array<char, ULOC_FULLNAME_CAPACITY> likely;
    UErrorCode error = U_ZERO_ERROR;
    uloc_addLikelySubtags(bytes.c_str(), likely.data(), static_cast<int>(likely.size()), &error);
    detail::checkMemory(error);
    return getFirstCodeFromIcu(bytes.c_str());
}

std::int32_t getCodeOfText(const UnicodeString& text) {
    const std::int32_t code = getCodeOfTag(detail::toLowerCase(text));
    return code != UNDECIDED ? code : getCodeFromIcu(text);
}

constexpr bool isBetween(UChar32 c, UChar32 first, UChar32 last) { return c >= first && c <= last; }

/// Bit c - U+00A0: the signs U+00A2-U+00A5, U+00A7-U+00AA, U+00AE, U+00AF, U+00B4, U+00B5, U+00B8, U+00BA.
constexpr std::uint32_t LATIN_SIGNS = 0x0530'C7BCu;

constexpr bool isLatinSign(UChar32 c) { return isBetween(c, 0xA0, 0xBF) && (LATIN_SIGNS >> (c - 0xA0) & 1u) != 0; }

constexpr bool isArabicDigit(UChar32 c) { return isBetween(c, 0x660, 0x669) || isBetween(c, 0x6F0, 0x6F9); }

/// The frequent characters of East Asian text, whose scripts are the same in every version of Unicode.
constexpr std::int32_t getEastAsianCode(UChar32 c) {
    if (isBetween(c, 0x4E00, 0x9FA5)) return LumScript::HAN;
    if (isBetween(c, 0x3041, 0x3094)) return LumScript::HIRAGANA;
    if (isBetween(c, 0x30A1, 0x30FA)) return LumScript::KATAKANA;
    if (isBetween(c, 0xAC00, 0xD7A3)) return LumScript::HANGUL;
    return UNDECIDED;
}

constexpr std::int32_t getCodeOfCharacter(UChar32 c) {
    if (isBetween(c, 0, 0x7F)) return detail::isAsciiLetter(c) ? LumScript::LATIN : LumScript::COMMON;
    if (isBetween(c, 0x590, 0x5FF)) return LumScript::HEBREW;
    if (isBetween(c, 0x600, 0x6FF) && !isArabicDigit(c)) return LumScript::ARABIC;
    if (isBetween(c, 0x900, 0x97F)) return LumScript::DEVANAGARI;
    if (isLatinSign(c)) return LumScript::LATIN;
    return getEastAsianCode(c);
}

}  // namespace

LumScript::LumScript(const UnicodeString& text) {
    const std::int32_t keyword = text.isEmpty() ? AUTO : getCodeOfKeyword(LumNameTable::getBuiltinNameEnum(text));
    code_ = keyword != UNDECIDED ? keyword : getCodeOfText(text);
}

LumScript::LumScript(LumName name) : LumScript(name.getString()) {}

LumName LumScript::getScriptCode() const {
    if (const Script* known = findScript(code_)) return known->name;
    const char* name = code_ > 0 ? uscript_getShortName(static_cast<UScriptCode>(code_)) : nullptr;
    return name ? LumName(detail::checked(UnicodeString(name, -1, US_INV))) : LumName();
}

UnicodeString LumScript::getA() const {
    const Script* known = findScript(code_);
    return {known ? known->letter : u'A'};
}

LumScript LumScript::getScript(UChar32 character) noexcept {
    const std::int32_t code = getCodeOfCharacter(character);
    if (code != UNDECIDED) return LumScript(code);
    UErrorCode error = U_ZERO_ERROR;
    return LumScript(static_cast<std::int32_t>(uscript_getScript(character, &error)));  // UNKNOWN when it fails
}

LumScript LumScript::getScriptFromText(const UnicodeString& text) noexcept {
    const char16_t* units = text.getBuffer();
    const std::int32_t length = units ? text.length() : 0;  // a bogus string has no buffer
    for (std::int32_t i = 0; i < length;) {
        UChar32 character;
        U16_NEXT(units, i, length, character);
        const LumScript script = getScript(character);
        if (script != COMMON && script != UNKNOWN) return script;
    }
    return COMMON;
}

}  // namespace LumCommon
