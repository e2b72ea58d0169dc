// SPDX-License-Identifier: MIT
#include "peakss/grid/gapCorrectConstant.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::bandsOf;
using beatatlas::test::beatAt;
using beatatlas::test::beatsAt;
using beatatlas::test::evenBeats;
using beatatlas::test::kHighest;
using beatatlas::test::kLowest;
using beatatlas::test::kRate;
using beatatlas::test::positionsOf;
using peakss::BeatInfo;
using peakss::BeatList;
using peakss::gapCorrectConstant;
using Positions = std::vector<int>;

class GapCorrectConstantTest : public beatatlas::test::RoundTowardZero {};

// Anchors at 1200 and 6200, ten beats apart: 500 each, back to 200 and on to 9700 of 10000.
TEST_F(GapCorrectConstantTest, GridIsEvenFromTheStartOfTheTrackToItsEnd) {
    BeatList grid = beatsAt({1200, 1600, 2300, 2700, 3100, 3700, 4300, 4600, 5300, 5600, 6200, 9});
    gapCorrectConstant(grid, 10000, 0, 10, kRate);
    Positions expected;
    for (int pos = 200; pos <= 9700; pos += 500) expected.push_back(pos);
    EXPECT_EQ(positionsOf(grid), expected);
}

// 500 samples at 48 kHz; 500 / 48 is not exact and truncates.
TEST_F(GapCorrectConstantTest, EveryBeatTellsTheEvenInterval) {
    BeatList grid = evenBeats(0, 500, 4);
    gapCorrectConstant(grid, 2000, 0, 3, kRate);
    ASSERT_EQ(grid.size(), 5U);
    for (const BeatInfo& beat : grid) {
        EXPECT_EQ(beat.interval, static_cast<float>(500.0 / 48.0));
        EXPECT_EQ(beat.phase, 0.0F);
        EXPECT_EQ(beat.group, 0);
    }
}

TEST_F(GapCorrectConstantTest, OnlyTheAnchorsKeepTheirBands) {
    BeatList grid = evenBeats(1000, 1000, 5);
    for (int i = 0; i < 5; ++i) grid[static_cast<std::size_t>(i)].band = i;
    gapCorrectConstant(grid, 7000, 1, 3, kRate);
    EXPECT_EQ(positionsOf(grid), (Positions{0, 1000, 2000, 3000, 4000, 5000, 6000, 7000}));
    EXPECT_EQ(bandsOf(grid), (std::vector<int>{-1, -1, 1, -1, 3, -1, -1, -1}));
    for (std::size_t i = 0; i < grid.size(); ++i) EXPECT_EQ(grid[i].segHead, i == 2);
}

TEST_F(GapCorrectConstantTest, WithoutAnchorsTheGridsEndsStandForThem) {
    BeatList grid = beatsAt({1000, 1900, 3000});
    for (BeatInfo& beat : grid) beat.band = -1;
    gapCorrectConstant(grid, 4500, -1, -1, kRate);
    EXPECT_EQ(positionsOf(grid), (Positions{0, 1000, 2000, 3000, 4000}));
    EXPECT_TRUE(grid[1].segHead);
    EXPECT_EQ(bandsOf(grid), (std::vector<int>(5, -1)));
}

TEST_F(GapCorrectConstantTest, WithOneAnchorTheLastBeatStandsForTheOther) {
    BeatList grid = beatsAt({1000, 2000, 3200, 4200});
    gapCorrectConstant(grid, 4200, 1, -1, kRate);
    EXPECT_EQ(positionsOf(grid), (Positions{900, 2000, 3100, 4200}));
}

// An anchor moved ahead of the track by its band's offset opens the grid; it is trimmed later.
TEST_F(GapCorrectConstantTest, AnchorAheadOfTheTrackOpensTheGrid) {
    BeatList grid = beatsAt({-144, 856, 1856});
    gapCorrectConstant(grid, 3000, 0, 2, kRate);
    EXPECT_EQ(positionsOf(grid), (Positions{-144, 856, 1856, 2856}));
    EXPECT_TRUE(grid[0].segHead);
}

TEST_F(GapCorrectConstantTest, AnchorFarAheadOfTheTrackOpensTheGrid) {
    BeatList grid = beatsAt({-5000, -4000, -3000});
    gapCorrectConstant(grid, 0, 0, 2, kRate);
    EXPECT_EQ(positionsOf(grid).front(), -5000);
    EXPECT_EQ(positionsOf(grid).back(), 0);
}

TEST_F(GapCorrectConstantTest, NothingIsAppendedBehindATrackThatHasEnded) {
    BeatList grid = beatsAt({0, 1000, 2000});
    gapCorrectConstant(grid, 500, 0, 2, kRate);
    EXPECT_EQ(positionsOf(grid), (Positions{0, 1000, 2000}));
}

// 3 beats over 1000 samples: L is 333.33331 in single precision and the 3000th beat lies at
// 999999.9375; summed in single precision it would be off by hundreds of samples.
TEST_F(GapCorrectConstantTest, LongGridDoesNotDrift) {
    BeatList grid = beatsAt({0, 300, 600, 1000});
    gapCorrectConstant(grid, 1000000, 0, 3, kRate);
    ASSERT_GT(grid.size(), 3000U);
    EXPECT_EQ(grid[3000].pos, 999999);
}

// The beat length has 24 bits, so that any multiple of it is exact in double. Reckoned in single
// precision, the start of the grid would be off by up to a sixteenth of a sample, and one beat in
// some twenty would truncate otherwise.
TEST_F(GapCorrectConstantTest, EveryBeatLiesAWholeNumberOfBeatsFromTheFirstAnchor) {
    BeatList grid = beatsAt({1000001, 1168002});
    for (int i = 0; i < 6; ++i) grid.insert(grid.begin() + 1, beatAt(1100000));
    gapCorrectConstant(grid, 100000000, 0, 7, kRate);
    ASSERT_GT(grid.size(), 4000U);
    const auto beat = static_cast<double>(168001.0F / 7.0F);
    for (int i = 0; i < static_cast<int>(grid.size()); ++i)
        ASSERT_EQ(grid[static_cast<std::size_t>(i)].pos,
                  static_cast<int>(1000001.0 + (i - 41) * beat));
}

// Beyond 2^24 samples single precision knows only even positions; the anchor 20000001 counts as
// 20000000.
TEST_F(GapCorrectConstantTest, AnchorsAreSinglePrecision) {
    BeatList grid = beatsAt({19000000, 20000001});
    gapCorrectConstant(grid, 20500000, 0, 1, kRate);
    EXPECT_EQ(grid.back().pos, 20000000);
}

TEST_F(GapCorrectConstantTest, GridWithoutAUsableBeatLengthStays) {
    const auto staysAsItIs = [](const BeatList& before, int first, int last) {
        BeatList grid = before;
        gapCorrectConstant(grid, 1000000, first, last, kRate);
        return positionsOf(grid) == positionsOf(before) && bandsOf(grid) == bandsOf(before);
    };
    EXPECT_TRUE(staysAsItIs({}, -1, -1));
    EXPECT_TRUE(staysAsItIs(beatsAt({500}), 0, -1));
    EXPECT_TRUE(staysAsItIs(beatsAt({500, 1500}), 1, -1));
    EXPECT_TRUE(staysAsItIs(beatsAt({500, 1500, 2500}), 2, 1));
    EXPECT_TRUE(staysAsItIs(beatsAt({500, 500, 500}), 0, 2));
    EXPECT_TRUE(staysAsItIs(beatsAt({1500, 1000, 500}), 0, 2));
    EXPECT_TRUE(staysAsItIs(beatsAt({500, 1500}), 0, 7));
    EXPECT_TRUE(staysAsItIs(beatsAt({500, 1500}), 5, -1));
}

TEST_F(GapCorrectConstantTest, GridOfMillionsOfBeatsStays) {
    BeatList grid = beatsAt({0, 1});
    gapCorrectConstant(grid, kHighest, 0, 1, kRate);
    EXPECT_EQ(positionsOf(grid), (Positions{0, 1}));
}

TEST_F(GapCorrectConstantTest, AnchorsAtTheEndsOfTheNumberRangeAreSafe) {
    BeatList grid{beatAt(kLowest), beatAt(0), beatAt(kHighest)};
    gapCorrectConstant(grid, kHighest, 0, 2, kRate);
    EXPECT_EQ(grid.front().pos, kLowest);
    EXPECT_EQ(grid.size(), 3U);
    gapCorrectConstant(grid, kLowest, 0, 2, kRate);
    EXPECT_EQ(grid.size(), 3U);
}

}  // namespace
