#include <lumcommon/core/LumError.h>
#include <lumcommon/core/LumStrings.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/xml/XmlParserFactoryImpl.h>
#include <lumcommon/xml/XmlParserImpl.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <unicode/locid.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

// Life, settings and accessors of the parser, its events and its errors.

namespace LumCommon {

namespace XmlError = detail::XmlError;

namespace {

constexpr const char16_t* eventNames[] = {
    u"START_DOCUMENT",       u"END_DOCUMENT",           u"START_TAG", u"END_TAG", u"TEXT", u"CDSECT", u"ENTITY_REF",
    u"IGNORABLE_WHITESPACE", u"PROCESSING_INSTRUCTION", u"COMMENT",   u"DOCDECL"};

bool isFeature(int feature) { return feature >= 0 && feature <= LumXmlParser::FEATURE_BUILTIN_ENCODINGS_ONLY; }

/// Appends a decimal number that does not depend on the locale.
void appendNumber(UnicodeString& text, int number) {
    char digits[16];
    const int size = std::snprintf(digits, sizeof digits, "%d", number);
    text.append(UnicodeString(digits, size, US_INV));
}

}  // namespace

LumPtr<LumXmlParser> makeXmlParser() { return LumPtr<LumXmlParser>(new XmlParserImpl); }

LumPtr<LumXmlParser> makeClosedXmlParser() {
    LumPtr<XmlParserImpl> parser(new XmlParserImpl);
    parser->setFeature(LumXmlParser::FEATURE_SKIP_EXTERNAL_DTD, true);
    parser->refuseExternalInputs();
    return LumPtr<LumXmlParser>(parser.get());
}

bool LumXmlParser::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumRCObject::isA(typeId); }

UnicodeString LumXmlParser::getEventTypeStr(int eventType) {
    if (eventType < 0 || eventType >= static_cast<int>(std::size(eventNames))) return UnicodeString();
    return eventNames[eventType];
}

XmlParserImpl::XmlParserImpl() : namespaces_(new NamespaceManager), documentKind_(NAME_auto) {}

XmlParserImpl::~XmlParserImpl() { closeFrames(); }

bool XmlParserImpl::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumXmlParser::isA(typeId); }

UnicodeString XmlParserImpl::getTypeName() const { return u"XmlParserImpl"; }

void XmlParserImpl::setFeature(Feature feature, bool value) {
    if (isFeature(feature)) features_[feature] = value;
}

bool XmlParserImpl::getFeature(Feature feature) const { return isFeature(feature) && features_[feature]; }

void XmlParserImpl::setStreamType(const UnicodeString& mediaType, const UnicodeString& extension) {
    mediaType_ = mediaType;
    mediaType_.toLower(icu::Locale::getRoot());
    extension_ = extension;
    extension_.toLower(icu::Locale::getRoot());
}

void XmlParserImpl::setCallbackError(void (*callback)(const LumError&, void*), void* data) {
    errorCallback_ = callback;
    errorCallbackData_ = data;
}

UnicodeString XmlParserImpl::getInputEncoding() const {
    const detail::XmlInput* const input = currentInput();
    return input ? input->encodingName : encodingName_;
}

void XmlParserImpl::defineEntityReplacementText(LumName name, const UnicodeString& text) {
    // Without an input the definition is for the document that comes next.
    (frameCount_ > 0 ? generalEntities_ : earlyDefinitions_)[name] = text;
    isPredefinedIntact_ = false;
}

int XmlParserImpl::getNamespaceCount(int depth) const { return namespaces_->getNamespaceCount(depth); }
LumName XmlParserImpl::getNamespacePrefix(int index) const { return namespaces_->getNamespacePrefix(index); }
LumName XmlParserImpl::getNamespaceUri(int index) const { return namespaces_->getNamespaceUri(index); }
LumName XmlParserImpl::getNamespace(LumName prefix) const { return namespaces_->lookupNamespace(prefix); }
int XmlParserImpl::getDepth() const { return namespaces_->getScopeDepth(); }

int XmlParserImpl::getLineNumber() const {
    rememberPosition();
    return line_;
}

int XmlParserImpl::getColumnNumber() const {
    rememberPosition();
    return column_;
}

UnicodeString XmlParserImpl::getPositionDescription() const {
    UnicodeString description = getEventTypeStr(eventType_);
    const detail::XmlInput* const input = currentInput();
    const UnicodeString& systemId = input ? input->systemId : systemId_;
    const UnicodeString& baseUri = input ? input->baseUri : baseUri_;
    const UnicodeString& place = systemId.isEmpty() ? baseUri : systemId;
    if (!place.isEmpty()) description.append(u", '").append(place).append(u'\'');
    rememberPosition();
    if (line_ != -1) {
        description.append(u", Line ");
        appendNumber(description, line_);
    }
    if (column_ != -1) {
        description.append(u", Col ");
        appendNumber(description, column_);
    }
    return description.append(u'.');
}

UnicodeString XmlParserImpl::getBaseUri() const {
    const detail::XmlInput* const input = currentInput();
    return input ? input->baseUri : baseUri_;
}

void XmlParserImpl::throwNotAllowed(LumCommonErrorSource source) const {
    throwCommonError(LumErrorCodeLumLIB::NotAllowed, source);
}

bool XmlParserImpl::isWhitespace() const {
    if (eventType_ == IGNORABLE_WHITESPACE) return true;
    if (eventType_ != TEXT && eventType_ != CDSECT) throwNotAllowed(LumCommonErrorSource::ParserIsWhitespace);
    const char16_t* const units = text_.data();
    const std::size_t start = std::min(textStart_, text_.size());
    return std::all_of(units + start, units + text_.size(), [](char16_t unit) { return detail::isXmlSpace(unit); });
}

const UnicodeString& XmlParserImpl::getText() const {
    if (isTextCached_) return textCache_;
    if (eventType_ == ENTITY_REF && !entityName_.isNull()) {
        textCache_ = lookupEntityValue(entityName_, false);
    } else {
        const std::size_t start = std::min(textStart_, text_.size());
        text_.lend(start, text_.size() - start, textCache_);
    }
    isTextCached_ = true;
    return textCache_;
}

LumName XmlParserImpl::getNamespace() const {
    if (eventType_ != START_TAG && eventType_ != END_TAG) return LumName();
    return namespaces_->getInnermostScope().namespaceUri;
}

LumName XmlParserImpl::getName() const {
    if (eventType_ == START_TAG || eventType_ == END_TAG) return namespaces_->getInnermostScope().localName;
    if (eventType_ != ENTITY_REF) return LumName();
    if (!entityName_.isNull()) return entityName_;
    char name[16];
    const int size = std::snprintf(name, sizeof name, "#x%X", static_cast<unsigned>(entityChar_));
    return LumName(UnicodeString(name, size, US_INV));
}

LumName XmlParserImpl::getPrefix() const {
    if (eventType_ != START_TAG && eventType_ != END_TAG) return LumName();
    return namespaces_->getInnermostScope().prefix;
}

bool XmlParserImpl::isEmptyElementTag() const {
    if (eventType_ != START_TAG) throwNotAllowed(LumCommonErrorSource::ParserIsEmptyElementTag);
    return tokenState_ == TOKEN_EMPTY_TAG;
}

int XmlParserImpl::getAttributeCount() const {
    return eventType_ == START_TAG ? static_cast<int>(attributes_.size()) : -1;
}

const XmlParserImpl::Attribute& XmlParserImpl::attributeAt(int index, LumCommonErrorSource source) const {
    if (index < 0 || index >= getAttributeCount()) throwCommonError(LumErrorCodeLumLIB::IndexOutOfRange, source);
    return attributes_[static_cast<std::size_t>(index)];
}

LumName XmlParserImpl::getAttributeNamespace(int index) const {
    return attributeAt(index, LumCommonErrorSource::ParserGetAttributeNamespace).namespaceUri;
}

LumName XmlParserImpl::getAttributeName(int index) const {
    return attributeAt(index, LumCommonErrorSource::ParserGetAttributeName).localName;
}

LumName XmlParserImpl::getAttributePrefix(int index) const {
    return attributeAt(index, LumCommonErrorSource::ParserGetAttributePrefix).prefix;
}

const UnicodeString& XmlParserImpl::getAttributeValue(int index) const {
    attributeAt(index, LumCommonErrorSource::ParserGetAttributeValue);
    const auto wanted = static_cast<std::size_t>(index);
    if (attributeViews_.size() < attributes_.size()) attributeViews_.resize(attributes_.size());
    // Values lie one after the other in one buffer; a view of a value is made when it is first asked for.
    for (; viewCount_ <= wanted; ++viewCount_) {
        const Attribute& attribute = attributes_[viewCount_];
        attributeText_.lend(attribute.valueStart, attribute.valueSize, attributeViews_[viewCount_]);
    }
    return attributeViews_[wanted];
}

const UnicodeString& XmlParserImpl::getAttributeValue(LumName namespaceUri, LumName localName) const {
    if (eventType_ != START_TAG) {
        throwCommonError(LumErrorCodeLumLIB::IndexOutOfRange, LumCommonErrorSource::ParserGetAttributeValue);
    }
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
        const Attribute& attribute = attributes_[i];
        if (attribute.localName != localName) continue;
        if (namespaces_->lookupNamespace(attribute.prefix) == namespaceUri) {
            return getAttributeValue(static_cast<int>(i));
        }
    }
    return LumBogusString::BOGUS_VALUE;
}

bool XmlParserImpl::isXhtmlType() const {
    if (documentKind_ == NAME_xhtml) return true;
    if (documentKind_ != NAME_auto && !documentKind_.isNull()) return false;
    if (rootName_ == NAME_html && rootNamespace_.getString() == UnicodeString(u"http://www.w3.org/1999/xhtml")) {
        return true;
    }
    if (!mediaType_.isEmpty()) return mediaType_ == UnicodeString(u"application/xhtml+xml");
    return extension_ == UnicodeString(u".xht") || extension_ == UnicodeString(u".xhtml");
}

bool XmlParserImpl::isHtmlType() const {
    if (documentKind_ == NAME_html) return true;
    if (documentKind_ != NAME_auto && !documentKind_.isNull()) return false;
    if (!mediaType_.isEmpty()) return mediaType_ == UnicodeString(u"text/html");
    if (!extension_.isEmpty()) return extension_ == UnicodeString(u".html") || extension_ == UnicodeString(u".htm");
    return rootName_ == NAME_html && rootNamespace_.isNull();
}

LumXmlParser::EventType XmlParserImpl::startDocument() {
    tokenState_ = TOKEN_UNKNOWN;
    if (frameCount_ == 0 || isStarted_) return eventType_;
    isStarted_ = true;
    detail::XmlInput& input = *currentInput();
    detectEncoding(input);
    if (whatsNext() == TOKEN_PI) parsePiOrXmlDecl();
    input.unleash();
    return eventType_;
}

bool XmlParserImpl::readToken(bool isTextPending) {
    for (;;) {
        switch (whatsNext()) {
            case TOKEN_START_TAG:
                parseStartTag();
                return true;
            case TOKEN_END_TAG:
                parseEndTag();
                return true;
            case TOKEN_TEXT:
                parseText();
                return true;
            case TOKEN_PI:
                if (parsePiOrXmlDecl() || isTextPending) return true;
                break;
            case TOKEN_DECLARATION:
                if (parseDeclEtc() || isTextPending) return true;
                break;
            case TOKEN_REFERENCE: {
                tokenState_ = TOKEN_UNKNOWN;
                eventType_ = ENTITY_REF;
                UnicodeString value;
                entityChar_ = readCharEntityRef(entityName_, false, value);
                if (entityName_.isNull() && entityChar_ != 0) text_.appendCodePoint(entityChar_);
                return true;
            }
            default:
                return false;
        }
    }
}

LumXmlParser::EventType XmlParserImpl::nextToken() { return readEvent(false); }

LumXmlParser::EventType XmlParserImpl::readEvent(bool isTextPending) {
    text_.truncate(textStart_);
    isTextCached_ = false;
    entityName_ = LumName();
    if (eventType_ != END_DOCUMENT) {
        if (eventType_ == START_TAG && tokenState_ == TOKEN_EMPTY_TAG) {
            tokenState_ = TOKEN_UNKNOWN;
            return eventType_ = END_TAG;
        }
        if (eventType_ == END_TAG) {
            namespaces_->popScope();
            if (!openNames_.empty()) openNames_.pop_back();
        } else if (eventType_ == START_DOCUMENT && startDocument() != START_DOCUMENT) {
            return eventType_;
        }
        if (readToken(isTextPending)) return eventType_;
    }
    if (getDepth() > 0) throwError(XmlError::MissingEndTag);
    tokenState_ = TOKEN_UNKNOWN;
    eventType_ = END_DOCUMENT;
    closeStream();
    return END_DOCUMENT;
}

bool XmlParserImpl::endsText(TokenState following) {
    if (following >= TOKEN_TEXT && following <= TOKEN_DECLARATION) return false;
    textStart_ = 0;
    isTextCached_ = false;
    return true;
}

LumXmlParser::EventType XmlParserImpl::next() {
    text_.clear();
    bool isTextPending = false;
    for (;;) {
        textStart_ = text_.size();
        if (tokenState_ == TOKEN_REFERENCE && getDepth() > 0) {
            // The character that such a reference stands for is text, whatever it is.
            if (const std::int32_t c = readSimpleReference(); c >= 0) {
                text_.appendCodePoint(c);
                eventType_ = TEXT;
                isTextCached_ = false;
                tokenState_ = TOKEN_UNKNOWN;
                if (endsText(whatsNext())) return TEXT;
                isTextPending = true;
                continue;
            }
        }
        switch (readEvent(isTextPending)) {
            case START_DOCUMENT:
            case END_DOCUMENT:
            case START_TAG:
            case END_TAG:
                return eventType_;
            case TEXT:
            case CDSECT:
                break;
            case ENTITY_REF:
                if (entityName_.isNull()) break;
                expandEntityInContent(entityName_);
                [[fallthrough]];
            default:
                text_.truncate(textStart_);
                isTextCached_ = false;
                isTextPending = !text_.empty();
                if (!isTextPending) continue;
        }
        eventType_ = TEXT;
        if (endsText(whatsNext())) return TEXT;
        isTextPending = true;
    }
}

void XmlParserImpl::throwError(std::uint16_t code, const UnicodeString& a, const UnicodeString& b) {
    UnicodeString message = detail::makeXmlErrorMessage(code, a, b);
    static constexpr char16_t source[] = u"LumCommon::XmlParserImpl";
    if (errorCallback_) {
        const TokenState state = tokenState_;
        tokenState_ = TOKEN_IN_CALLBACK;
        struct Restore {
            TokenState& slot;
            TokenState state;
            ~Restore() { slot = state; }
        } const restore{tokenState_, state};
        errorCallback_(LumError(code, message, source, -1, -1, UnicodeString()), errorCallbackData_);
        return;
    }
    message.append(u'\n').append(getPositionDescription());
    throw LumError(static_cast<std::uint16_t>(code & ~0x0700), message, source, -1, -1, UnicodeString());
}

UnicodeString XmlParserImpl::charText(std::int32_t c) {
    return c < 0 ? UnicodeString() : UnicodeString(static_cast<UChar32>(c));
}

UnicodeString XmlParserImpl::makeQName(LumName prefix, LumName localName) {
    if (prefix.isNull()) return localName.getString();
    return UnicodeString(prefix.getString()).append(u':').append(localName.getString());
}

}  // namespace LumCommon
