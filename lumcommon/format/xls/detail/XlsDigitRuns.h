#pragma once

#include <lumcommon/format/xls/XlsFormatCode.h>
#include <lumcommon/format/xls/detail/XlsDecimal.h>
#include <lumcommon/format/xls/detail/XlsWriter.h>

#include <algorithm>
#include <string_view>

namespace LumCommon::detail {

/// The digits of a natural number: the significant ones, followed by zeros.
struct NaturalDigits {
    std::string_view digits;
    std::int64_t length = 0;  ///< including the zeros

    char at(std::int64_t index) const {
        return index < static_cast<std::int64_t>(digits.size()) ? digits[static_cast<std::size_t>(index)] : '0';
    }
};

inline NaturalDigits integerOf(const XlsDecimal& value) {
    return {value.integerDigits(), std::max<std::int64_t>(value.point(), 0)};
}

/// Puts a natural number into placeholders, from the left; digits that they have no room for come before the first one.
class IntegerRun {
public:
    IntegerRun(XlsWriter& out, NaturalDigits number, std::int64_t places, bool hasThousands)
        : out_(out), number_(number), placesLeft_(places), hasThousands_(hasThousands) {}

    void place(XlsPieceKind kind, std::int32_t count) {
        rest();
        for (; count > 0; --count) onePlace(kind);
    }
    /// Writes the digits for which no placeholder is left.
    void rest() {
        while (number_.length - next_ > placesLeft_) digit(number_.at(next_++));
    }

private:
    void onePlace(XlsPieceKind kind) {
        const bool isDigit = number_.length - next_ == placesLeft_;
        --placesLeft_;
        if (isDigit) {
            digit(number_.at(next_++));
        } else if (kind == XlsPieceKind::FORCED_DIGIT || isStarted_) {
            digit('0');
        } else if (kind == XlsPieceKind::SPACED_DIGIT) {
            out_.put(u' ');
            if (isSeparated()) out_.put(u' ');
        }
    }
    void digit(char c) {
        isStarted_ = true;
        out_.digit(c);
        if (isSeparated()) out_.put(u',');
    }
    /// Whether a separator follows the place that was just written.
    bool isSeparated() const {
        const std::int64_t behind = std::max(placesLeft_, number_.length - next_);
        return hasThousands_ && behind > 0 && behind % 3 == 0;
    }

    XlsWriter& out_;
    NaturalDigits number_;
    std::int64_t next_ = 0;  ///< digit
    std::int64_t placesLeft_;
    bool hasThousands_;
    bool isStarted_ = false;
};

}  // namespace LumCommon::detail
