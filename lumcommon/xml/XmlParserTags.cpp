#include <lumcommon/core/LumStrings.h>
#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/xml/XmlParserImpl.h>
#include <lumcommon/xml/detail/UnitScan.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <algorithm>

// Names, start and end tags, attribute values and other literals.

namespace LumCommon {

namespace XmlError = detail::XmlError;
using detail::CachedName;
using detail::isXmlNameChar;
using detail::isXmlNameStart;
using detail::isXmlSpace;
using detail::xmlCharClasses;

namespace {

// Up to this many attributes comparing each with each is faster than hashing them.
constexpr std::size_t maxPairwiseAttributes = 16;
// Longer values are better copied by the library function.
constexpr std::size_t maxShortValueUnits = 32;

/// Whether a unit may stand in a qualified name. Characters of two units are left to the slow road.
bool isQNameUnit(char16_t unit) {
    if (unit < 128) return (xmlCharClasses[unit] & (detail::CLASS_NAME | detail::CLASS_COLON)) != 0;
    return !U16_IS_SURROGATE(unit) && isXmlNameChar(unit);
}

/// Finds the place of the colon in a qualified name; its size when there is none. False when the text is no qualified
/// name.
bool splitQName(const char16_t* text, std::size_t size, std::size_t& colon) {
    colon = static_cast<std::size_t>(std::find(text, text + size, u':') - text);
    if (!isXmlNameStart(text[0])) return false;
    if (colon == size) return true;
    const char16_t* const local = text + colon + 1;
    const char16_t* const end = text + size;
    return local != end && isXmlNameStart(*local) && std::find(local, end, u':') == end;
}

}  // namespace

bool XmlParserImpl::skipWhitespace() {
    bool hasSkipped = false;
    for (;;) {
        const char16_t* p = cursor_.cur;
        while (p != cursor_.end && isXmlSpace(*p)) ++p;
        hasSkipped |= p != cursor_.cur;
        cursor_.cur = p;
        if (p != cursor_.end) {
            // The character that ends the white space has been looked at.
            cursor_.touch(p + 1);
            if (U16_IS_LEAD(*p)) unreadChar(readChar());
            return hasSkipped;
        }
        cursor_.touch(p);
        if (!pull()) return hasSkipped;
    }
}

void XmlParserImpl::scanNCName(detail::UnitBuffer& out) {
    out.clear();
    std::int32_t c = readChar();
    if (isXmlNameStart(c)) {
        do {
            out.appendCodePoint(c);
            c = readChar();
        } while (isXmlNameChar(c));
    }
    unreadChar(c);
}

LumName XmlParserImpl::readNCName() {
    scanNCName(nameBuffer_);
    if (nameBuffer_.empty()) return LumName();
    const CachedName* name = names_.find(nameBuffer_.data(), nameBuffer_.size());
    if (!name) {
        name = names_.add(nameBuffer_.data(), nameBuffer_.size(), NAME_NULL,
                          detail::internName(nameBuffer_.data(), nameBuffer_.size()));
    }
    return name->localName;
}

const CachedName* XmlParserImpl::readQNameFast() {
    const char16_t* const start = cursor_.cur;
    const CachedName* const guess = lastName_ ? lastName_->following : nullptr;
    if (guess && static_cast<std::size_t>(cursor_.end - start) > guess->size && guess->matches(start)) {
        const char16_t* const behind = start + guess->size;
        if (*behind < 128 && !isQNameUnit(*behind)) {
            cursor_.cur = behind;
            cursor_.touch(behind + 1);
            return lastName_ = guess;
        }
    }
    const CachedName* const name = findQName();
    if (name) {
        if (lastName_) lastName_->following = name;
        lastName_ = name;
    }
    return name;
}

const CachedName* XmlParserImpl::findQName() {
    const char16_t* const start = cursor_.cur;
    const char16_t* p = start;
    while (p != cursor_.end && isQNameUnit(*p)) ++p;
    if (p == cursor_.end || U16_IS_SURROGATE(*p) || p == start) return nullptr;
    const auto size = static_cast<std::size_t>(p - start);
    const CachedName* name = names_.find(start, size);
    if (!name) {
        std::size_t colon;
        if (!splitQName(start, size, colon)) return nullptr;
        const bool hasPrefix = colon != size;
        const std::size_t local = hasPrefix ? colon + 1 : 0;
        const LumNameEnum prefix = hasPrefix ? detail::internName(start, colon) : NAME_NULL;
        name = names_.add(start, size, prefix, detail::internName(start + local, size - local));
    }
    cursor_.cur = p;
    cursor_.touch(p + 1);
    return name;
}

bool XmlParserImpl::readQName(LumName& prefix, LumName& localName) {
    prefix = LumName();
    localName = readNCName();
    if (localName.isNull()) return false;
    const std::int32_t c = readChar();
    if (c != ':') {
        unreadChar(c);
        return true;
    }
    prefix = localName;
    localName = readNCName();
    return !localName.isNull();
}

void XmlParserImpl::parseStartTag() {
    eventType_ = START_TAG;
    tokenState_ = TOKEN_UNKNOWN;
    if (rootSeen_ && getDepth() == 0) throwError(XmlError::SecondRoot);
    LumName prefix, localName;
    const CachedName* const name = readQNameFast();
    if (name) {
        prefix = name->prefix;
        localName = name->localName;
    } else {
        const std::int32_t c = readChar();
        if (isXmlSpace(c)) {
            throwError(XmlError::UnexpectedSpace, u"<");
        } else {
            unreadChar(c);
        }
        if (!readQName(prefix, localName)) throwError(XmlError::StartTagName);
    }
    if (!rootSeen_) rootName_ = localName;
    namespaces_->pushScope();
    openNames_.push_back(name);
    attributes_.clear();
    attributeText_.clear();
    viewCount_ = 0;
    parseAttributes();
    finishStartTag();
    if (getDepth() == 1) bindRootNamespaces(localName);
    const LumName namespaceUri = namespaces_->lookupNamespace(prefix);
    if (!rootSeen_) rootNamespace_ = namespaceUri;
    if (namespaceUri.isNull() && !prefix.isNull()) throwError(XmlError::UndeclaredPrefix, prefix.getString());
    namespaces_->setElement(prefix, localName, namespaceUri);
    rootSeen_ = true;
    if (!attributes_.empty()) resolveAttributes();
}

void XmlParserImpl::parseAttributes() {
    for (;;) {
        // Most tags end right behind a name or a value.
        if (cursor_.cur != cursor_.end && (*cursor_.cur == '>' || *cursor_.cur == '/')) {
            cursor_.touch(cursor_.cur + 1);
            return;
        }
        if (!skipWhitespace()) return;
        if (cursor_.cur != cursor_.end && (*cursor_.cur == '>' || *cursor_.cur == '/')) return;
        parseAttribute();
    }
}

void XmlParserImpl::parseAttribute() {
    Attribute attribute{};
    if (const CachedName* const name = readQNameFast()) {
        attribute.prefix = name->prefix;
        attribute.localName = name->localName;
    } else if (!readQName(attribute.prefix, attribute.localName)) {
        throwError(XmlError::AttributeName, readLiteral(LITERAL_OFFENDING));
    }
    if (cursor_.cur != cursor_.end && *cursor_.cur == '=') {
        ++cursor_.cur;
        cursor_.touch(cursor_.cur);
    } else {
        skipWhitespace();
        const std::int32_t c = readChar();
        if (c != '=') {
            unreadChar(c);
            throwError(XmlError::AttributeEquals);
        }
    }
    attribute.valueStart = attributeText_.size();
    if (!readAttributeValueFast()) {
        skipWhitespace();
        readLiteral(LITERAL_ATTRIBUTE, attributeText_);
    }
    attribute.valueSize = attributeText_.size() - attribute.valueStart;
    const bool isDefault = attribute.prefix.isNull() && attribute.localName == NAME_xmlns;
    if (isDefault || attribute.prefix == NAME_xmlns) {
        const LumName uri(detail::internName(attributeText_.data() + attribute.valueStart, attribute.valueSize));
        namespaces_->addNamespace(isDefault ? LumName() : attribute.localName, uri);
        attribute.namespaceUri = NAME_NS_XMLNS;
    }
    attributes_.push_back(attribute);
}

bool XmlParserImpl::readAttributeValueFast() {
    const char16_t* p = cursor_.cur;
    const char16_t* const end = cursor_.end;
    if (p == end || (*p != '"' && *p != '\'')) return false;
    const char16_t delimiter = *p++;
    const char16_t* const start = p;
    p = detail::findValueEnd(p, end, delimiter);
    if (p == end || *p != delimiter) return false;
    const auto size = static_cast<std::size_t>(p - start);
    // Replacement texts have no slack behind them.
    if (size <= maxShortValueUnits && frames_[frameCount_ - 1]->kind == Frame::Stream) {
        attributeText_.appendShort(start, size);
    } else {
        attributeText_.append(start, size);
    }
    cursor_.cur = p + 1;
    cursor_.touch(cursor_.cur);
    return true;
}

void XmlParserImpl::finishStartTag() {
    std::int32_t c = readChar();
    if (c == '>') return;
    if (c == '/') {
        tokenState_ = TOKEN_EMPTY_TAG;
        c = readChar();
        if (c == '>') return;
        if (isXmlSpace(c)) {
            throwError(XmlError::UnexpectedSpace, u"/");
            return;
        }
    } else if (isXmlNameStart(c)) {
        throwError(XmlError::AttributeSpace);
        return;
    }
    throwError(XmlError::UnexpectedChar, charText(c));
}

void XmlParserImpl::bindRootNamespaces(LumName localName) {
    static constexpr char16_t chart[] = u"http://ns.diagrix.example/names/Diagrix";
    const bool isSvg = localName == NAME_svg;
    if (!isSvg && localName != NAME_chart) return;
    if (namespaces_->lookupNamespace(LumName()).isNull()) {
        namespaces_->addNamespace(LumName(), LumName(UnicodeString(isSvg ? detail::svgNamespace : chart)));
    }
    if (namespaces_->lookupNamespace(NAME_xlink).isNull()) {
        namespaces_->addNamespace(NAME_xlink, LumName(UnicodeString(detail::xlinkNamespace)));
    }
}

void XmlParserImpl::resolveAttributes() {
    const bool isHashed = attributes_.size() > maxPairwiseAttributes;
    if (isHashed) attributeKeys_.clear();
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
        Attribute& attribute = attributes_[i];
        if (!attribute.prefix.isNull() && attribute.namespaceUri.isNull()) {
            attribute.namespaceUri = namespaces_->lookupNamespace(attribute.prefix);
            if (attribute.namespaceUri.isNull()) {
                if (features_[FEATURE_ALLOW_UNDECLARED_PREFIX]) {
                    attribute.namespaceUri = attribute.prefix;
                } else {
                    throwError(XmlError::UndeclaredPrefix, attribute.prefix.getString());
                }
            }
        }
        if (isHashed) {
            const std::uint64_t key =
                (static_cast<std::uint64_t>(attribute.namespaceUri.getEnum()) << 32) | attribute.localName.getEnum();
            if (attributeKeys_.insert(key).second) continue;
        } else {
            const auto isSame = [&attribute](const Attribute& other) {
                return other.localName == attribute.localName && other.namespaceUri == attribute.namespaceUri;
            };
            const auto here = attributes_.begin() + static_cast<std::ptrdiff_t>(i);
            if (std::none_of(attributes_.begin(), here, isSame)) continue;
        }
        throwError(XmlError::DuplicateAttribute, makeQName(attribute.prefix, attribute.localName));
    }
}

bool XmlParserImpl::parseEndTagFast() {
    const CachedName* const open = openNames_.empty() ? nullptr : openNames_.back();
    if (!open || static_cast<std::size_t>(cursor_.end - cursor_.cur) <= open->size) return false;
    const char16_t* const end = cursor_.cur + open->size;
    if (*end != '>' || !open->matches(cursor_.cur)) return false;
    cursor_.cur = end + 1;
    cursor_.touch(cursor_.cur);
    return true;
}

void XmlParserImpl::parseEndTag() {
    eventType_ = END_TAG;
    tokenState_ = TOKEN_UNKNOWN;
    if (parseEndTagFast()) return;
    std::int32_t c = readChar();
    if (isXmlSpace(c)) {
        throwError(XmlError::UnexpectedSpace, u"</");
    } else {
        unreadChar(c);
    }
    LumName prefix, localName;
    if (!readQName(prefix, localName)) throwError(XmlError::EndTagName);
    const NamespaceManager::NSScope& open = namespaces_->getInnermostScope();
    if (prefix != open.prefix || localName != open.localName) {
        throwError(XmlError::EndTagMismatch, makeQName(prefix, localName), makeQName(open.prefix, open.localName));
    }
    skipWhitespace();
    c = readChar();
    if (c != '>') {
        throwError(XmlError::UnexpectedChar, charText(c));
    }
}

UnicodeString XmlParserImpl::readLiteral(LiteralType type) {
    scratch_.clear();
    readLiteral(type, scratch_);
    return scratch_.toString();
}

bool XmlParserImpl::readLiteral(LiteralType type, detail::UnitBuffer& out) {
    const bool isOptional = type == LITERAL_OPTIONAL || type == LITERAL_OFFENDING;
    std::int32_t delimiter = readChar();
    const bool isQuoted = delimiter == '"' || delimiter == '\'';
    if (!isQuoted) {
        unreadChar(delimiter);
        if (!isOptional) {
            throwError(XmlError::LiteralQuote);
            return false;
        }
        delimiter = ' ';
    }
    const bool isTerminated =
        readRawLiteral(delimiter, isOptional ? std::uint16_t{0} : std::uint16_t{XmlError::LiteralUnterminated},
                       UnicodeString(static_cast<UChar32>(delimiter)));
    if (type == LITERAL_OFFENDING && isQuoted) out.append(static_cast<char16_t>(delimiter));
    processRawLiteral(type, out);
    if (type == LITERAL_OFFENDING && isQuoted && isTerminated) out.append(static_cast<char16_t>(delimiter));
    return true;
}

void XmlParserImpl::processRawLiteral(LiteralType type, detail::UnitBuffer& out) {
    const char16_t* const raw = rawLiteral_.data();
    const std::size_t size = rawLiteral_.size();
    const bool expands = type == LITERAL_ATTRIBUTE || type == LITERAL_ENTITY;
    std::size_t i = 0;
    for (; i < size; ++i) {
        const char16_t* const runEnd = detail::findValueEnd(raw + i, raw + size, u'&');
        out.append(raw + i, static_cast<std::size_t>(runEnd - raw) - i);
        i = static_cast<std::size_t>(runEnd - raw);
        if (i == size) break;
        const char16_t unit = raw[i];
        if (expands && unit == '&') {
            // Only what needs the definition of an entity, and what is wrong, has to become an input of its own.
            const char16_t* behind = raw + i + 1;
            const std::int32_t c = type == LITERAL_ATTRIBUTE ? matchSimpleReference(behind, raw + size) : -1;
            if (c < 0) break;
            out.appendCodePoint(c);
            i = static_cast<std::size_t>(behind - raw) - 1;
        } else if (unit == '<' && type == LITERAL_ATTRIBUTE) {
            break;
        } else {
            out.append(isXmlSpace(unit) ? u' ' : unit);
        }
    }
    if (i < size) expandLiteral(type, i, out);
}

bool XmlParserImpl::readRawLiteral(std::int32_t delimiter, std::uint16_t unterminated, const UnicodeString& argument) {
    rawLiteral_.clear();
    for (;;) {
        const char16_t* const start = cursor_.cur;
        const char16_t* const found = detail::findUnit(start, cursor_.end, static_cast<char16_t>(delimiter));
        rawLiteral_.append(start, static_cast<std::size_t>(found - start));
        const bool isFound = found != cursor_.end;
        cursor_.cur = isFound ? found + 1 : found;
        cursor_.touch(cursor_.cur);
        if (isFound) return true;
        if (!pull()) {
            if (unterminated != 0) throwError(unterminated, argument);
            return false;
        }
    }
}

void XmlParserImpl::expandLiteral(LiteralType type, std::size_t from, detail::UnitBuffer& out) {
    // The raw text becomes an input of its own, so that replacement texts are read by the same rules; its end is the
    // end of the literal. Names read in it use other buffers, so the raw text stays where it is.
    Frame& frame = pushFrame(Frame::Literal);
    frame.isBarrier = true;
    frame.start = rawLiteral_.data();
    cursor_ = {frame.start + from, frame.start + rawLiteral_.size(), frame.start + from};
    const std::size_t depth = frameCount_;
    struct Restore {
        XmlParserImpl& parser;
        std::size_t depth;
        ~Restore() {
            while (parser.frameCount_ >= depth) parser.popFrame();
        }
    } const restore{*this, depth};
    for (;;) {
        const std::int32_t c = readChar();
        if (c < 0) return;
        if (c == '&') {
            expandReferenceInLiteral(type, out);
            continue;
        }
        if (c == '<' && type == LITERAL_ATTRIBUTE) throwError(XmlError::LessThanInValue);
        if (isXmlSpace(c)) {
            out.append(u' ');
        } else {
            out.appendCodePoint(c);
        }
    }
}

void XmlParserImpl::expandReferenceInLiteral(LiteralType type, detail::UnitBuffer& out) {
    if (type == LITERAL_ATTRIBUTE) {
        if (const std::int32_t c = readSimpleReference(); c >= 0) {
            out.appendCodePoint(c);
            return;
        }
    }
    LumName name;
    UnicodeString value;
    const std::int32_t c = readCharEntityRef(name, type == LITERAL_ATTRIBUTE, value);
    if (name.isNull()) {
        if (c != 0) out.appendCodePoint(c);
        return;
    }
    if (type == LITERAL_ENTITY) {
        out.append(u'&');
        out.append(name.getString());
        out.append(u';');
    } else if (value.isBogus()) {
        throwError(XmlError::UndefinedEntity, name.getString());
    } else {
        pushReplacement(name, value);
    }
}

}  // namespace LumCommon
