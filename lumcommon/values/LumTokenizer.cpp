#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/detail/NumberScan.h>
#include <lumcommon/values/detail/TokenScan.h>

#include <cmath>

namespace LumCommon {

using detail::UnitCursor;

namespace {

UnicodeString cutAtNul(const UnicodeString& text) {
    const int nul = text.indexOf(u'\0');
    return nul < 0 ? detail::copyOf(text) : detail::checked(UnicodeString(text, 0, nul));
}

}  // namespace

LumTokenizer::LumTokenizer(const UnicodeString& text) : source_(cutAtNul(text)) {}

// A cursor is only valid within one operation: copying the tokenizer moves the buffer of source_, but not the index.
UnitCursor LumTokenizer::getCursor() const noexcept {
    const char16_t* const start = source_.getBuffer();
    if (!start) return UnitCursor(nullptr, nullptr);  // a bogus text
    return UnitCursor(start + position_, start + source_.length());
}

void LumTokenizer::setCursor(const UnitCursor& cursor) noexcept {
    if (cursor.get()) position_ = static_cast<int>(cursor.get() - source_.getBuffer());
}

void LumTokenizer::setText(std::u16string_view text) {
    detail::checked(text_.setTo(text.data(), detail::checkedLength(text.size())));
}

int LumTokenizer::nextToken() {
    if (isPushedBack_) {
        isPushedBack_ = false;
        return kind_;
    }
    UnitCursor cursor = getCursor();
    const detail::ScannedToken token = detail::scanToken(cursor);
    kind_ = token.kind;
    number_ = token.number;
    hasFraction_ = token.hasFraction;
    setText(token.text);
    setCursor(cursor);
    return kind_;
}

LumValue LumTokenizer::nextTokenValue() {
    nextToken();
    bool isSuffixLeft = false;
    LumValue value = detail::makeTokenValue({kind_, number_, hasFraction_, detail::viewOf(text_)}, isSuffixLeft);
    if (isSuffixLeft) {
        // A suffix that is not a unit is the next token. Clear the text too, so that a number that is pushed back and
        // read again does not move the position a second time.
        position_ -= text_.length();
        text_.remove();
    }
    return value;
}

LumValue LumTokenizer::nextTokenValueSigned() {
    if (isPushedBack_) {
        LumValue value = nextTokenValue();
        const bool isDelimiter = kind_ > 0;
        // Read the delimiter again, this time as a sign that may belong to a number.
        if (!isDelimiter || position_ == 0 || source_.charAt(position_ - 1) != kind_) return value;
        --position_;
    }
    UnitCursor cursor = getCursor();
    char16_t sign = u'+';
    if (!detail::skipSign(cursor, sign)) return nextTokenValue();
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
    // Look ahead: a failed attempt must not intern a name.
    if (!cursor.isAtSignedNumber()) return false;
    const double mantissa = number_;
    setCursor(afterE);
    unit = nextTokenValueSigned().getUnit();
    if (mantissa != 0) {
        number_ = mantissa * std::pow(10.0, number_);
    } else {
        number_ = mantissa;  // zero times an infinite power would be NaN
    }
    hasFraction_ = true;  // keeps it a real if it is pushed back and read again
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
    detail::append(text, detail::viewOf(source_).substr(static_cast<std::size_t>(groupStart),
                                                        static_cast<std::size_t>(position_ - groupStart)));
    if (isRgb) return LumValue::parseColor(text, false);
    if (!isUrl) return LumValue(text);
    value = LumValue(LumUri(text).toString());
    value.setUnit(UNIT_URI);
    return value;
}

// A group ends where its parentheses balance, not counting those inside quoted strings. The tokens in between need no
// values, so nesting costs neither stack nor interned names.
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
        detail::append(text_, u' ');
    }
    setCursor(cursor);
    return text_;
}

void LumTokenizer::appendItemPart(UnitCursor& cursor, char16_t separator) {
    const char16_t quote = cursor.peek();
    const bool isQuoted = detail::isQuote(quote);
    if (isQuoted) cursor.advance();
    const char16_t* const start = cursor.get();
    while (!cursor.isAtEnd()) {
        const char16_t c = cursor.peek();
        if (isQuoted ? c == quote : c == separator || detail::isTokenSpace(c)) break;
        cursor.advance();
    }
    detail::append(text_, std::u16string_view(start, cursor.get()));
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
