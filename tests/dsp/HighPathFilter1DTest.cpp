// SPDX-License-Identifier: MIT
#include "dsp/HighPathFilter1D.h"

#include <vector>

#include <gtest/gtest.h>

#include "dsp/filterRuns.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using HighPathFilter1DTest = RoundTowardZero;

TEST_F(HighPathFilter1DTest, NeverDesignedCopiesItsInput) {
    expectCopiesItsInput<HighPathFilter1D>();
}

// freq = rate / 2π makes the angle 1: b0 = 2 / 3, b1 = −2 / 3, a1 = −1 / 3.
TEST_F(HighPathFilter1DTest, DesignAtOneRadianPerSampleIsInThirds) {
    HighPathFilter1D filter;
    filter.create(1.0, 6.28318530717958);
    EXPECT_NEAR(filter.b0(), 2.0 / 3.0, 1e-15);
    EXPECT_EQ(filter.b1(), -filter.b0());
    EXPECT_NEAR(filter.a1(), -1.0 / 3.0, 1e-15);
}

TEST_F(HighPathFilter1DTest, DrivesAConstantToZero) {
    HighPathFilter1D filter;
    filter.create(0.5, 375.0);
    EXPECT_NEAR(runWhole(filter, std::vector<double>(5000, 1000.0)).back(), 0.0, 1e-9);
}

TEST_F(HighPathFilter1DTest, ACornerOfZeroReproducesItsInput) {
    HighPathFilter1D filter;
    filter.create(0.0, 375.0);
    EXPECT_EQ(filter.b0(), 1.0);
    EXPECT_EQ(filter.b1(), -1.0);
    EXPECT_EQ(filter.a1(), -1.0);
    const std::vector<double> in = noise(300);  // 24 bits each: every sum is exact
    EXPECT_EQ(runWhole(filter, in), in);
}

TEST_F(HighPathFilter1DTest, FollowsItsDifferenceEquation) {
    HighPathFilter1D filter;
    filter.create(0.5, 344.53125);
    const std::vector<double> x = noise(300);
    const std::vector<double> y = runWhole(filter, x);
    EXPECT_EQ(y[0], filter.b0() * x[0]);
    for (std::size_t n = 1; n < x.size(); ++n) {
        const double forward = filter.b1() * x[n - 1] + filter.b0() * x[n];
        ASSERT_EQ(y[n], forward - filter.a1() * y[n - 1]) << "sample " << n;
    }
}

TEST_F(HighPathFilter1DTest, BlocksOfAnySizeGiveTheSameBits) {
    expectBlocksLeaveNoTrace<HighPathFilter1D>(0.5, 375.0);
}

TEST_F(HighPathFilter1DTest, AnEmptyBlockWritesNothing) {
    expectEmptyBlocksWriteNothing<HighPathFilter1D>();
}

}  // namespace
}  // namespace beatatlas::test
