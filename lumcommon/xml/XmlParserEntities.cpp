#include <lumcommon/core/LumStrings.h>
#include <lumcommon/core/detail/TextView.h>
#include <lumcommon/xml/XmlParserImpl.h>
#include <lumcommon/xml/detail/MathMLEntities.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <string_view>

// References to characters and entities.

namespace LumCommon {

namespace XmlError = detail::XmlError;

namespace {

/// The value of a digit, or -1.
int digitValue(std::int32_t c, bool isHexadecimal) {
    if (c >= '0' && c <= '9') return c - '0';
    if (isHexadecimal && c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (isHexadecimal && c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::u16string_view findMathML(const UnicodeString& name) { return detail::findMathMLEntity(detail::viewOf(name)); }

constexpr bool isXmlChar(std::int32_t c) {
    return c == 0x09 || c == 0x0A || c == 0x0D || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0x10FFFF);
}

}  // namespace

bool XmlParserImpl::isEntityDefined(const EntityMap& internal, const EntityMap& external, LumName name) const {
    if (internal.contains(name) || external.contains(name)) return true;
    return &internal == &generalEntities_ && hasMathMLEntities_ && findMathML(name.getString()).data();
}

UnicodeString XmlParserImpl::lookupEntityValue(LumName name, bool isParameter) const {
    const EntityMap& internal = isParameter ? parameterEntities_ : generalEntities_;
    if (const auto found = internal.find(name); found != internal.end()) return found->second;
    const EntityMap& external = isParameter ? parameterExternals_ : generalExternals_;
    if (const auto found = external.find(name); found != external.end()) return found->second;
    if (!isParameter && hasMathMLEntities_) {
        if (const std::u16string_view text = findMathML(name.getString()); text.data()) return detail::textOf(text);
    }
    if (features_[FEATURE_IGNORE_UNDEFINED_ENTITIES]) return UnicodeString();
    return LumBogusString::BOGUS_VALUE;
}

std::int32_t XmlParserImpl::readCharacterReference() {
    UnicodeString read;  // for the message
    std::int32_t c = readChar();
    const bool isHexadecimal = c == 'x';
    if (isHexadecimal) {
        read.append(u'x');
        c = readChar();
    }
    std::int32_t value = 0;
    bool hasDigits = false;
    for (int digit; (digit = digitValue(c, isHexadecimal)) >= 0; c = readChar()) {
        hasDigits = true;
        read.append(static_cast<char16_t>(c));
        // Beyond the last code point more digits make it no better, and must not make it wrap around.
        if (value <= 0x10FFFF) value = value * (isHexadecimal ? 16 : 10) + digit;
    }
    if (!hasDigits || c != ';') {
        if (c >= 0) read.append(c);
        throwError(detail::isXmlSpace(c) ? XmlError::CharRefSpace : XmlError::CharRefDigit, read);
        return 0;
    }
    if (!isXmlChar(value)) {
        throwError(XmlError::CharRefChar, read);
        return 0;
    }
    return value;
}

std::int32_t XmlParserImpl::readCharEntityRef(LumName& name, bool wantValue, UnicodeString& value) {
    name = LumName();
    value.setToBogus();
    std::int32_t c = readChar();
    if (c == '#') return readCharacterReference();
    unreadChar(c);
    name = readNCName();
    if (name.isNull()) throwError(XmlError::EntityNameEmpty);
    c = readChar();
    if (c != ';') {
        UnicodeString read(u"&");
        read.append(name.getString());
        if (c >= 0) read.append(c);
        throwError(XmlError::EntityRefChar, read);
    }
    if (wantValue) value = lookupEntityValue(name, false);
    return 0;
}

std::int32_t XmlParserImpl::matchSimpleReference(const char16_t*& position, const char16_t* end) const {
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
            if (!isPredefinedIntact_) return -1;
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
        if (value > 0x10FFFF) return -1;
    }
    if (p == end || p == digits || *p != ';' || !isXmlChar(value)) return -1;
    position = p + 1;
    return value;
}

std::int32_t XmlParserImpl::readSimpleReference() {
    const char16_t* behind = cursor_.cur;
    const std::int32_t c = matchSimpleReference(behind, cursor_.end);
    if (c >= 0) {
        cursor_.cur = behind;
        cursor_.touch(behind);
    }
    return c;
}

void XmlParserImpl::expandEntityInContent(LumName name) {
    const UnicodeString value = lookupEntityValue(name, false);
    if (value.isBogus()) {
        throwError(XmlError::UndefinedEntity, name.getString());
        return;
    }
    // An internal definition comes before an external one of the same name.
    if (!generalEntities_.contains(name) && generalExternals_.contains(name)) {
        pushStream(value);
    } else {
        pushReplacement(name, value);
    }
}

UnicodeString LumXmlParser::getMathMLEntity(const UnicodeString& name) { return detail::textOf(findMathML(name)); }

void XmlParserImpl::addMathMLEntityMap() { hasMathMLEntities_ = true; }

}  // namespace LumCommon
