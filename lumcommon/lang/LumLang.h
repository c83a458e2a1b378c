#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumName.h>

#include <unicode/locid.h>

#include <string_view>

namespace LumCommon {

/// The bibliographic three-letter language codes (ISO 639-2/B) that ICU does not know, with the equivalents that it
/// does know.
/// Threads: any; constant data.
class LUM_API ISO639Bibliographic {
public:
    /// The number of codes in the table.
    static constexpr int COUNT = 24;

    /// The tag with a bibliographic code at its start replaced: "fre-FR" becomes "fra-FR", "none" the empty string. The
    /// code is the whole tag, or its first three characters when the fourth is not an ASCII letter; it is
    /// case-sensitive. Any other tag comes back unchanged.   Cost: O(length).
    static UnicodeString get(const UnicodeString& tag);
};

/// The table as an object, for callers that refer to it by name; it has no state.
extern LUM_API const ISO639Bibliographic s_ISO639Bibliographic;

/// The language of a piece of text, from a tag ("de", "zh-TW", "fre-CA"): an ICU locale, created after bibliographic
/// codes have been replaced. "-" and "_" both separate the parts of a tag.
///
/// Equality is that of the locale. The order (operator<) compares the language alone, so that a map keyed by LumLang
/// finds the entry for "sv" when asked for "sv-SE".
///
/// Failure: nothing is thrown but std::bad_alloc. ICU takes most texts as they stand, so that "!!" is a language of
/// that name; what it refuses, such as a tag that is too long, gives the empty language. Threads: a value.
class LUM_API LumLang : public icu::Locale {
public:
    /// The empty language (not ICU's default locale).
    LumLang() : icu::Locale("") {}
    /// The language of a tag; the empty text is the empty language.
    explicit LumLang(const UnicodeString& tag);
    /// @param tag  in ASCII; null is the empty language.
    explicit LumLang(const char* tag);
    /// @param countryCode  ISO 3166 code; empty for none.
    /// @param languageCode  ISO 639 code, bibliographic ones included.
    LumLang(const UnicodeString& languageCode, const UnicodeString& countryCode);
    /// The name's text as a tag; NAME_none and the null name are the empty language.
    explicit LumLang(LumName name);
    /// The same of a name by its identifier.
    explicit LumLang(LumNameEnum name) : LumLang(LumName(name)) {}  // an enum converts to a character, too
    /// A copy. Failure: std::bad_alloc, where ICU could not copy.
    LumLang(const LumLang& other);
    /// Takes over the content; `other` can only be assigned or destroyed then.
    LumLang(LumLang&& other) noexcept = default;
    /// Copies. Failure: std::bad_alloc, where ICU could not copy.
    LumLang& operator=(const LumLang& other);
    /// Takes over the content; `other` can only be assigned or destroyed then.
    LumLang& operator=(LumLang&& other) noexcept = default;

    /// Whether the language is empty.
    bool isEmpty() const { return *getLanguage() == '\0'; }

    /// Part of LumCommon::cleanup(). The table is constant data, so there is nothing to release.
    static void cleanup();

    /// Orders by the language alone: "sv" and "sv-SE" are equivalent.
    friend bool operator<(const LumLang& a, const LumLang& b) {
        return std::string_view(a.getLanguage()) < std::string_view(b.getLanguage());
    }
};

}  // namespace LumCommon
