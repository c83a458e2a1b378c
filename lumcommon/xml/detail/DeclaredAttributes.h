#pragma once

#include <lumcommon/names/detail/UnitHash.h>
#include <lumcommon/xml/LumXmlDeclaredAttribute.h>
#include <lumcommon/xml/detail/NameReader.h>

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace LumCommon::detail {

/// The attributes that the document type declares.
class DeclaredAttributes {
public:
    /// Those of one element.
    class Element {
    public:
        const std::vector<LumXmlDeclaredAttribute>& all() const noexcept { return attributes_; }
        /// The places in all() of those with a default value.
        const std::vector<std::size_t>& defaults() const noexcept { return defaults_; }
        /// The place in all() of an attribute; their number when it is not declared.
        std::size_t find(const QName& name) const;
        /// The first declaration of a name holds.
        void add(LumXmlDeclaredAttribute attribute);

        /// Notes that a tag has an attribute; whether it has is asked before the next tag.
        void note(std::size_t index, std::uint64_t tag) const { tags_[index] = tag; }
        bool isNoted(std::size_t index, std::uint64_t tag) const { return tags_[index] == tag; }

    private:
        std::vector<LumXmlDeclaredAttribute> attributes_;
        std::vector<std::size_t> defaults_;
        mutable std::vector<std::uint64_t> tags_;
        std::unordered_map<std::uint64_t, std::size_t, KeyedHash> places_;
    };

    void clear() { elements_.clear(); }
    bool empty() const noexcept { return elements_.empty(); }
    /// Null when no attribute of the element is declared.
    const Element* find(const QName& name) const;
    Element& operator[](const QName& name);

private:
    std::unordered_map<std::uint64_t, Element, KeyedHash> elements_;
};

/// Whether the white space in its values does not count.
constexpr bool isTokenized(LumXmlDeclaredAttribute::Type type) noexcept {
    return type != LumXmlDeclaredAttribute::CDATA;
}
/// Leaves one blank between the words of a value, and none before and after them.
void joinTokens(std::u16string_view value, UnitBuffer& out);

}  // namespace LumCommon::detail
