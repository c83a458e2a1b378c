#pragma once

#include <lumcommon/names/LumName.h>
#include <lumcommon/xml/detail/EventView.h>
#include <lumcommon/xml/detail/NameReader.h>
#include <lumcommon/xml/detail/UnitBuffer.h>

#include <cstddef>
#include <cstdint>
#include <unordered_set>
#include <vector>

namespace LumCommon::detail {

struct Attribute {
    QName name;
    LumName namespaceUri;
    std::uint32_t valueStart;  // in the text of the list
    std::uint32_t valueSize;
    const CachedName* written;  // null where the cache does not know the name
};

/// The attributes of one start tag. Their values lie one after the other in one buffer.
class AttributeList {
public:
    void clear() noexcept {
        attributes_.clear();
        text_.clear();
        viewCount_ = 0;
    }
    Attribute& add(const Attribute& attribute) { return attributes_.emplace_back(attribute); }
    /// The values; what is appended becomes the value of the attribute that is added next.
    UnitBuffer& text() noexcept { return text_; }

    bool empty() const noexcept { return attributes_.empty(); }
    std::size_t size() const noexcept { return attributes_.size(); }
    Attribute& operator[](std::size_t index) noexcept { return attributes_[index]; }
    const Attribute& operator[](std::size_t index) const noexcept { return attributes_[index]; }
    AttributeView view(std::size_t index) const noexcept {
        const Attribute& attribute = attributes_[index];
        return {attribute.name.prefix,
                attribute.name.localName,
                attribute.namespaceUri,
                {text_.data() + attribute.valueStart, attribute.valueSize}};
    }
    /// The reference is valid until the list is cleared.
    const UnicodeString& value(std::size_t index) const;

    /// Whether an attribute before has the same local name and namespace. Asked for each attribute in turn.
    /// Cost: constant on average.
    bool repeats(std::size_t index);

private:
    std::vector<Attribute> attributes_;
    UnitBuffer text_;
    mutable std::vector<UnicodeString> views_;  // of the values
    mutable std::size_t viewCount_ = 0;         // views_ before this are valid
    std::unordered_set<std::uint64_t> keys_;    // for tags with many attributes
};

}  // namespace LumCommon::detail
