#include <gtest/gtest.h>

#include <lumcommon/values/TransMatrix.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <utility>

namespace {

using namespace LumCommon;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

using Elements = std::array<float, 6>;

Elements elements(const TransMatrix& m) { return {m.a, m.b, m.c, m.d, m.e, m.f}; }

TEST(TransMatrix, inverts) {
    struct Case {
        const char* fault;
        TransMatrix matrix;
        bool isInvertible;
        TransMatrix result;
    };
    const Case cases[] = {
        {"identity", {}, true, {}},
        {"translation not scaled back", {2, 0, 0, 2, 10, 20}, true, {0.5f, 0, 0, 0.5f, -5, -10}},
        {"zero pivot as singular", {0, 1, -1, 0, 0, 0}, true, {0, -1, 1, 0, 0, 0}},
        {"turn not taken back", {0, 2, 4, 3, 5, 6}, true, {-0.375f, 0.25f, 0.5f, 0, -1.125f, -1.25f}},
        {"linearly dependent", {1, 2, 2, 4, 0, 0}, false, {}},
        {"first pivot 0 twice", {0, 1, 0, 4, 7, 8}, false, {}},
        {"second pivot 0 after the turn", {0, 0, 1, 4, 7, 8}, false, {}},
        {"determinant underflows in single precision", {1e-30f, 0, 0, 2e-30f, 0, 0}, true, {1e30f, 0, 0, 5e29f, 0, 0}},
        {"inverse overflows", {1e-40f, 0, 0, 1, 0, 0}, false, {}},
        {"infinite element", {infinity, 0, 0, 1, 0, 0}, false, {}},
        {"not a number", {1, 0, 0, 1, notANumber, 0}, false, {}},
        // The products of the diagonals differ in their last bit alone.
        {"cancellation as singular",
         {16777215, 16777214, 16777214, 16777213, 0, 0},
         true,
         {-16777213, 16777214, 16777214, -16777215, 0, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        TransMatrix matrix = c.matrix;
        EXPECT_EQ(matrix.reverse(), c.isInvertible);
        EXPECT_EQ(elements(matrix), elements(c.result));
        for (const float element : elements(matrix)) EXPECT_FALSE(element == 0 && std::signbit(element));
    }
}

TEST(TransMatrix, appliesTheRightFactorFirst) {
    const TransMatrix scale(2, 0, 0, 3, 0, 0);
    const TransMatrix shift(1, 0, 0, 1, 10, 20);
    EXPECT_TRUE(TransMatrix().isIdentity() && !shift.isIdentity());
    EXPECT_EQ(elements(shift * scale), (Elements{2, 0, 0, 3, 10, 20}));
    EXPECT_EQ(elements(scale * shift), (Elements{2, 0, 0, 3, 20, 60}));
    // Before a quarter turn: c, d, -a, -b, e, f.
    EXPECT_EQ(elements(TransMatrix(1, 2, 3, 4, 5, 6) * TransMatrix(0, 1, -1, 0, 0, 0)), (Elements{3, 4, -1, -2, 5, 6}));
    TransMatrix own(1, 2, 3, 4, 5, 6);
    own *= own;
    EXPECT_EQ(elements(own), (Elements{7, 10, 15, 22, 28, 40}));
    EXPECT_EQ((TransMatrix(1, 2, 3, 4, 5, 6) * TransMatrix::Point{10, 100}), (TransMatrix::Point{315, 426}));
}

/// The inverse by elimination with the larger pivot, in double precision.
std::array<double, 6> invertInDoubles(const TransMatrix& m) {
    std::array<double, 4> first{m.a, m.b, 1, 0}, second{m.c, m.d, 0, 1};
    if (std::abs(m.c) > std::abs(m.a)) std::swap(first, second);
    const double factor = second[0] / first[0];
    for (std::size_t k = 0; k < 4; ++k) second[k] -= factor * first[k];
    for (std::size_t k = 2; k < 4; ++k) {
        second[k] /= second[1];
        first[k] = (first[k] - first[1] * second[k]) / first[0];
    }
    return {first[2],
            first[3],
            second[2],
            second[3],
            -(m.e * first[2] + m.f * second[2]),
            -(m.e * first[3] + m.f * second[3])};
}

TEST(TransMatrix, agreesWithInversesInDoublePrecision) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> element(-1, 1);
    for (int i = 0; i < 20000; ++i) {
        const float size = std::pow(10.0f, static_cast<float>(i % 7 - 3));
        const float a = i % 100 ? size * element(random) : 0;
        const float b = size * element(random), c = size * element(random), d = size * element(random);
        if (std::abs(a * d - b * c) < 0.1f * size * size) continue;  // not well conditioned
        const TransMatrix matrix(a, b, c, d, 100 * element(random), element(random));
        TransMatrix inverse = matrix;
        ASSERT_TRUE(inverse.reverse());
        const std::array<double, 6> expected = invertInDoubles(matrix);
        const Elements unit = elements(matrix * inverse);
        for (std::size_t k = 0; k < 6; ++k) {
            // Half a unit in the last place; a translation may cancel in the doubles already.
            const double tolerance = std::abs(expected[k]) * 0x1p-24 * 1.001 + (k < 4 ? 0 : 1e-9);
            ASSERT_NEAR(elements(inverse)[k], expected[k], tolerance) << "element " << k << ", try " << i;
            ASSERT_NEAR(unit[k], elements(TransMatrix())[k], k < 4 ? 1e-5 : 1e-3) << "element " << k << ", try " << i;
        }
    }
}

}  // namespace
