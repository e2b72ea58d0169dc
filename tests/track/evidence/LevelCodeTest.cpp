// SPDX-License-Identifier: MIT
#include "track/evidence/LevelCode.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace beatatlas::track::inner;

// Level 1 lies 54 octaves of 1024 codes above the lowest.
TEST(LevelCode, CountsAThousandCodesAnOctave) {
    EXPECT_EQ(codeOfEnergy(1.0F), 54 * 1024);
    EXPECT_EQ(codeOfEnergy(4.0F), 55 * 1024);
    EXPECT_EQ(codeOfEnergy(0.25F), 53 * 1024);
    EXPECT_EQ(codeOfEnergy(2.0F), 54 * 1024 + 512);
}

TEST(LevelCode, IsTheNearestOneToTheLogarithm) {
    for (double energy = 1e-20; energy < 1e5; energy *= 1.00317) {
        const double exact =
            512.0 * std::log2(static_cast<double>(static_cast<float>(energy))) + 54.0 * 1024.0;
        EXPECT_NEAR(codeOfEnergy(static_cast<float>(energy)), exact, 0.52) << energy;
    }
}

TEST(LevelCode, EndsAtSilenceAndAtTheLoudest) {
    EXPECT_EQ(codeOfEnergy(0.0F), 0);
    EXPECT_EQ(codeOfEnergy(std::numeric_limits<float>::min()), 0);
    EXPECT_EQ(codeOfEnergy(std::numeric_limits<float>::max()), 65535);
}

TEST(LevelCode, StandsForItsLevel) {
    const std::vector<float> levels = levelsOfCodes();
    ASSERT_EQ(levels.size(), kLevelCodes);
    EXPECT_EQ(levels[0], 0.0F);
    EXPECT_EQ(levels[54 * 1024], 1.0F);
    EXPECT_EQ(levels[55 * 1024], 2.0F);
    for (std::size_t code = 20000; code < 65000; code += 777)
        EXPECT_NEAR(codeOfEnergy(levels[code] * levels[code]), code, 1.0);
}

}  // namespace
