#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/SlabPool.h>
#include <lumcommon/dom/LumTextNode.h>
#include <lumcommon/values/detail/ValueText.h>

namespace LumCommon {

void LumTextNode::Text::release() noexcept {
    if (length_ > maxInBlock) {
        pointer<detail::ValueText>()->releaseRefs(1);
    } else if (length_ > maxHere) {
        detail::releaseBlock(pointer<void>(), static_cast<std::size_t>(length_) * sizeof(char16_t));
    }
}

void LumTextNode::Text::setPointer(const void* pointer, std::int32_t length) noexcept {
    release();
    std::memcpy(units_, &pointer, sizeof pointer);
    length_ = length;
}

void LumTextNode::Text::assign(const UnicodeString& text) {
    if (text.isBogus()) {
        release();
        length_ = bogus;
    } else if (text.length() > maxInBlock) {
        setPointer(detail::ValueText::make(text), text.length());
    } else {
        assign(std::u16string_view(text.getBuffer(), static_cast<std::size_t>(text.length())));
    }
}

void LumTextNode::Text::assign(std::u16string_view text) {
    const auto length = static_cast<std::int32_t>(text.size());
    if (length > maxInBlock) {
        setPointer(detail::ValueText::make(text, detail::BlockUse::ORDINARY), length);
        return;
    }
    const std::size_t bytes = text.size() * sizeof(char16_t);
    if (length > maxHere) {
        void* const block = detail::allocateBlock(bytes);
        std::memcpy(block, text.data(), bytes);
        setPointer(block, length);
        return;
    }
    release();
    for (std::int32_t i = 0; i < length; ++i) units_[i] = text[static_cast<std::size_t>(i)];
    length_ = length;
}

std::u16string_view LumTextNode::Text::view() const noexcept {
    const char16_t* const units = length_ > maxInBlock ? pointer<detail::ValueText>()->text().getBuffer()
                                  : length_ > maxHere  ? pointer<char16_t>()
                                                       : units_;
    return {units, static_cast<std::size_t>(length())};
}

UnicodeString LumTextNode::Text::toString() const {
    if (length_ > maxInBlock) return pointer<detail::ValueText>()->text();
    UnicodeString text;
    if (length_ == bogus) {
        text.setToBogus();
    } else {
        const std::u16string_view units = view();
        detail::checked(text.setTo(units.data(), length_));
    }
    return text;
}

}  // namespace LumCommon
