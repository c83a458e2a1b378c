#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputEncoding.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/LiteralReader.h>
#include <lumcommon/xml/detail/NameReader.h>
#include <lumcommon/xml/detail/ParserEvent.h>
#include <lumcommon/xml/detail/XmlChars.h>
#include <lumcommon/xml/detail/XmlDeclReader.h>

#include <algorithm>

namespace LumCommon::detail {

namespace {

// How messages name the beginning of a declaration.
constexpr char16_t declStart[] = u"<?xml";
constexpr char16_t declStartVersion[] = u"<?xml version";

bool isOrderedUtf16(XmlEncoding encoding) {
    return encoding == XmlEncoding::Utf16LE || encoding == XmlEncoding::Utf16BE;
}

bool isOrderedUtf32(XmlEncoding encoding) {
    return encoding == XmlEncoding::Utf32LE || encoding == XmlEncoding::Utf32BE;
}

}  // namespace

void XmlDeclReader::detectEncoding(XmlInput& input) {
    if (input.detectEncoding(inputs_.cursor())) return;
    if (input.hasFailed()) errors_.inputFailed();
    errors_.report(XmlError::InvalidChar);
}

void XmlDeclReader::setEncoding(XmlInput& input, const UnicodeString& name) {
    if (!selectEncoding(input, name, policy_)) errors_.report(XmlError::Encoding, name);
}

void XmlDeclReader::readXmlDecl() {
    const bool isInPlace = event_.type == LumXmlParser::START_DOCUMENT && !isSeen_;
    if (!isInPlace) errors_.report(XmlError::XmlDeclPlace);
    if (!inputs_.skipWhitespace()) errors_.report(XmlError::XmlDeclSpaceAfter, declStart);
    if (names_.readNCName() != NAME_version) errors_.report(XmlError::XmlDeclVersion);
    expectEquals(declStartVersion);
    const UnicodeString version = literals_.read(LiteralType::Plain);
    if (version != UnicodeString(u"1.0") && version != UnicodeString(u"1.1")) {
        errors_.report(XmlError::XmlVersion, version);
    }
    bool hasSpace = inputs_.skipWhitespace();
    LumName name = names_.readNCName();
    if (name == NAME_encoding) {
        if (!hasSpace) errors_.report(XmlError::XmlDeclSpaceBefore, u"encoding=");
        expectEquals(u"encoding");
        const UnicodeString encoding = literals_.read(LiteralType::Plain);
        if (isInPlace) applyDeclaredEncoding(encoding);
        hasSpace = inputs_.skipWhitespace();
        name = names_.readNCName();
    }
    if (name == NAME_standalone) {
        if (!hasSpace) errors_.report(XmlError::XmlDeclSpaceBefore, u"standalone=");
        expectEquals(u"standalone");
        const UnicodeString standalone = literals_.read(LiteralType::Plain);
        if (standalone != UnicodeString(u"yes") && standalone != UnicodeString(u"no")) {
            errors_.report(XmlError::XmlStandalone);
        }
        inputs_.skipWhitespace();
    }
    expectEnd();
    isSeen_ = true;
}

void XmlDeclReader::applyDeclaredEncoding(const UnicodeString& name) {
    XmlInput* const input = inputs_.current();
    if (!input) return;
    const XmlEncoding earlier = input->getEncoding();
    const UnicodeString earlierName = input->encodingName;
    setEncoding(*input, name);
    const XmlEncoding declared = input->getEncoding();
    if (input->isConverted() || declared == earlier) return;
    if (input->hasBom) {
        const bool isSameForm = (isOrderedUtf16(earlier) && declared == XmlEncoding::Utf16Generic) ||
                                (isOrderedUtf32(earlier) && declared == XmlEncoding::Utf32Generic);
        if (!isSameForm) errors_.report(XmlError::EncodingConflict, name);
    }
    // The bytes have shown a form of Unicode; no name can make them another one.
    if (earlier >= XmlEncoding::Utf16Generic && earlier <= XmlEncoding::Utf32BE) {
        input->setEncoding(earlier);
        input->encodingName = earlierName;
    }
}

void XmlDeclReader::readTextDecl() {
    // Whether there is one shows at the sixth character; all that was read goes back when there is none. Reading must
    // not leave this input, so that its end does not bring the outer one.
    inputs_.setBarrier(true);
    std::int32_t read[6];
    int count = 0;
    bool isDeclaration = false;
    while (count < 6) {
        const std::int32_t c = inputs_.readChar();
        if (c < 0) break;
        read[count++] = c;
        if (isXmlSpace(c)) {
            isDeclaration = count == 6 && std::equal(declStart, declStart + 5, read);
            break;
        }
    }
    if (isDeclaration) {
        readTextDeclFields();
    } else {
        while (count > 0) inputs_.unreadChar(read[--count]);
    }
    inputs_.setBarrier(false);
}

void XmlDeclReader::readTextDeclFields() {
    XmlInput& input = *inputs_.current();
    inputs_.skipWhitespace();
    LumName name = names_.readNCName();
    if (name == NAME_version) {
        expectEquals(declStartVersion);
        literals_.read(LiteralType::Plain);
        inputs_.skipWhitespace();
        name = names_.readNCName();
    }
    if (name == NAME_encoding) {
        expectEquals(u"encoding");
        const UnicodeString declared = literals_.read(LiteralType::Plain);
        const XmlEncoding detectedEncoding = input.getEncoding();
        const UnicodeString detectedName = input.encodingName;
        setEncoding(input, declared);
        const bool isOrderKnown = isOrderedUtf16(detectedEncoding) || isOrderedUtf32(detectedEncoding);
        if (!input.isConverted() && isOrderKnown && input.getEncoding() != detectedEncoding) {
            input.setEncoding(detectedEncoding);
            input.encodingName = detectedName;
        }
    }
    inputs_.skipWhitespace();
    expectEnd();
}

void XmlDeclReader::expectEquals(const char16_t* after) {
    inputs_.skipWhitespace();
    const std::int32_t c = inputs_.readChar();
    if (c == '=') {
        inputs_.skipWhitespace();
    } else {
        inputs_.unreadChar(c);
        errors_.report(XmlError::XmlDeclEquals, after);
    }
}

void XmlDeclReader::expectEnd() {
    for (const char expected : {'?', '>'}) {
        const std::int32_t c = inputs_.readChar();
        if (c != expected) {
            errors_.report(XmlError::UnexpectedChar, charText(c));
            return;
        }
    }
}

}  // namespace LumCommon::detail
