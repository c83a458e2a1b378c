#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/LiteralReader.h>
#include <lumcommon/xml/detail/ParserEvent.h>
#include <lumcommon/xml/detail/ParserPolicy.h>
#include <lumcommon/xml/detail/TagReader.h>
#include <lumcommon/xml/detail/UnitScan.h>
#include <lumcommon/xml/detail/XmlChars.h>

namespace LumCommon::detail {

namespace {

// Longer values are better copied by the library function.
constexpr std::size_t maxShortValueUnits = 32;

// Bound without a declaration where a document is SVG.
constexpr char16_t svgNamespace[] = u"http://www.w3.org/2000/svg";
constexpr char16_t xlinkNamespace[] = u"http://www.w3.org/1999/xlink";
constexpr char16_t chartNamespace[] = u"http://ns.diagrix.example/names/Diagrix";
constexpr char16_t svgPublicId[] = u"-//W3C//DTD SVG";

LumName nameOf(const char16_t* text) { return LumName(UnicodeString(text)); }

}  // namespace

TagReader::TagReader(ParserEvent& event, InputStack& inputs, NameReader& names, LiteralReader& literals,
                     const ParserPolicy& policy, ErrorReporter& errors)
    : event_(event),
      inputs_(inputs),
      names_(names),
      literals_(literals),
      policy_(policy),
      errors_(errors),
      namespaces_(new NamespaceManager) {}

void TagReader::reset() {
    isRootSeen_ = false;
    rootName_ = rootNamespace_ = LumName();
    attributes_.clear();
    openNames_.clear();
    while (namespaces_->popScope()) {
    }
    if (namespaces_->hasNamespace(NAME_xlink)) {  // by bindDocType()
        namespaces_->removeNamespace(LumName(), nameOf(svgNamespace));
        namespaces_->removeNamespace(NAME_xlink, nameOf(xlinkNamespace));
    }
}

void TagReader::bindDocType(const UnicodeString& publicId) {
    if (!publicId.startsWith(svgPublicId)) return;
    namespaces_->addNamespace(LumName(), nameOf(svgNamespace));
    namespaces_->addNamespace(NAME_xlink, nameOf(xlinkNamespace));
}

void TagReader::readStartTag() {
    event_.type = LumXmlParser::START_TAG;
    event_.next = TokenKind::Unknown;
    if (isRootSeen_ && depth() == 0) errors_.report(XmlError::SecondRoot);
    QName name;
    const CachedName* const cached = names_.readQNameFast();
    if (cached) {
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
    namespaces_->pushScope();
    openNames_.push_back(cached);
    attributes_.clear();
    readAttributes();
    finishStartTag();
    if (depth() == 1) bindRootNamespaces(name.localName);
    const LumName namespaceUri = namespaces_->lookupNamespace(name.prefix);
    if (!isRootSeen_) rootNamespace_ = namespaceUri;
    if (namespaceUri.isNull() && !name.prefix.isNull()) {
        errors_.report(XmlError::UndeclaredPrefix, name.prefix.getString());
    }
    namespaces_->setElement(name.prefix, name.localName, namespaceUri);
    isRootSeen_ = true;
    if (!attributes_.empty()) resolveAttributes();
}

inline bool TagReader::isAtTagEnd() noexcept {
    const XmlCursor& cursor = inputs_.cursor();
    return cursor.cur != cursor.end && (*cursor.cur == '>' || *cursor.cur == '/');
}

void TagReader::readAttributes() {
    for (;;) {
        // Most tags end directly after a name or a value.
        if (isAtTagEnd()) {
            inputs_.cursor().touch(inputs_.cursor().cur + 1);
            return;
        }
        if (!inputs_.skipWhitespace()) return;
        if (isAtTagEnd()) return;
        readAttribute();
    }
}

void TagReader::readAttribute() {
    Attribute attribute{};
    if (const CachedName* const name = names_.readQNameFast()) {
        attribute.name = {name->prefix, name->localName};
    } else if (!names_.readQName(attribute.name)) {
        errors_.report(XmlError::AttributeName, literals_.read(LiteralType::Offending));
    }
    if (inputs_.isNext(u'=')) {
        inputs_.readChar();
    } else {
        inputs_.skipWhitespace();
        const std::int32_t c = inputs_.readChar();
        if (c != '=') {
            inputs_.unreadChar(c);
            errors_.report(XmlError::AttributeEquals);
        }
    }
    UnitBuffer& text = attributes_.text();
    attribute.valueStart = text.size();
    if (!readValueFast()) {
        inputs_.skipWhitespace();
        literals_.read(LiteralType::Attribute, text);
    }
    attribute.valueSize = text.size() - attribute.valueStart;
    const bool isDefault = attribute.name.prefix.isNull() && attribute.name.localName == NAME_xmlns;
    if (isDefault || attribute.name.prefix == NAME_xmlns) {
        const LumName uri(internName(text.data() + attribute.valueStart, attribute.valueSize));
        namespaces_->addNamespace(isDefault ? LumName() : attribute.name.localName, uri);
        attribute.namespaceUri = NAME_NS_XMLNS;
    }
    attributes_.add(attribute);
}

bool TagReader::readValueFast() {
    XmlCursor& cursor = inputs_.cursor();
    const char16_t* p = cursor.cur;
    const char16_t* const end = cursor.end;
    if (p == end || (*p != '"' && *p != '\'')) return false;
    const char16_t delimiter = *p++;
    const char16_t* const start = p;
    p = findValueEnd(p, end, delimiter);
    if (p == end || *p != delimiter) return false;
    const auto size = static_cast<std::size_t>(p - start);
    if (size <= maxShortValueUnits && inputs_.hasSlack()) {
        attributes_.text().appendShort(start, size);
    } else {
        attributes_.text().append(start, size);
    }
    cursor.cur = p + 1;
    cursor.touch(cursor.cur);
    return true;
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
    if (!isSvg && localName != NAME_chart) return;
    if (namespaces_->lookupNamespace(LumName()).isNull()) {
        namespaces_->addNamespace(LumName(), nameOf(isSvg ? svgNamespace : chartNamespace));
    }
    if (namespaces_->lookupNamespace(NAME_xlink).isNull()) {
        namespaces_->addNamespace(NAME_xlink, nameOf(xlinkNamespace));
    }
}

void TagReader::resolveAttributes() {
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

bool TagReader::readEndTagFast() {
    const CachedName* const open = openNames_.empty() ? nullptr : openNames_.back();
    XmlCursor& cursor = inputs_.cursor();
    if (!open || static_cast<std::size_t>(cursor.end - cursor.cur) <= open->size) return false;
    const char16_t* const end = cursor.cur + open->size;
    if (*end != '>' || !open->matches(cursor.cur)) return false;
    cursor.cur = end + 1;
    cursor.touch(cursor.cur);
    return true;
}

void TagReader::readEndTag() {
    event_.type = LumXmlParser::END_TAG;
    event_.next = TokenKind::Unknown;
    if (readEndTagFast()) return;
    std::int32_t c = inputs_.readChar();
    if (isXmlSpace(c)) {
        errors_.report(XmlError::UnexpectedSpace, u"</");
    } else {
        inputs_.unreadChar(c);
    }
    QName name;
    if (!names_.readQName(name)) errors_.report(XmlError::EndTagName);
    const NamespaceManager::NSScope& open = namespaces_->getInnermostScope();
    if (name.prefix != open.prefix || name.localName != open.localName) {
        errors_.report(XmlError::EndTagMismatch, name.toString(), QName{open.prefix, open.localName}.toString());
    }
    inputs_.skipWhitespace();
    c = inputs_.readChar();
    if (c != '>') errors_.report(XmlError::UnexpectedChar, charText(c));
}

void TagReader::closeElement() {
    namespaces_->popScope();
    if (!openNames_.empty()) openNames_.pop_back();
}

}  // namespace LumCommon::detail
