#pragma once

#include <lumcommon/core/Api.h>

namespace LumCommon {

/// An affine transformation of the plane, as SVG's matrix(a, b, c, d, e, f): it takes the point (x, y) to
/// (a*x + c*y + e, b*x + d*y + f).
///
/// The operations compute in double precision and round each element once.
/// Threads: a plain value; separate objects are independent.
class LUM_API TransMatrix {
public:
    /// A point of the plane.
    struct Point {
        float x = 0;  ///< the horizontal coordinate
        float y = 0;  ///< the vertical coordinate

        /// Compares both coordinates exactly.
        friend bool operator==(const Point&, const Point&) = default;
    };

    float a = 1;  ///< what x adds to x
    float b = 0;  ///< what x adds to y
    float c = 0;  ///< what y adds to x
    float d = 1;  ///< what y adds to y
    float e = 0;  ///< the shift along x
    float f = 0;  ///< the shift along y

    /// The identity.
    constexpr TransMatrix() noexcept = default;
    /// The matrix with these elements, in the order of SVG.
    constexpr TransMatrix(float a_, float b_, float c_, float d_, float e_, float f_) noexcept
        : a(a_), b(b_), c(c_), d(d_), e(e_), f(f_) {}

    /// Becomes the inverse and returns true. A matrix without an inverse in finite floats becomes the identity and the
    /// result is false: one that flattens the plane, one that holds a NaN or an infinity, one whose inverse overflows.
    /// Each element of the inverse is exact up to its rounding to float, however close to singular the matrix is.
    bool reverse() noexcept;

    /// Appends a transformation on the right, as one more in an SVG transform list: points go through `right` first.
    TransMatrix& operator*=(const TransMatrix& right) noexcept;
    /// `left`, with `right` appended as operator*=() does.
    friend TransMatrix operator*(TransMatrix left, const TransMatrix& right) noexcept { return left *= right; }
    /// The transformed point.
    friend LUM_API Point operator*(const TransMatrix& matrix, Point point) noexcept;

    /// Whether it takes every point to itself, exactly.
    bool isIdentity() const noexcept { return *this == TransMatrix(); }
    /// Compares element by element; a matrix with a NaN equals no matrix.
    friend bool operator==(const TransMatrix&, const TransMatrix&) = default;
};

}  // namespace LumCommon
