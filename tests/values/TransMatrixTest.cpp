#include <gtest/gtest.h>

#include <lumcommon/values/TransMatrix.h>
#include <support/DataRows.h>

#include <array>

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

}  // namespace
