#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumName.h>

#include <cstdint>

namespace LumCommon {

/// The writing system of a piece of text: an ICU script code, or one of a few additional values for which ICU has no
/// single code. It comes from the "script" property or is determined from the text itself. A script converts to its
/// integer code, so scripts and codes can be compared with each other.
///
/// Nothing here throws, unless memory runs out. Threads: a value.
class LUM_API LumScript {
public:
    /// The codes that have a name here. Any other code from 0 up is an ICU UScriptCode.
    enum Code : std::int32_t {
        JAPANESE = -8,              ///< Han with both kana
        KOREAN = -4,                ///< Hangul with Han
        NONE = -3,                  ///< the keyword "none"
        AUTO = -2,                  ///< the keyword "auto": to be determined from the text
        UNKNOWN = -1,               ///< no script is known
        COMMON = 0,                 ///< characters that many scripts use, such as digits
        INHERITED = 1,              ///< marks that take the script of what they stand on
        ARABIC = 2,                 ///< ICU's code
        CYRILLIC = 8,               ///< ICU's code
        DEVANAGARI = 10,            ///< ICU's code
        GREEK = 14,                 ///< ICU's code
        HAN = 17,                   ///< ideographs, without telling which form
        HANGUL = 18,                ///< Korean letters alone
        HEBREW = 19,                ///< ICU's code
        HIRAGANA = 20,              ///< ICU's code
        KATAKANA = 22,              ///< ICU's code
        LATIN = 25,                 ///< ICU's code
        THAI = 38,                  ///< ICU's code
        KATAKANA_OR_HIRAGANA = 54,  ///< either kana
        SIMPLIFIED_HAN = 73,        ///< ideographs in the simplified form
        TRADITIONAL_HAN = 74,       ///< ideographs in the traditional form
    };

    /// UNKNOWN.
    constexpr LumScript() noexcept = default;
    /// The script with that code.
    constexpr LumScript(Code code) noexcept : code_(code) {}
    /// The script with this code, which is not checked. For the script of a character, see getScript().
    constexpr explicit LumScript(int code) noexcept : code_(code) {}
    /// Does not compile: a character is no script; getScript() tells that of one.
    explicit LumScript(char16_t) = delete;
    /// A script by its ISO 15924 code ("Latn"), by "auto" (also the empty text) or "none", by a language tag ("zh-TW";
    /// "zh" is Simplified Han unless its region is TW or HK), or by a name that ICU knows ("Old Italic"). UNKNOWN for
    /// anything else. Keywords and our own codes are case-sensitive; tags and ICU's names are not.
    /// Cost: O(length).
    explicit LumScript(const UnicodeString& text);
    /// The same for the name's text; the null name is AUTO.
    explicit LumScript(LumName name);
    /// The same of a name by its identifier.
    explicit LumScript(LumNameEnum name) : LumScript(LumName(name)) {}

    /// A Code, or a UScriptCode of ICU.
    constexpr std::int32_t getCode() const noexcept { return code_; }
    /// The code, so that scripts and codes can be compared.
    constexpr operator std::int32_t() const noexcept { return code_; }

    /// The ISO 15924 name; KOREAN is "Hang" and INHERITED "Qaai". The null name for AUTO, NONE, UNKNOWN and invalid
    /// codes.   Cost: names outside the built-in vocabulary are interned at each call.
    LumName getScriptCode() const;

    /// The first letter of the script's alphabet; used as a numbering format, it selects numbering in that script. "A"
    /// for scripts without their own numbering, and when there is no script.
    UnicodeString getA() const;

    /// The script of a character: ICU's answer, except that the whole Hebrew, Arabic (without its digits) and
    /// Devanagari blocks belong to their scripts, and some signs of Latin-1 are Latin. Unassigned code points and
    /// surrogates give ICU's Zzzz; numbers that are not code points give UNKNOWN.
    static LumScript getScript(UChar32 character) noexcept;

    /// The script of the first character whose script is neither COMMON nor UNKNOWN (INHERITED counts); COMMON when
    /// there is no such character.   Cost: O(length).
    static LumScript getScriptFromText(const UnicodeString& text) noexcept;

private:
    std::int32_t code_ = UNKNOWN;
};

}  // namespace LumCommon
