#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/xml/XmlParserImpl.h>
#include <lumcommon/xml/detail/ExternalDtd.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <string_view>

// The document type declaration: its external identifier, the internal subset, entity declarations, and the external
// definition, which a second parser reads. Other declarations are read over.

namespace LumCommon {

namespace XmlError = detail::XmlError;
using detail::isXmlSpace;

namespace {

bool endsWith(const detail::UnitBuffer& text, std::u16string_view end) {
    return std::u16string_view(text.data(), text.size()).ends_with(end);
}

UnicodeString quoted(const UnicodeString& text) { return UnicodeString(u"\"").append(text).append(u'"'); }

}  // namespace

bool XmlParserImpl::readDeclSpace() {
    bool hasSpace = false;
    std::int32_t c;
    while (isXmlSpace(c = readChar())) {
        text_.appendCodePoint(c);
        hasSpace = true;
    }
    unreadChar(c);
    return hasSpace;
}

LumName XmlParserImpl::readDeclName() {
    const LumName name = readNCName();
    text_.append(name.getString());
    return name;
}

void XmlParserImpl::requireDeclSpace(const UnicodeString& after) {
    if (!readDeclSpace()) throwError(XmlError::DeclSpace, after);
}

UnicodeString XmlParserImpl::readDeclLiteral(std::uint16_t missing, const UnicodeString& after) {
    const std::int32_t c = readChar();
    unreadChar(c);
    if (c != '"' && c != '\'') {
        throwError(missing, after);
        return UnicodeString();
    }
    const UnicodeString literal = readLiteral(LITERAL_PLAIN);
    text_.append(static_cast<char16_t>(c));
    text_.append(literal);
    text_.append(static_cast<char16_t>(c));
    return literal;
}

XmlParserImpl::ExternalId XmlParserImpl::readExternalId(const UnicodeString& start) {
    ExternalId id;
    UnicodeString after = start;
    const LumName keyword = readDeclName();
    if (keyword != NAME_SYSTEM && keyword != NAME_PUBLIC) {
        throwError(XmlError::DeclExternalId, start);
        return id;
    }
    after.append(u' ').append(keyword.getString());
    if (keyword == NAME_PUBLIC) {
        requireDeclSpace(after);
        id.publicId = readDeclLiteral(XmlError::DeclPublicId, after);
        after.append(u' ').append(quoted(id.publicId));
    }
    requireDeclSpace(after);
    id.systemId = readDeclLiteral(XmlError::DeclSystemId, UnicodeString(start).append(u" SYSTEM|PUBLIC"));
    return id;
}

void XmlParserImpl::parseDocDecl() {
    eventType_ = DOCDECL;
    if (rootSeen_) throwError(XmlError::DocTypePlace);
    if (docTypeSeen_) throwError(XmlError::SecondDocType);
    UnicodeString start(u"<!DOCTYPE");
    requireDeclSpace(start);
    LumName prefix, localName;
    if (!readQName(prefix, localName)) throwError(XmlError::DocTypeName);
    const UnicodeString name = makeQName(prefix, localName);
    text_.append(name);
    start.append(u' ').append(name);
    const bool hasSpace = readDeclSpace();
    const std::int32_t c = readChar();
    unreadChar(c);
    ExternalId id;
    if (c != '[' && c != '>') {
        if (!hasSpace) throwError(XmlError::DeclSpace, start);
        id = readExternalId(start);
    }
    readDeclaration(u"DOCTYPE");
    if (id.publicId.startsWith(u"-//W3C//DTD SVG")) {
        namespaces_->addNamespace(LumName(), LumName(UnicodeString(detail::svgNamespace)));
        namespaces_->addNamespace(NAME_xlink, LumName(UnicodeString(detail::xlinkNamespace)));
    }
    if (!id.systemId.isEmpty() && !features_[FEATURE_SKIP_EXTERNAL_DTD]) addExternalDtd(id.systemId);
    docTypeSeen_ = true;
}

void XmlParserImpl::readDeclaration(const char16_t* what) {
    const int streamsBelow = streamCount_;
    int nesting = 1;
    int nestingBelow = nesting;  // where an external parameter entity was referenced
    while (nesting > 0) {
        if (streamCount_ == streamsBelow) nestingBelow = nesting;
        try {
            const std::int32_t c = readChar();
            if (c < 0) {
                throwError(XmlError::DeclUnterminated, what);
                return;
            }
            readDeclarationChar(c, nesting);
        } catch (const LumError&) {
            // What an ignorable external parameter entity breaks off goes with it.
            if (!features_[FEATURE_IGNORE_UNDEFINED_ENTITIES] || streamCount_ <= streamsBelow) throw;
            while (streamCount_ > streamsBelow) popFrame();
            nesting = nestingBelow;
        }
    }
}

void XmlParserImpl::readDeclarationChar(std::int32_t c, int& nesting) {
    if (c == '%') {
        readParameterReference(true);
        return;
    }
    if (c == '>' && --nesting == 0) return;
    text_.appendCodePoint(c);
    switch (c) {
        case '<':
            ++nesting;
            break;
        case '"':
        case '\'':
            readDeclUntil([c](std::int32_t last, const detail::UnitBuffer&) { return last == c; });
            break;
        case '-':
            if (!endsWith(text_, u"<!--")) break;
            readDeclUntil([](std::int32_t last, const detail::UnitBuffer& text) {
                return last == '>' && endsWith(text, u"-->");
            });
            --nesting;
            break;
        case '?':
            if (!endsWith(text_, u"<?")) break;
            readDeclUntil(
                [](std::int32_t last, const detail::UnitBuffer& text) { return last == '>' && endsWith(text, u"?>"); });
            --nesting;
            break;
        case 'Y':
            if (!endsWith(text_, u"<!ENTITY")) break;
            parseEntityDecl();
            --nesting;
            break;
        case '[':
            if (isIgnoreSection()) skipIgnoreSection();
            break;
        default:
            break;
    }
}

template <class IsEnd>
void XmlParserImpl::readDeclUntil(const IsEnd& isEnd) {
    for (;;) {
        const std::int32_t c = readChar();
        if (c < 0) return;  // the caller's next character is the end of input again
        text_.appendCodePoint(c);
        if (isEnd(c, text_)) return;
    }
}

bool XmlParserImpl::isIgnoreSection() const {
    std::u16string_view text(text_.data(), text_.size() - 1);
    while (!text.empty() && isXmlSpace(text.back())) text.remove_suffix(1);
    if (!text.ends_with(u"IGNORE")) return false;
    text.remove_suffix(6);
    while (!text.empty() && isXmlSpace(text.back())) text.remove_suffix(1);
    return text.ends_with(u"<![");
}

void XmlParserImpl::skipIgnoreSection() {
    // Sections in an ignored section have an end of their own. The ">" of the last end is left to the caller.
    char16_t before[2] = {};
    for (int sections = 1;;) {
        const std::int32_t c = readChar();
        if (c < 0) return;
        if (before[0] == '<' && before[1] == '!' && c == '[') ++sections;
        if (before[0] == ']' && before[1] == ']' && c == '>' && --sections == 0) {
            unreadChar(c);
            return;
        }
        before[0] = before[1];
        before[1] = static_cast<char16_t>(c);
    }
}

void XmlParserImpl::readParameterReference(bool isInDeclaration) {
    const LumName name = readNCName();
    if (isInDeclaration && name.isNull()) throwError(XmlError::EntityNameEmpty);
    const std::int32_t c = readChar();
    if (!isInDeclaration && (name.isNull() || c != ';')) {
        unreadChar(c);  // between declarations it is text, and what ends it may begin the next declaration
        return;
    }
    if (c != ';') throwError(XmlError::EntityRefChar, UnicodeString(u"%").append(name.getString()).append(charText(c)));
    const UnicodeString value = lookupEntityValue(name, true);
    if (value.isBogus()) {
        if (isInDeclaration) throwError(XmlError::UndefinedParameterEntity, name.getString());
        return;
    }
    if (parameterEntities_.contains(name) || !parameterExternals_.contains(name)) {
        pushReplacement(name, value, true);
        return;
    }
    const std::size_t framesBelow = frameCount_;
    try {
        pushStream(value);
    } catch (const LumError&) {
        if (!features_[FEATURE_IGNORE_UNDEFINED_ENTITIES]) throw;
        while (frameCount_ > framesBelow) popFrame();
    }
}

UnicodeString XmlParserImpl::readEntityValue() {
    const std::int32_t delimiter = readChar();
    text_.append(static_cast<char16_t>(delimiter));
    if (!readRawLiteral(delimiter, XmlError::DeclUnterminated, u"ENTITY")) return UnicodeString();
    text_.append(rawLiteral_.data(), rawLiteral_.size());
    text_.append(static_cast<char16_t>(delimiter));
    scratch_.clear();
    processRawLiteral(LITERAL_ENTITY, scratch_);
    return scratch_.toString();
}

void XmlParserImpl::parseEntityDecl() {
    UnicodeString start(u"<!ENTITY");
    requireDeclSpace(start);
    std::int32_t c = readChar();
    const bool isParameter = c == '%';
    if (isParameter) {
        text_.append(u'%');
        requireDeclSpace(u"<!ENTITY %");
    } else {
        unreadChar(c);
    }
    const LumName name = readDeclName();
    if (name.isNull()) throwError(XmlError::EntityDeclName, u"!ENTITY ");
    start.append(u' ').append(name.getString());
    requireDeclSpace(start);
    c = readChar();
    unreadChar(c);
    EntityMap& internal = isParameter ? parameterEntities_ : generalEntities_;
    EntityMap& external = isParameter ? parameterExternals_ : generalExternals_;
    if (c == '"' || c == '\'') {
        const UnicodeString value = readEntityValue();
        if (!isEntityDefined(internal, external, name)) internal[name] = value;
    } else {
        const ExternalId id = readExternalId(start);
        readDeclSpace();
        if (!isParameter) readNotation(start, id.systemId);
        if (!isEntityDefined(internal, external, name)) external[name] = id.systemId;
    }
    readDeclSpace();
    c = readChar();
    if (c != '>') throwError(XmlError::UnexpectedChar, charText(c));
    text_.append(u'>');
}

void XmlParserImpl::readNotation(const UnicodeString& start, const UnicodeString& systemId) {
    const std::int32_t c = readChar();
    unreadChar(c);
    if (c == '>') return;
    UnicodeString after(start);
    after.append(u" ... ").append(quoted(systemId));
    if (readDeclName() != NAME_NDATA) {
        throwError(XmlError::EntityDeclNData, after);
        return;
    }
    requireDeclSpace(after.append(u" NDATA"));
    readDeclName();
}

void XmlParserImpl::addExternalDtd(const UnicodeString& systemId) {
    const LumUri resource(LumUri(getBaseUri()), systemId);
    if (resource.toString().startsWith(u"http://www.w3.org/Math/DTD/mathml2/")) {
        addMathMLEntityMap();
        return;
    }
    std::shared_ptr<const detail::ExternalDtd> dtd = detail::ExternalDtdCache::find(resource.toString());
    if (!dtd) dtd = readExternalDtd(resource, LumUri(systemId).isAbsolute() ? UnicodeString() : getBaseUri());
    addDefinitions(dtd->generalEntities, generalEntities_, generalEntities_, generalExternals_);
    addDefinitions(dtd->parameterEntities, parameterEntities_, parameterEntities_, parameterExternals_);
    addDefinitions(dtd->generalExternals, generalExternals_, generalEntities_, generalExternals_);
    addDefinitions(dtd->parameterExternals, parameterExternals_, parameterEntities_, parameterExternals_);
}

std::shared_ptr<const detail::ExternalDtd> XmlParserImpl::readExternalDtd(const LumUri& resource,
                                                                          const UnicodeString& baseUri) const {
    LumPtr<XmlParserImpl> parser(new XmlParserImpl);
    bool isWhole = false;
    try {
        isWhole = parser->parseExternalDtd(resource, baseUri);
    } catch (const LumError&) {
        if (!features_[FEATURE_IGNORE_EXTERNAL_DTD_ERRORS]) throw;
    }
    auto dtd = std::make_shared<detail::ExternalDtd>();
    const auto collect = [](const EntityMap& from, detail::ExternalDtd::Definitions& to) {
        to.reserve(from.size());
        for (const auto& [name, text] : from) to.emplace_back(name.getString(), text);
    };
    collect(parser->generalEntities_, dtd->generalEntities);
    collect(parser->parameterEntities_, dtd->parameterEntities);
    collect(parser->generalExternals_, dtd->generalExternals);
    collect(parser->parameterExternals_, dtd->parameterExternals);
    // What an error cut short is for this document alone: the next one may want to hear of the error.
    if (!isWhole) return dtd;
    return detail::ExternalDtdCache::add(resource.toString(), std::move(dtd));
}

void XmlParserImpl::addDefinitions(const std::vector<std::pair<UnicodeString, UnicodeString>>& from, EntityMap& to,
                                   const EntityMap& internal, const EntityMap& external) {
    for (const auto& [text, value] : from) {
        const LumName name(text);
        if (!isEntityDefined(internal, external, name)) to[name] = value;
    }
}

bool XmlParserImpl::parseExternalDtd(const LumUri& resource, const UnicodeString& baseUri) {
    try {
        setInput(resource.toString(), UnicodeString(), baseUri);
    } catch (const LumError& error) {
        // A resource of another kind than a file that cannot be had contributes nothing.
        if (!resource.isFile() && error.code == static_cast<std::uint16_t>(LumErrorCodeIO::CannotOpen)) return false;
        throw;
    }
    isStarted_ = true;
    detail::XmlInput& input = *currentInput();
    detectEncoding(input);
    if (whatsNext() == TOKEN_PI) parsePiOrXmlDecl();
    input.unleash();
    for (bool isReading = true; isReading;) {
        text_.clear();
        const TokenState next = whatsNext();
        tokenState_ = TOKEN_UNKNOWN;
        switch (next) {
            case TOKEN_TEXT:
                if (readChar() == '%') readParameterReference(false);
                break;
            case TOKEN_PI:
                parsePiOrXmlDecl();
                break;
            case TOKEN_DECLARATION:
                text_.append(u"<!", 2);
                readDeclaration(u"DOCTYPE");
                break;
            default:
                isReading = false;
        }
    }
    if (getDepth() > 0) throwError(XmlError::MissingEndTag);
    eventType_ = END_DOCUMENT;
    closeStream();
    return true;
}

}  // namespace LumCommon
