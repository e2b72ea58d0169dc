// SPDX-License-Identifier: MIT
#include "peakss/grid/AnchorWalk.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatAt;
using peakss::AnchorWalk;
using peakss::BeatList;

constexpr double kBeat = 24000.0;
constexpr int kTolerance = 3000;

class AnchorWalkTest : public beatatlas::test::RoundTowardZero {
protected:
    // Bands 0 to 3 on the beats of one bar; each of them 100 samples later than the pulse.
    BeatList bar_{beatAt(100, 500.0F, 0, 0, 0), beatAt(24100, 500.0F, 0, 0, 1),
                  beatAt(48100, 500.0F, 0, 0, 2), beatAt(72100, 500.0F, 0, 0, 3)};
};

TEST_F(AnchorWalkTest, QuarterZeroSnapsToTheNearestBeat) {
    AnchorWalk walk(bar_, kBeat, 4, kTolerance);
    walk.begin(0.0);
    EXPECT_EQ(walk.position(), 100.0);
    EXPECT_EQ(walk.quarter(), 0);
    EXPECT_EQ(walk.bandAt(0), 0);
}

TEST_F(AnchorWalkTest, QuarterZeroWithoutABeatNearStaysWhereItIs) {
    AnchorWalk walk(bar_, kBeat, 4, kTolerance);
    walk.begin(10000.0);
    EXPECT_EQ(walk.position(), 10000.0);
    EXPECT_EQ(walk.bandAt(0), AnchorWalk::kNoBand);
}

TEST_F(AnchorWalkTest, SnapsAtAnchorsOnly) {
    AnchorWalk walk(bar_, kBeat, 8, kTolerance);
    walk.begin(0.0);
    walk.walkBeat();
    EXPECT_EQ(walk.position(), 24100.0);  // 100 + 24000, not snapped
    EXPECT_EQ(walk.quarter(), 4);
    EXPECT_EQ(walk.bandAt(4), AnchorWalk::kNoBand);
    walk.walkBeat();
    EXPECT_EQ(walk.bandAt(8), 2);
    EXPECT_TRUE(walk.isAnchor(8));
    EXPECT_FALSE(walk.isAnchor(4));
}

TEST_F(AnchorWalkTest, WalksOnAtItsOwnPaceAcrossAGap) {
    bar_.resize(1);
    AnchorWalk walk(bar_, kBeat, 4, kTolerance);
    walk.begin(0.0);
    for (int i = 0; i < 3; ++i) walk.walkBeat();
    EXPECT_EQ(walk.position(), 72100.0);
    EXPECT_EQ(walk.bandAt(12), AnchorWalk::kNoBand);
}

TEST_F(AnchorWalkTest, SpacingBelowOneCountsAsOneBeat) {
    for (const int spacing : {0, -16, std::numeric_limits<int>::min()}) {
        AnchorWalk walk(bar_, kBeat, spacing, kTolerance);
        walk.begin(0.0);
        walk.walkBeat();
        EXPECT_EQ(walk.bandAt(4), 1);
    }
}

TEST_F(AnchorWalkTest, QuartersNotReachedHaveNoBand) {
    AnchorWalk walk(bar_, kBeat, 4, kTolerance);
    walk.begin(0.0);
    EXPECT_EQ(walk.bandAt(4), AnchorWalk::kNoBand);
    EXPECT_EQ(walk.bandAt(-4), AnchorWalk::kNoBand);
}

// Truncation answers the lowest number for a position beyond the highest one: the beat there is not
// near.
TEST_F(AnchorWalkTest, WalkOutOfTheNumberRangeMeetsNothing) {
    const BeatList far{beatAt(std::numeric_limits<int>::min())};
    AnchorWalk walk(far, kBeat, 4, kTolerance);
    walk.begin(std::numeric_limits<int>::max());
    walk.walkBeat();
    EXPECT_EQ(walk.position(), std::numeric_limits<int>::max() + kBeat);
    EXPECT_EQ(walk.bandAt(4), AnchorWalk::kNoBand);
}

// Quarters 0 4 8 12 hold bands 0 1 2 3. With one beat of front and one of bar, beat 1 becomes the
// origin: quarter 4, the front's, takes the band of quarter 8, and quarter 8 that of 12; quarter 0
// keeps its own.
TEST_F(AnchorWalkTest, SlidingMovesTheQuartersBehindTheFront) {
    AnchorWalk walk(bar_, kBeat, 4, kTolerance);
    walk.begin(0.0);
    for (int i = 0; i < 3; ++i) walk.walkBeat();
    walk.slide(4, 4);
    EXPECT_EQ(walk.quarter(), 8);
    EXPECT_EQ(walk.bandAt(0), 0);
    EXPECT_EQ(walk.bandAt(4), 2);
    EXPECT_EQ(walk.bandAt(8), 3);
}

}  // namespace
