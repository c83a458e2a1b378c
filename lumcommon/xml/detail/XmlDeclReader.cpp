#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputEncoding.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/LiteralReader.h>
#include <lumcommon/xml/detail/NameReader.h>
#include <lumcommon/xml/detail/ParserEvent.h>
#include <lumcommon/xml/detail/ParserPolicy.h>
#include <lumcommon/xml/detail/XmlChars.h>
#include <lumcommon/xml/detail/XmlDeclReader.h>

#include <algorithm>
#include <string_view>

namespace LumCommon::detail {

namespace {

// How messages name the beginning of a declaration.
constexpr char16_t declStart[] = u"<?xml";
constexpr char16_t declStartVersion[] = u"<?xml version";

/// Whether it is "1." and a number: what later versions add is not there in a document that is read as one of 1.0.
bool isVersion1(const UnicodeString& version) {
    const std::u16string_view text = viewOf(version);
    const auto isDigit = [](char16_t unit) { return unit >= u'0' && unit <= u'9'; };
    return text.starts_with(u"1.") && text.size() > 2 && std::all_of(text.begin() + 2, text.end(), isDigit);
}

/// Whether it has the form that names of encodings have in a declaration.
bool isEncodingName(const UnicodeString& name) {
    const std::u16string_view text = viewOf(name);
    const auto isLetter = [](char16_t unit) { return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z'; };
    const auto isOther = [&](char16_t unit) {
        return isLetter(unit) || (unit >= u'0' && unit <= u'9') || unit == u'.' || unit == u'_' || unit == u'-';
    };
    return !text.empty() && isLetter(text[0]) && std::all_of(text.begin(), text.end(), isOther);
}

/// Without what other spellings of a name differ in.
UnicodeString plainName(const UnicodeString& name) {
    return checked(toUpperCase(name).findAndReplace(UnicodeString(u'-'), UnicodeString()));
}

/// The size of a unit of text, where that is part of the encoding.
int unitBytes(XmlEncoding encoding) {
    if (encoding >= XmlEncoding::Utf16Generic && encoding <= XmlEncoding::Utf16BE) return 2;
    return encoding >= XmlEncoding::Utf32Generic && encoding <= XmlEncoding::Utf32BE ? 4 : 1;
}

bool isOrderedUtf16(XmlEncoding encoding) {
    return encoding == XmlEncoding::Utf16LE || encoding == XmlEncoding::Utf16BE;
}

bool isOrderedUtf32(XmlEncoding encoding) {
    return encoding == XmlEncoding::Utf32LE || encoding == XmlEncoding::Utf32BE;
}

}  // namespace

void XmlDeclReader::detectEncoding(XmlInput& input) {
    if (!policy_.forgivesCharacters()) input.checkCharacters();
    const bool isDetected = input.detectEncoding(inputs_.cursor());
    if (!isDetected && input.hasFailed()) errors_.inputFailed();
    if (policy_.forgivesCharacters()) {
        if (!isDetected) errors_.report(XmlError::InvalidChar);
    } else if (input.getEncoding() == XmlEncoding::Undecided) {
        input.setEncoding(XmlEncoding::Utf8);
    }
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
    checkVersion(version);
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
        isStandalone_ = standalone == UnicodeString(u"yes");
        inputs_.skipWhitespace();
    } else if (!name.isNull() && !policy_.forgivesDeclarations()) {
        errors_.report(XmlError::UnexpectedChar, charText(name.getString().char32At(0)));
    }
    expectEnd();
    isSeen_ = true;
}

void XmlDeclReader::checkVersion(const UnicodeString& version) {
    const bool isKnown = policy_.forgivesDeclarations()
                             ? version == UnicodeString(u"1.0") || version == UnicodeString(u"1.1")
                             : isVersion1(version);
    if (!isKnown) errors_.report(XmlError::XmlVersion, version);
}

void XmlDeclReader::checkDeclaredEncoding(const XmlInput& input, XmlEncoding earlier, const UnicodeString& earlierName,
                                          const UnicodeString& name) {
    if (policy_.forgivesCharacters()) return;
    if (!isEncodingName(name)) errors_.report(XmlError::Encoding, name);
    // The name of a charset is left aside where the bytes have shown a form of Unicode.
    const bool isIgnored = input.encodingName == earlierName && plainName(name) != plainName(earlierName);
    const bool hasOtherUnits = !input.isConverted() && unitBytes(input.getEncoding()) != unitBytes(earlier);
    if (isIgnored || hasOtherUnits) errors_.report(XmlError::EncodingConflict, name);
}

void XmlDeclReader::applyDeclaredEncoding(const UnicodeString& name) {
    XmlInput* const input = inputs_.current();
    if (!input) return;
    const XmlEncoding earlier = input->getEncoding();
    const UnicodeString earlierName = input->encodingName;
    setEncoding(*input, name);
    checkDeclaredEncoding(*input, earlier, earlierName, name);
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
    bool hasSpace = true;  // which told that there is a declaration
    inputs_.skipWhitespace();
    LumName name = names_.readNCName();
    if (name == NAME_version) {
        expectEquals(declStartVersion);
        const UnicodeString version = literals_.read(LiteralType::Plain);
        if (!policy_.forgivesDeclarations()) checkVersion(version);
        hasSpace = inputs_.skipWhitespace();
        name = names_.readNCName();
    }
    if (!policy_.forgivesDeclarations() && (name != NAME_encoding || !hasSpace)) {
        errors_.report(XmlError::TextDeclEncoding);
    }
    if (name == NAME_encoding) {
        expectEquals(u"encoding");
        const UnicodeString declared = literals_.read(LiteralType::Plain);
        const XmlEncoding detectedEncoding = input.getEncoding();
        const UnicodeString detectedName = input.encodingName;
        setEncoding(input, declared);
        checkDeclaredEncoding(input, detectedEncoding, detectedName, declared);
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
