#pragma once

#include <lumcommon/format/detail/XlsDecimal.h>

#include <cstdint>
#include <string>

namespace LumCommon::detail {

/// The fraction next to the part of a magnitude behind its point.
struct XlsFraction {
    static constexpr int MAX_PLACES = 5;

    /// @param places  of the denominator, of which MAX_PLACES count.   @param fixedDenominator  0: none
    XlsFraction(const XlsDecimal& magnitude, int places, int fixedDenominator);

    /// "WHOLE * denominator + numerator", which may be longer than any integer type.
    std::string improperNumerator(const XlsDecimal& magnitude) const;
    /// The whole part of the magnitude, one more when the fraction is 1; empty for 0.
    std::string whole(const XlsDecimal& magnitude) const;

    std::uint32_t numerator = 0;  ///< may equal the denominator
    std::uint32_t denominator = 1;

private:
    void search(double fraction, std::uint32_t limit);
};

}  // namespace LumCommon::detail
