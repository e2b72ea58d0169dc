// SPDX-License-Identifier: MIT
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "beatatlas/dsp.h"
#include "support/RoundTowardZero.h"

namespace {

std::vector<float> hannOf(int n) {
    std::vector<float> w(static_cast<std::size_t>(n));
    hanning(n, w.data());
    return w;
}

// k / (n + 1) = 1/2: 0.5 - 0.5 cos π = 1.
TEST(HanningTest, OfOnePointIsOne) {
    EXPECT_EQ(hannOf(1), std::vector<float>{1.0F});
}

// k / (n + 1) = 1/4, 1/2, 3/4: the cosine is 0, -1, 0.
TEST(HanningTest, OfThreePointsIsHalfOneHalf) {
    const std::vector<float> w = hannOf(3);
    EXPECT_FLOAT_EQ(w[0], 0.5F);
    EXPECT_FLOAT_EQ(w[1], 1.0F);
    EXPECT_FLOAT_EQ(w[2], 0.5F);
}

// sin² is another form of the same curve, here in long double: the oracle of the shape.
TEST(HanningTest, IsTheSquaredSineWithoutZeroEndPoints) {
    const std::vector<float> w = hannOf(100);
    const long double halfTurn = std::acos(-1.0L);
    for (int k = 1; k <= 100; ++k) {
        const long double s = std::sin(halfTurn * k / 101.0L);
        EXPECT_NEAR(w[static_cast<std::size_t>(k - 1)], static_cast<double>(s * s), 1e-7) << k;
    }
    EXPECT_GT(w.front(), 0.0F);
    EXPECT_GT(w.back(), 0.0F);
}

TEST(HanningTest, WritesNothingForLengthsBelowOne) {
    float untouched = 7.0F;
    hanning(0, &untouched);
    hanning(-5, &untouched);
    EXPECT_EQ(untouched, 7.0F);
}

using HanningTowardZeroTest = beatatlas::test::RoundTowardZero;

// cos(π/2) of the double nearest π/2 is +6e-17, so 0.5 - 3e-17 is cut to the double below one half
// and that to the float below: 0.5 - 2^-25.
TEST_F(HanningTowardZeroTest, IsCutDownNotRoundedToNearest) {
    EXPECT_EQ(hannOf(3)[0], 0x1.fffffep-2F);
    EXPECT_EQ(hannOf(1)[0], 1.0F);
}

}  // namespace
