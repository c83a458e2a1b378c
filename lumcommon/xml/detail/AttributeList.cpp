#include <lumcommon/xml/detail/AttributeList.h>

#include <algorithm>

namespace LumCommon::detail {

namespace {

// Up to this many attributes comparing each with each is faster than hashing them.
constexpr std::size_t maxPairwiseAttributes = 16;

}  // namespace

void AttributeList::lend(std::size_t index) const {
    const std::u16string_view value = view(index).value;
    if (value.empty()) {
        views_[index].remove();
    } else {
        views_[index].setTo(false, value.data(), static_cast<std::int32_t>(value.size()));
    }
}

const UnicodeString& AttributeList::value(std::size_t index) const {
    // A view of a value is made when it is first asked for. The text moves while a tag is read, when a listener to
    // errors may ask.
    if (viewed_ != text_.data()) viewCount_ = 0;
    viewed_ = text_.data();
    if (views_.size() < attributes_.size()) views_.resize(attributes_.size());
    for (; viewCount_ <= index; ++viewCount_) lend(viewCount_);
    return views_[index];
}

void AttributeList::takeOver(Attribute& attribute) {
    if (!attribute.value) return;
    const std::size_t start = text_.size();
    text_.append(attribute.value, attribute.valueSize);
    attribute.valueStart = static_cast<std::uint32_t>(start);
    attribute.value = nullptr;
}

void AttributeList::replace(Attribute& attribute, std::u16string_view value) {
    attribute.value = value.data();
    attribute.valueSize = static_cast<std::uint32_t>(value.size());
    takeOver(attribute);
    viewCount_ = 0;
}

void AttributeList::takeOver() {
    for (; ownCount_ < attributes_.size(); ++ownCount_) takeOver(attributes_[ownCount_]);
    for (std::size_t i = 0; i < viewCount_; ++i) lend(i);
    viewed_ = text_.data();
}

bool AttributeList::repeats(std::size_t index) {
    const Attribute& attribute = attributes_[index];
    if (attributes_.size() > maxPairwiseAttributes) {
        if (index == 0) keys_.clear();
        const std::uint64_t key =
            (static_cast<std::uint64_t>(attribute.namespaceUri.getEnum()) << 32) | attribute.name.localName.getEnum();
        return !keys_.insert(key).second;
    }
    const auto isSame = [&attribute](const Attribute& other) {
        return other.name.localName == attribute.name.localName && other.namespaceUri == attribute.namespaceUri;
    };
    const auto here = attributes_.begin() + static_cast<std::ptrdiff_t>(index);
    return std::any_of(attributes_.begin(), here, isSame);
}

}  // namespace LumCommon::detail
