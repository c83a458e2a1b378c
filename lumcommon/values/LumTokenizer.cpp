#include <lumcommon/core/LumError.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/detail/NumberScan.h>
#include <lumcommon/values/detail/Units.h>

#include <cmath>
#include <limits>

namespace LumCommon {

using detail::UnitCursor;

namespace {

constexpr bool isQuote(char16_t c) noexcept { return c == u'"' || c == u'\''; }

constexpr bool isNameStart(char16_t c) noexcept {
    if (c < 0xC0) return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_';
    return c <= 0x2FF || (c >= 0x370 && c <= 0x37D) || (c >= 0x37F && c <= 0x1FFF) || c == 0x200C || c == 0x200D ||
           (c >= 0x2070 && c <= 0x218F) || (c >= 0x2C00 && c <= 0x2FEF) || (c >= 0x3001 && c <= 0xD7FF) || c >= 0xF900;
}

constexpr bool isNameUnit(char16_t c) noexcept {
    return isNameStart(c) || c == u'-' || c == u'.' || detail::isDigit(c) || c == 0xB7 || (c >= 0x300 && c <= 0x36F) ||
           c == 0x203F || c == 0x2040;
}

/// A hash colour of one to three digits has one digit a channel; each becomes a byte by being written twice.
constexpr std::uint32_t expandShortColor(std::uint32_t digits) noexcept {
    return ((digits & 0xF00u) << 8 | (digits & 0xF0u) << 4 | (digits & 0xFu)) * 17;
}
static_assert(expandShortColor(0xABC) == 0xAABBCC);

UnicodeString cutAtNul(const UnicodeString& text) {
    const int nul = text.indexOf(u'\0');
    return nul < 0 ? text : UnicodeString(text, 0, nul);
}

}  // namespace

LumTokenizer::LumTokenizer(const UnicodeString& text) : source_(cutAtNul(text)) {}

// The cursor lives inside one operation: the buffer of source_ moves when the tokenizer is copied, its index does not.
UnitCursor LumTokenizer::getCursor() const noexcept {
    const char16_t* const start = source_.getBuffer();
    if (!start) return UnitCursor(nullptr, nullptr);  // a bogus text
    return UnitCursor(start + position_, start + source_.length());
}

void LumTokenizer::setCursor(const UnitCursor& cursor) noexcept {
    if (cursor.get()) position_ = static_cast<int>(cursor.get() - source_.getBuffer());
}

void LumTokenizer::setText(const char16_t* begin, const char16_t* end) {
    text_.setTo(begin, static_cast<int>(end - begin));
}

int LumTokenizer::nextToken() {
    if (isPushedBack_) {
        isPushedBack_ = false;
        return kind_;
    }
    UnitCursor cursor = getCursor();
    cursor.skipTokenSpace();
    text_.remove();
    number_ = 0;
    hasFraction_ = false;
    const char16_t c = cursor.peek();
    if (cursor.isAtEnd()) {
        kind_ = TOKEN_END;
    } else if (isNameStart(c)) {
        readName(cursor);
        kind_ = TOKEN_NAME;
    } else if (isQuote(c)) {
        readQuoted(cursor);
    } else if (cursor.isAtNumber()) {
        readNumber(cursor);
    } else if (c == u'#' && detail::getHexDigit(cursor.peekSecond()) >= 0) {
        cursor.advance();
        const char16_t* const digits = cursor.get();
        const std::uint32_t value = detail::scanHexNumber(cursor, -1);
        number_ = cursor.get() - digits <= 3 ? expandShortColor(value) : value;
        kind_ = TOKEN_HASH;
    } else {
        cursor.advance();
        kind_ = c;
    }
    setCursor(cursor);
    return kind_;
}

void LumTokenizer::readName(UnitCursor& cursor) {
    const char16_t* const start = cursor.get();
    while (isNameUnit(cursor.peek())) cursor.advance();
    setText(start, cursor.get());
}

void LumTokenizer::readQuoted(UnitCursor& cursor) {
    const char16_t quote = cursor.peek();
    cursor.advance();
    UnitCursor closing = cursor;
    while (!closing.isAtEnd() && closing.peek() != quote) closing.advance();
    if (closing.isAtEnd()) {
        kind_ = quote;
        return;
    }
    setText(cursor.get(), closing.get());
    closing.advance();
    cursor = closing;
    kind_ = TOKEN_STRING;
}

void LumTokenizer::readNumber(UnitCursor& cursor) {
    const detail::ScannedNumber scanned = detail::scanNumber(cursor);
    number_ = scanned.value;
    hasFraction_ = scanned.hasFraction;
    if (cursor.peek() == u'%') {
        cursor.advance();
        text_.setTo(u'%');
    } else if (isNameStart(cursor.peek())) {
        readName(cursor);
    }
    kind_ = TOKEN_NUMBER;
}

LumValue LumTokenizer::makeNumberValue() {
    if (!text_.isEmpty()) {
        if (text_.charAt(0) == u'%') return LumValue(static_cast<float>(number_), UNIT_PERCENT);
        if (const LumValueUnitType unit = detail::findUnit(text_); unit != UNIT_NONE) {
            return LumValue(static_cast<float>(number_), unit);
        }
        // What is no unit is the next token. The text goes too: a number that is pushed back and read once more must
        // not move the position a second time.
        position_ -= text_.length();
        text_.remove();
    }
    // A number written with a point is a real even when its fraction is zero.
    constexpr double smallest = std::numeric_limits<std::int32_t>::min();
    constexpr double largest = std::numeric_limits<std::int32_t>::max();
    if (!hasFraction_ && number_ >= smallest && number_ <= largest) return LumValue(static_cast<int>(number_));
    return LumValue(static_cast<float>(number_), UNIT_NUMBER);
}

LumValue LumTokenizer::nextTokenValue() {
    LumValue value;
    switch (nextToken()) {
        case TOKEN_END:
        case TOKEN_NONE:
            break;
        case TOKEN_NUMBER:
            return makeNumberValue();
        case TOKEN_NAME:
            try {
                value = LumName(LumNameTable::getSharedNameEnum(text_));
                value.setUnit(UNIT_IDENT);
            } catch (const LumError&) {
                value = LumValue(text_);  // the name table is full
            }
            break;
        case TOKEN_STRING:
            value = LumValue(text_);
            value.setUnit(UNIT_QUOTED);
            break;
        case TOKEN_HASH:
            value = LumValue(static_cast<int>(static_cast<std::uint32_t>(number_)));
            value.setUnit(UNIT_COLOR);
            break;
        default:
            value = LumValue(kind_);
            value.setUnit(UNIT_CHAR);
            break;
    }
    return value;
}

LumValue LumTokenizer::nextTokenValueSigned() {
    if (isPushedBack_) {
        LumValue value = nextTokenValue();
        const bool isDelimiter = kind_ > 0;
        // The delimiter is read again, now as a sign that may belong to a number.
        if (!isDelimiter || position_ == 0 || source_.charAt(position_ - 1) != kind_) return value;
        --position_;
    }
    UnitCursor cursor = getCursor();
    cursor.skipTokenSpace();
    const char16_t sign = cursor.peek();
    if ((sign != u'-' && sign != u'+') || !cursor.isAtSignedNumber()) return nextTokenValue();
    cursor.advance();
    setCursor(cursor);
    LumValue value = nextTokenValue();
    if (sign == u'+') return value;
    number_ = -number_;
    return -value;
}

bool LumTokenizer::readExponent(LumValueUnitType& unit) {
    UnitCursor cursor = getCursor();
    if (cursor.peek() != u'e' && cursor.peek() != u'E') return false;
    cursor.advance();
    const UnitCursor afterE = cursor;
    cursor.skipTokenSpace();
    // Looking ahead keeps a failed attempt from interning a name that is no name.
    if (!cursor.isAtSignedNumber()) return false;
    const double mantissa = number_;
    setCursor(afterE);
    unit = nextTokenValueSigned().getUnit();
    if (mantissa != 0) {
        number_ = mantissa * std::pow(10.0, number_);
    } else {
        number_ = mantissa;  // zero times an infinite power would be no number
    }
    hasFraction_ = true;  // pushed back and read again it stays a real
    return true;
}

LumValue LumTokenizer::nextTokenValueExp() {
    LumValue value = nextTokenValueSigned();
    if (!value.isNumeric() || value.getUnit() != UNIT_NUMBER) return value;
    LumValueUnitType unit = UNIT_NUMBER;
    if (!readExponent(unit)) return value;
    return LumValue(static_cast<float>(number_), unit);
}

double LumTokenizer::nextTokenDoubleExp() {
    const LumValue value = nextTokenValueSigned();
    if (value.isNumeric() && value.getUnit() == UNIT_NUMBER) {
        LumValueUnitType unit = UNIT_NUMBER;
        readExponent(unit);
    }
    return number_;
}

LumValue LumTokenizer::nextTokenValueFunc() {
    LumValue value = nextTokenValueExp();
    UnicodeString text;
    int groupStart = position_;
    if (kind_ == u'(' && groupStart > 0 && source_.charAt(groupStart - 1) == u'(') {
        --groupStart;
    } else if (kind_ == TOKEN_NAME && getCursor().peek() == u'(') {
        text = text_;
        ++position_;
    } else {
        return value;
    }
    const bool isUrl = text == UnicodeString(u"url");
    const bool isRgb = text == UnicodeString(u"rgb");
    skipGroup();
    text.append(source_, groupStart, position_ - groupStart);
    if (isRgb) return LumValue::parseColor(text, false);
    if (!isUrl) return LumValue(text);
    value = LumValue(LumUri(text).toString());
    value.setUnit(UNIT_URI);
    return value;
}

// A group ends where its parentheses balance, and parentheses count unless a quoted string holds them. The tokens
// between need no values, so that nesting costs neither stack nor names.
void LumTokenizer::skipGroup() {
    for (int depth = 1; depth > 0;) {
        const int kind = nextToken();
        if (kind == TOKEN_END) return;
        if (kind == u'(') ++depth;
        if (kind == u')') --depth;
    }
}

UnicodeString LumTokenizer::nextSeparatedValue(char16_t separator) {
    if (isPushedBack_) {
        isPushedBack_ = false;
        return text_;
    }
    UnitCursor cursor = getCursor();
    cursor.skipTokenSpace();
    text_.remove();
    number_ = 0;
    hasFraction_ = false;
    kind_ = TOKEN_END;
    while (!cursor.isAtEnd()) {
        kind_ = TOKEN_STRING;
        appendItemPart(cursor, separator);
        cursor.skipTokenSpace();
        if (cursor.isAtEnd() || detail::isTokenSpace(separator)) break;
        if (cursor.peek() == separator) {
            cursor.advance();
            cursor.skipTokenSpace();
            break;
        }
        text_.append(u' ');
    }
    setCursor(cursor);
    return text_;
}

void LumTokenizer::appendItemPart(UnitCursor& cursor, char16_t separator) {
    const char16_t quote = cursor.peek();
    const bool isQuoted = isQuote(quote);
    if (isQuoted) cursor.advance();
    const char16_t* const start = cursor.get();
    while (!cursor.isAtEnd()) {
        const char16_t c = cursor.peek();
        if (isQuoted ? c == quote : c == separator || detail::isTokenSpace(c)) break;
        cursor.advance();
    }
    text_.append(start, static_cast<int>(cursor.get() - start));
    if (isQuoted && !cursor.isAtEnd()) cursor.advance();
}

bool LumTokenizer::skipSeparator(char16_t separator) {
    if (isPushedBack_) return false;
    UnitCursor cursor = getCursor();
    cursor.skipTokenSpace();
    const bool isThere = !cursor.isAtEnd() && cursor.peek() == separator;
    if (isThere) {
        cursor.advance();
        cursor.skipTokenSpace();
    }
    setCursor(cursor);
    return isThere;
}

bool LumTokenizer::scanSeparator(char16_t separator) const {
    if (isPushedBack_) return false;
    UnitCursor cursor = getCursor();
    cursor.skipTokenSpace();
    return !cursor.isAtEnd() && cursor.peek() == separator;
}

}  // namespace LumCommon
