#include <lumcommon/dom/detail/Utf8Text.h>

#include <unicode/stringpiece.h>

namespace LumCommon::detail {

namespace {

/// Whether a surrogate in three bytes stands at `at`: ED A0..BF 80..BF.
bool isSurrogateAt(std::string_view bytes, std::size_t at) noexcept {
    if (bytes.size() - at < 3) return false;
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    const auto third = static_cast<unsigned char>(bytes[at + 2]);
    return second >= 0xA0 && second <= 0xBF && third >= 0x80 && third <= 0xBF;
}

void appendRun(UnicodeString& text, std::string_view run) {
    constexpr std::size_t longestPiece = std::size_t{1} << 30;  // ICU's lengths are int
    while (!run.empty()) {
        std::size_t length = run.size();
        if (length > longestPiece) {
            length = longestPiece;
            while ((static_cast<unsigned char>(run[length]) & 0xC0u) == 0x80u && length > 1) --length;
        }
        text.append(UnicodeString::fromUTF8(icu::StringPiece(run.data(), static_cast<int32_t>(length))));
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
        const unsigned second = static_cast<unsigned char>(bytes[at + 1]);
        const unsigned third = static_cast<unsigned char>(bytes[at + 2]);
        text.append(static_cast<char16_t>(0xD000u | (second & 0x3Fu) << 6 | (third & 0x3Fu)));
        at += 3;
        done = at;
    }
    appendRun(text, bytes.substr(done));
    return text;
}

}  // namespace LumCommon::detail
