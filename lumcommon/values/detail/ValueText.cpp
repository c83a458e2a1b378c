#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/values/LumValue.h>
#include <lumcommon/values/detail/ValueText.h>

#include <cstring>
#include <new>

namespace LumCommon::detail {

ValueText* ValueText::make(const UnicodeString& text) {
    auto* const made = ::new (allocateBlock(sizeof(ValueText))) ValueText(text);
    if (!made->text_.isBogus() || text.isBogus()) return made;
    made->destroy();
    throw std::bad_alloc();
}

ValueText* ValueText::make(std::u16string_view text, BlockUse use) {
    auto* const made = ::new (allocateBlock(sizeof(ValueText), use)) ValueText;
    try {
        assignText(made->text_, text);
    } catch (...) {
        made->destroy();
        throw;
    }
    return made;
}

void ValueText::destroy() noexcept {
    this->~ValueText();
    releaseBlock(this, sizeof(ValueText));
}

LumValue ValueText::toValue(ValueText* counted) noexcept { return LumValue(counted, LumValue::Adopted()); }

LumValue ValueText::share(const LumValue& value) noexcept {
    value.payload_.text->addRefs(1);
    return toValue(value.payload_.text);
}

void assignText(UnicodeString& to, std::u16string_view text) {
    // Appending would reserve room for more.
    const std::int32_t length = checkedLength(text.size());
    char16_t* const units = to.getBuffer(length);
    if (!units) throw std::bad_alloc();
    if (length > 0) std::memcpy(units, text.data(), text.size() * sizeof(char16_t));
    to.releaseBuffer(length);
}

}  // namespace LumCommon::detail
