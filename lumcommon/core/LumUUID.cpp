#include <lumcommon/core/LumUUID.h>

#include <uuid/uuid.h>

#include <algorithm>

namespace LumCommon {

static_assert(sizeof(uuid_t) == 16);

LumUUID::LumUUID() : bytes_{} { uuid_generate(bytes_.data()); }

LumUUID::LumUUID(const std::uint8_t* bytes) noexcept : bytes_{} { std::copy_n(bytes, bytes_.size(), bytes_.begin()); }

UnicodeString LumUUID::toString() const {
    static constexpr char16_t digits[] = u"0123456789ABCDEF";
    UnicodeString text;
    for (const std::uint8_t byte : bytes_) text.append(digits[byte >> 4]).append(digits[byte & 0x0F]);
    return text;
}

}  // namespace LumCommon
