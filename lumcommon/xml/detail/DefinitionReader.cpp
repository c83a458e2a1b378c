#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/detail/ContentCopy.h>
#include <lumcommon/xml/detail/DefinitionReader.h>
#include <lumcommon/xml/detail/EntityExpander.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/LiteralReader.h>
#include <lumcommon/xml/detail/NameReader.h>
#include <lumcommon/xml/detail/ParserEvent.h>
#include <lumcommon/xml/detail/ParserPolicy.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <algorithm>
#include <string_view>

namespace LumCommon::detail {

namespace {

// How messages name the declarations.
constexpr char16_t docType[] = u"DOCTYPE";
constexpr char16_t docTypeStart[] = u"<!DOCTYPE";
constexpr char16_t entityStart[] = u"<!ENTITY";

bool isQuote(std::int32_t c) { return c == '"' || c == '\''; }

bool endsWith(const UnitBuffer& text, std::u16string_view end) {
    return std::u16string_view(text.data(), text.size()).ends_with(end);
}

void appendQuoted(UnicodeString& to, const UnicodeString& text) { append(append(append(to, u" \""), text), u'"'); }

}  // namespace

ExternalId DefinitionReader::readDocType() {
    UnicodeString start(docTypeStart);
    requireSpace(start);
    QName qName;
    if (!names_.readQName(qName)) errors_.report(XmlError::DocTypeName);
    const UnicodeString name = qName.toString();
    event_.text.units().append(name);
    append(append(start, u' '), name);
    const bool hasSpace = readSpace();
    const std::int32_t c = inputs_.peekChar();
    ExternalId id;
    if (c != '[' && c != '>') {
        if (!hasSpace) errors_.report(XmlError::DeclSpace, start);
        id = readExternalId(start);
    }
    tokens_.startEmpty();
    readBody();
    return id;
}

void DefinitionReader::readDeclaration() {
    event_.text.units().append(u"<!", 2);
    tokens_.startAfterBang();
    readBody();
}

void DefinitionReader::readBody() {
    const int streamsBelow = inputs_.streamCount();
    const ErrorReporter::DropScope drops(errors_, policy_.forgivesParameterEntityErrors(), streamsBelow);
    int nesting = 1;
    int nestingBelow = nesting;  // where an external parameter entity was referenced
    while (nesting > 0) {
        if (inputs_.streamCount() == streamsBelow) nestingBelow = nesting;
        try {
            readToken(nesting);
        } catch (const ErrorReporter::Dropped&) {
            // What the external parameter entity breaks off goes with it.
            inputs_.popToStreams(streamsBelow);
            nesting = nestingBelow;
        }
    }
}

void DefinitionReader::readToken(int& nesting) {
    const std::int32_t c = inputs_.readChar();
    const DefinitionToken token = tokens_.add(c);
    switch (token) {
        case DefinitionToken::End:
            errors_.report(XmlError::DeclUnterminated, docType);
            nesting = 0;
            return;
        case DefinitionToken::Reference:
            readReference(true);
            return;
        case DefinitionToken::MarkupEnd:
            if (--nesting == 0) return;
            break;
        case DefinitionToken::MarkupStart:
            ++nesting;
            break;
        default:
            break;
    }
    event_.text.units().appendCodePoint(c);
    switch (token) {
        case DefinitionToken::Character:
            copyCharacters();
            break;
        case DefinitionToken::Quote:
            copyLiteral(static_cast<char16_t>(c));
            break;
        case DefinitionToken::Comment:
            copyThrough(u"-->");
            --nesting;
            break;
        case DefinitionToken::Instruction:
            copyThrough(u"?>");
            --nesting;
            break;
        case DefinitionToken::EntityDecl:
            readEntityDecl();
            --nesting;
            break;
        case DefinitionToken::IgnoredSection:
            skipIgnoredSection();
            break;
        default:
            break;
    }
}

void DefinitionReader::copyCharacters() {
    const XmlCursor& cursor = inputs_.cursor();
    const char16_t* const end = std::find_if_not(cursor.cur, static_cast<const char16_t*>(cursor.end),
                                                 [this](char16_t unit) { return tokens_.isCharacter(unit); });
    inputs_.copyTo(end, event_.text.units());
}

// What these miss at the end of input is told by the token that comes next.

void DefinitionReader::copyLiteral(char16_t quote) {
    if (copyContent(inputs_, errors_, quote, event_.text.units()))
        event_.text.units().appendCodePoint(inputs_.readChar());
}

void DefinitionReader::copyThrough(std::u16string_view end) {
    do {
        if (!copyContent(inputs_, errors_, end.back(), event_.text.units())) return;
        event_.text.units().appendCodePoint(inputs_.readChar());
    } while (!endsWith(event_.text.units(), end));
}

void DefinitionReader::skipIgnoredSection() {
    // Sections in an ignored section have their own ends. The ">" of the last end is left to the caller.
    char16_t before[2] = {};
    for (int sections = 1;;) {
        const std::int32_t c = inputs_.readChar();
        if (c < 0) return;
        if (before[0] == '<' && before[1] == '!' && c == '[') ++sections;
        if (before[0] == ']' && before[1] == ']' && c == '>' && --sections == 0) {
            inputs_.unreadChar(c);
            return;
        }
        before[0] = before[1];
        before[1] = static_cast<char16_t>(c);
    }
}

void DefinitionReader::readReference(bool isInDeclaration) {
    const LumName name = names_.readNCName();
    if (isInDeclaration && name.isNull()) errors_.report(XmlError::EntityNameEmpty);
    const std::int32_t c = inputs_.readChar();
    if (!isInDeclaration && (name.isNull() || c != ';')) {
        inputs_.unreadChar(c);  // between declarations it is text, and what ends it may begin the next declaration
        return;
    }
    if (c != ';') {
        UnicodeString read(u'%');
        errors_.report(XmlError::EntityRefChar, append(append(read, name.getString()), charText(c)));
    }
    const UnicodeString value = entities_.lookup(EntityKind::Parameter, name);
    if (!value.isBogus()) {
        expander_.expandParameter(name, value);
    } else if (isInDeclaration) {
        errors_.report(XmlError::UndefinedParameterEntity, name.getString());
    }
}

void DefinitionReader::readEntityDecl() {
    UnicodeString start(entityStart);
    requireSpace(start);
    std::int32_t c = inputs_.readChar();
    const EntityKind kind = c == '%' ? EntityKind::Parameter : EntityKind::General;
    if (kind == EntityKind::Parameter) {
        event_.text.units().append(u'%');
        requireSpace(checked(start + u" %"));
    } else {
        inputs_.unreadChar(c);
    }
    const LumName name = readName();
    if (name.isNull()) errors_.report(XmlError::EntityDeclName, u"!ENTITY ");
    append(append(start, u' '), name.getString());
    requireSpace(start);
    if (isQuote(inputs_.peekChar())) {
        entities_.declareInternal(kind, name, readEntityValue());
    } else {
        const ExternalId id = readExternalId(start);
        readSpace();
        if (kind == EntityKind::General) readNotation(start, id.systemId);
        entities_.declareExternal(kind, name, id.systemId);
    }
    readSpace();
    c = inputs_.readChar();
    if (c != '>') errors_.report(XmlError::UnexpectedChar, charText(c));
    event_.text.units().append(u'>');
}

UnicodeString DefinitionReader::readEntityValue() {
    const auto quote = static_cast<char16_t>(inputs_.readChar());
    event_.text.units().append(quote);
    if (!literals_.readRaw(quote)) {
        errors_.report(XmlError::DeclUnterminated, u"ENTITY");
        return UnicodeString();
    }
    event_.text.units().append(literals_.raw().data(), literals_.raw().size());
    event_.text.units().append(quote);
    return literals_.makeEntityText();
}

ExternalId DefinitionReader::readExternalId(const UnicodeString& start) {
    ExternalId id;
    UnicodeString after = start;
    const LumName keyword = readName();
    if (keyword != NAME_SYSTEM && keyword != NAME_PUBLIC) {
        errors_.report(XmlError::DeclExternalId, start);
        return id;
    }
    append(append(after, u' '), keyword.getString());
    if (keyword == NAME_PUBLIC) {
        requireSpace(after);
        id.publicId = readLiteral(XmlError::DeclPublicId, after);
        appendQuoted(after, id.publicId);
    }
    requireSpace(after);
    id.systemId = readLiteral(XmlError::DeclSystemId, checked(start + u" SYSTEM|PUBLIC"));
    return id;
}

void DefinitionReader::readNotation(const UnicodeString& start, const UnicodeString& systemId) {
    if (inputs_.peekChar() == '>') return;
    UnicodeString after = checked(start + u" ...");
    appendQuoted(after, systemId);
    if (readName() != NAME_NDATA) {
        errors_.report(XmlError::EntityDeclNData, after);
        return;
    }
    requireSpace(append(after, u" NDATA"));
    readName();
}

bool DefinitionReader::readSpace() {
    bool hasSpace = false;
    std::int32_t c;
    while (isXmlSpace(c = inputs_.readChar())) {
        event_.text.units().appendCodePoint(c);
        hasSpace = true;
    }
    inputs_.unreadChar(c);
    return hasSpace;
}

void DefinitionReader::requireSpace(const UnicodeString& after) {
    if (!readSpace()) errors_.report(XmlError::DeclSpace, after);
}

LumName DefinitionReader::readName() {
    const LumName name = names_.readNCName();
    event_.text.units().append(name.getString());
    return name;
}

UnicodeString DefinitionReader::readLiteral(XmlError::Code missing, const UnicodeString& after) {
    const std::int32_t c = inputs_.peekChar();
    if (!isQuote(c)) {
        errors_.report(missing, after);
        return UnicodeString();
    }
    const auto quote = static_cast<char16_t>(c);
    const UnicodeString literal = literals_.read(LiteralType::Plain);
    event_.text.units().append(quote);
    event_.text.units().append(literal);
    event_.text.units().append(quote);
    return literal;
}

}  // namespace LumCommon::detail
