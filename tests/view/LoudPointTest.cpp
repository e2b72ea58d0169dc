// SPDX-License-Identifier: MIT
#include "view/LoudPoint.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas {
namespace {

using LoudPointTest = test::RoundTowardZero;

std::int32_t colorOf(std::int32_t low, std::int32_t mid, std::int32_t high) {
    return loudColor({low, mid, high});
}

// 20 log10(s / 32768) + 30.5: full scale 30.5 → 30; half of it 24.48 → 24; a tenth 10.5 → 10; a
// thousandth -29.5 → 0.
TEST_F(LoudPointTest, CountsDecibelsInWholeSteps) {
    EXPECT_EQ(decibelStep(32768.0F), 30);
    EXPECT_EQ(decibelStep(16384.0F), 24);
    EXPECT_EQ(decibelStep(3276.8F), 10);
    EXPECT_EQ(decibelStep(32.768F), 0);
    EXPECT_EQ(decibelStep(1e9F), 30);
}

// -29.5 dB are 32768 × 10^(-29.5 / 20) = 1097.6.
TEST_F(LoudPointTest, StartsTheFirstStepAtTwentyNineAndAHalfDecibelsBelowFullScale) {
    EXPECT_EQ(decibelStep(1097.0F), 0);
    EXPECT_EQ(decibelStep(1098.0F), 1);
}

// 20 log10(15504.2197 / 32768) = -6.50000041, which the cut to float makes -6.5, so that 24.0 is
// reached; in double it would stay below. A float's step is 0.0000005 there.
TEST_F(LoudPointTest, CutsTheLogarithmToFloatBeforeItAddsTheOffset) {
    EXPECT_EQ(decibelStep(0x1.e481c2p+13F), 24);
}

TEST_F(LoudPointTest, GivesStepZeroToNothingAndLess) {
    EXPECT_EQ(decibelStep(0.0F), 0);
    EXPECT_EQ(decibelStep(-32768.0F), 0);
    EXPECT_EQ(decibelStep(std::numeric_limits<float>::denorm_min()), 0);
    EXPECT_EQ(decibelStep(std::numeric_limits<float>::quiet_NaN()), 0);
}

// The low sum counts half, the mid sum a quarter, the high sum whole: all three of these are full
// scale.
TEST_F(LoudPointTest, WeighsTheBandsBeforeItCountsDecibels) {
    const LoudPoint point = makeLoudPoint(100.0F, 65536.0F, 131072.0F, 32768.0F);
    EXPECT_EQ(point.steps.low, 30);
    EXPECT_EQ(point.steps.mid, 30);
    EXPECT_EQ(point.steps.high, 30);
    const LoudPoint half = makeLoudPoint(100.0F, 32768.0F, 65536.0F, 16384.0F);
    EXPECT_EQ(half.steps.low, 24);
    EXPECT_EQ(half.steps.mid, 24);
    EXPECT_EQ(half.steps.high, 24);
}

TEST_F(LoudPointTest, ShowsAQuarterOfTheAverageWithoutBass) {
    EXPECT_EQ(makeLoudPoint(1000.0F, 0.0F, 5e4F, 5e4F).level, 250.0F);
}

TEST_F(LoudPointTest, ShowsTheAverageWithFullBassAndNeverMore) {
    EXPECT_EQ(makeLoudPoint(1000.0F, 32768.0F, 0.0F, 0.0F).level, 1000.0F);
    EXPECT_EQ(makeLoudPoint(1000.0F, 1e6F, 0.0F, 0.0F).level, 1000.0F);
}

// 16384 / 32768 × 0.75 + 0.25 = 0.625.
TEST_F(LoudPointTest, ShowsAShareInBetweenForWeakerBass) {
    EXPECT_EQ(makeLoudPoint(1000.0F, 16384.0F, 0.0F, 0.0F).level, 625.0F);
}

TEST_F(LoudPointTest, SurvivesAnAverageThatIsNoLevel) {
    const LoudPoint point =
        makeLoudPoint(std::numeric_limits<float>::quiet_NaN(), 1e4F, 0.0F, 0.0F);
    EXPECT_TRUE(std::isnan(point.level));
}

TEST_F(LoudPointTest, ColorsWeakBassByMidAgainstHigh) {
    EXPECT_EQ(colorOf(13, 10, 7), 5);  // mid only 3 above high
    EXPECT_EQ(colorOf(13, 10, 6), 4);  // 4 above
    EXPECT_EQ(colorOf(0, 0, 30), 5);
    EXPECT_EQ(colorOf(13, 30, 0), 4);
}

TEST_F(LoudPointTest, ColorsStrongBassUnderHighsByLowAgainstHigh) {
    EXPECT_EQ(colorOf(14, 10, 11), 2);
    EXPECT_EQ(colorOf(14, 10, 13), 2);
    EXPECT_EQ(colorOf(14, 10, 14), 3);
    EXPECT_EQ(colorOf(14, 10, 30), 3);
}

TEST_F(LoudPointTest, ColorsStrongBassOverHighsByLowAgainstMid) {
    EXPECT_EQ(colorOf(14, 13, 13), 0);
    EXPECT_EQ(colorOf(14, 14, 13), 1);
    EXPECT_EQ(colorOf(30, 30, 0), 1);
    EXPECT_EQ(colorOf(30, 0, 0), 0);
}

}  // namespace
}  // namespace beatatlas
