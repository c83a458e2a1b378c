#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/format/xls/XlsFormatCode.h>
#include <lumcommon/format/xls/detail/XlsRules.h>
#include <lumcommon/format/xls/detail/XlsTables.h>

#include <cstdint>
#include <string_view>
#include <vector>

namespace LumCommon::detail {

/// The tokens of a code, before it is known what its letters mean.
enum class XlsToken : std::uint8_t {
    LITERAL,  ///< a run of units that mean themselves
    SKIP,
    FILL,
    DIGIT_0,  ///< a run
    DIGIT_OPTIONAL,
    DIGIT_SPACED,
    DIGIT_LITERAL,  ///< one of 1 to 9
    POINT,
    COMMA,
    PERCENT,
    EXPONENT,  ///< E and its sign
    SLASH,
    AT,
    GENERAL,
    AM_PM,
    LETTERS,  ///< a run of one of y m d h s g r, and where the rules say so of a and b, whatever the case
    LETTERS_E,
    ELAPSED,  ///< a bracket of h, m or s
};

struct XlsRawPiece {
    XlsToken token;
    char32_t unit = 0;  ///< the letter, lower case; the character of SKIP and FILL; the sign of EXPONENT
    std::int32_t begin = 0;
    std::int32_t end = 0;  ///< of its units in the code; for a literal, of the text to write
    std::int32_t count = 1;
};

/// One section as written, except that its brackets have been evaluated.
struct XlsRawSection {
    std::vector<XlsRawPiece> pieces;
    UnicodeString prefix;  ///< the brackets of colour, condition, style and language in their normal form
};

/// Splits a code into sections, from left to right, and reads their brackets into the fields of their FMT.
class XlsCodeScan {
public:
    XlsCodeScan(std::u16string_view code, const XlsRules& rules, FMT2& out)
        : code_(code), rules_(rules), lastClose_(code.rfind(u']')), out_(out) {}

    /// Scans the code and returns the number of sections.
    int run();
    XlsRawSection& section(int index) { return sections_[index]; }
    /// Whether "e" is a year.
    bool isJapanese() const { return isJapanese_; }

private:
    void element();
    void literal(std::int32_t begin, std::int32_t end);
    void add(XlsToken token, char32_t unit, std::int32_t length, std::int32_t count = 1);
    void run(XlsToken token, char32_t unit);
    void quoted();
    /// Reads "\\", "_" or "*" and the character after it.
    void withCharacter(XlsToken token);
    void letter(char16_t lower);
    void amPm(int form) { add(XlsToken::AM_PM, 0, static_cast<std::int32_t>(xlsAmPm(form).size()), form); }
    void bracket();
    bool styleBracket(std::u16string_view content);
    bool color(std::u16string_view content);
    bool condition(std::u16string_view content);
    void currency(std::int32_t begin, std::u16string_view content);
    struct Tag {
        unsigned language = 0, numerals = 0, calendar = 0;  ///< 0 where it says nothing, or nothing known
        bool namesFirstYear = false;
    };
    Tag parsedTag(std::u16string_view text) const;
    bool startsWith(std::u16string_view word, bool ignoreCase) const;
    FMT& current() { return out_.sections[static_cast<std::size_t>(count_ - 1)]; }
    XlsRawSection& raw() { return sections_[count_ - 1]; }

    std::u16string_view code_;
    const XlsRules& rules_;
    std::size_t lastClose_;
    FMT2& out_;
    std::int32_t at_ = 0;
    int count_ = 1;
    bool isJapanese_ = false;
    XlsRawSection sections_[4];
};

}  // namespace LumCommon::detail
