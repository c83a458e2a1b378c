#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/HexText.h>
#include <lumcommon/core/detail/XmlNameRanges.h>
#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/values/detail/TokenScan.h>
#include <lumcommon/values/detail/Units.h>

#include <array>
#include <cstdint>
#include <limits>

namespace LumCommon::detail {

namespace {

constexpr std::uint8_t startBit = 1;
constexpr std::uint8_t nameBit = 2;

constexpr auto asciiClasses = [] {
    std::array<std::uint8_t, 128> classes{};
    for (char16_t c = 0; c < classes.size(); ++c) {
        if (isAsciiLetter(c) || c == u'_') classes[c] = startBit | nameBit;
        if (c == u'-' || c == u'.' || isAsciiDigit(c)) classes[c] = nameBit;
    }
    return classes;
}();

constexpr bool isNameStart(char16_t c) noexcept {
    if (c < asciiClasses.size()) return (asciiClasses[c] & startBit) != 0;
    const XmlNameRange* const range = findXmlNameRange(c);
    return range && range->isStart;
}

constexpr bool isNameUnit(char16_t c) noexcept {
    if (c < asciiClasses.size()) return (asciiClasses[c] & nameBit) != 0;
    return findXmlNameRange(c) != nullptr;
}

/// A hash colour of one to three digits has one digit per channel; doubling the digit gives the byte.
constexpr std::uint32_t expandShortColor(std::uint32_t digits) noexcept {
    return ((digits & 0xF00u) << 8 | (digits & 0xF0u) << 4 | (digits & 0xFu)) * 17;
}
static_assert(expandShortColor(0xABC) == 0xAABBCC);

std::u16string_view scanName(UnitCursor& cursor) {
    const char16_t* const start = cursor.get();
    while (isNameUnit(cursor.peek())) cursor.advance();
    return {start, cursor.get()};
}

/// Reads a quoted string; an unclosed quote is a delimiter.
void scanQuoted(UnitCursor& cursor, ScannedToken& token) {
    const char16_t quote = cursor.peek();
    cursor.advance();
    UnitCursor closing = cursor;
    while (!closing.isAtEnd() && closing.peek() != quote) closing.advance();
    if (closing.isAtEnd()) {
        token.kind = quote;
        return;
    }
    token.text = {cursor.get(), closing.get()};
    token.kind = LumTokenizer::TOKEN_STRING;
    closing.advance();
    cursor = closing;
}

void scanNumberToken(UnitCursor& cursor, ScannedToken& token) {
    const ScannedNumber scanned = scanNumber(cursor);
    token.kind = LumTokenizer::TOKEN_NUMBER;
    token.number = scanned.value;
    token.hasFraction = scanned.hasFraction;
    if (cursor.peek() == u'%') {
        token.text = {cursor.get(), 1};
        cursor.advance();
    } else if (isNameStart(cursor.peek())) {
        token.text = scanName(cursor);
    }
}

LumValue withUnit(LumValue value, LumValueUnitType unit) noexcept {
    value.setUnit(unit);
    return value;
}

LumValue makeNumberValue(const ScannedToken& token, bool& isSuffixLeft) noexcept {
    if (!token.text.empty()) {
        if (token.text.front() == u'%') return LumValue(static_cast<float>(token.number), UNIT_PERCENT);
        if (const LumValueUnitType unit = findUnit(token.text); unit != UNIT_NONE) {
            return LumValue(static_cast<float>(token.number), unit);
        }
        isSuffixLeft = true;
    }
    // A number written with a point is a real even if its fraction is zero.
    constexpr double smallest = std::numeric_limits<std::int32_t>::min();
    constexpr double largest = std::numeric_limits<std::int32_t>::max();
    if (!token.hasFraction && token.number >= smallest && token.number <= largest) {
        return LumValue(static_cast<int>(token.number));
    }
    return LumValue(static_cast<float>(token.number), UNIT_NUMBER);
}

LumValue makeNameValue(std::u16string_view name) {
    try {
        return withUnit(LumName(internName(name.data(), name.size())), UNIT_IDENT);
    } catch (const LumError&) {
        if (!isNameTableFull()) throw;  // out of memory
        return LumValue(textOf(name));
    }
}

}  // namespace

ScannedToken scanToken(UnitCursor& cursor) {
    cursor.skipTokenSpace();
    ScannedToken token;
    const char16_t c = cursor.peek();
    if (cursor.isAtEnd()) {
        token.kind = LumTokenizer::TOKEN_END;
    } else if (isNameStart(c)) {
        token.kind = LumTokenizer::TOKEN_NAME;
        token.text = scanName(cursor);
    } else if (isQuote(c)) {
        scanQuoted(cursor, token);
    } else if (cursor.isAtNumber()) {
        scanNumberToken(cursor, token);
    } else if (c == u'#' && hexDigitValue(cursor.peekSecond()) >= 0) {
        cursor.advance();
        const char16_t* const digits = cursor.get();
        const std::uint32_t value = scanHexNumber(cursor, -1);
        token.number = cursor.get() - digits <= 3 ? expandShortColor(value) : value;
        token.kind = LumTokenizer::TOKEN_HASH;
    } else {
        cursor.advance();
        token.kind = c;
    }
    return token;
}

bool skipSign(UnitCursor& cursor, char16_t& sign) noexcept {
    cursor.skipTokenSpace();
    sign = cursor.peek();
    if ((sign != u'-' && sign != u'+') || !cursor.isAtSignedNumber()) return false;
    cursor.advance();
    return true;
}

LumValue makeTokenValue(const ScannedToken& token, bool& isSuffixLeft) {
    isSuffixLeft = false;
    switch (token.kind) {
        case LumTokenizer::TOKEN_END:
        case LumTokenizer::TOKEN_NONE:
            return LumValue();
        case LumTokenizer::TOKEN_NUMBER:
            return makeNumberValue(token, isSuffixLeft);
        case LumTokenizer::TOKEN_NAME:
            return makeNameValue(token.text);
        case LumTokenizer::TOKEN_STRING:
            return withUnit(LumValue(textOf(token.text)), UNIT_QUOTED);
        case LumTokenizer::TOKEN_HASH:
            return withUnit(LumValue(static_cast<int>(static_cast<std::uint32_t>(token.number))), UNIT_COLOR);
        default:
            return withUnit(LumValue(token.kind), UNIT_CHAR);
    }
}

LumValue parseSingleToken(const UnicodeString& text, bool isSignAllowed, int& kind) {
    const std::u16string_view view = viewOf(text);
    UnitCursor cursor(view.data(), view.data() + view.size());
    char16_t sign = u'+';
    const bool isSigned = isSignAllowed && skipSign(cursor, sign);
    const ScannedToken token = scanToken(cursor);
    kind = LumTokenizer::TOKEN_NONE;
    cursor.skipTokenSpace();
    if (token.kind >= 0 || token.kind == LumTokenizer::TOKEN_END || !cursor.isAtEnd()) return LumValue();
    bool isSuffixLeft = false;
    LumValue value = makeTokenValue(token, isSuffixLeft);
    if (isSuffixLeft) return LumValue();
    kind = token.kind;
    return isSigned && sign == u'-' ? -value : value;
}

}  // namespace LumCommon::detail
