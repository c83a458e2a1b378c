#include <lumcommon/xml/detail/AttributeList.h>

#include <algorithm>

namespace LumCommon::detail {

namespace {

// Up to this many attributes comparing each with each is faster than hashing them.
constexpr std::size_t maxPairwiseAttributes = 16;

}  // namespace

const UnicodeString& AttributeList::value(std::size_t index) const {
    if (views_.size() < attributes_.size()) views_.resize(attributes_.size());
    // A view of a value is made when it is first asked for.
    for (; viewCount_ <= index; ++viewCount_) {
        const Attribute& attribute = attributes_[viewCount_];
        text_.lend(attribute.valueStart, attribute.valueSize, views_[viewCount_]);
    }
    return views_[index];
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
