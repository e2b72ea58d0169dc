// SPDX-License-Identifier: MIT
#include "view/AverageStrip.h"

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas {
namespace {

using Average = AverageLevel::Average;

class AverageStripTest : public test::RoundTowardZero {
protected:
    AverageStripTest() { strip.create(50.0F); }

    void put(std::int64_t chunk, std::optional<Average> average = std::nullopt) {
        strip.put(chunk, false, average);
    }

    AverageStrip strip;
};

TEST_F(AverageStripTest, AddsAveragesToTheCurrentPoint) {
    put(9, Average{10.0F, false});
    put(18, Average{20.0F, false});
    EXPECT_EQ(strip.index(), 0);
    EXPECT_EQ(strip[0], 30.0F);
}

// 50 chunks to the point, 75 to the second: × 75 / (50 + 50).
TEST_F(AverageStripTest, ScalesAPointToHalfASecondWhenItMovesOn) {
    put(9, Average{40.0F, false});
    put(49);
    EXPECT_EQ(strip.index(), 0);
    EXPECT_EQ(strip[0], 40.0F);
    put(50);
    EXPECT_EQ(strip.index(), 1);
    EXPECT_EQ(strip[0], 30.0F);
    EXPECT_EQ(strip[1], 0.0F);
}

TEST_F(AverageStripTest, PutsAnAverageThatComesWithTheMoveIntoTheNewPoint) {
    put(9, Average{40.0F, false});
    put(50, Average{8.0F, false});
    EXPECT_EQ(strip[0], 30.0F);
    EXPECT_EQ(strip[1], 8.0F);
}

TEST_F(AverageStripTest, LeavesPointsAtZeroThatPassWithoutAnAverage) {
    strip.create(0.25F);  // a short track: four points per chunk
    put(1, Average{1.0F, false});
    EXPECT_EQ(strip.index(), 4);
    put(2);
    EXPECT_EQ(strip.index(), 8);
    EXPECT_EQ(strip[4], 150.0F);  // 1 × 75 / 0.5
    for (const int k : {0, 3, 5, 8}) EXPECT_EQ(strip[k], 0.0F);
}

TEST_F(AverageStripTest, AddsAMergingAverageUnscaledWhileItsPointIsTheCurrentOne) {
    put(9, Average{10.0F, false});
    put(12, Average{5.0F, true});
    EXPECT_EQ(strip[0], 15.0F);
}

TEST_F(AverageStripTest, ScalesAMergingAverageWhosePointHasBeenClosed) {
    put(45, Average{40.0F, false});
    put(50, Average{20.0F, true});
    EXPECT_EQ(strip[0], 45.0F);  // 30 + 20 × 0.75
    EXPECT_EQ(strip[1], 0.0F);
}

// The second merging average goes where the first one went: to the point of the last average that
// did not merge.
TEST_F(AverageStripTest, AMergedAverageDoesNotBecomeThePointOfTheLastOne) {
    put(45, Average{40.0F, false});
    put(50, Average{20.0F, true});
    put(55, Average{4.0F, true});
    EXPECT_EQ(strip[0], 48.0F);
    EXPECT_EQ(strip[1], 0.0F);
}

TEST_F(AverageStripTest, StaysInTheLastPointUntilTheEnd) {
    put(1000000, Average{10.0F, false});
    EXPECT_EQ(strip.index(), 399);
    put(2000000, Average{10.0F, false});
    EXPECT_EQ(strip.index(), 399);
    EXPECT_EQ(strip[399], 20.0F);
}

TEST_F(AverageStripTest, ClosesAllPointsAtTheEndAndTakesNothingMore) {
    put(9, Average{40.0F, false});
    strip.put(20, true, Average{100.0F, false});
    EXPECT_EQ(strip.index(), 400);
    EXPECT_EQ(strip[0], 30.0F);
    EXPECT_EQ(strip[399], 0.0F);
    strip.put(21, true, Average{100.0F, true});
    EXPECT_EQ(strip[0], 30.0F);
}

// A quotient that is no number, or beyond all points, moves nothing or stops at the last.
TEST_F(AverageStripTest, SurvivesAPointWithoutChunks) {
    strip.create(0.0F);
    put(1, Average{1.0F, false});
    EXPECT_EQ(strip.index(), 0);
    strip.create(1e-30F);
    put(1, Average{1.0F, false});
    EXPECT_EQ(strip.index(), 0);  // beyond 32 bits: the most negative integer
}

TEST_F(AverageStripTest, ResetEqualsNew) {
    put(500, Average{40.0F, false});
    strip.reset();
    EXPECT_EQ(strip.index(), 0);
    put(9, Average{10.0F, true});
    EXPECT_EQ(strip[0], 10.0F);
    EXPECT_EQ(strip[10], 0.0F);
}

}  // namespace
}  // namespace beatatlas
