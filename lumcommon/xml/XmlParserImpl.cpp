#include <lumcommon/core/LumStrings.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/xml/XmlParserImpl.h>
#include <lumcommon/xml/detail/ExternalDtdReader.h>

#include <cstdio>

namespace LumCommon {

namespace XmlError = detail::XmlError;
using detail::EntityKind;
using detail::TokenKind;

void XmlParserImpl::setInput(std::istream& in, const UnicodeString& encoding, const UnicodeString& baseUri) {
    inputs_.open(prepareInput(encoding), &in, false, UnicodeString(), baseUri);
}

void XmlParserImpl::setInput(const UnicodeString& uri, const UnicodeString& encoding, const UnicodeString& baseUri) {
    if (inputs_.open(prepareInput(encoding), uri, baseUri)) return;
    throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::ParserSetInput, uri);
}

std::unique_ptr<detail::XmlInput> XmlParserImpl::prepareInput(const UnicodeString& encoding) {
    auto input = std::make_unique<detail::XmlInput>();
    inputs_.close();
    parts_.reset();
    tags_.reset();
    isDocTypeSeen_ = false;
    parts_.declarations.setEncoding(*input, encoding);
    return input;
}

bool XmlParserImpl::isWhitespace() const {
    if (event_.type == IGNORABLE_WHITESPACE) return true;
    if (event_.type != TEXT && event_.type != CDSECT) {
        throwCommonError(LumErrorCodeLumLIB::NotAllowed, LumCommonErrorSource::ParserIsWhitespace);
    }
    return event_.isWhitespace();
}

const UnicodeString& XmlParserImpl::getText() const {
    if (!event_.isViewed()) {
        if (event_.type == ENTITY_REF && !event_.entityName.isNull()) {
            event_.viewValue(entities_.lookup(EntityKind::General, event_.entityName));
        } else {
            event_.viewText();
        }
    }
    return event_.view();
}

LumName XmlParserImpl::getNamespace() const {
    return isTag() ? tags_.namespaces().getInnermostScope().namespaceUri : LumName();
}

LumName XmlParserImpl::getName() const {
    if (isTag()) return tags_.namespaces().getInnermostScope().localName;
    if (event_.type != ENTITY_REF) return LumName();
    if (!event_.entityName.isNull()) return event_.entityName;
    char name[16];
    const int size = std::snprintf(name, sizeof name, "#x%X", static_cast<unsigned>(event_.entityChar));
    return LumName(UnicodeString(name, size, US_INV));
}

LumName XmlParserImpl::getPrefix() const { return isTag() ? tags_.namespaces().getInnermostScope().prefix : LumName(); }

bool XmlParserImpl::isEmptyElementTag() const {
    if (event_.type != START_TAG) {
        throwCommonError(LumErrorCodeLumLIB::NotAllowed, LumCommonErrorSource::ParserIsEmptyElementTag);
    }
    return event_.next == TokenKind::EmptyTag;
}

int XmlParserImpl::getAttributeCount() const {
    return event_.type == START_TAG ? static_cast<int>(tags_.attributes().size()) : -1;
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
    if (event_.type != START_TAG) {
        throwCommonError(LumErrorCodeLumLIB::IndexOutOfRange, LumCommonErrorSource::ParserGetAttributeValue);
    }
    const detail::AttributeList& attributes = tags_.attributes();
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        if (attributes[i].name.localName != localName) continue;
        if (tags_.namespaces().lookupNamespace(attributes[i].name.prefix) == namespaceUri) return attributes.value(i);
    }
    return LumBogusString::BOGUS_VALUE;
}

LumXmlParser::EventType XmlParserImpl::startDocument() {
    event_.next = TokenKind::Unknown;
    if (inputs_.isOpen() && !inputs_.isStarted()) parts_.start();
    return event_.type;
}

bool XmlParserImpl::readToken(bool isTextPending) {
    for (;;) {
        switch (markup_.lookAhead()) {
            case TokenKind::StartTag:
                tags_.readStartTag();
                return true;
            case TokenKind::EndTag:
                tags_.readEndTag();
                return true;
            case TokenKind::Text:
                if (getDepth() == 0) {
                    markup_.readTopLevelText();
                } else {
                    markup_.readText();
                }
                return true;
            case TokenKind::Instruction:
                if (markup_.readInstruction() || isTextPending) return true;
                break;
            case TokenKind::Declaration:
                if (readDeclaration() || isTextPending) return true;
                break;
            case TokenKind::Reference:
                readReference();
                return true;
            default:
                return false;
        }
    }
}

void XmlParserImpl::readReference() {
    event_.next = TokenKind::Unknown;
    event_.type = ENTITY_REF;
    event_.entityChar = parts_.references.read(event_.entityName);
    if (event_.entityName.isNull() && event_.entityChar != 0) event_.text.appendCodePoint(event_.entityChar);
}

bool XmlParserImpl::readDeclaration() {
    event_.next = TokenKind::Unknown;
    std::int32_t c = inputs_.readChar();
    if (c == '[') {
        if (parts_.names.readNCName() != NAME_CDATA) {
            markup_.skipSection();
            return false;
        }
        c = inputs_.readChar();
        if (c != '[') {
            inputs_.unreadChar(c);
            errors_.report(XmlError::CDataSyntax);
        }
        markup_.readCData();
        return true;
    }
    if (c == '-') {
        c = inputs_.readChar();
        if (c != '-') {
            inputs_.unreadChar(c);
            errors_.report(XmlError::CommentSyntax);
        }
        markup_.readComment();
        return true;
    }
    inputs_.unreadChar(c);
    const LumName name = parts_.names.readNCName();
    if (name == NAME_DOCTYPE) {
        readDocType();
        return true;
    }
    errors_.report(XmlError::MarkupDecl, name.getString());
    return false;
}

void XmlParserImpl::readDocType() {
    event_.type = DOCDECL;
    if (tags_.isRootSeen()) errors_.report(XmlError::DocTypePlace);
    if (isDocTypeSeen_) errors_.report(XmlError::SecondDocType);
    const detail::ExternalId id = parts_.definitions.readDocType();
    tags_.bindDocType(id.publicId);
    if (!id.systemId.isEmpty() && policy_.readsExternalDtd()) addExternalDtd(id.systemId);
    isDocTypeSeen_ = true;
}

void XmlParserImpl::addExternalDtd(const UnicodeString& systemId) {
    const LumUri resource(LumUri(getBaseUri()), systemId);
    if (resource.toString().startsWith(u"http://www.w3.org/Math/DTD/mathml2/")) {
        entities_.addMathML();
        return;
    }
    const UnicodeString baseUri = LumUri(systemId).isAbsolute() ? UnicodeString() : getBaseUri();
    entities_.declare(*detail::readExternalDtd(resource, baseUri, policy_.forgivesExternalDtdErrors()));
}

LumXmlParser::EventType XmlParserImpl::readEvent(bool isTextPending) {
    event_.dropToken();
    event_.entityName = LumName();
    if (event_.type != END_DOCUMENT) {
        if (event_.type == START_TAG && event_.next == TokenKind::EmptyTag) {
            event_.next = TokenKind::Unknown;
            return event_.type = END_TAG;
        }
        if (event_.type == END_TAG) {
            tags_.closeElement();
        } else if (event_.type == START_DOCUMENT && startDocument() != START_DOCUMENT) {
            return event_.type;
        }
        if (readToken(isTextPending)) return event_.type;
    }
    if (getDepth() > 0) errors_.report(XmlError::MissingEndTag);
    event_.next = TokenKind::Unknown;
    event_.type = END_DOCUMENT;
    closeStream();
    return END_DOCUMENT;
}

bool XmlParserImpl::endsText(TokenKind following) {
    if (following >= TokenKind::Text && following <= TokenKind::Declaration) return false;
    event_.setTextStart(0);
    return true;
}

LumXmlParser::EventType XmlParserImpl::next() {
    event_.text.clear();
    bool isTextPending = false;
    for (;;) {
        event_.textStart = event_.text.size();
        if (event_.next == TokenKind::Reference && getDepth() > 0) {
            // The character that such a reference stands for is text, whatever it is.
            if (const std::int32_t c = parts_.references.readSimple(); c >= 0) {
                event_.text.appendCodePoint(c);
                event_.type = TEXT;
                event_.forgetView();
                event_.next = TokenKind::Unknown;
                if (endsText(markup_.lookAhead())) return TEXT;
                isTextPending = true;
                continue;
            }
        }
        switch (readEvent(isTextPending)) {
            case START_DOCUMENT:
            case END_DOCUMENT:
            case START_TAG:
            case END_TAG:
                return event_.type;
            case TEXT:
            case CDSECT:
                break;
            case ENTITY_REF:
                if (event_.entityName.isNull()) break;
                parts_.expander.expandGeneral(event_.entityName);
                [[fallthrough]];
            default:
                event_.dropToken();
                isTextPending = !event_.text.empty();
                if (!isTextPending) continue;
        }
        event_.type = TEXT;
        if (endsText(markup_.lookAhead())) return TEXT;
        isTextPending = true;
    }
}

}  // namespace LumCommon
