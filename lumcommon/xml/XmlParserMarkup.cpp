#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/xml/XmlParserImpl.h>
#include <lumcommon/xml/detail/UnitScan.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <unicode/locid.h>

#include <cstdio>

// The look-ahead, character data, comments, processing instructions, the XML declaration, and other "<!" markup.

namespace LumCommon {

namespace XmlError = detail::XmlError;
using detail::isXmlSpace;
using detail::XmlEncoding;

namespace {

bool isUtf16Order(XmlEncoding encoding) { return encoding == XmlEncoding::Utf16LE || encoding == XmlEncoding::Utf16BE; }

bool isUtf32Order(XmlEncoding encoding) { return encoding == XmlEncoding::Utf32LE || encoding == XmlEncoding::Utf32BE; }

}  // namespace

XmlParserImpl::TokenState XmlParserImpl::whatsNext() {
    if (tokenState_ > TOKEN_EMPTY_TAG) return tokenState_;
    for (;;) {
        std::int32_t c = readChar();
        if (c == '<') {
            c = readChar();
            switch (c) {
                case '/':
                    return tokenState_ = TOKEN_END_TAG;
                case '?':
                    return tokenState_ = TOKEN_PI;
                case '!':
                    return tokenState_ = TOKEN_DECLARATION;
                default:
                    unreadChar(c);
                    return tokenState_ = TOKEN_START_TAG;
            }
        }
        if (c == '&') return tokenState_ = TOKEN_REFERENCE;
        if (c < 0) return tokenState_ = TOKEN_END;
        if (c != 0xFFFF) {
            unreadChar(c);
            return tokenState_ = TOKEN_TEXT;
        }
        throwError(XmlError::InvalidChar);
    }
}

void XmlParserImpl::parseText() {
    tokenState_ = TOKEN_UNKNOWN;
    eventType_ = TEXT;
    if (getDepth() == 0) {
        parseTopLevelText();
        return;
    }
    std::size_t brackets = 0;  // "]" directly before the cursor, in this run
    for (;;) {
        if (cursor_.cur == cursor_.end && !pull()) return;
        const char16_t* const start = cursor_.cur;
        if (*start == '>' && brackets >= 2) {
            cursor_.touch(start + 1);
            throwError(XmlError::CDataEndInText);
        }
        const char16_t* const found = detail::findTextEnd(start, cursor_.end);
        text_.append(start, static_cast<std::size_t>(found - start));
        cursor_.cur = found;
        if (found != start) brackets = 0;
        if (found == cursor_.end) {
            cursor_.touch(found);
            continue;
        }
        cursor_.touch(found + 1);
        if (*found != ']') return;
        text_.append(u']');
        ++brackets;
        ++cursor_.cur;
    }
}

void XmlParserImpl::parseTopLevelText() {
    bool isSpace = true;
    std::int32_t c;
    while ((c = readChar()) >= 0 && c != '<' && c != '&' && c != 0xFFFF) {
        if (!isXmlSpace(c)) {
            isSpace = false;
            char code[24];
            const int size = std::snprintf(code, sizeof code, "U+%04X (", static_cast<unsigned>(c));
            throwError(XmlError::TopLevelText,
                       UnicodeString(code, size, US_INV).append(static_cast<UChar32>(c)).append(u')'));
        }
        text_.appendCodePoint(c);
    }
    unreadChar(c);
    if (isSpace) eventType_ = IGNORABLE_WHITESPACE;
}

void XmlParserImpl::parseCDSect() {
    eventType_ = CDSECT;
    std::size_t brackets = 0;
    for (;;) {
        if (cursor_.cur == cursor_.end && !pull()) {
            throwError(XmlError::CDataUnterminated);
            return;
        }
        const char16_t* const start = cursor_.cur;
        if (*start == '>' && brackets >= 2) {
            cursor_.touch(++cursor_.cur);
            text_.truncate(text_.size() - 2);
            return;
        }
        const char16_t* const found = detail::findUnit(start, cursor_.end, u']');
        if (found != start) brackets = 0;
        text_.append(start, static_cast<std::size_t>(found - start));
        cursor_.cur = found;
        if (found != cursor_.end) {
            text_.append(u']');
            ++brackets;
            ++cursor_.cur;
        }
        cursor_.touch(cursor_.cur);
    }
}

void XmlParserImpl::parseComment() {
    eventType_ = COMMENT;
    for (;;) {
        if (cursor_.cur == cursor_.end && !pull()) {
            throwError(XmlError::CommentUnterminated);
            return;
        }
        const char16_t* const start = cursor_.cur;
        const char16_t* const found = detail::findUnit(start, cursor_.end, u'-');
        text_.append(start, static_cast<std::size_t>(found - start));
        cursor_.cur = found;
        cursor_.touch(found);
        if (found == cursor_.end) continue;
        readChar();
        std::int32_t c = readChar();
        if (c == '-') {
            c = readChar();
            while (c >= 0 && c != '>') {
                throwError(XmlError::CommentHyphens);
                if (c != '-') break;
                text_.append(u'-');
                c = readChar();
            }
            if (c == '>') return;
            text_.append(u"--", 2);
        } else {
            text_.append(u'-');
        }
        unreadChar(c);
    }
}

bool XmlParserImpl::parsePiOrXmlDecl() {
    tokenState_ = TOKEN_UNKNOWN;
    scanNCName(scratch_);
    const UnicodeString target = scratch_.toString();
    if (target == UnicodeString(u"xml")) {
        parseXmlDecl();
        return false;
    }
    parsePi(target);
    return true;
}

void XmlParserImpl::parsePi(const UnicodeString& target) {
    eventType_ = PROCESSING_INSTRUCTION;
    if (UnicodeString(target).toLower(icu::Locale::getRoot()) == UnicodeString(u"xml")) {
        throwError(XmlError::PiXmlCase, target);
    }
    text_.append(target);
    std::int32_t c = readChar();
    if (isXmlSpace(c)) {
        text_.appendCodePoint(c);
    } else {
        unreadChar(c);
        throwError(XmlError::PiSpace, target);
    }
    for (;;) {
        if (cursor_.cur == cursor_.end && !pull()) {
            throwError(XmlError::PiUnterminated);
            return;
        }
        const char16_t* const start = cursor_.cur;
        const char16_t* const found = detail::findUnit(start, cursor_.end, u'?');
        text_.append(start, static_cast<std::size_t>(found - start));
        cursor_.cur = found;
        cursor_.touch(found);
        if (found == cursor_.end) continue;
        readChar();
        c = readChar();
        if (c == '>') return;
        text_.append(u'?');
        unreadChar(c);
    }
}

void XmlParserImpl::expectXmlDeclEquals(const char16_t* what) {
    skipWhitespace();
    const std::int32_t c = readChar();
    if (c == '=') {
        skipWhitespace();
    } else {
        unreadChar(c);
        throwError(XmlError::XmlDeclEquals, what);
    }
}

void XmlParserImpl::expectDeclEnd() {
    for (const char expected : {'?', '>'}) {
        const std::int32_t c = readChar();
        if (c != expected) {
            throwError(XmlError::UnexpectedChar, charText(c));
            return;
        }
    }
}

void XmlParserImpl::parseXmlDecl() {
    const bool isInPlace = eventType_ == START_DOCUMENT && !xmlDeclSeen_;
    if (!isInPlace) throwError(XmlError::XmlDeclPlace);
    if (!skipWhitespace()) throwError(XmlError::XmlDeclSpaceAfter, u"<?xml");
    if (readNCName() != NAME_version) throwError(XmlError::XmlDeclVersion);
    expectXmlDeclEquals(u"<?xml version");
    const UnicodeString version = readLiteral(LITERAL_PLAIN);
    if (version != UnicodeString(u"1.0") && version != UnicodeString(u"1.1")) {
        throwError(XmlError::XmlVersion, version);
    }
    bool hasSpace = skipWhitespace();
    LumName name = readNCName();
    if (name == NAME_encoding) {
        if (!hasSpace) throwError(XmlError::XmlDeclSpaceBefore, u"encoding=");
        expectXmlDeclEquals(u"encoding");
        const UnicodeString encoding = readLiteral(LITERAL_PLAIN);
        if (isInPlace) applyDeclaredEncoding(encoding);
        hasSpace = skipWhitespace();
        name = readNCName();
    }
    if (name == NAME_standalone) {
        if (!hasSpace) throwError(XmlError::XmlDeclSpaceBefore, u"standalone=");
        expectXmlDeclEquals(u"standalone");
        const UnicodeString standalone = readLiteral(LITERAL_PLAIN);
        if (standalone != UnicodeString(u"yes") && standalone != UnicodeString(u"no")) {
            throwError(XmlError::XmlStandalone);
        }
        skipWhitespace();
    }
    expectDeclEnd();
    xmlDeclSeen_ = true;
}

void XmlParserImpl::applyDeclaredEncoding(const UnicodeString& name) {
    detail::XmlInput* const input = currentInput();
    if (!input) return;
    const XmlEncoding earlier = input->getEncoding();
    const UnicodeString earlierName = input->encodingName;
    setEncoding(*input, name);
    const XmlEncoding declared = input->getEncoding();
    if (input->isConverted() || declared == earlier) return;
    if (input->hasBom) {
        const bool isSameForm = (isUtf16Order(earlier) && declared == XmlEncoding::Utf16Generic) ||
                                (isUtf32Order(earlier) && declared == XmlEncoding::Utf32Generic);
        if (!isSameForm) throwError(XmlError::EncodingConflict, name);
    }
    // The bytes have shown a form of Unicode; no name can make them another one.
    if (earlier >= XmlEncoding::Utf16Generic && earlier <= XmlEncoding::Utf32BE) {
        input->setEncoding(earlier);
        input->encodingName = earlierName;
    }
}

bool XmlParserImpl::parseDeclEtc() {
    tokenState_ = TOKEN_UNKNOWN;
    std::int32_t c = readChar();
    if (c == '[') {
        if (readNCName() != NAME_CDATA) {
            skipSection();
            return false;
        }
        c = readChar();
        if (c != '[') {
            unreadChar(c);
            throwError(XmlError::CDataSyntax);
        }
        parseCDSect();
        return true;
    }
    if (c == '-') {
        c = readChar();
        if (c != '-') {
            unreadChar(c);
            throwError(XmlError::CommentSyntax);
        }
        parseComment();
        return true;
    }
    unreadChar(c);
    const LumName name = readNCName();
    if (name == NAME_DOCTYPE) {
        parseDocDecl();
        return true;
    }
    throwError(XmlError::MarkupDecl, name.getString());
    return false;
}

void XmlParserImpl::skipSection() {
    std::int32_t c = readChar();
    for (;;) {
        if (c < 0) {
            throwError(XmlError::CDataUnterminated);
            return;
        }
        const bool isBracket = c == ']';
        c = readChar();
        if (isBracket && c == '>') return;
    }
}

}  // namespace LumCommon
