#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumName.h>

#include <cstdint>

namespace LumCommon {

/// The writing system of a piece of text: an ICU script code, or one of a few values of our own for what ICU has no
/// single code for. It comes from the "script" property, or is found from the text itself. A script stands for its code
/// wherever an integer is asked for, so scripts and codes compare with one another.
///
/// Nothing here throws, but for exhausted memory. Threads: a value.
class LUM_API LumScript {
public:
    /// Codes that are used by name. Any other code from 0 up is ICU's UScriptCode.
    enum Code : std::int32_t {
        JAPANESE = -8,  ///< Han with both kana
        KOREAN = -4,    ///< Hangul with Han
        NONE = -3,      ///< the keyword "none"
        AUTO = -2,      ///< the keyword "auto": to be found from the text
        UNKNOWN = -1,
        COMMON = 0,
        INHERITED = 1,
        ARABIC = 2,
        CYRILLIC = 8,
        DEVANAGARI = 10,
        GREEK = 14,
        HAN = 17,
        HANGUL = 18,
        HEBREW = 19,
        HIRAGANA = 20,
        KATAKANA = 22,
        LATIN = 25,
        THAI = 38,
        KATAKANA_OR_HIRAGANA = 54,
        SIMPLIFIED_HAN = 73,
        TRADITIONAL_HAN = 74,
    };

    constexpr LumScript() noexcept = default;
    constexpr LumScript(Code code) noexcept : code_(code) {}
    /// The script with this code, which is not checked. For the script of a character see getScript().
    constexpr explicit LumScript(int code) noexcept : code_(code) {}
    explicit LumScript(char16_t) = delete;
    /// A script by its ISO 15924 code ("Latn"), by "auto" (also the empty text) or "none", by a language tag ("zh-TW";
    /// "zh" is Simplified Han unless it is of TW or HK), or by a name that ICU knows ("Old Italic"). UNKNOWN for
    /// anything else. Our own codes and keywords are matched exactly, tags and ICU's names in any case.
    /// Cost: O(length).
    explicit LumScript(const UnicodeString& text);
    /// The same for the name's text; the null name is AUTO.
    explicit LumScript(LumName name);
    explicit LumScript(LumNameEnum name) : LumScript(LumName(name)) {}

    constexpr std::int32_t getCode() const noexcept { return code_; }
    constexpr operator std::int32_t() const noexcept { return code_; }

    /// The ISO 15924 name; KOREAN is "Hang" and INHERITED "Qaai". The null name for AUTO, NONE, UNKNOWN and what is no
    /// code.   Cost: names outside the built-in vocabulary are interned at each call.
    LumName getScriptCode() const;

    /// The first letter of the script's alphabet, which as a numbering format numbers in that script; "A" for every
    /// script that has no numbering of its own, and where there is no script.
    UnicodeString getA() const;

    /// The script of a character: ICU's, but that the whole Hebrew, Arabic (without its digits) and Devanagari blocks
    /// count for their script, and some signs of Latin-1 as Latin. ICU's Zzzz for what is unassigned or a surrogate,
    /// UNKNOWN for what is no code point.
    static LumScript getScript(UChar32 character) noexcept;

    /// The script of the first character that has one, which is neither COMMON nor UNKNOWN; INHERITED counts as one.
    /// COMMON when there is none.   Cost: O(length).
    static LumScript getScriptFromText(const UnicodeString& text) noexcept;

private:
    std::int32_t code_ = UNKNOWN;
};

}  // namespace LumCommon
