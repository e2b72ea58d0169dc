// SPDX-License-Identifier: MIT
#include "envelope/GridOffset.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "envelope/kickTrack.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using GridOffsetTest = RoundTowardZero;
using Positions = std::vector<std::int32_t>;

constexpr int kMost = std::numeric_limits<std::int32_t>::max();
constexpr int kLeast = std::numeric_limits<std::int32_t>::min();

Positions shifted(const std::vector<std::int64_t>& frames, int shift, int length) {
    peakss::BeatList beats = beatsAt(frames, 500.0F);
    shiftBeats(beats, shift, length);
    return positionsOf(beats);
}

peakss::BeatList filled(const std::vector<std::int64_t>& frames, int step, int length) {
    peakss::BeatList beats = beatsAt(frames, 500.0F);
    for (peakss::BeatInfo& beat : beats) beat.segHead = true;
    fillEnds(beats, step, length);
    return beats;
}

TEST_F(GridOffsetTest, EveryBeatMoves) {
    EXPECT_EQ(shifted({100, 200, 300}, -20, 1000), (Positions{80, 180, 280}));
    EXPECT_EQ(shifted({100, 200, 300}, 20, 1000), (Positions{120, 220, 320}));
}

TEST_F(GridOffsetTest, BeatsPushedBelowZeroAreRemoved) {
    EXPECT_EQ(shifted({19, 20, 300}, -20, 1000), (Positions{0, 280}));
}

// The shift is added a second time for the test at the end: 470 + 20 + 20 = 510 is beyond 509,
// though 490 is not.
TEST_F(GridOffsetTest, BeatsWithinOneMoreShiftOfTheEndAreRemoved) {
    EXPECT_EQ(shifted({100, 470}, 20, 509), Positions{120});
    EXPECT_EQ(shifted({100, 470}, 20, 510), (Positions{120, 490}));
}

// And with a shift back, a beat that stays beyond the end is kept: 540 − 20 = 520, 500 once more.
TEST_F(GridOffsetTest, AShiftBackKeepsABeatUpToOneShiftBeyondTheEnd) {
    EXPECT_EQ(shifted({100, 540}, -20, 500), (Positions{80, 520}));
    EXPECT_EQ(shifted({100, 541}, -20, 500), Positions{80});
}

// As many as are negative go from the front, wherever they stand.
TEST_F(GridOffsetTest, NegativeBeatsAreCountedEverywhereAndTakenFromTheFront) {
    EXPECT_EQ(shifted({100, 200, 10}, -20, 1000), (Positions{180, -10}));
}

TEST_F(GridOffsetTest, MoreRemovalsThanBeatsLeaveNone) {
    EXPECT_EQ(shifted({-100, -200, -300}, 50, -5000), Positions{});
    EXPECT_EQ(shifted({}, 50, 500), Positions{});
}

TEST_F(GridOffsetTest, PositionsNearTheLargestAndSmallestDoNotOverflow) {
    EXPECT_EQ(shifted({100, kMost}, 2000, kMost), Positions{2100});
    EXPECT_EQ(shifted({kLeast, 100}, -50, kMost), Positions{50});
}

TEST_F(GridOffsetTest, TheHeadIsRefilledBeatByBeatAndNumberedBackwards) {
    const peakss::BeatList beats = filled({650}, 100, 650);
    EXPECT_EQ(positionsOf(beats), (Positions{50, 150, 250, 350, 450, 550, 650}));
    EXPECT_EQ(numbersOf(beats), (Positions{3, 4, 1, 2, 3, 4, 1}));
}

TEST_F(GridOffsetTest, TheHeadIsFilledDownToZeroIncluded) {
    EXPECT_EQ(positionsOf(filled({200}, 100, 200)), (Positions{0, 100, 200}));
    EXPECT_EQ(positionsOf(filled({199}, 100, 200)), (Positions{99, 199}));
}

TEST_F(GridOffsetTest, TheTailIsFilledUpToTheLengthIncludedAndNumberedOn) {
    const peakss::BeatList beats = filled({0}, 100, 500);
    EXPECT_EQ(positionsOf(beats), (Positions{0, 100, 200, 300, 400, 500}));
    EXPECT_EQ(numbersOf(beats), (Positions{1, 2, 3, 4, 1, 2}));
    EXPECT_EQ(positionsOf(filled({0}, 100, 499)).back(), 400);
}

TEST_F(GridOffsetTest, AddedBeatsOpenNoPhraseAndCopyTheRest) {
    const peakss::BeatList beats = filled({150}, 100, 300);
    ASSERT_EQ(beats.size(), 3U);
    EXPECT_FALSE(beats[0].segHead);
    EXPECT_TRUE(beats[1].segHead);
    EXPECT_FALSE(beats[2].segHead);
    EXPECT_EQ(beats[0].interval, 500.0F);
    EXPECT_EQ(beats[2].interval, 500.0F);
}

TEST_F(GridOffsetTest, WithoutBeatsOrAStepNothingIsAdded) {
    EXPECT_TRUE(filled({}, 100, 500).empty());
    for (const int step : {0, -1, kLeast}) EXPECT_EQ(filled({200, 300}, step, 500).size(), 2U);
}

TEST_F(GridOffsetTest, FillingToTheLargestLengthEnds) {
    EXPECT_EQ(filled({kMost - 250}, kMost / 2, kMost).size(), 2U);
    EXPECT_EQ(positionsOf(filled({0}, kMost, kMost)), (Positions{0, kMost}));
    EXPECT_EQ(positionsOf(filled({kLeast}, kMost, kMost)), (Positions{kLeast, -1, kMost - 1}));
}

TEST_F(GridOffsetTest, NumbersOutsideTheBarComeBackIntoIt) {
    EXPECT_EQ(nextBeatNumber(kMost), 1);
    EXPECT_EQ(nextBeatNumber(0), 1);
    EXPECT_EQ(previousBeatNumber(kLeast), 4);
    EXPECT_EQ(previousBeatNumber(0), 4);
}

}  // namespace
}  // namespace beatatlas::test
