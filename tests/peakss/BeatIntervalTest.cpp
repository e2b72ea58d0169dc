// SPDX-License-Identifier: MIT
#include "peakss/beatInterval.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using peakss::intervalTolerance;
using peakss::missesTempoOf;
using peakss::quarterBeats;

using BeatIntervalTest = beatatlas::test::RoundTowardZero;

// 4 % of 400 ms are 16 ms; of 500 ms exactly the cap.
TEST_F(BeatIntervalTest, ToleranceIsFourPercentCappedAtTwentyMs) {
    EXPECT_EQ(intervalTolerance(400.0F), 16.0F);
    EXPECT_EQ(intervalTolerance(500.0F), 20.0F);
    EXPECT_EQ(intervalTolerance(501.0F), 20.0F);
    EXPECT_EQ(intervalTolerance(-400.0F), -16.0F);
}

// The double quotient is cut toward zero once: the next float would lie above it.
TEST_F(BeatIntervalTest, ToleranceIsCutToSinglePrecisionOnce) {
    for (float reference = 290.0F; reference < 499.0F; reference += 0.37F) {
        const double exact = static_cast<double>(reference) * 2400.0 / 60000.0;
        const float tolerance = intervalTolerance(reference);
        EXPECT_LE(static_cast<double>(tolerance), exact);
        EXPECT_GT(static_cast<double>(std::nextafter(tolerance, 100.0F)), exact);
    }
}

TEST_F(BeatIntervalTest, ExactlyAtTheToleranceIsNoMiss) {
    EXPECT_FALSE(missesTempoOf(520.0F, 500.0F));
    EXPECT_FALSE(missesTempoOf(480.0F, 500.0F));
    EXPECT_TRUE(missesTempoOf(std::nextafter(520.0F, 600.0F), 500.0F));
    EXPECT_TRUE(missesTempoOf(std::nextafter(480.0F, 400.0F), 500.0F));
}

TEST_F(BeatIntervalTest, DoubleAndHalfTellTheSameTempo) {
    EXPECT_FALSE(missesTempoOf(1000.0F, 500.0F));
    EXPECT_FALSE(missesTempoOf(250.0F, 500.0F));
    EXPECT_FALSE(missesTempoOf(1040.0F, 500.0F));
    EXPECT_TRUE(missesTempoOf(1041.0F, 500.0F));
    EXPECT_TRUE(missesTempoOf(750.0F, 500.0F));
    EXPECT_TRUE(missesTempoOf(2000.0F, 500.0F));
}

TEST_F(BeatIntervalTest, WhatIsNoNumberMissesNothing) {
    EXPECT_FALSE(missesTempoOf(std::numeric_limits<float>::quiet_NaN(), 500.0F));
    EXPECT_TRUE(missesTempoOf(std::numeric_limits<float>::infinity(), 500.0F));
}

// 312 / 500 × 4 = 2.496, 313 / 500 × 4 = 2.504: the border between a half and three quarters lies at 312.5.
TEST_F(BeatIntervalTest, IntervalsAreRoundedHalfUpToQuarterBeats) {
    EXPECT_EQ(quarterBeats(500.0F, 500.0F), 1.0F);
    EXPECT_EQ(quarterBeats(312.0F, 500.0F), 0.5F);
    EXPECT_EQ(quarterBeats(312.5F, 500.0F), 0.75F);
    EXPECT_EQ(quarterBeats(0.0F, 500.0F), 0.0F);
    EXPECT_EQ(quarterBeats(62.0F, 500.0F), 0.0F);
    EXPECT_EQ(quarterBeats(2375.0F, 500.0F), 4.75F);
}

}  // namespace
