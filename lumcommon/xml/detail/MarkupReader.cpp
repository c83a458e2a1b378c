#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/detail/ContentCopy.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/MarkupReader.h>
#include <lumcommon/xml/detail/NameReader.h>
#include <lumcommon/xml/detail/ParserPolicy.h>
#include <lumcommon/xml/detail/UnitScan.h>
#include <lumcommon/xml/detail/XmlChars.h>
#include <lumcommon/xml/detail/XmlDeclReader.h>

#include <algorithm>
#include <cstdio>

namespace LumCommon::detail {

namespace {

constexpr char16_t xmlDeclTarget[] = u"xml";

}  // namespace

TokenKind MarkupReader::lookAheadSlow() {
    for (;;) {
        std::int32_t c = inputs_.readChar();
        if (c == '<') {
            c = inputs_.readChar();
            event_.next = kindOfMarkup(c);
            if (event_.next == TokenKind::StartTag) inputs_.unreadChar(c);
            return event_.next;
        }
        if (c == '&') return event_.next = TokenKind::Reference;
        if (c < 0) {
            if (ends_ && ends_->leaveEntity()) continue;
            return event_.next = TokenKind::End;
        }
        if (c != notACharacter) {
            inputs_.unreadChar(c);
            return event_.next = TokenKind::Text;
        }
        errors_.report(XmlError::InvalidChar);
    }
}

void MarkupReader::readJoinedText(const char16_t* plainEnd) {
    UnitBuffer& text = event_.text.units();
    XmlCursor& cursor = inputs_.cursor();
    inputs_.copyTo(plainEnd, text);
    std::size_t brackets = 0;  // "]" directly before the cursor, in this run
    for (;;) {
        if (cursor.cur == cursor.end && !inputs_.pull()) return;
        const char16_t* const start = cursor.cur;
        if (*start == '>' && brackets >= 2) {
            cursor.touch(start + 1);
            errors_.report(XmlError::CDataEndInText);
        }
        const char16_t* const found = findTextEnd(start, cursor.end);
        inputs_.copyTo(found, text);
        if (found != start) brackets = 0;
        if (found == cursor.end) continue;
        cursor.touch(found + 1);
        if (*found != ']') return;
        text.append(u']');
        ++brackets;
        ++cursor.cur;
    }
}

void MarkupReader::readTopLevelText() {
    event_.next = TokenKind::Unknown;
    event_.type = LumXmlParser::TEXT;
    bool isSpace = true;
    std::int32_t c;
    while ((c = inputs_.readChar()) >= 0 && c != '<' && c != '&' && c != notACharacter) {
        if (!isXmlSpace(c)) {
            isSpace = false;
            reportTopLevel(c);
        }
        event_.text.units().appendCodePoint(c);
    }
    inputs_.unreadChar(c);
    if (isSpace) event_.type = LumXmlParser::IGNORABLE_WHITESPACE;
}

void MarkupReader::reportTopLevel(std::int32_t c) {
    char code[24];
    const int size = std::snprintf(code, sizeof code, "U+%04X (", static_cast<unsigned>(c));
    UnicodeString place = checked(UnicodeString(code, size, US_INV));
    errors_.report(XmlError::TopLevelText, append(append(place, static_cast<char32_t>(c)), u')'));
}

MarkupReader::Declaration MarkupReader::readDeclaration() {
    const Declaration declaration = readDeclarationStart();
    if (declaration == Declaration::Passed) return declaration;
    inputs_.unleash();
    if (declaration == Declaration::Section) {
        readCData();
    } else if (declaration == Declaration::Comment) {
        readComment();
    }
    return declaration;
}

MarkupReader::Declaration MarkupReader::readDeclarationStart() {
    event_.next = TokenKind::Unknown;
    std::int32_t c = inputs_.readChar();
    if (c == '[') {
        if (const LumName name = names_.readNCName(); name != NAME_CDATA) {
            if (!policy_.forgivesStructure()) errors_.report(XmlError::UnknownSection, name.getString());
            skipSection();
            return Declaration::Passed;
        }
        c = inputs_.readChar();
        if (c != '[') {
            inputs_.unreadChar(c);
            errors_.report(XmlError::CDataSyntax);
        }
        return Declaration::Section;
    }
    if (c == '-') {
        c = inputs_.readChar();
        if (c != '-') {
            inputs_.unreadChar(c);
            errors_.report(XmlError::CommentSyntax);
        }
        return Declaration::Comment;
    }
    inputs_.unreadChar(c);
    const LumName name = names_.readNCName();
    if (name == NAME_DOCTYPE) return Declaration::DocType;
    errors_.report(XmlError::MarkupDecl, name.getString());
    return Declaration::Passed;
}

void MarkupReader::readCData() {
    event_.type = LumXmlParser::CDSECT;
    while (copyContent(inputs_, errors_, u']', event_.text.units())) {
        std::size_t brackets = 0;
        std::int32_t c;
        while ((c = inputs_.readChar()) == ']') {
            if (++brackets > 2) event_.text.units().append(u']');  // the last two may belong to the end
        }
        if (c == '>' && brackets >= 2) return;
        for (brackets = std::min<std::size_t>(brackets, 2); brackets > 0; --brackets) event_.text.units().append(u']');
        inputs_.unreadChar(c);
    }
    errors_.report(XmlError::CDataUnterminated);
}

void MarkupReader::readComment() {
    event_.type = LumXmlParser::COMMENT;
    while (copyContent(inputs_, errors_, u'-', event_.text.units())) {
        inputs_.readChar();
        std::int32_t c = inputs_.readChar();
        if (c == '-') {
            c = inputs_.readChar();
            while (c >= 0 && c != '>') {
                errors_.report(XmlError::CommentHyphens);
                if (c != '-') break;
                event_.text.units().append(u'-');
                c = inputs_.readChar();
            }
            if (c == '>') return;
            event_.text.units().append(u"--", 2);
        } else {
            event_.text.units().append(u'-');
        }
        inputs_.unreadChar(c);
    }
    errors_.report(XmlError::CommentUnterminated);
}

bool MarkupReader::readInstruction() {
    event_.next = TokenKind::Unknown;
    const UnicodeString target = names_.readNCNameText();
    if (target == UnicodeString(xmlDeclTarget)) {
        declarations_.readXmlDecl();
        return false;
    }
    readInstruction(target);
    return true;
}

void MarkupReader::readInstruction(const UnicodeString& target) {
    event_.type = LumXmlParser::PROCESSING_INSTRUCTION;
    if (toLowerCase(target) == UnicodeString(xmlDeclTarget)) {
        errors_.report(XmlError::PiXmlCase, target);
    }
    if (target.isEmpty() && !policy_.forgivesDeclarations()) errors_.report(XmlError::InstructionTarget);
    event_.text.units().append(target);
    std::int32_t c = inputs_.readChar();
    if (isXmlSpace(c)) {
        event_.text.units().appendCodePoint(c);
    } else {
        inputs_.unreadChar(c);
        if (policy_.forgivesDeclarations() || !isAtInstructionEnd()) errors_.report(XmlError::PiSpace, target);
    }
    while (copyContent(inputs_, errors_, u'?', event_.text.units())) {
        inputs_.readChar();
        c = inputs_.readChar();
        if (c == '>') return;
        event_.text.units().append(u'?');
        inputs_.unreadChar(c);
    }
    errors_.report(XmlError::PiUnterminated);
}

bool MarkupReader::isAtInstructionEnd() {
    const std::int32_t c = inputs_.readChar();
    const bool isEnd = c == '?' && inputs_.peekChar() == '>';
    inputs_.unreadChar(c);
    return isEnd;
}

void MarkupReader::skipSection() {
    std::int32_t c = inputs_.readChar();
    for (;;) {
        if (c < 0) {
            errors_.report(XmlError::CDataUnterminated);
            return;
        }
        if (c == notACharacter) errors_.report(XmlError::InvalidChar);
        const bool isBracket = c == ']';
        c = inputs_.readChar();
        if (isBracket && c == '>') return;
    }
}

}  // namespace LumCommon::detail
