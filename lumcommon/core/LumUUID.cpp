#include <lumcommon/core/LumUUID.h>
#include <lumcommon/core/detail/HexText.h>

#include <uuid/uuid.h>

#include <algorithm>

namespace LumCommon {

static_assert(sizeof(uuid_t) == 16);

LumUUID::LumUUID() : bytes_{} { uuid_generate(bytes_.data()); }

LumUUID::LumUUID(const std::uint8_t* bytes) noexcept : bytes_{} { std::copy_n(bytes, bytes_.size(), bytes_.begin()); }

UnicodeString LumUUID::toString() const {
    UnicodeString text;
    for (const std::uint8_t byte : bytes_) detail::appendHexByte(text, byte);
    return text;
}

}  // namespace LumCommon
