#include <lumcommon/values/TransMatrix.h>

#include <cmath>
#include <initializer_list>

namespace LumCommon {

namespace {

/// The product of two floats, which a double holds exactly.
constexpr double product(float left, float right) noexcept {
    return static_cast<double>(left) * static_cast<double>(right);
}

/// Drops the sign of a zero, so that an element of an inverse does not print as "-0".
constexpr float roundElement(double element) noexcept { return static_cast<float>(element + 0.0); }

bool isFinite(const TransMatrix& m) noexcept {
    for (const float element : {m.a, m.b, m.c, m.d, m.e, m.f}) {
        if (!std::isfinite(element)) return false;
    }
    return true;
}

}  // namespace

// Gaussian elimination with the divisions deferred to the end. Its pivots are a and then this determinant; where a is
// 0, a quarter turn puts c and -b in the place of a and d, and undoing it leaves the same six quotients. The
// determinant is a difference of two exact products: it is 0 only for a singular matrix, and otherwise precise however
// much of the products cancels.
bool TransMatrix::reverse() noexcept {
    const double determinant = product(a, d) - product(b, c);
    const TransMatrix inverse(
        roundElement(static_cast<double>(d) / determinant), roundElement(-static_cast<double>(b) / determinant),
        roundElement(-static_cast<double>(c) / determinant), roundElement(static_cast<double>(a) / determinant),
        roundElement((product(c, f) - product(d, e)) / determinant),
        roundElement((product(b, e) - product(a, f)) / determinant));
    const bool isInvertible = determinant != 0 && isFinite(*this) && isFinite(inverse);
    *this = isInvertible ? inverse : TransMatrix();
    return isInvertible;
}

TransMatrix& TransMatrix::operator*=(const TransMatrix& right) noexcept {
    // Assign only the finished product: `right` may be this matrix.
    return *this = TransMatrix(roundElement(product(a, right.a) + product(c, right.b)),
                               roundElement(product(b, right.a) + product(d, right.b)),
                               roundElement(product(a, right.c) + product(c, right.d)),
                               roundElement(product(b, right.c) + product(d, right.d)),
                               roundElement(product(a, right.e) + product(c, right.f) + static_cast<double>(e)),
                               roundElement(product(b, right.e) + product(d, right.f) + static_cast<double>(f)));
}

TransMatrix::Point operator*(const TransMatrix& matrix, TransMatrix::Point point) noexcept {
    const auto [x, y] = point;
    return {roundElement(product(matrix.a, x) + product(matrix.c, y) + static_cast<double>(matrix.e)),
            roundElement(product(matrix.b, x) + product(matrix.d, y) + static_cast<double>(matrix.f))};
}

}  // namespace LumCommon
