#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/format/LumUtil.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <istream>
#include <ostream>

namespace LumCommon {

namespace {

constexpr char16_t alphabet[] = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char16_t padding = u'=';

/// Bytes read or written at a time; groups of three bytes must not straddle two blocks.
constexpr std::size_t blockBytes = 3 * 1024;

constexpr int notADigit = -1;

constexpr auto digitValues = [] {
    std::array<std::int8_t, 128> values{};
    values.fill(notADigit);
    for (int i = 0; i < 64; ++i) values[alphabet[i]] = static_cast<std::int8_t>(i);
    return values;
}();

constexpr int getDigitValue(char16_t c) noexcept { return c < digitValues.size() ? digitValues[c] : notADigit; }

/// Encodes a block; only the last one may need padding.
void appendBase64(UnicodeString& text, const char* bytes, std::size_t count) {
    std::array<char16_t, blockBytes / 3 * 4> digits;
    std::size_t used = 0;
    for (std::size_t i = 0; i < count; i += 3) {
        const std::size_t here = std::min<std::size_t>(count - i, 3);
        std::uint32_t bits = 0;
        for (std::size_t j = 0; j < 3; ++j)
            bits = bits << 8 | (j < here ? static_cast<unsigned char>(bytes[i + j]) : 0);
        digits[used++] = alphabet[bits >> 18];
        digits[used++] = alphabet[(bits >> 12) & 63u];
        digits[used++] = here > 1 ? alphabet[(bits >> 6) & 63u] : padding;
        digits[used++] = here > 2 ? alphabet[bits & 63u] : padding;
    }
    detail::append(text, std::u16string_view(digits.data(), used));
}

/// Collects decoded bytes and writes them in blocks.
class ByteSink {
public:
    explicit ByteSink(std::ostream& out) : out_(out) {}
    void put(std::uint32_t byte) {
        block_[used_++] = static_cast<char>(byte & 0xFFu);
        if (used_ == block_.size()) flush();
    }
    void flush() {
        out_.write(block_.data(), static_cast<std::streamsize>(used_));
        used_ = 0;
    }

private:
    std::ostream& out_;
    std::array<char, blockBytes> block_{};
    std::size_t used_ = 0;
};

}  // namespace

char16_t LumUtil::stEncode(unsigned value) { return alphabet[value & 63u]; }

UnicodeString LumUtil::encodeBase64(std::istream& in, int length) {
    UnicodeString text;
    std::array<char, blockBytes> block;
    for (std::size_t left = length > 0 ? static_cast<std::size_t>(length) : 0; left > 0;) {
        const std::size_t wanted = std::min(left, block.size());
        in.read(block.data(), static_cast<std::streamsize>(wanted));
        const auto got = static_cast<std::size_t>(in.gcount());
        appendBase64(text, block.data(), got);
        if (got < wanted) break;
        left -= got;
    }
    return text;
}

UnicodeString LumUtil::encodeBase64(std::istream& in, int length, const UnicodeString& mediaType,
                                    const UnicodeString& parameters) {
    UnicodeString uri(u"data:", 5);
    detail::append(uri, mediaType);
    if (!parameters.isEmpty()) detail::append(detail::append(uri, u';'), parameters);
    detail::append(uri, u";base64,");
    detail::append(uri, encodeBase64(in, length));
    return uri;
}

bool LumUtil::decodeBase64(const UnicodeString& text, int length, std::ostream& out) {
    ByteSink sink(out);
    std::uint32_t bits = 0;
    int bitCount = 0;  // bits of the digits read so far that are not written yet, fewer than 8
    const int end = std::min(length, text.length());
    for (int i = 0; i < end && text.charAt(i) != padding; ++i) {
        const int digit = getDigitValue(text.charAt(i));
        if (digit == notADigit) continue;
        bits = bits << 6 | static_cast<std::uint32_t>(digit);
        bitCount += 6;
        if (bitCount >= 8) {
            bitCount -= 8;
            sink.put(bits >> bitCount);
        }
    }
    sink.flush();
    return !out.fail();
}

}  // namespace LumCommon
