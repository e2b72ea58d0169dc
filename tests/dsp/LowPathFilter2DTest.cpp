// SPDX-License-Identifier: MIT
#include "dsp/LowPathFilter2D.h"

#include <vector>

#include <gtest/gtest.h>

#include "dsp/filterRuns.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using LowPathFilter2DTest = RoundTowardZero;

constexpr double kHalfGain = 0.70710678118654752;

TEST_F(LowPathFilter2DTest, NeverDesignedCopiesItsInput) {
    expectCopiesItsInput<LowPathFilter2D>();
}

// A corner at a quarter of the rate: angle π/2, sine 1, cosine 0, alpha 1/√2, norm 1.70710678.
// b0 = 0.5 / norm, b1 = 1 / norm, a1 = 0, a2 = (1 − 0.70710678) / norm.
TEST_F(LowPathFilter2DTest, DesignAtAQuarterOfTheRateFollowsFromUnitSine) {
    LowPathFilter2D filter;
    filter.create(1000.0, 4000.0);
    EXPECT_NEAR(filter.section().b0, 0.29289321881345, 1e-12);
    EXPECT_NEAR(filter.section().b1, 0.58578643762690, 1e-12);
    EXPECT_EQ(filter.section().b2, filter.section().b0);
    EXPECT_EQ(filter.section().a0, 1.0);
    EXPECT_NEAR(filter.section().a1, 0.0, 1e-12);
    EXPECT_NEAR(filter.section().a2, 0.17157287525381, 1e-12);
}

TEST_F(LowPathFilter2DTest, PassesAConstantAtGainOneOnceSettled) {
    LowPathFilter2D filter;
    filter.create(5.0, 375.0);
    const SecondOrderSection& c = filter.section();
    EXPECT_NEAR(c.b0 + c.b1 + c.b2, 1.0 + c.a1 + c.a2, 1e-14);
    EXPECT_NEAR(runWhole(filter, std::vector<double>(2000, 1000.0)).back(), 1000.0, 1e-6);
}

TEST_F(LowPathFilter2DTest, LosesThreeDecibelsAtItsCorner) {
    LowPathFilter2D filter;
    filter.create(250.0, 48000.0);
    EXPECT_NEAR(gainAt(filter, 250.0, 48000.0), kHalfGain, 1e-3);
}

TEST_F(LowPathFilter2DTest, FollowsItsDifferenceEquation) {
    LowPathFilter2D filter;
    filter.create(250.0, 48000.0);
    const SecondOrderSection c = filter.section();
    const std::vector<double> x = noise(500);
    const std::vector<double> y = runWhole(filter, x);
    // The plain form, on history arrays that begin with two zeros.
    std::vector<double> in(2, 0.0);
    std::vector<double> out(2, 0.0);
    for (std::size_t n = 0; n < x.size(); ++n) {
        in.push_back(x[n]);
        const double forward = c.b0 * in[n + 2] + c.b1 * in[n + 1] + c.b2 * in[n];
        out.push_back(forward - c.a1 * out[n + 1] - c.a2 * out[n]);
        ASSERT_EQ(y[n], out[n + 2]) << "sample " << n;
    }
}

TEST_F(LowPathFilter2DTest, BlocksOfAnySizeGiveTheSameBits) {
    expectBlocksLeaveNoTrace<LowPathFilter2D>(150.0, 44100.0);
}

TEST_F(LowPathFilter2DTest, DesigningAgainKeepsTheState) {
    LowPathFilter2D filter;
    filter.create(5.0, 375.0);
    runWhole(filter, std::vector<double>(2000, 1000.0));
    filter.create(5.0, 375.0);
    EXPECT_NEAR(runWhole(filter, {1000.0}).front(), 1000.0, 1e-6);
}

TEST_F(LowPathFilter2DTest, AnEmptyBlockWritesNothing) {
    expectEmptyBlocksWriteNothing<LowPathFilter2D>();
}

}  // namespace
}  // namespace beatatlas::test
