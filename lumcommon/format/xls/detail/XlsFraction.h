#pragma once

#include <lumcommon/format/xls/detail/XlsDecimal.h>
#include <lumcommon/format/xls/detail/XlsRules.h>

#include <cstdint>
#include <string>

namespace LumCommon::detail {

/// A fraction near the part of a magnitude after its point.
struct XlsFraction {
    static constexpr int MAX_PLACES = 18;

    /// @param places  of the denominator; at most MAX_PLACES count.
    /// @param fixedDenominator  the denominator to use; 0 to search for one.
    /// Cost: grows with the digits of the magnitude and of the denominator, not with the denominator.
    XlsFraction(const XlsDecimal& magnitude, int places, int fixedDenominator, XlsSearch search);

    /// "WHOLE * denominator + numerator", which may exceed any integer type.
    std::string improperNumerator(const XlsDecimal& magnitude) const;
    /// The whole part of the magnitude, one more if the fraction is 1; empty for 0.
    std::string whole(const XlsDecimal& magnitude) const;

    std::uint64_t numerator = 0;  ///< may equal the denominator
    std::uint64_t denominator = 1;
};

}  // namespace LumCommon::detail
