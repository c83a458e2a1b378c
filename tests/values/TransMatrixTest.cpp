#include <gtest/gtest.h>

#include <lumcommon/values/TransMatrix.h>
#include <support/DataRows.h>

#include <array>
#include <cmath>
#include <random>

namespace {

using namespace LumCommon;

using Elements = std::array<float, 6>;

Elements elements(const TransMatrix& m) { return {m.a, m.b, m.c, m.d, m.e, m.f}; }

std::string inverted(const LumTest::Fields& fields) {
    float e[6];
    for (std::size_t i = 0; i < 6; ++i) e[i] = static_cast<float>(LumTest::numberOf(fields[i]));
    TransMatrix matrix(e[0], e[1], e[2], e[3], e[4], e[5]);
    if (!matrix.reverse()) {
        EXPECT_TRUE(matrix.isIdentity());
        return "-";
    }
    std::string result;
    for (const float element : elements(matrix)) result += (result.empty() ? "" : " ") + LumTest::printed(element);
    return result;
}

TEST(TransMatrix, inverts) { LumTest::checkRows("values/matrices.txt", {{"invert", inverted}}); }

TEST(TransMatrix, appliesTheRightFactorFirst) {
    const TransMatrix scale(2, 0, 0, 3, 0, 0);
    const TransMatrix shift(1, 0, 0, 1, 10, 20);
    EXPECT_TRUE(TransMatrix().isIdentity() && !shift.isIdentity());
    EXPECT_EQ(elements(shift * scale), (Elements{2, 0, 0, 3, 10, 20}));
    EXPECT_EQ(elements(scale * shift), (Elements{2, 0, 0, 3, 20, 60}));
    TransMatrix own(1, 2, 3, 4, 5, 6);
    // Before a quarter turn: c, d, -a, -b, e, f.
    EXPECT_EQ(elements(own * TransMatrix(0, 1, -1, 0, 0, 0)), (Elements{3, 4, -1, -2, 5, 6}));
    EXPECT_EQ((own * TransMatrix::Point{10, 100}), (TransMatrix::Point{315, 426}));
    own *= own;
    EXPECT_EQ(elements(own), (Elements{7, 10, 15, 22, 28, 40}));
}

TEST(TransMatrix, agreesWithExactInverses) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> element(-1, 1);
    for (int i = 0; i < 20000; ++i) {
        const float size = std::pow(10.0f, static_cast<float>(i % 7 - 3));
        const TransMatrix matrix(i % 100 ? size * element(random) : 0, size * element(random), size * element(random),
                                 size * element(random), 100 * element(random), element(random));
        const long double a = matrix.a, b = matrix.b, c = matrix.c, d = matrix.d, e = matrix.e, f = matrix.f;
        const long double determinant = a * d - b * c;             // the products of floats are exact
        if (std::abs(determinant) < 0.1L * size * size) continue;  // not well conditioned
        const std::array<long double, 6> expected = {d, -b, -c, a, c * f - d * e, b * e - a * f};
        TransMatrix inverse = matrix;
        ASSERT_TRUE(inverse.reverse());
        const Elements unit = elements(matrix * inverse);
        for (std::size_t k = 0; k < 6; ++k) {
            SCOPED_TRACE(testing::Message() << "element " << k << ", try " << i);
            // Half a unit in the last place; a translation may cancel in the doubles of the library already.
            const long double exact = expected[k] / determinant;
            const long double tolerance = std::abs(exact) * 0x1p-24L * 1.001L + (k < 4 ? 0 : 1e-9L);
            ASSERT_LE(std::abs(elements(inverse)[k] - exact), tolerance);
            ASSERT_NEAR(unit[k], elements(TransMatrix())[k], k < 4 ? 1e-5 : 1e-3);
        }
    }
}

}  // namespace
