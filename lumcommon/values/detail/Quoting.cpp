#include <lumcommon/core/LumStrings.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/CodePoints.h>
#include <lumcommon/core/detail/HexText.h>
#include <lumcommon/values/detail/Quoting.h>

namespace LumCommon::detail {

namespace {

constexpr char16_t noQuote = 0;

constexpr bool isCssSpace(char16_t c) noexcept { return isTokenSpace(c) || c == u'\f'; }

char16_t chooseQuote(const UnicodeString& text, unsigned mode) {
    switch (mode & (QUOTE_BIT_DOUBLE | QUOTE_BIT_SINGLE)) {
        case QUOTE_BIT_DOUBLE | QUOTE_BIT_SINGLE:
            return text.indexOf(u'"') >= 0 && text.indexOf(u'\'') < 0 ? u'\'' : u'"';
        case QUOTE_BIT_DOUBLE:
            return u'"';
        case QUOTE_BIT_SINGLE:
            return u'\'';
        default:
            return noQuote;
    }
}

/// The hexadecimal digits that stand for `c` after a backslash; null if `c` needs no escape.
const char16_t* getCssEscape(char16_t c, char16_t quote) noexcept {
    switch (c) {
        case u'\n':
            return u"A";
        case u'\f':
            return u"C";
        case u'\r':
            return u"D";
        case u'\\':
            return u"5C";
        case u'"':
            return quote == u'"' ? u"22" : nullptr;
        case u'\'':
            return quote == u'\'' ? u"27" : nullptr;
        default:
            return nullptr;
    }
}

void appendCssEscaped(UnicodeString& result, const UnicodeString& text, char16_t quote) {
    for (int i = 0; i < text.length(); ++i) {
        const char16_t c = text.charAt(i);
        const char16_t* const escape = getCssEscape(c, quote);
        if (!escape) {
            append(result, c);
            continue;
        }
        append(result, u'\\');
        append(result, escape);
        const bool hasNext = i + 1 < text.length();
        const char16_t next = hasNext ? text.charAt(i + 1) : u'\0';
        if (isCssSpace(next) || hexDigitValue(next) >= 0) append(result, u' ');
    }
}

void appendDoubled(UnicodeString& result, const UnicodeString& text, char16_t quote) {
    for (int i = 0; i < text.length(); ++i) {
        const char16_t c = text.charAt(i);
        append(result, c);
        if (c == quote) append(result, c);
    }
}

/// Reads what follows a backslash. Invalid code points (0, surrogates, beyond U+10FFFF) become U+FFFD.
void appendUnescaped(UnicodeString& result, UnitCursor& cursor) {
    const char16_t c = cursor.peek();
    if (hexDigitValue(c) >= 0) {
        constexpr int mostDigits = 6;
        const auto code = static_cast<UChar32>(scanHexNumber(cursor, mostDigits));
        if (isCssSpace(cursor.peek())) cursor.advance();
        append(result, static_cast<char32_t>(code != 0 && isUnicodeCharacter(code) ? code : replacementCharacter));
        return;
    }
    if (cursor.isAtEnd()) {
        append(result, u'\\');
        return;
    }
    cursor.advance();
    if (c == u'\r' && cursor.peek() == u'\n') cursor.advance();
    if (c != u'\r' && c != u'\n' && c != u'\f') append(result, c);
}

bool isQuoteOfMode(char16_t c, unsigned mode) noexcept {
    return (c == u'"' && (mode & QUOTE_BIT_DOUBLE)) || (c == u'\'' && (mode & QUOTE_BIT_SINGLE));
}

}  // namespace

UnicodeString quoteString(const UnicodeString& text, unsigned mode) {
    const char16_t quote = chooseQuote(text, mode);
    UnicodeString result;
    if (quote != noQuote) append(result, quote);
    if (mode & QUOTE_BIT_CSS) {
        appendCssEscaped(result, text, quote);
    } else if ((mode & QUOTE_BIT_DOUBLING) && quote != noQuote) {
        appendDoubled(result, text, quote);
    } else {
        append(result, text);
    }
    if (quote != noQuote) append(result, quote);
    return result;
}

UnicodeString scanString(UnitCursor& cursor, unsigned mode) {
    UnitCursor scan = cursor;
    char16_t quote = noQuote;
    if (mode & (QUOTE_BIT_DOUBLE | QUOTE_BIT_SINGLE)) {
        quote = scan.peek();
        if (!isQuoteOfMode(quote, mode)) return LumBogusString::BOGUS_VALUE;
        scan.advance();
    }
    UnicodeString result;
    for (;;) {
        if (scan.isAtEnd()) {
            if (quote != noQuote) return LumBogusString::BOGUS_VALUE;
            break;
        }
        const char16_t c = scan.peek();
        scan.advance();
        if (c == quote) {
            if (!(mode & QUOTE_BIT_DOUBLING) || scan.peek() != quote) break;
            scan.advance();
            append(result, c);
        } else if (c == u'\\' && (mode & QUOTE_BIT_CSS)) {
            appendUnescaped(result, scan);
        } else {
            append(result, c);
        }
    }
    cursor = scan;
    return result;
}

UnicodeString unquoteString(const UnicodeString& text, unsigned mode) {
    UnicodeString trimmed = copyOf(text);
    if (!text.isBogus()) checked(trimmed.trim());
    const int length = trimmed.length();
    const char16_t* const start = trimmed.getBuffer();
    if (start) {
        UnitCursor cursor(start, start + length);
        UnicodeString result = scanString(cursor, mode);
        if (!result.isBogus() && cursor.get() == start + length) return result;
    }
    // Without doubling or escapes, a quote inside is an ordinary character.
    const bool isPlain = !(mode & (QUOTE_BIT_DOUBLING | QUOTE_BIT_CSS));
    if (isPlain && length >= 2 && trimmed.charAt(0) == trimmed.charAt(length - 1)) {
        return textOf(viewOf(trimmed).substr(1, static_cast<std::size_t>(length - 2)));
    }
    return LumBogusString::BOGUS_VALUE;
}

UnicodeString quoteUri(const UnicodeString& uri) {
    UnicodeString result(u"url(\"", 5);
    for (int i = 0; i < uri.length(); ++i) {
        if (uri.charAt(i) == u'"') {
            append(result, u"%22");
        } else {
            append(result, uri.charAt(i));
        }
    }
    append(result, u"\")");
    return result;
}

}  // namespace LumCommon::detail
