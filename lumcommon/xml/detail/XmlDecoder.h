#pragma once

#include <cstddef>
#include <cstdint>

namespace LumCommon::detail {

/// How bytes become characters. The numbers are part of the parser's contract.
enum class XmlEncoding : int {
    Undecided = 0,  ///< one byte is one character
    Utf8 = 1,
    Utf16Generic = 2,  ///< named without byte order: one byte is one character until the order is known
    Utf16LE = 3,
    Utf16BE = 4,
    Utf32Generic = 5,  ///< as 2
    Utf32LE = 6,
    Utf32BE = 7,
    Ascii = 8,   ///< one byte is one character
    Latin1 = 9,  ///< one byte is one character
};

/// Turns bytes into UTF-16 with line ends folded to U+000A (CR LF, CR NEL, CR, NEL and LS are line ends; when strict,
/// CR LF and CR alone).
///
/// Undecodable bytes become U+FFFD, by these rules: a byte that should continue a UTF-8 sequence and does not is
/// taken together with the sequence; overlong forms are accepted, and so are surrogates, each as one unit; a high
/// surrogate of UTF-16 takes the next unit with it even when that is not a low one. When strict, these too are
/// undecodable, and what is becomes U+FFFF, which no text may hold.
class XmlDecoder {
public:
    XmlEncoding encoding = XmlEncoding::Undecided;
    /// Set when a high surrogate is written: only then can two units be one character.
    bool hasSurrogates = false;
    bool isStrict = false;

    /// Decodes from [from, fromEnd) to [to, toEnd), which takes at least 32 units.
    /// @param isLast    no bytes follow: what is incomplete becomes U+FFFD.
    /// @param oneChar   stops after one character.
    /// Advances `from` and `to`. Nothing is taken when the bytes left are an incomplete sequence and more may follow.
    void decode(const unsigned char*& from, const unsigned char* fromEnd, bool isLast, char16_t*& to, char16_t* toEnd,
                bool oneChar) noexcept;

private:
    struct Run;
    bool readUtf8(const unsigned char*& from, const unsigned char* fromEnd, bool isLast,
                  std::int32_t& c) const noexcept;
    bool decodeOne(const unsigned char*& from, const unsigned char* fromEnd, bool isLast,
                   std::int32_t& c) const noexcept;
    void decodeUtf8(Run& run) noexcept;
    void decodeBytes(Run& run) noexcept;
    void decodeUtf16(Run& run) noexcept;
    void decodeEach(Run& run, bool oneChar) noexcept;
    void put(Run& run, std::int32_t c) noexcept;

    bool isAfterReturn_ = false;  // a line feed or NEL that comes next belongs to the carriage return before it
};

}  // namespace LumCommon::detail
