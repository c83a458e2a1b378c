// What TagReader does for documents that are read as the standard says: apart, so that reading others costs nothing.

#include <lumcommon/xml/detail/DeclaredAttributes.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputMeter.h>
#include <lumcommon/xml/detail/TagReader.h>

namespace LumCommon::detail {

void TagReader::enterEntity() {
    // The reference may have been wrong, or the entity not to be had.
    const bool isKnown = !entities_.empty() && entities_.back().inputDepth >= inputs_.depth();
    if (isKnown || !inputs_.isInEntity()) return;
    entities_.push_back({inputs_.depth(), depth()});
    open_.back().written = nullptr;  // its end tag is looked at closely, as it must not stand in the entity
}

bool TagReader::leaveEntity() {
    const std::size_t inputDepth = inputs_.depth();
    if (!inputs_.leaveEntity()) return false;
    if (!entities_.empty() && entities_.back().inputDepth == inputDepth) {
        const int elements = entities_.back().elements;
        entities_.pop_back();
        if (depth() != elements) errors_.report(XmlError::EntityNesting);
    }
    return true;
}

void TagReader::checkBinding(LumName prefix, bool isDefault, LumName uri) {
    const bool isReserved = prefix == NAME_xmlns || uri == NAME_NS_XMLNS;
    if (isReserved || (prefix == NAME_xml) != (uri == NAME_NS_XML)) {
        errors_.report(XmlError::ReservedNamespace, prefix.getString());
    } else if (!isDefault && uri.isNull()) {
        errors_.report(XmlError::PrefixUnbound, prefix.getString());
    }
}

void TagReader::conform(const QName& element) {
    if (element.prefix == NAME_xmlns) errors_.report(XmlError::ReservedNamespace, element.prefix.getString());
    const DeclaredAttributes::Element* const declared = declared_.empty() ? nullptr : declared_.find(element);
    if (!declared) return;
    if (attributes_.empty()) {
        ++tagCount_;
        mayRepeat_ = hasPrefixes_ = false;
    }
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
        const std::size_t place = declared->find(attributes_[i].name);
        if (place == declared->all().size()) continue;
        declared->note(place, tagCount_);
        if (!isTokenized(declared->all()[place].type)) continue;
        value_.clear();
        joinTokens(attributes_.valueOf(attributes_[i]), value_);
        if (value_.size() == attributes_[i].valueSize) continue;
        attributes_.replace(attributes_[i], {value_.data(), value_.size()});
        if (attributes_[i].namespaceUri == NAME_NS_XMLNS) bindDeclaration(attributes_[i]);
    }
    for (const std::size_t place : declared->defaults()) {
        if (!declared->isNoted(place, tagCount_)) addDefault(declared->all()[place]);
    }
}

void TagReader::addDefault(const LumXmlDeclaredAttribute& declared) {
    if (attributes_.size() >= mostAttributes_) throw LimitExceeded{XmlError::AttributesLimit};
    // A few declarations and many short tags make a large document.
    if (!meter_.expand(static_cast<std::uint64_t>(declared.value.length()) + 1)) {
        throw LimitExceeded{XmlError::ExpansionLimit};
    }
    const QName name{declared.prefix, declared.localName};
    mayRepeat_ = true;  // by another prefix for its namespace
    hasPrefixes_ |= !name.prefix.isNull();
    Attribute& attribute = attributes_.add(name, viewOf(declared.value));
    attributes_.takeOver(attribute);
    if (bindsPrefix(name.prefix.getEnum(), name.localName.getEnum())) bindDeclaration(attribute);
}

}  // namespace LumCommon::detail
