#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/NameReader.h>
#include <lumcommon/xml/detail/ParserPolicy.h>
#include <lumcommon/xml/detail/ReferenceReader.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <string_view>

namespace LumCommon::detail {

namespace {

/// The value of a digit, or -1.
int digitValue(std::int32_t c, bool isHexadecimal) {
    if (c >= '0' && c <= '9') return c - '0';
    if (isHexadecimal && c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (isHexadecimal && c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

constexpr bool isXmlChar(std::int32_t c) {
    return c == 0x09 || c == 0x0A || c == 0x0D || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= lastCodePoint);
}

}  // namespace

std::int32_t ReferenceReader::readCharacter() {
    UnicodeString read;  // for the message
    std::int32_t c = inputs_.readChar();
    const bool isHexadecimal = c == 'x';
    if (isHexadecimal) {
        append(read, u'x');
        c = inputs_.readChar();
    }
    std::int32_t value = 0;
    bool hasDigits = false;
    for (int digit; (digit = digitValue(c, isHexadecimal)) >= 0; c = inputs_.readChar()) {
        hasDigits = true;
        append(read, static_cast<char16_t>(c));
        // Beyond the last code point more digits make it no better, and must not make it wrap around.
        if (value <= lastCodePoint) value = value * (isHexadecimal ? 16 : 10) + digit;
    }
    if (!hasDigits || c != ';') {
        if (c >= 0) append(read, static_cast<char32_t>(c));
        errors_.report(isXmlSpace(c) ? XmlError::CharRefSpace : XmlError::CharRefDigit, read);
        return 0;
    }
    if (!isXmlChar(value)) {
        errors_.report(XmlError::CharRefChar, read);
        return 0;
    }
    return value;
}

std::int32_t ReferenceReader::read(LumName& name) {
    name = LumName();
    std::int32_t c = inputs_.readChar();
    if (c == '#') return readCharacter();
    inputs_.unreadChar(c);
    name = names_.readNCName();
    if (name.isNull()) errors_.report(XmlError::EntityNameEmpty);
    c = inputs_.readChar();
    if (c != ';') {
        UnicodeString read(u"&");
        append(read, name.getString());
        if (c >= 0) append(read, static_cast<char32_t>(c));
        errors_.report(XmlError::EntityRefChar, read);
    }
    return 0;
}

std::int32_t ReferenceReader::matchSimple(const char16_t*& position, const char16_t* end) const {
    const char16_t* p = position;
    if (p == end) return -1;
    if (*p != '#') {
        static constexpr struct {
            std::u16string_view text;
            char16_t unit;
        } references[] = {{u"amp;", u'&'}, {u"lt;", u'<'}, {u"gt;", u'>'}, {u"quot;", u'"'}, {u"apos;", u'\''}};
        const std::u16string_view rest(p, static_cast<std::size_t>(end - p));
        for (const auto& reference : references) {
            if (*p != reference.text[0] || !rest.starts_with(reference.text)) continue;
            if (!entities_.isPredefinedIntact()) return -1;
            position = p + reference.text.size();
            return reference.unit;
        }
        return -1;
    }
    const bool isHexadecimal = ++p != end && *p == 'x';
    if (isHexadecimal) ++p;
    const char16_t* const digits = p;
    std::int32_t value = 0;
    for (int digit; p != end && (digit = digitValue(*p, isHexadecimal)) >= 0 && p - digits < 8; ++p) {
        value = value * (isHexadecimal ? 16 : 10) + digit;
        if (value > lastCodePoint) return -1;
    }
    if (p == end || p == digits || *p != ';' || !isXmlChar(value)) return -1;
    position = p + 1;
    return value;
}

std::int32_t ReferenceReader::readSimple() {
    XmlCursor& cursor = inputs_.cursor();
    const char16_t* position = cursor.cur;
    const std::int32_t c = matchSimple(position, cursor.end);
    if (c >= 0) {
        cursor.cur = position;
        cursor.touch(position);
    }
    return c;
}

void ReferenceReader::expand(EntityKind kind, LumName name, const UnicodeString& text) {
    if (inputs_.pushReplacement(name, text, kind == EntityKind::Parameter)) {
        if (!policy_.forgivesEntities()) inputs_.setBarrier(true);
    } else {
        errors_.report(XmlError::ExpansionLimit);
    }
}

}  // namespace LumCommon::detail
