#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/detail/DeclarationReader.h>
#include <lumcommon/xml/detail/DeclaredAttributes.h>
#include <lumcommon/xml/detail/EntityExpander.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/LiteralReader.h>
#include <lumcommon/xml/detail/ParserEvent.h>
#include <lumcommon/xml/detail/ReferenceReader.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace LumCommon::detail {

namespace {

using Type = LumXmlDeclaredAttribute::Type;

bool isQuote(std::int32_t c) { return c == '"' || c == '\''; }

bool isPublicIdChar(char16_t c) {
    constexpr std::u16string_view others = u" \n\r-'()+,./:=?;!*#@$_%";
    const auto lower = static_cast<char16_t>(c | 0x20);
    return (lower >= u'a' && lower <= u'z') || (c >= u'0' && c <= u'9') || others.find(c) != others.npos;
}

}  // namespace

void DeclarationReader::startSubset(bool isRecorded) {
    isRecording_ = isRecorded;
    subsetDepth_ = inputs_.depth();
}

void DeclarationReader::start() { declarationDepth_ = inputs_.depth(); }

void DeclarationReader::expectDefinition() noexcept { entities_.setIncomplete(); }

bool DeclarationReader::isInEntity() const { return isOutside() || inputs_.depth() > subsetDepth_; }

std::int32_t DeclarationReader::peek() { return inputs_.peekChar(); }

void DeclarationReader::fail(XmlError::Code code, const UnicodeString& a) {
    errors_.report(code, a);
    throw Abandoned{};
}

void DeclarationReader::failAtChar(XmlError::Code code) {
    const std::int32_t c = peek();
    if (c < 0) fail(XmlError::DeclUnterminated, u"DOCTYPE");
    fail(code, charText(c));
}

/// After "%".
void DeclarationReader::readReference(bool isInDeclaration) {
    const LumName name = names_.readNCName();
    if (name.isNull()) fail(XmlError::EntityNameEmpty);
    if (const std::int32_t c = inputs_.readChar(); c != ';') {
        UnicodeString read(u'%');
        fail(XmlError::EntityRefChar, append(append(read, name.getString()), charText(c)));
    }
    if (isInDeclaration && !isOutside()) fail(XmlError::ParameterEntityPlace, name.getString());
    entities_.setIncomplete();
    const std::size_t depth = inputs_.depth();
    const UnicodeString value = entities_.lookup(EntityKind::Parameter, name);
    if (!value.isBogus()) expander_.expandParameter(name, value);
    if (inputs_.depth() > depth) return;
    isCutShort_ = true;
    // One that is not declared holds nothing, unless it may be declared where nobody could look. What an entity that
    // cannot be read would have held is not known either.
    isUnread_ |= !value.isBogus();
    if (isInDeclaration && isUnread_) throw Abandoned{true};
}

void DeclarationReader::skip(bool heedsQuotes) {
    for (std::int32_t quote = 0;;) {
        const std::int32_t c = take();
        if (c == '>' && quote == 0) return;
        if (heedsQuotes && isQuote(c) && (quote == 0 || quote == c)) quote = quote == 0 ? c : 0;
        if (c >= 0) continue;
        if (inputs_.depth() > std::max(declarationDepth_, subsetDepth_)) {
            inputs_.leaveEntity();
            continue;
        }
        if (heedsQuotes) errors_.report(XmlError::DeclUnterminated, u"DOCTYPE");
        return;
    }
}

// Declarations

void DeclarationReader::finish() {
    skipSpace();
    if (!takes(u'>')) failAtChar();
}

void DeclarationReader::readElement() {
    readQName(XmlError::StartTagName);
    requireSpace(u"<!ELEMENT");
    if (takes(u'(')) {
        readContentModel();
    } else {
        const UnicodeString keyword = readKeyword();
        const bool isKnown = viewOf(keyword) == u"EMPTY" || viewOf(keyword) == u"ANY";
        if (!isKnown) fail(XmlError::ElementContent, keyword);
    }
    finish();
}

void DeclarationReader::readOccurrence() {
    if (const std::int32_t c = peek(); c == '?' || c == '*' || c == '+') take();
}

void DeclarationReader::readContentModel() {
    skipSpace();
    if (takes(u'#')) return readMixedContent();
    std::vector<char16_t> groups{0};  // that are open, with the separator that each has shown
    bool wantsParticle = true;
    while (!groups.empty()) {
        skipSpace();
        if (wantsParticle && takes(u'(')) {
            groups.push_back(0);
        } else if (wantsParticle) {
            readQName(XmlError::ElementContent);
            readOccurrence();
            wantsParticle = false;
        } else if (takes(u')')) {
            readOccurrence();
            groups.pop_back();
        } else {
            const std::int32_t c = peek();
            char16_t& separator = groups.back();
            if ((c != '|' && c != ',') || (separator != 0 && separator != c)) failAtChar(XmlError::ElementContent);
            separator = static_cast<char16_t>(take());
            wantsParticle = true;
        }
    }
}

void DeclarationReader::readMixedContent() {
    if (viewOf(readKeyword()) != u"PCDATA") fail(XmlError::ElementContent);
    bool hasNames = false;
    for (skipSpace(); takes(u'|'); skipSpace()) {
        skipSpace();
        readQName(XmlError::ElementContent);
        hasNames = true;
    }
    if (!takes(u')')) failAtChar(XmlError::ElementContent);
    if (!takes(u'*') && hasNames) failAtChar(XmlError::ElementContent);
}

void DeclarationReader::readAttributeList() {
    const QName element = readQName(XmlError::StartTagName);
    for (;;) {
        const bool hasSpace = skipSpace();
        if (takes(u'>')) return;
        if (!hasSpace) failAtChar();
        readAttribute(element);
    }
}

void DeclarationReader::readAttribute(const QName& element) {
    LumXmlDeclaredAttribute attribute;
    const QName name = readQName(XmlError::AttributeName);
    attribute.prefix = name.prefix;
    attribute.localName = name.localName;
    requireSpace(name.toString());
    readAttributeType(attribute);
    requireSpace(name.toString());
    readAttributeDefault(attribute);
    if (declares()) attributes_[element].add(std::move(attribute));
}

void DeclarationReader::readAttributeType(LumXmlDeclaredAttribute& attribute) {
    if (takes(u'(')) {
        attribute.type = LumXmlDeclaredAttribute::ENUMERATION;
        return readChoices(attribute, false);
    }
    static constexpr std::pair<std::u16string_view, Type> types[] = {
        {u"CDATA", Type::CDATA},       {u"ID", Type::ID},
        {u"IDREF", Type::IDREF},       {u"IDREFS", Type::IDREFS},
        {u"ENTITY", Type::ENTITY},     {u"ENTITIES", Type::ENTITIES},
        {u"NMTOKEN", Type::NMTOKEN},   {u"NMTOKENS", Type::NMTOKENS},
        {u"NOTATION", Type::NOTATION},
    };
    const UnicodeString keyword = readKeyword();
    const auto* const type =
        std::find_if(std::begin(types), std::end(types), [&](const auto& row) { return row.first == viewOf(keyword); });
    if (type == std::end(types)) fail(XmlError::AttributeType, keyword);
    attribute.type = type->second;
    if (attribute.type != Type::NOTATION) return;
    requireSpace(keyword);
    if (!takes(u'(')) failAtChar(XmlError::AttributeType);
    readChoices(attribute, true);
}

void DeclarationReader::readChoices(LumXmlDeclaredAttribute& attribute, bool areNames) {
    do {
        skipSpace();
        attribute.choices.push_back(areNames ? copyOf(readName(XmlError::AttributeType).getString()) : readToken());
        skipSpace();
    } while (takes(u'|'));
    if (!takes(u')')) failAtChar(XmlError::AttributeType);
}

void DeclarationReader::readAttributeDefault(LumXmlDeclaredAttribute& attribute) {
    attribute.defaultKind = LumXmlDeclaredAttribute::VALUE;
    if (takes(u'#')) {
        const UnicodeString keyword = readKeyword();
        if (viewOf(keyword) == u"REQUIRED") {
            attribute.defaultKind = LumXmlDeclaredAttribute::REQUIRED;
            return;
        }
        if (viewOf(keyword) == u"IMPLIED") {
            attribute.defaultKind = LumXmlDeclaredAttribute::IMPLIED;
            return;
        }
        if (viewOf(keyword) != u"FIXED") fail(XmlError::AttributeDefault, keyword);
        attribute.defaultKind = LumXmlDeclaredAttribute::FIXED;
        requireSpace(u"#FIXED");
    }
    readDefaultValue(attribute);
}

void DeclarationReader::readDefaultValue(LumXmlDeclaredAttribute& attribute) {
    if (!isQuote(peek())) failAtChar(XmlError::AttributeDefault);
    const auto quote = static_cast<char16_t>(peek());
    UnitBuffer value(XmlError::ValueLimit), joined(XmlError::ValueLimit);
    value.setLimit(literals_.raw().limit());
    {
        const EntityTable::OutsideScope scope(entities_, isInEntity());
        literals_.read(LiteralType::Attribute, value);
    }
    record({&quote, 1});
    record({literals_.raw().data(), literals_.raw().size()});
    record({&quote, 1});
    if (isTokenized(attribute.type)) joinTokens({value.data(), value.size()}, joined);
    attribute.value = isTokenized(attribute.type) ? joined.toString() : value.toString();
}

void DeclarationReader::readEntity() {
    UnicodeString start(u"<!ENTITY");
    EntityKind kind = EntityKind::General;
    if (peek() == '%') {  // skipSpace() has left it: it makes no reference
        take();
        kind = EntityKind::Parameter;
        requireSpace(append(start, u" %"));
    }
    const LumName name = readName(XmlError::EntityDeclName, u"!ENTITY ");
    append(append(start, u' '), name.getString());
    requireSpace(start);
    EntityOrigin origin{copyOf(inputs_.baseUri()), isInEntity(), false};
    const bool isNew = declares() && !entities_.isDefined(kind, name);
    if (isQuote(peek())) {
        const UnicodeString text = readEntityValue();
        finish();
        if (kind == EntityKind::General) checkPredefined(name, text);
        if (!isNew) return;
        entities_.declareInternal(kind, name, text);
    } else {
        const ExternalId id = readExternalId(start, false);
        if (kind == EntityKind::General && skipSpace() && peek() != '>') {
            if (viewOf(readKeyword()) != u"NDATA") fail(XmlError::EntityDeclNData, start);
            requireSpace(append(start, u" NDATA"));
            readName(XmlError::EntityDeclNData, start);
            origin.isUnparsed = true;
        }
        finish();
        if (kind == EntityKind::General) checkPredefined(name, UnicodeString());
        if (!isNew) return;
        entities_.declareExternal(kind, name, id.systemId);
    }
    entities_.setOrigin(kind, name, std::move(origin));
}

/// What a predefined entity stands for may be declared again, as it is.
void DeclarationReader::checkPredefined(LumName name, const UnicodeString& text) {
    char16_t unit;
    switch (name.getEnum()) {
        case NAME_lt:
            unit = u'<';
            break;
        case NAME_amp:
            unit = u'&';
            break;
        case NAME_gt:
            unit = u'>';
            break;
        case NAME_apos:
            unit = u'\'';
            break;
        case NAME_quot:
            unit = u'"';
            break;
        default:
            return;
    }
    const std::u16string_view view = viewOf(text);
    const bool mustBeReference = unit == u'<' || unit == u'&';
    bool isRight = !mustBeReference && view == std::u16string_view(&unit, 1);
    if (view.starts_with(u"&")) {
        const char16_t* position = view.data() + 1;
        const char16_t* const end = view.data() + view.size();
        isRight = view.starts_with(u"&#") && references_.matchSimple(position, end) == unit && position == end;
    }
    if (!isRight) errors_.report(XmlError::PredefinedEntity, name.getString());
}

void DeclarationReader::readNotation() {
    UnicodeString start(u"<!NOTATION ");
    append(start, readName(XmlError::EntityDeclName, u"!NOTATION ").getString());
    requireSpace(start);
    readExternalId(start, true);
    finish();
}

// What declarations are made of

ExternalId DeclarationReader::readExternalId(const UnicodeString& after, bool isSystemOptional) {
    ExternalId id;
    UnicodeString start = after;
    const UnicodeString keyword = readKeyword();
    const bool isPublic = viewOf(keyword) == u"PUBLIC";
    if (!isPublic && viewOf(keyword) != u"SYSTEM") fail(XmlError::DeclExternalId, after);
    append(append(start, u' '), keyword);
    requireSpace(start);
    if (isPublic) {
        id.publicId = readQuoted(XmlError::DeclPublicId, start);
        const std::u16string_view text = viewOf(id.publicId);
        if (!std::all_of(text.begin(), text.end(), isPublicIdChar)) fail(XmlError::PublicIdChar, id.publicId);
        const bool hasSpace = skipSpace();
        if (isSystemOptional && !isQuote(peek())) return id;
        if (!hasSpace) fail(XmlError::DeclSpace, start);
    }
    id.systemId = readQuoted(XmlError::DeclSystemId, start);
    return id;
}

UnicodeString DeclarationReader::readQuoted(XmlError::Code missing, const UnicodeString& after) {
    if (!isQuote(peek())) fail(missing, after);
    const auto quote = static_cast<char16_t>(take());
    if (!literals_.readRaw(quote)) fail(XmlError::LiteralUnterminated, charText(quote));
    UnicodeString text = literals_.raw().toString();
    record(viewOf(text));
    record({&quote, 1});
    return text;
}

UnicodeString DeclarationReader::readEntityValue() {
    const auto quote = static_cast<char16_t>(take());
    if (!literals_.readRaw(quote)) fail(XmlError::DeclUnterminated, u"ENTITY");
    record({literals_.raw().data(), literals_.raw().size()});
    record({&quote, 1});
    UnitBuffer raw(XmlError::ValueLimit);  // another literal may be read meanwhile
    raw.setLimit(literals_.raw().limit());
    raw.append(literals_.raw().data(), literals_.raw().size());
    return expandEntityValue(raw);
}

UnicodeString DeclarationReader::expandEntityValue(const UnitBuffer& raw) {
    UnitBuffer result(XmlError::ValueLimit);
    result.setLimit(raw.limit());
    const InputStack::LiteralScope scope(inputs_, raw, 0);
    for (;;) {
        const std::int32_t c = inputs_.readChar();
        if (c < 0) {
            if (inputs_.leaveEntity()) continue;
            return result.toString();
        }
        if (c == '%') {
            readReference(true);
        } else if (c == '&') {
            LumName name;
            const std::int32_t referred = references_.read(name);
            if (name.isNull()) {
                if (referred != 0) result.appendCodePoint(referred);
                continue;
            }
            result.append(u'&');
            result.append(name.getString());
            result.append(u';');
        } else {
            result.appendCodePoint(c);
        }
    }
}

LumName DeclarationReader::readName(XmlError::Code missing, const UnicodeString& after) {
    const LumName name = names_.readNCName();
    if (name.isNull()) fail(missing, after);
    record(viewOf(name.getString()));
    return name;
}

QName DeclarationReader::readQName(XmlError::Code missing) {
    QName name;
    if (!names_.readQName(name)) fail(missing, charText(peek()));
    record(viewOf(name.toString()));
    return name;
}

/// A name token, which may begin with any character of a name and hold colons.
UnicodeString DeclarationReader::readToken() {
    UnicodeString token;
    for (std::int32_t c = peek(); isXmlNameChar(c) || c == ':'; c = peek())
        append(token, static_cast<char32_t>(take()));
    if (token.isEmpty()) failAtChar(XmlError::AttributeType);
    names_.checkCharacters(token.getBuffer(), static_cast<std::size_t>(token.length()));
    return token;
}

UnicodeString DeclarationReader::readKeyword() {
    UnicodeString keyword;
    for (std::int32_t c = peek(); isXmlNameChar(c); c = peek()) append(keyword, static_cast<char32_t>(take()));
    return keyword;
}

/// Passes over white space and the ends of parameter entities, and enters those that are referred to.
bool DeclarationReader::skipSpace() {
    for (bool hasSkipped = false;; hasSkipped = true) {
        const std::int32_t c = inputs_.readChar();
        if (isXmlSpace(c)) {
            inputs_.unreadChar(c);
            take();
        } else if (c < 0) {
            if (inputs_.depth() <= declarationDepth_) return hasSkipped;
            inputs_.leaveEntity();
        } else if (c == '%' && isXmlNameStart(peek())) {
            readReference(true);
        } else {
            inputs_.unreadChar(c);
            return hasSkipped;
        }
    }
}

void DeclarationReader::requireSpace(const UnicodeString& after) {
    if (!skipSpace()) fail(XmlError::DeclSpace, after);
}

bool DeclarationReader::takes(char16_t unit) {
    if (peek() != unit) return false;
    take();
    return true;
}

std::int32_t DeclarationReader::take() {
    const std::int32_t c = inputs_.readChar();
    if (isRecording_ && c >= 0) event_.text.units().appendCodePoint(c);
    return c;
}

void DeclarationReader::record(std::u16string_view text) {
    if (isRecording_) event_.text.units().append(text.data(), text.size());
}

bool DeclarationReader::isOutside() const { return inputs_.streamCount() > 1; }

bool DeclarationReader::declares() const { return !isCutShort_ || entities_.isStandalone(); }

}  // namespace LumCommon::detail
