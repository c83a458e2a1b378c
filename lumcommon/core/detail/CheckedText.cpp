#include <lumcommon/core/detail/CheckedText.h>

#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <array>

namespace LumCommon::detail {

// UnicodeString::toUTF8() takes memory without saying that there is none, and leaks it when the string of bytes cannot
// grow. Piece by piece none is needed.
std::string utf8Of(const UnicodeString& text) {
    constexpr std::size_t longestPiece = 1024;
    std::array<char, 3 * longestPiece> room;
    std::string bytes;
    for (std::u16string_view rest = viewOf(text); !rest.empty();) {
        std::u16string_view piece = rest.substr(0, longestPiece);
        if (piece.size() < rest.size() && U16_IS_LEAD(piece.back())) piece.remove_suffix(1);  // keeps pairs together
        std::int32_t count = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8WithSub(room.data(), static_cast<std::int32_t>(room.size()), &count, piece.data(),
                           static_cast<std::int32_t>(piece.size()), 0xFFFD, nullptr, &status);
        bytes.append(room.data(), static_cast<std::size_t>(count));
        rest.remove_prefix(piece.size());
    }
    return bytes;
}

}  // namespace LumCommon::detail
