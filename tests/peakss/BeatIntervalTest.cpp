// SPDX-License-Identifier: MIT
#include "peakss/beatInterval.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using peakss::intervalTolerance;
using peakss::matchesTempo;
using peakss::missesTempoOf;
using peakss::quarterBeats;

constexpr float kInfinite = std::numeric_limits<float>::infinity();
constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();

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

TEST_F(BeatIntervalTest, MatchIsStrictAtBothEdges) {
    EXPECT_TRUE(matchesTempo(500.0F, 500.0F));
    EXPECT_FALSE(matchesTempo(480.0F, 500.0F));
    EXPECT_FALSE(matchesTempo(520.0F, 500.0F));
    EXPECT_TRUE(matchesTempo(std::nextafter(480.0F, 500.0F), 500.0F));
    EXPECT_TRUE(matchesTempo(std::nextafter(520.0F, 500.0F), 500.0F));
}

TEST_F(BeatIntervalTest, DoubleAndHalfMatchTheTempo) {
    EXPECT_TRUE(matchesTempo(1000.0F, 500.0F));
    EXPECT_TRUE(matchesTempo(250.0F, 500.0F));
    EXPECT_FALSE(matchesTempo(750.0F, 500.0F));
    EXPECT_FALSE(matchesTempo(1040.0F, 500.0F));  // its half is 520
    EXPECT_FALSE(matchesTempo(240.0F, 500.0F));   // its double is 480
    EXPECT_FALSE(matchesTempo(2000.0F, 500.0F));
}

// 4 % of 400 is 16 ms, but of 416 more: the reference decides.
TEST_F(BeatIntervalTest, ToleranceIsThatOfTheReference) {
    EXPECT_FALSE(matchesTempo(416.0F, 400.0F));
    EXPECT_TRUE(matchesTempo(400.0F, 416.0F));
}

TEST_F(BeatIntervalTest, NothingMatchesAReferenceThatIsNoTempo) {
    for (const float reference : {0.0F, -500.0F, kInfinite, -kInfinite, kNoNumber}) {
        for (const float value : {0.0F, 20.0F, -500.0F, 500.0F, kInfinite, kNoNumber})
            EXPECT_FALSE(matchesTempo(value, reference)) << value << " against " << reference;
    }
    EXPECT_FALSE(matchesTempo(kNoNumber, 500.0F));
    EXPECT_FALSE(matchesTempo(3e38F, 500.0F));
}

TEST_F(BeatIntervalTest, ExactlyAtTheToleranceIsNoMiss) {
    EXPECT_FALSE(missesTempoOf(520.0F, 500.0F));
    EXPECT_FALSE(missesTempoOf(480.0F, 500.0F));
    EXPECT_TRUE(missesTempoOf(std::nextafter(520.0F, 600.0F), 500.0F));
    EXPECT_TRUE(missesTempoOf(std::nextafter(480.0F, 400.0F), 500.0F));
}

TEST_F(BeatIntervalTest, DoubleAndHalfMissNothing) {
    EXPECT_FALSE(missesTempoOf(1000.0F, 500.0F));
    EXPECT_FALSE(missesTempoOf(250.0F, 500.0F));
    EXPECT_FALSE(missesTempoOf(1040.0F, 500.0F));
    EXPECT_TRUE(missesTempoOf(1041.0F, 500.0F));
    EXPECT_TRUE(missesTempoOf(750.0F, 500.0F));
    EXPECT_TRUE(missesTempoOf(2000.0F, 500.0F));
}

TEST_F(BeatIntervalTest, WhatIsNoNumberMissesNothing) {
    EXPECT_FALSE(missesTempoOf(kNoNumber, 500.0F));
    EXPECT_TRUE(missesTempoOf(kInfinite, 500.0F));
}

// 312 / 500 × 4 = 2.496, 313 / 500 × 4 = 2.504: the border between a half and three quarters lies
// at 312.5.
TEST_F(BeatIntervalTest, IntervalsAreRoundedHalfUpToQuarterBeats) {
    EXPECT_EQ(quarterBeats(500.0F, 500.0F), 1.0F);
    EXPECT_EQ(quarterBeats(312.0F, 500.0F), 0.5F);
    EXPECT_EQ(quarterBeats(312.5F, 500.0F), 0.75F);
    EXPECT_EQ(quarterBeats(0.0F, 500.0F), 0.0F);
    EXPECT_EQ(quarterBeats(62.0F, 500.0F), 0.0F);
    EXPECT_EQ(quarterBeats(2375.0F, 500.0F), 4.75F);
}

}  // namespace
