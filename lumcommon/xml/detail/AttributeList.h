#pragma once

#include <lumcommon/names/LumName.h>
#include <lumcommon/names/detail/UnitHash.h>
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
    std::uint32_t valueSize;
    const char16_t* value;     // where it was read; null: in the text of the list
    std::uint32_t valueStart;  // there
};

/// The attributes of one start tag. Plain values stay in the window as long as it stays; the others lie one after the
/// other in one buffer.
class AttributeList {
public:
    void clear() noexcept {
        attributes_.clear();
        text_.clear();
        ownCount_ = 0;
        viewCount_ = 0;
    }
    /// @param value  stays where it is until takeOver() is called.
    Attribute& add(const QName& name, std::u16string_view value) {
        return attributes_.emplace_back(
            Attribute{name, LumName(), static_cast<std::uint32_t>(value.size()), value.data(), 0});
    }
    /// Copies the value of an attribute.
    void takeOver(Attribute& attribute);
    /// Gives an attribute another value, which must not lie in the list.
    void replace(Attribute& attribute, std::u16string_view value);
    /// Copies the values that have not been copied yet.
    void takeOver();

    bool empty() const noexcept { return attributes_.empty(); }
    std::size_t size() const noexcept { return attributes_.size(); }
    Attribute& operator[](std::size_t index) noexcept { return attributes_[index]; }
    const Attribute& operator[](std::size_t index) const noexcept { return attributes_[index]; }
    std::u16string_view valueOf(const Attribute& attribute) const noexcept {
        return {attribute.value ? attribute.value : text_.data() + attribute.valueStart, attribute.valueSize};
    }
    AttributeView view(std::size_t index) const noexcept {
        const Attribute& attribute = attributes_[index];
        return {attribute.name.prefix, attribute.name.localName, attribute.namespaceUri, valueOf(attribute)};
    }
    /// The reference is valid until the list is cleared.
    const UnicodeString& value(std::size_t index) const;

    /// Whether an attribute before has the same local name and namespace. Asked for each attribute in turn.
    /// Cost: constant on average.
    bool repeats(std::size_t index);

private:
    void lend(std::size_t index) const;

    std::vector<Attribute> attributes_;
    std::size_t ownCount_ = 0;  // so many, and perhaps some more, have their values in text_
    UnitBuffer text_{XmlError::ValueLimit};
    mutable std::vector<UnicodeString> views_;           // of the values
    mutable std::size_t viewCount_ = 0;                  // views_ before this are valid
    mutable const char16_t* viewed_ = nullptr;           // where text_ lay when they were made
    std::unordered_set<std::uint64_t, KeyedHash> keys_;  // for tags with many attributes
};

}  // namespace LumCommon::detail
