#include <lumcommon/xml/detail/DeclaredAttributes.h>

#include <utility>

namespace LumCommon::detail {

namespace {

std::uint64_t keyOf(LumName prefix, LumName localName) {
    return static_cast<std::uint64_t>(prefix.getEnum()) << 32 | localName.getEnum();
}

}  // namespace

std::size_t DeclaredAttributes::Element::find(const QName& name) const {
    const auto found = places_.find(keyOf(name.prefix, name.localName));
    return found == places_.end() ? attributes_.size() : found->second;
}

void DeclaredAttributes::Element::add(LumXmlDeclaredAttribute attribute) {
    const std::size_t place = attributes_.size();
    if (!places_.emplace(keyOf(attribute.prefix, attribute.localName), place).second) return;
    if (attribute.hasDefault()) defaults_.push_back(place);
    attributes_.push_back(std::move(attribute));
    tags_.push_back(0);
}

const DeclaredAttributes::Element* DeclaredAttributes::find(const QName& name) const {
    const auto found = elements_.find(keyOf(name.prefix, name.localName));
    return found == elements_.end() ? nullptr : &found->second;
}

DeclaredAttributes::Element& DeclaredAttributes::operator[](const QName& name) {
    return elements_[keyOf(name.prefix, name.localName)];
}

void joinTokens(std::u16string_view value, UnitBuffer& out) {
    const std::size_t start = out.size();
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != u' ') {
            out.append(value[i]);
        } else if (out.size() > start && i + 1 < value.size() && value[i + 1] != u' ') {
            out.append(u' ');
        }
    }
}

}  // namespace LumCommon::detail
