#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/LiteralReader.h>
#include <lumcommon/xml/detail/ParserEvent.h>
#include <lumcommon/xml/detail/ParserPolicy.h>
#include <lumcommon/xml/detail/TagReader.h>
#include <lumcommon/xml/detail/UnitScan.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <algorithm>
#include <limits>

namespace LumCommon::detail {

namespace {

// Bound without a declaration where a document is SVG.
constexpr char16_t svgNamespace[] = u"http://www.w3.org/2000/svg";
constexpr char16_t xlinkNamespace[] = u"http://www.w3.org/1999/xlink";
constexpr char16_t chartNamespace[] = u"http://ns.diagrix.example/names/Diagrix";
constexpr char16_t svgPublicId[] = u"-//W3C//DTD SVG";

LumName nameOf(std::u16string_view text) { return LumName(internName(text.data(), text.size())); }

}  // namespace

TagReader::TagReader(ParserEvent& event, InputStack& inputs, NameReader& names, LiteralReader& literals,
                     const DeclaredAttributes& declared, InputMeter& meter, const ParserPolicy& policy,
                     ErrorReporter& errors)
    : event_(event),
      inputs_(inputs),
      names_(names),
      literals_(literals),
      declared_(declared),
      meter_(meter),
      policy_(policy),
      errors_(errors),
      namespaces_(new NamespaceManager) {
    inputs_.lendTo(*this);
}

void TagReader::windowMoves() { attributes_.takeOver(); }

void TagReader::reset(const LumXmlLimits& limits) {
    constexpr std::uint64_t mostCounted = std::numeric_limits<std::int32_t>::max() - 1;
    mostDepth_ = std::min(limits.depth, mostCounted);
    mostAttributes_ = std::min(limits.attributes, mostCounted);
    value_.setLimit(limits.valueUnits);
    isConforming_ = !policy_.forgivesNamespaces();
    isRootSeen_ = false;
    rootName_ = rootNamespace_ = LumName();
    attributes_.clear();
    while (namespaces_->popScope()) {
    }
    if (namespaces_->hasNamespace(NAME_xlink)) {  // by bindDocType()
        namespaces_->removeNamespace(LumName(), nameOf(svgNamespace));
        namespaces_->removeNamespace(NAME_xlink, nameOf(xlinkNamespace));
    }
    entities_.clear();
    open_.resize(1);
    open_.back().bindings = ++bindingsCount_;
}

void TagReader::bindDocType(const UnicodeString& publicId) {
    if (isConforming_ || !publicId.startsWith(svgPublicId)) return;
    bind(LumName(), nameOf(svgNamespace));
    bind(NAME_xlink, nameOf(xlinkNamespace));
}

void TagReader::bind(LumName prefix, LumName uri) {
    if (namespaces_->lookupNamespace(prefix) == uri) return;
    OpenElement& element = open_.back();
    if (!bindsOwn()) {
        namespaces_->pushScope();
        ++element.scopes;
    }
    element.bindings = ++bindingsCount_;
    namespaces_->addNamespace(prefix, uri);
}

int TagReader::namespaceCount(int depth) const {
    if (depth < 0 || depth > this->depth()) return 0;
    const auto i = static_cast<std::size_t>(depth);
    const int scopes = open_[i].scopes;
    return i > 0 && scopes == open_[i - 1].scopes ? 0 : namespaces_->getNamespaceCount(scopes);
}

LumName TagReader::namespacePrefix(int index) const {
    return bindsOwn() ? namespaces_->getNamespacePrefix(index) : LumName();
}

LumName TagReader::namespaceUri(int index) const {
    return bindsOwn() ? namespaces_->getNamespaceUri(index) : LumName();
}

/// The namespace that the prefix of the name is bound to.
inline LumName TagReader::namespaceOf(const CachedName& name) const {
    const std::uint64_t bindings = open_.back().bindings;
    if (name.bindings != bindings) {
        name.namespaceUri = namespaces_->lookupNamespace(name.prefix).getEnum();
        name.bindings = bindings;
    }
    return name.namespaceUri;
}

void TagReader::readStartTag() {
    event_.type = LumXmlParser::START_TAG;
    event_.next = TokenKind::Unknown;
    if (isRootSeen_ && depth() == 0) errors_.report(XmlError::SecondRoot);
    QName name;
    const CachedName* const cached = names_.readQNameFast();
    if (cached) [[likely]] {
        name = {cached->prefix, cached->localName};
    } else {
        const std::int32_t c = inputs_.readChar();
        if (isXmlSpace(c)) {
            errors_.report(XmlError::UnexpectedSpace, u"<");
        } else {
            inputs_.unreadChar(c);
        }
        if (!names_.readQName(name)) errors_.report(XmlError::StartTagName);
    }
    if (!isRootSeen_) rootName_ = name.localName;
    // The tag has its names once they are resolved.
    if (open_.size() > mostDepth_) throw LimitExceeded{XmlError::DepthLimit};
    const OpenElement& parent = open_.back();
    open_.push_back({{}, parent.scopes, cached, parent.bindings});
    attributes_.clear();
    if (inputs_.isNext(u'>')) {
        inputs_.readChar();
    } else {
        readAttributes();
        finishStartTag();
    }
    if (isConforming_) [[unlikely]]
        conform(name);
    if (depth() == 1) bindRootNamespaces(name.localName);
    const LumName uri = cached ? namespaceOf(*cached) : namespaces_->lookupNamespace(name.prefix);
    if (!isRootSeen_) rootNamespace_ = uri;
    if (uri.isNull() && !name.prefix.isNull()) errors_.report(XmlError::UndeclaredPrefix, name.prefix.getString());
    open_.back().names = {name.prefix, name.localName, uri};
    isRootSeen_ = true;
    if (!attributes_.empty() && (hasPrefixes_ || mayRepeat_)) resolveAttributes();
}

void TagReader::readAttributes() {
    ++tagCount_;
    mayRepeat_ = hasPrefixes_ = false;
    while (!readPlainAttributes()) {
        if (!inputs_.skipWhitespace()) return;
        if (inputs_.isNext(u'>') || inputs_.isNext(u'/')) return;
        readAttribute();
    }
}

inline Attribute& TagReader::addAttribute(const QName& name, const CachedName* written, std::u16string_view value) {
    if (written && written->lastTag != tagCount_) {
        written->lastTag = tagCount_;
    } else {
        mayRepeat_ = true;
    }
    hasPrefixes_ |= !name.prefix.isNull();
    return attributes_.add(name, value);
}

bool TagReader::readPlainAttributes() {
    XmlCursor& cursor = inputs_.cursor();
    const char16_t* const end = cursor.end;
    const char16_t* p = cursor.cur;  // after a name or a value
    const auto units = static_cast<std::size_t>(end - p);
    // Where what may come in the window can exceed a limit, attributes are read one by one; each takes four units.
    if (units > value_.limit() || attributes_.size() + units / 4 >= mostAttributes_) return false;
    const bool lends = inputs_.lends();
    bool isAtEnd = false;
    for (;;) {
        const char16_t* q = p;
        while (q != end && isXmlSpace(*q)) ++q;
        if (q == end) break;
        if (*q == '>' || *q == '/') {
            p = q;
            isAtEnd = true;
            break;
        }
        const CachedName* const name = q != p ? names_.match(q, end) : nullptr;
        if (!name) break;
        q += name->size;
        if (*q != '=' || end - q < 2) break;
        const char16_t delimiter = *++q;
        if (delimiter != '"' && delimiter != '\'') break;
        const char16_t* const value = ++q;
        q = findValueEnd(q, end, delimiter);
        if (q == end || *q != delimiter) break;
        Attribute& attribute = addAttribute({name->prefix, name->localName}, name, {value, q});
        if (!lends) attributes_.takeOver(attribute);
        p = q + 1;
        if (name->bindsPrefix) {
            cursor.cur = p;
            cursor.touch(p);
            bindDeclaration(attribute);
        }
    }
    cursor.cur = p;
    cursor.touch(p + (isAtEnd ? 1 : 0));
    return isAtEnd;
}

void TagReader::readAttribute() {
    QName name;
    const CachedName* const cached = names_.readQNameFast();
    if (cached) {
        name = {cached->prefix, cached->localName};
    } else if (!names_.readQName(name)) {
        errors_.report(XmlError::AttributeName, literals_.read(LiteralType::Offending));
    }
    inputs_.skipWhitespace();
    const std::int32_t c = inputs_.readChar();
    if (c != '=') {
        inputs_.unreadChar(c);
        errors_.report(XmlError::AttributeEquals);
    }
    inputs_.skipWhitespace();
    value_.clear();
    literals_.read(LiteralType::Attribute, value_);
    if (attributes_.size() >= mostAttributes_) throw LimitExceeded{XmlError::AttributesLimit};
    Attribute& attribute = addAttribute(name, cached, {value_.data(), value_.size()});
    attributes_.takeOver(attribute);
    if (bindsPrefix(name.prefix.getEnum(), name.localName.getEnum())) bindDeclaration(attribute);
}

void TagReader::bindDeclaration(Attribute& attribute) {
    const std::u16string_view value = attributes_.valueOf(attribute);
    const LumName uri(names_.intern(value.data(), value.size()));
    const bool isDefault = attribute.name.prefix.isNull();
    const LumName prefix = isDefault ? LumName() : attribute.name.localName;
    if (isConforming_) checkBinding(prefix, isDefault, uri);
    bind(prefix, uri);
    attribute.namespaceUri = NAME_NS_XMLNS;
    hasPrefixes_ = true;  // in effect
}

void TagReader::finishStartTag() {
    std::int32_t c = inputs_.readChar();
    if (c == '>') return;
    if (c == '/') {
        event_.next = TokenKind::EmptyTag;
        c = inputs_.readChar();
        if (c == '>') return;
        if (isXmlSpace(c)) {
            errors_.report(XmlError::UnexpectedSpace, u"/");
            return;
        }
    } else if (isXmlNameStart(c)) {
        errors_.report(XmlError::AttributeSpace);
        return;
    }
    errors_.report(XmlError::UnexpectedChar, charText(c));
}

void TagReader::bindRootNamespaces(LumName localName) {
    const bool isSvg = localName == NAME_svg;
    if (isConforming_) return;
    if (!isSvg && localName != NAME_chart) return;
    if (namespaces_->lookupNamespace(LumName()).isNull()) {
        bind(LumName(), nameOf(isSvg ? svgNamespace : chartNamespace));
    }
    if (namespaces_->lookupNamespace(NAME_xlink).isNull()) {
        bind(NAME_xlink, nameOf(xlinkNamespace));
    }
}

void TagReader::resolveAttributes() {
    // Different names as written are different attributes, unless two prefixes stand for one namespace.
    bool needsCheck = mayRepeat_;
    LumName prefix;  // of the attribute before that is in a namespace
    LumName uri;
    for (std::size_t i = 0; i < attributes_.size() && !needsCheck; ++i) {
        Attribute& attribute = attributes_[i];
        if (attribute.namespaceUri.isNull()) {
            if (attribute.name.prefix.isNull()) continue;
            attribute.namespaceUri = attribute.name.prefix == prefix ? uri : lookupNamespace(attribute.name.prefix);
        }
        needsCheck = attribute.namespaceUri.isNull() || (!uri.isNull() && prefix != attribute.name.prefix);
        prefix = attribute.name.prefix;
        uri = attribute.namespaceUri;
    }
    if (needsCheck) checkAttributes();
}

void TagReader::checkAttributes() {
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
        Attribute& attribute = attributes_[i];
        const LumName prefix = attribute.name.prefix;
        if (!prefix.isNull() && attribute.namespaceUri.isNull()) {
            attribute.namespaceUri = namespaces_->lookupNamespace(prefix);
            if (attribute.namespaceUri.isNull()) {
                if (policy_.forgivesUndeclaredPrefixes()) {
                    attribute.namespaceUri = prefix;
                } else {
                    errors_.report(XmlError::UndeclaredPrefix, prefix.getString());
                }
            }
        }
        if (attributes_.repeats(i)) errors_.report(XmlError::DuplicateAttribute, attribute.name.toString());
    }
}

std::size_t TagReader::findAttribute(LumName namespaceUri, LumName localName) const {
    std::size_t i = 0;
    for (; i < attributes_.size(); ++i) {
        const QName& name = attributes_[i].name;
        if (name.localName == localName && namespaces_->lookupNamespace(name.prefix) == namespaceUri) break;
    }
    return i;
}

void TagReader::readOtherEndTag() {
    std::int32_t c = inputs_.readChar();
    if (isXmlSpace(c)) {
        errors_.report(XmlError::UnexpectedSpace, u"</");
    } else {
        inputs_.unreadChar(c);
    }
    QName name;
    if (!names_.readQName(name)) errors_.report(XmlError::EndTagName);
    if (!entities_.empty() && depth() <= entities_.back().elements) errors_.report(XmlError::EntityNesting);
    const TagView& open = element();
    if (name.prefix != open.prefix || name.localName != open.localName) {
        errors_.report(XmlError::EndTagMismatch, name.toString(), QName{open.prefix, open.localName}.toString());
    }
    inputs_.skipWhitespace();
    c = inputs_.readChar();
    if (c != '>') errors_.report(XmlError::UnexpectedChar, charText(c));
}

}  // namespace LumCommon::detail
