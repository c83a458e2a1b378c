#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/detail/Utf8Text.h>

#include <unicode/stringpiece.h>
#include <unicode/utf8.h>

namespace LumCommon::detail {

namespace {

/// Whether there is a surrogate in three bytes at `at`: ED A0..BF 80..BF.
bool isSurrogateAt(std::string_view bytes, std::size_t at) noexcept {
    return bytes.size() - at >= 3 && U8_IS_TRAIL(bytes[at + 1]) && static_cast<unsigned char>(bytes[at + 1]) >= 0xA0 &&
           U8_IS_TRAIL(bytes[at + 2]);
}

void appendRun(UnicodeString& text, std::string_view run) {
    constexpr std::size_t longestPiece = std::size_t{1} << 30;  // ICU's lengths are int
    while (!run.empty()) {
        std::size_t length = run.size();
        if (length > longestPiece) {
            length = longestPiece;
            while (U8_IS_TRAIL(run[length]) && length > 1) --length;
        }
        UnicodeString piece =
            checked(UnicodeString::fromUTF8(icu::StringPiece(run.data(), static_cast<int32_t>(length))));
        if (text.isEmpty()) {
            text.swap(piece);
        } else {
            append(text, piece);
        }
        run.remove_prefix(length);
    }
}

}  // namespace

UnicodeString decodeUtf8(std::string_view bytes) {
    UnicodeString text;
    std::size_t done = 0;
    std::size_t at = 0;
    while ((at = bytes.find('\xED', at)) != std::string_view::npos) {
        if (!isSurrogateAt(bytes, at)) {
            ++at;
            continue;
        }
        appendRun(text, bytes.substr(done, at - done));
        UChar32 surrogate = 0;
        U8_NEXT_UNSAFE(bytes, at, surrogate);
        append(text, static_cast<char16_t>(surrogate));
        done = at;
    }
    appendRun(text, bytes.substr(done));
    return text;
}

Utf8Output::int_type Utf8Output::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    const char byte = traits_type::to_char_type(c);
    return xsputn(&byte, 1) == 1 ? c : traits_type::eof();
}

std::streamsize Utf8Output::xsputn(const char* bytes, std::streamsize count) {
    const std::string_view added(bytes, static_cast<std::size_t>(count));
    std::size_t units = 0;  // one for each first byte, two for that of a sequence of four
    for (const char byte : added) {
        const auto value = static_cast<unsigned char>(byte);
        units += (value & 0xC0u) != 0x80u ? 1 : 0;
        units += value >= 0xF0u ? 1 : 0;
    }
    if (units > unitsLeft_) return 0;
    bytes_.append(added);
    unitsLeft_ -= units;
    return count;
}

}  // namespace LumCommon::detail
