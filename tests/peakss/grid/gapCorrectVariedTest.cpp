// SPDX-License-Identifier: MIT
#include "peakss/grid/gapCorrectVaried.h"

#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatsAt;
using beatatlas::test::evenBeats;
using beatatlas::test::positionsOf;
using peakss::BeatList;
using Positions = std::vector<int>;

class GapCorrectVariedTest : public beatatlas::test::RoundTowardZero {
protected:
    static Positions repaired(const Positions& positions) {
        BeatList grid = beatsAt(positions);
        peakss::gapCorrectVaried(grid);
        return positionsOf(grid);
    }
};

TEST_F(GapCorrectVariedTest, ThreeBeatsOrFewerStay) {
    EXPECT_EQ(repaired({}), Positions{});
    EXPECT_EQ(repaired({5}), (Positions{5}));
    EXPECT_EQ(repaired({0, 1000, 1001}), (Positions{0, 1000, 1001}));
}

TEST_F(GapCorrectVariedTest, EvenGridStays) {
    EXPECT_EQ(repaired({0, 1000, 2000, 3000, 4000}), (Positions{0, 1000, 2000, 3000, 4000}));
}

TEST_F(GapCorrectVariedTest, GapsWithinATenthStay) {
    EXPECT_EQ(repaired({0, 1000, 1901, 2901}), (Positions{0, 1000, 1901, 2901}));
    EXPECT_EQ(repaired({0, 1000, 2100, 3100}), (Positions{0, 1000, 2100, 3100}));
}

// 900 / 1000 truncates below the constant 0.9: too short, and shared out.
TEST_F(GapCorrectVariedTest, NineTenthsExactlyAreTooShort) {
    EXPECT_EQ(repaired({0, 1000, 1900, 2900}), (Positions{0, 966, 1933, 2900}));
}

// d1 = 1000 the smaller, d2 = 800, d3 = 1100: (1000 − 800) / 100 = 2 < 4.
TEST_F(GapCorrectVariedTest, ShortGapNearASmallerFirstGapTakesItsLength) {
    EXPECT_EQ(repaired({0, 1000, 1800, 2900}), (Positions{0, 1000, 2000, 2900}));
}

// d1 = 1000 the larger, d2 = 500, d3 = 800: 4000 > 3200 + 500, and 2000 lies before 2300.
TEST_F(GapCorrectVariedTest, ShortGapBehindALargerFirstGapTakesItsLength) {
    EXPECT_EQ(repaired({0, 1000, 1500, 2300}), (Positions{0, 1000, 2000, 2300}));
}

// d1 = 1000, d2 = 100, d3 = 800: 2000 would lie behind 1900.
TEST_F(GapCorrectVariedTest, ShortGapWithoutRoomForALargerOneLosesItsBeat) {
    EXPECT_EQ(repaired({0, 1000, 1100, 1900}), (Positions{0, 1000, 1900}));
}

// Equal neighbours of 1000 and a gap of 800: 2.8 of 1000 in all, enough for three gaps.
TEST_F(GapCorrectVariedTest, SlightlyShortGapIsSharedOut) {
    EXPECT_EQ(repaired({0, 1000, 1800, 2800}), (Positions{0, 933, 1866, 2800}));
}

// Equal neighbours of 1000 and a gap of 500: 2.5 in all, two gaps. 0.7 is 2.7 in all, which is not
// above it.
TEST_F(GapCorrectVariedTest, GapOfHalfItsNeighboursCollapsesTwoBeatsIntoOne) {
    EXPECT_EQ(repaired({0, 1000, 1500, 2500}), (Positions{0, 1250, 2500}));
    EXPECT_EQ(repaired({0, 1000, 1700, 2700}), (Positions{0, 1350, 2700}));
    EXPECT_EQ(repaired({0, 1000, 1701, 2701}), (Positions{0, 900, 1800, 2701}));
}

// d1 = 1000 the larger, d2 = 1200, d3 = 900: 200 / 100 = 2 < 4.
TEST_F(GapCorrectVariedTest, LongGapNearALargerFirstGapTakesItsLength) {
    EXPECT_EQ(repaired({0, 1000, 2200, 3100}), (Positions{0, 1000, 2000, 3100}));
}

// d1 = 1000 the smaller, d2 = 1300, d3 = 1100: 3300 + 1300 ≤ 5000, the rule fails; 3400 / 1100 =
// 3.09 < 3.3.
TEST_F(GapCorrectVariedTest, SlightlyLongGapIsSharedOut) {
    EXPECT_EQ(repaired({0, 1000, 2300, 3400}), (Positions{0, 1133, 2266, 3400}));
}

// d1 = 1000 the smaller, d2 = 1700, d3 = 1200: 3600 + 1700 > 5000. b2 moves to 2000; 3900 does not
// lie behind 1000 + 1000 + 2000.
TEST_F(GapCorrectVariedTest, LongGapBehindASmallerFirstGapTakesItsLength) {
    EXPECT_EQ(repaired({0, 1000, 2700, 3900}), (Positions{0, 1000, 2000, 3900}));
}

// A gap of 3000 between neighbours of 1000: b2 moves to 2000, and since 5000 lies behind 4000 a
// beat is gained at 3000, in front of b2's place. The windows that follow meet the negative gap: b
// = 1000 3000 2000 5000 has d1 = 2000 the smaller, d2 = −1000, d3 = 3000, (2000 + 1000) / 1000 = 3
// < 4, and moves 2000 to 3000 + 2000.
TEST_F(GapCorrectVariedTest, GainedBeatStandsBeforeTheThirdOfTheWindow) {
    EXPECT_EQ(repaired({0, 1000, 4000, 5000}), (Positions{0, 1000, 3000, 5000, 5000}));
}

// A gap of 2000 between neighbours of 1000: 3000 + 2000 > 5000 fails, and 4000 / 1000 is not below
// 3.3. The window is quartered: 1000, 2000 and 3000, the last gained in front of 2000.
TEST_F(GapCorrectVariedTest, GapOfTwiceItsNeighboursGainsABeatInTheMiddle) {
    BeatList window = beatsAt({0, 1000, 3000, 4000});
    peakss::correctMiddleGap(window, true);
    EXPECT_EQ(positionsOf(window), (Positions{0, 1000, 3000, 2000, 4000}));
}

// In a list the next window, 1000 3000 2000 4000, has d1 = d3 = 2000 and d2 = −1000: no quotient is
// below 4, 8000 > 8000 − 1000, and 3000 + 2000 does not lie before 4000: the beat at 2000 goes
// again.
TEST_F(GapCorrectVariedTest, NextWindowSeesTheNegativeGapAsItIs) {
    EXPECT_EQ(repaired({0, 1000, 3000, 4000}), (Positions{0, 1000, 3000, 4000}));
}

TEST_F(GapCorrectVariedTest, NoBeatIsGainedOnceThereAreTooMany) {
    BeatList window = beatsAt({0, 1000, 3000, 4000});
    peakss::correctMiddleGap(window, false);
    EXPECT_EQ(positionsOf(window), (Positions{0, 1000, 2000, 4000}));
}

TEST_F(GapCorrectVariedTest, GainedBeatIsACopyOfTheThirdButForItsPosition) {
    BeatList grid = beatsAt({0, 1000, 4000, 5000});
    grid[2].interval = 321.0F;
    grid[2].band = 4;
    peakss::gapCorrectVaried(grid);
    ASSERT_EQ(grid.size(), 5U);
    EXPECT_EQ(grid[2].interval, 321.0F);
    EXPECT_EQ(grid[2].band, 4);
    EXPECT_EQ(grid[3].band, 4);
}

TEST_F(GapCorrectVariedTest, WindowMovesOnByOneBeatAfterALoss) {
    // The first window gives up 1100; the next begins at 1000 and finds all even.
    EXPECT_EQ(repaired({0, 1000, 1100, 1900, 2850, 3800}), (Positions{0, 1000, 1900, 2850, 3800}));
}

TEST_F(GapCorrectVariedTest, EqualBeatsAreSafe) {
    EXPECT_EQ(repaired({7, 7, 7, 7, 7}), (Positions{7, 7, 7, 7, 7}));
}

TEST_F(GapCorrectVariedTest, MiddleOfFarPositionsDoesNotOverflow) {
    constexpr int kBase = 2000000000;
    EXPECT_EQ(repaired({kBase, kBase + 1000, kBase + 1500, kBase + 2500}),
              (Positions{kBase, kBase + 1250, kBase + 2500}));
}

// Whatever the positions, the repair ends and stays within its bound of four gained beats per beat.
TEST_F(GapCorrectVariedTest, WildPositionsAreSafe) {
    std::mt19937 random(3);
    for (int round = 0; round < 2000; ++round) {
        Positions positions;
        for (unsigned i = 0; i < 4 + random() % 12; ++i)
            positions.push_back(static_cast<int>(random()));
        EXPECT_LE(repaired(positions).size(), positions.size() * 5 + 4);
    }
    constexpr int kLowest = std::numeric_limits<int>::min();
    constexpr int kHighest = std::numeric_limits<int>::max();
    repaired({kLowest, kHighest, kLowest, kHighest, 0, kHighest});
}

// Each bar of five beats has a stray 50 samples before the next: gaps of 950, 50 and 1000. 900 / 50
// and 4 × 950 pass by, 2000 / 950 is less than 2.7: the first of the two moves to the middle, 1000
// from either side, the other goes.
TEST_F(GapCorrectVariedTest, LongGridWithManyStraysIsRepairedInOnePass) {
    BeatList grid;
    for (int bar = 0; bar < 20000; ++bar) {
        const BeatList beats = evenBeats(bar * 5000, 1000, 5);
        grid.insert(grid.end(), beats.begin(), beats.end());
        if (bar < 19999) grid.push_back(beatatlas::test::beatAt(bar * 5000 + 4950));
    }
    peakss::gapCorrectVaried(grid);
    EXPECT_EQ(positionsOf(grid), positionsOf(evenBeats(0, 1000, 100000)));
}

}  // namespace
