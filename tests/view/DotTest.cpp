// SPDX-License-Identifier: MIT
#include "view/Dot.h"

#include <cstdint>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas {
namespace {

using DotTest = test::RoundTowardZero;

TEST_F(DotTest, OpensEachClassOneAboveItsThresholdButTheThirdAtIt) {
    const std::int32_t above[12] = {20674, 16421, 13044, 10361, 8229, 6537,
                                    5192,  4124,  3275,  2601,  2066, 1641};
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(makeDot(above[i] + 1, 0).levelClass, 15 - i);
        EXPECT_EQ(makeDot(above[i], 0).levelClass, 14 - i);
    }
    EXPECT_EQ(makeDot(1304, 0).levelClass, 3);
    EXPECT_EQ(makeDot(1303, 0).levelClass, 2);
}

TEST_F(DotTest, IsSilentOnlyWhenBothBandsAre) {
    EXPECT_EQ(makeDot(0, 0).levelClass, 1);
    EXPECT_EQ(makeDot(0, 0).level, 0.0F);
    EXPECT_EQ(makeDot(0, 30000).levelClass, 2);
    EXPECT_EQ(makeDot(0, 30000).level, 1.0F);
    EXPECT_EQ(makeDot(1, 0).levelClass, 2);
}

TEST_F(DotTest, ShowsTheLowBandsSum) {
    EXPECT_EQ(makeDot(12345, 0).level, 12345.0F);
    EXPECT_EQ(makeDot(12345, 99).level, 12345.0F);
    EXPECT_EQ(makeDot(-5, 0).level, -5.0F);
    EXPECT_EQ(makeDot(-5, 0).levelClass, 2);
}

}  // namespace
}  // namespace beatatlas
