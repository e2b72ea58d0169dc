// SPDX-License-Identifier: MIT
#include "view/LevelScale.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas {
namespace {

using LevelScaleTest = test::RoundTowardZero;

// Each threshold is a round fraction of 32768.
TEST_F(LevelScaleTest, HoldsFractionsOfFullScale) {
    const double fractions[25] = {1.55,  1.2,   0.94,  0.79,  0.71,  0.65,  0.59,  0.53,  0.485,
                                  0.455, 0.425, 0.395, 0.365, 0.335, 0.305, 0.275, 0.245, 0.215,
                                  0.185, 0.155, 0.125, 0.095, 0.067, 0.046, 0.028};
    const auto scale = LevelScaleSet();
    for (std::size_t i = 0; i < scale.size(); ++i)
        EXPECT_NEAR(static_cast<double>(scale[i]), fractions[i] * 32768.0, 0.002) << i;
}

TEST_F(LevelScaleTest, OpensAClassAtEachOfTheFirstTwentyThreeThresholds) {
    const auto scale = LevelScaleSet();
    for (int i = 0; i < 23; ++i) {
        const float threshold = scale[static_cast<std::size_t>(i)];
        EXPECT_EQ(levelClass(threshold), 25 - i);
        EXPECT_EQ(levelClass(std::nextafter(threshold, 0.0F)), 24 - i);
    }
}

TEST_F(LevelScaleTest, OpensNoClassAtTheLastTwoThresholds) {
    const auto scale = LevelScaleSet();
    EXPECT_EQ(levelClass(scale[23]), 2);
    EXPECT_EQ(levelClass(scale[24]), 2);
    EXPECT_EQ(levelClass(scale[24] * 0.5F), 2);
}

TEST_F(LevelScaleTest, GivesClassTwoToNothingAndLess) {
    EXPECT_EQ(levelClass(0.0F), 2);
    EXPECT_EQ(levelClass(-50000.0F), 2);
    EXPECT_EQ(levelClass(std::numeric_limits<float>::quiet_NaN()), 2);
    EXPECT_EQ(levelClass(std::numeric_limits<float>::infinity()), 25);
}

}  // namespace
}  // namespace beatatlas
