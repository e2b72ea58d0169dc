// SPDX-License-Identifier: MIT
#include "peakss/grid/beatSearch.h"

#include <limits>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using peakss::getBuffLevel;

class GetBuffLevelTest : public beatatlas::test::RoundTowardZero {};

TEST_F(GetBuffLevelTest, SilenceGivesZeroAndLeavesTheIndex) {
    const float quiet[] = {163.8F, -163.8F, 0.0F};  // 0.005 × 32767 is 163.835
    int index = 9;
    EXPECT_EQ(getBuffLevel(3, quiet, quiet, &index), 0.0F);
    EXPECT_EQ(index, 9);
}

TEST_F(GetBuffLevelTest, HighestLevelOfEitherChannelWinsAndTheFirstOfEquals) {
    const float left[] = {200.0F, -32767.0F, 32767.0F, 0.0F};
    const float right[] = {300.0F, 0.0F, 0.0F, 32767.0F};
    int index = 100;
    EXPECT_EQ(getBuffLevel(4, left, right, &index), 1.0F);
    EXPECT_EQ(index, 101);
}

TEST_F(GetBuffLevelTest, NoSamplesGiveZero) {
    const float loud[] = {32767.0F};
    int index = 9;
    EXPECT_EQ(getBuffLevel(0, loud, loud, &index), 0.0F);
    EXPECT_EQ(getBuffLevel(-3, loud, loud, &index), 0.0F);
    EXPECT_EQ(getBuffLevel(1, nullptr, loud, &index), 0.0F);
    EXPECT_EQ(getBuffLevel(1, loud, nullptr, &index), 0.0F);
    EXPECT_EQ(getBuffLevel(1, loud, loud, nullptr), 0.0F);
    EXPECT_EQ(index, 9);
}

TEST_F(GetBuffLevelTest, NoNumberIsNeverTheHighest) {
    const float left[] = {std::numeric_limits<float>::quiet_NaN(), 16383.5F};
    const float right[] = {0.0F, 0.0F};
    int index = 0;
    EXPECT_EQ(getBuffLevel(2, left, right, &index), 0.5F);
    EXPECT_EQ(index, 1);
}

}  // namespace
