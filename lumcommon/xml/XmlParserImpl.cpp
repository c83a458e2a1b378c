#include <lumcommon/core/LumStrings.h>
#include <lumcommon/xml/XmlParserImpl.h>

namespace LumCommon {

namespace XmlError = detail::XmlError;
using Declaration = detail::MarkupReader::Declaration;
using detail::TokenKind;

void XmlParserImpl::setInput(std::istream& in, const UnicodeString& encoding, const UnicodeString& baseUri) {
    parts_.inputs.open(prepareInput(encoding), in, baseUri);
}

void XmlParserImpl::setInput(const UnicodeString& uri, const UnicodeString& encoding, const UnicodeString& baseUri) {
    switch (parts_.inputs.open(prepareInput(encoding), uri, baseUri)) {
        case detail::InputStack::Opening::Done:
            return;
        case detail::InputStack::Opening::Refused:
            parts_.errors.raiseRefused();
        default:
            throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::ParserSetInput, uri);
    }
}

std::unique_ptr<detail::XmlInput> XmlParserImpl::prepareInput(const UnicodeString& encoding) {
    auto input = std::make_unique<detail::XmlInput>();
    parts_.inputs.close();
    parts_.reset(limits_);
    tags_.reset(limits_);
    isCutOff_ = false;
    parts_.declarations.setEncoding(*input, encoding);
    return input;
}

bool XmlParserImpl::isWhitespace() const {
    if (parts_.event.type == IGNORABLE_WHITESPACE) return true;
    if (parts_.event.type != TEXT && parts_.event.type != CDSECT) {
        throwCommonError(LumErrorCodeLumLIB::NotAllowed, LumCommonErrorSource::ParserIsWhitespace);
    }
    return parts_.event.isWhitespace();
}

LumName XmlParserImpl::getNamespace() const { return isTag() ? tags_.element().namespaceUri : LumName(); }

LumName XmlParserImpl::getName() const {
    if (isTag()) return tags_.element().localName;
    return parts_.event.type == ENTITY_REF ? parts_.event.referenceName() : LumName();
}

LumName XmlParserImpl::getPrefix() const { return isTag() ? tags_.element().prefix : LumName(); }

bool XmlParserImpl::isEmptyElementTag() const {
    if (parts_.event.type != START_TAG) {
        throwCommonError(LumErrorCodeLumLIB::NotAllowed, LumCommonErrorSource::ParserIsEmptyElementTag);
    }
    return parts_.event.next == TokenKind::EmptyTag;
}

int XmlParserImpl::getAttributeCount() const {
    return parts_.event.type == START_TAG ? static_cast<int>(tags_.attributes().size()) : -1;
}

std::size_t XmlParserImpl::checkAttribute(int index, LumCommonErrorSource source) const {
    if (index < 0 || index >= getAttributeCount()) throwCommonError(LumErrorCodeLumLIB::IndexOutOfRange, source);
    return static_cast<std::size_t>(index);
}

LumName XmlParserImpl::getAttributeNamespace(int index) const {
    return tags_.attributes()[checkAttribute(index, LumCommonErrorSource::ParserGetAttributeNamespace)].namespaceUri;
}

LumName XmlParserImpl::getAttributeName(int index) const {
    return tags_.attributes()[checkAttribute(index, LumCommonErrorSource::ParserGetAttributeName)].name.localName;
}

LumName XmlParserImpl::getAttributePrefix(int index) const {
    return tags_.attributes()[checkAttribute(index, LumCommonErrorSource::ParserGetAttributePrefix)].name.prefix;
}

const UnicodeString& XmlParserImpl::getAttributeValue(int index) const {
    return tags_.attributes().value(checkAttribute(index, LumCommonErrorSource::ParserGetAttributeValue));
}

const UnicodeString& XmlParserImpl::getAttributeValue(LumName namespaceUri, LumName localName) const {
    if (parts_.event.type != START_TAG) {
        throwCommonError(LumErrorCodeLumLIB::IndexOutOfRange, LumCommonErrorSource::ParserGetAttributeValue);
    }
    const std::size_t index = tags_.findAttribute(namespaceUri, localName);
    return index < tags_.attributes().size() ? tags_.attributes().value(index) : LumBogusString::BOGUS_VALUE;
}

std::vector<LumXmlDeclaredAttribute> XmlParserImpl::getDeclaredAttributes(LumName prefix, LumName localName) const {
    const auto* const declared = parts_.attributes.find({prefix, localName});
    return declared ? declared->all() : std::vector<LumXmlDeclaredAttribute>();
}

LumXmlParser::EventType XmlParserImpl::startDocument() {
    parts_.event.next = TokenKind::Unknown;
    if (parts_.inputs.isOpen() && !parts_.inputs.isStarted()) parts_.start();
    return parts_.event.type;
}

bool XmlParserImpl::readToken(bool isTextPending) {
    for (;;) {
        switch (parts_.markup.lookAhead()) {
            case TokenKind::StartTag:
                tags_.readStartTag();
                return true;
            case TokenKind::EndTag:
                tags_.readEndTag();
                return true;
            case TokenKind::Text:
                if (getDepth() == 0) {
                    parts_.markup.readTopLevelText();
                } else {
                    parts_.markup.readText();
                }
                return true;
            case TokenKind::Instruction:
                if (parts_.markup.readInstruction() || isTextPending) return true;
                break;
            case TokenKind::Declaration:
                if (readDeclaration() || isTextPending) return true;
                break;
            case TokenKind::Reference:
                if (getDepth() == 0 && !parts_.policy.forgivesStructure()) parts_.markup.reportTopLevel('&');
                parts_.readReference();
                return true;
            default:
                return false;
        }
    }
}

void XmlParserImpl::readDocType() {
    parts_.event.type = DOCDECL;
    const detail::ExternalId id = parts_.documentType.readDeclaration(tags_.isRootSeen());
    tags_.bindDocType(id.publicId);
    try {
        parts_.documentType.readDefinition(id.systemId);
    } catch (const LumError&) {
        if (parts_.meter.isExceeded()) cutOff();
        throw;
    }
}

bool XmlParserImpl::readDeclaration() {
    const Declaration declaration = parts_.markup.readDeclaration();
    if (declaration == Declaration::DocType) readDocType();
    const bool isTopLevelSection = declaration == Declaration::Section && getDepth() == 0;
    if (isTopLevelSection && !parts_.policy.forgivesStructure()) parts_.markup.reportTopLevel('<');
    return declaration != Declaration::Passed;
}

LumXmlParser::EventType XmlParserImpl::nextToken() {
    try {
        return readEvent(false);
    } catch (const detail::LimitExceeded& limit) {
        return endAtLimit(limit.code);
    }
}

LumXmlParser::EventType XmlParserImpl::endDocument() {
    parts_.event.next = TokenKind::Unknown;
    parts_.event.type = END_DOCUMENT;
    closeStream();
    return END_DOCUMENT;
}

void XmlParserImpl::cutOff() {
    isCutOff_ = true;
    parts_.event.text.clear();
    parts_.event.setTextStart(0);
    endDocument();
}

LumXmlParser::EventType XmlParserImpl::endAtLimit(XmlError::Code code) {
    // However the error is taken, nothing more is read.
    struct End {
        XmlParserImpl& parser;
        ~End() { parser.cutOff(); }
    } const end{*this};
    parts_.errors.report(code);
    return END_DOCUMENT;
}

LumXmlParser::EventType XmlParserImpl::readEvent(bool isTextPending) {
    parts_.event.dropToken();
    parts_.event.entityName = LumName();
    if (parts_.event.type != END_DOCUMENT) {
        if (parts_.event.type == START_TAG && parts_.event.next == TokenKind::EmptyTag) {
            parts_.event.next = TokenKind::Unknown;
            return parts_.event.type = END_TAG;
        }
        if (parts_.event.type == END_TAG) {
            tags_.closeElement();
        }
        const bool isFirst = parts_.event.type == START_DOCUMENT;
        if (isFirst && startDocument() != START_DOCUMENT) return parts_.event.type;
        if (readToken(isTextPending)) {
            if (isFirst) parts_.inputs.unleash();
            return parts_.event.type;
        }
    }
    if (getDepth() > 0 && !isCutOff_) parts_.errors.report(XmlError::MissingEndTag);
    const bool isEmpty = !tags_.isRootSeen() && !isCutOff_ && parts_.event.type != END_DOCUMENT;
    if (isEmpty && !parts_.policy.forgivesStructure()) parts_.errors.report(XmlError::NoDocument);
    return endDocument();
}

bool XmlParserImpl::endsText(TokenKind following) {
    if (following >= TokenKind::Text && following <= TokenKind::Declaration) return false;
    parts_.event.setTextStart(0);
    return true;
}

inline bool XmlParserImpl::readPlainEvent(bool& isTextPending) {
    detail::ParserEvent& event = parts_.event;
    if (event.next == TokenKind::EmptyTag || !(isTag() || (event.type == TEXT && isLookedUp(event.next)))) return false;
    const TokenKind kind = parts_.markup.lookAtWindow();
    if (kind < TokenKind::StartTag || kind > TokenKind::Text) return false;
    const bool closes = event.type == END_TAG;
    if (kind == TokenKind::Text && getDepth() <= (closes ? 1 : 0)) return false;
    event.setTextStart(0);
    event.entityName = LumName();
    if (closes) tags_.closeElement();
    if (kind == TokenKind::StartTag) {
        tags_.readStartTag();
    } else if (kind == TokenKind::EndTag) {
        tags_.readEndTag();
    } else {
        parts_.markup.readText();
        isTextPending = !endsText(parts_.markup.lookAhead());
    }
    return !isTextPending;
}

LumXmlParser::EventType XmlParserImpl::next() {
    try {
        parts_.event.text.clear();
        bool isTextPending = false;
        // Nearly always a tag follows a tag, or text does that the next tag ends.
        return readPlainEvent(isTextPending) ? parts_.event.type : readJoinedEvent(isTextPending);
    } catch (const detail::LimitExceeded& limit) {
        return endAtLimit(limit.code);
    }
}

LumXmlParser::EventType XmlParserImpl::readJoinedEvent(bool isTextPending) {
    for (;;) {
        parts_.event.textStart = parts_.event.text.size();
        if (parts_.event.next == TokenKind::Reference && parts_.event.type == TEXT && getDepth() > 0) {
            // The character that such a reference stands for is text, whatever it is.
            if (const std::int32_t c = parts_.references.readSimple(); c >= 0) {
                parts_.event.text.units().appendCodePoint(c);
                parts_.event.type = TEXT;
                parts_.event.forgetView();
                parts_.event.next = TokenKind::Unknown;
                if (endsText(parts_.markup.lookAhead())) return TEXT;
                isTextPending = true;
                continue;
            }
        }
        switch (readEvent(isTextPending)) {
            case START_DOCUMENT:
            case END_DOCUMENT:
            case START_TAG:
            case END_TAG:
                return parts_.event.type;
            case TEXT:
            case CDSECT:
                break;
            case ENTITY_REF:
                if (parts_.event.entityName.isNull()) break;
                parts_.expander.expandGeneral(parts_.event.entityName);
                tags_.enterEntity();
                [[fallthrough]];
            default:
                parts_.event.dropToken();
                isTextPending = !parts_.event.text.empty();
                if (!isTextPending) continue;
        }
        parts_.event.type = TEXT;
        if (endsText(parts_.markup.lookAhead())) return TEXT;
        isTextPending = true;
    }
}

}  // namespace LumCommon
