// SPDX-License-Identifier: MIT
#include "dsp/HighPathFilter2D.h"

#include <vector>

#include <gtest/gtest.h>

#include "dsp/filterRuns.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using HighPathFilter2DTest = RoundTowardZero;

constexpr double kHalfGain = 0.70710678118654752;

TEST_F(HighPathFilter2DTest, NeverDesignedCopiesItsInput) {
    expectCopiesItsInput<HighPathFilter2D>();
}

// A corner at a quarter of the rate mirrors the low-pass: the same b0, b1 with the sign turned.
TEST_F(HighPathFilter2DTest, DesignAtAQuarterOfTheRateFollowsFromUnitSine) {
    HighPathFilter2D filter;
    filter.create(1000.0, 4000.0);
    EXPECT_NEAR(filter.section().b0, 0.29289321881345, 1e-12);
    EXPECT_NEAR(filter.section().b1, -0.58578643762690, 1e-12);
    EXPECT_EQ(filter.section().b2, filter.section().b0);
    EXPECT_NEAR(filter.section().a1, 0.0, 1e-12);
    EXPECT_NEAR(filter.section().a2, 0.17157287525381, 1e-12);
}

TEST_F(HighPathFilter2DTest, DrivesAConstantToZero) {
    HighPathFilter2D filter;
    filter.create(2000.0, 12000.0);
    EXPECT_NEAR(runWhole(filter, std::vector<double>(500, 1000.0)).back(), 0.0, 1e-9);
}

TEST_F(HighPathFilter2DTest, LosesThreeDecibelsAtItsCornerAndPassesTheTop) {
    HighPathFilter2D filter;
    filter.create(2000.0, 12000.0);
    EXPECT_NEAR(gainAt(filter, 2000.0, 12000.0), kHalfGain, 1e-3);
    HighPathFilter2D other;
    other.create(2000.0, 12000.0);
    EXPECT_NEAR(gainAt(other, 5900.0, 12000.0), 1.0, 1e-2);
}

TEST_F(HighPathFilter2DTest, BlocksOfAnySizeGiveTheSameBits) {
    expectBlocksLeaveNoTrace<HighPathFilter2D>(2000.0, 11025.0);
}

TEST_F(HighPathFilter2DTest, AnEmptyBlockWritesNothing) {
    expectEmptyBlocksWriteNothing<HighPathFilter2D>();
}

}  // namespace
}  // namespace beatatlas::test
