// SPDX-License-Identifier: MIT
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "beatatlas/dsp.h"

namespace {

TEST(MaxVTest, ReportsTheFirstOfEqualMaxima) {
    std::vector<float> v{1.0F, 4.0F, 4.0F};
    int at = -1;
    EXPECT_EQ(max_v(v.data(), 3, &at), 4.0F);
    EXPECT_EQ(at, 1);
}

TEST(MaxVTest, TheDoubleFormIsTheSame) {
    std::vector<double> v{-3.0, -1.5, -1.5, -2.0};
    int at = -1;
    EXPECT_EQ(max_v(v.data(), 4, &at), -1.5);
    EXPECT_EQ(at, 1);
}

TEST(MaxVTest, NeedsNoIndex) {
    std::vector<float> v{1.0F, 2.0F};
    EXPECT_EQ(max_v(v.data(), 2, nullptr), 2.0F);
}

TEST(MaxVTest, BelowTwoValuesIsTheFirstValueAtIndexZero) {
    std::vector<float> v{3.0F, 9.0F};
    for (int n : {1, 0, -4}) {
        int at = -1;
        EXPECT_EQ(max_v(v.data(), n, &at), 3.0F);
        EXPECT_EQ(at, 0);
    }
}

TEST(MaxVTest, NaNIsNeverLargerAndNothingIsLargerThanNaN) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<float> later{1.0F, nan, 2.0F};
    EXPECT_EQ(max_v(later.data(), 3, nullptr), 2.0F);
    std::vector<float> first{nan, 1.0F, 2.0F};
    EXPECT_TRUE(std::isnan(max_v(first.data(), 3, nullptr)));
}

TEST(MinVTest, IsTheLastValueBelowTheFirstNotTheMinimum) {
    std::vector<float> v{5.0F, 3.0F, 7.0F, 4.0F};
    EXPECT_EQ(min_v(v.data(), 4), 4.0F);
}

TEST(MinVTest, TheSecondValueIsLookedAt) {
    std::vector<float> v{5.0F, 3.0F};
    EXPECT_EQ(min_v(v.data(), 2), 3.0F);
}

TEST(MinVTest, IsTheFirstValueWhenNoneIsBelowIt) {
    std::vector<float> v{5.0F, 5.0F, 7.0F};
    EXPECT_EQ(min_v(v.data(), 3), 5.0F);
}

TEST(MinVTest, BelowTwoValuesIsTheFirstValue) {
    std::vector<float> v{5.0F, 3.0F};
    for (int n : {1, 0, -1}) EXPECT_EQ(min_v(v.data(), n), 5.0F);
}

TEST(AveVTest, IsTheMean) {
    std::vector<float> v{1.0F, 2.0F, 6.0F};
    EXPECT_EQ(ave_v(v.data(), 3), 3.0F);
}

// 2^24 + 1 has no float: the ones are lost one by one in single precision, where a double sum would
// keep them.
TEST(AveVTest, SumsInSinglePrecisionFromTheFirstValue) {
    std::vector<float> v{16777216.0F, 1.0F, 1.0F, 1.0F};
    EXPECT_EQ(ave_v(v.data(), 4), 4194304.0F);
}

TEST(AveVTest, OfNothingIsNotANumber) {
    float v = 1.0F;
    EXPECT_TRUE(std::isnan(ave_v(&v, 0)));
}

TEST(ModeVTest, IsAlwaysZeroAndLooksAtNothing) {
    std::vector<float> v{2.0F, 2.0F, 2.0F};
    EXPECT_EQ(mode_v(v.data(), 3), 0.0F);
    EXPECT_EQ(mode_v(nullptr, 3), 0.0F);
}

}  // namespace
