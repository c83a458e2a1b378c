#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/format/xls/detail/XlsNumerals.h>

#include <cstdint>
#include <string_view>

namespace LumCommon::detail {

/// Appends to a string through a small buffer: one call of UnicodeString::append for each unit would cost more than the
/// rest of the formatting. Digits are written in the numeral style that is set.
class XlsWriter {
public:
    explicit XlsWriter(UnicodeString& out) : out_(out) {}
    XlsWriter(const XlsWriter&) = delete;
    XlsWriter& operator=(const XlsWriter&) = delete;

    /// @param zero  the digit 0 where the style is 0.
    void setStyle(int style, char16_t zero) {
        style_ = style;
        zero_ = zero;
    }

    void put(char16_t unit) {
        if (count_ == capacity) flush();
        buffer_[count_++] = unit;
    }
    void put(std::u16string_view text) {
        for (const char16_t c : text) put(c);
    }
    void digit(char ascii) {
        put(style_ == 0 ? static_cast<char16_t>(zero_ + (ascii - '0')) : xlsNumeral(ascii - '0', style_));
    }
    /// Writes ASCII text, its digits in the style.
    void number(std::string_view ascii) {
        for (const char c : ascii) {
            if (isAsciiDigit(c)) {
                digit(c);
            } else {
                put(static_cast<char16_t>(c));
            }
        }
    }
    void spaces(std::int64_t count) {
        for (; count > 0; --count) put(u' ');
    }
    void text(const UnicodeString& source) { text(source, 0, source.length()); }
    /// Writes part of another string.
    void text(const UnicodeString& source, std::int32_t start, std::int32_t length) {
        if (length > capacity) {
            flush();
            append(out_, viewOf(source).substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length)));
            return;
        }
        for (std::int32_t i = start; i < start + length; ++i) put(source.charAt(i));
    }
    /// Notes that a fill goes here; only the first one counts.
    void fill(char32_t character) {
        if (fillAt_ >= 0) return;
        flush();
        fillAt_ = out_.length();
        fillCharacter_ = static_cast<UChar32>(character);
    }
    /// To be called at the end as well: only this can tell that memory ran out.
    void flush() {
        append(out_, std::u16string_view(buffer_, static_cast<std::size_t>(count_)));
        count_ = 0;
    }

    /// Where in the string the fill goes; -1 for none.
    std::int32_t fillAt() const { return fillAt_; }
    UChar32 fillCharacter() const { return fillCharacter_; }

private:
    static constexpr std::int32_t capacity = 64;

    UnicodeString& out_;
    int style_ = 0;
    char16_t zero_ = u'0';
    std::int32_t count_ = 0;
    std::int32_t fillAt_ = -1;
    UChar32 fillCharacter_ = 0;
    char16_t buffer_[capacity];
};

}  // namespace LumCommon::detail
