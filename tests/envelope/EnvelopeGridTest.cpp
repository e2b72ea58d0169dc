// SPDX-License-Identifier: MIT
#include "envelope/EnvelopeGrid.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "envelope/kickTrack.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using EnvelopeGridTest = RoundTowardZero;
using Indices = std::vector<int>;

constexpr int kRate = 48000;  // 375 envelope values per second, 187.5 per beat of 500 ms

TEST_F(EnvelopeGridTest, BeatsRoundToEnvelopeValues) {
    const EnvelopeGrid grid = makeEnvelopeGrid(beatsAt({1280, 1343, 1344}, 500.0F), kRate);
    EXPECT_FALSE(grid.isPrepended);
    EXPECT_EQ(grid.beatIndex, (Indices{10, 10, 11}));  // 10, 10.49, 10.5
    EXPECT_EQ(grid.beatLength, (std::vector<double>{187.5, 187.5, 187.5}));
}

TEST_F(EnvelopeGridTest, AFarFirstBeatGetsOneInFrontAndTheLastIsLeftOut) {
    peakss::BeatList beats = beatsAt({24000, 48000, 72000}, 500.0F);
    beats[0].interval = 400.0F;
    beats[1].interval = 600.0F;
    const EnvelopeGrid grid = makeEnvelopeGrid(beats, kRate);
    EXPECT_TRUE(grid.isPrepended);
    EXPECT_EQ(grid.beatIndex, (Indices{1, 188, 375}));
    EXPECT_EQ(grid.beatLength, (std::vector<double>{150.0, 150.0, 225.0}));
}

// 0.9 of 187.5 values is 168.75 = frame 21600. The single 0.9 is a little less than nine tenths and
// its product a little less than 168.75; a double one would let the beat pass.
TEST_F(EnvelopeGridTest, JudgesTheFirstBeatInSinglePrecision) {
    EXPECT_TRUE(makeEnvelopeGrid(beatsAt({21600, 45600}, 500.0F), kRate).isPrepended);
    EXPECT_FALSE(makeEnvelopeGrid(beatsAt({21599, 45599}, 500.0F), kRate).isPrepended);
}

TEST_F(EnvelopeGridTest, FirstIndexIsAtLeastOne) {
    EXPECT_EQ(makeEnvelopeGrid(beatsAt({0, 24000}, 500.0F), kRate).beatIndex, (Indices{1, 188}));
    EXPECT_EQ(makeEnvelopeGrid(beatsAt({-64000, 24000}, 500.0F), kRate).beatIndex,
              (Indices{1, 188}));
}

TEST_F(EnvelopeGridTest, SurvivesAbsurdBeats) {
    constexpr float kInf = std::numeric_limits<float>::infinity();
    for (const float interval : {0.0F, -1e38F, kInf, std::numeric_limits<float>::quiet_NaN()}) {
        const EnvelopeGrid grid =
            makeEnvelopeGrid(beatsAt({std::numeric_limits<std::int32_t>::min(),
                                      std::numeric_limits<std::int32_t>::max()},
                                     interval),
                             kRate);
        EXPECT_EQ(grid.beatIndex.size(), 2U);
        EXPECT_EQ(grid.beatLength.size(), 2U);
    }
}

TEST_F(EnvelopeGridTest, BeatIndexIsTheLastEntryNotAbove) {
    const Indices list{10, 20, 20, 30};
    EXPECT_EQ(getBeatIndex(5, list), 0);
    EXPECT_EQ(getBeatIndex(10, list), 0);
    EXPECT_EQ(getBeatIndex(19, list), 0);
    EXPECT_EQ(getBeatIndex(20, list), 2);
    EXPECT_EQ(getBeatIndex(1000, list), 3);
}

TEST_F(EnvelopeGridTest, NearBeatIndexGivesAMidpointTieToTheLaterEntry) {
    const Indices list{10, 20, 31};
    EXPECT_EQ(getNearBeatIndex(-100, list), 0);
    EXPECT_EQ(getNearBeatIndex(14, list), 0);
    EXPECT_EQ(getNearBeatIndex(15, list), 1);
    EXPECT_EQ(getNearBeatIndex(24, list), 1);
    EXPECT_EQ(getNearBeatIndex(25, list), 2);  // (20 + 31) / 2 is cut to 25
    EXPECT_EQ(getNearBeatIndex(1000, list), 2);
}

// −3 / 2 is cut toward zero to −1.
TEST_F(EnvelopeGridTest, NearBeatIndexHalvesNegativeSumsTowardZero) {
    const Indices list{-3, 0};
    EXPECT_EQ(getNearBeatIndex(-2, list), 0);
    EXPECT_EQ(getNearBeatIndex(-1, list), 1);
}

TEST_F(EnvelopeGridTest, AnEmptyListHasNoIndexAndNoLength) {
    EXPECT_EQ(getBeatIndex(5, {}), -1);
    EXPECT_EQ(getNearBeatIndex(5, {}), -1);
    EXPECT_EQ(getBeatDiff(5, {}, {}), 0.0);
    EXPECT_EQ(getBeatDiff(5, {1}, {}), 0.0);
    EXPECT_EQ(getBeatDiff(5, {}, {1.0}), 0.0);
}

TEST_F(EnvelopeGridTest, BeatDiffIsTheLengthAtTheBeatBefore) {
    const Indices list{10, 20, 30};
    const std::vector<double> lengths{1.0, 2.0, 3.0};
    EXPECT_EQ(getBeatDiff(0, list, lengths), 1.0);
    EXPECT_EQ(getBeatDiff(25, list, lengths), 2.0);
    EXPECT_EQ(getBeatDiff(99, list, lengths), 3.0);
}

// In {10, 40, 20, 30, 50} a linear scan for 25 would end at 20 (place 2). The halving looks at
// place 2 (20 fits), place 4 (50 does not), place 3 (30 does not) and ends there too; for 35 it
// looks at 2, 4, 3 and ends at 3; in {10, 40, 50, 20, 30} it looks at 50 first and never sees 20.
TEST_F(EnvelopeGridTest, TheHalvingRuleDecidesOnAListThatIsNotAscending) {
    EXPECT_EQ(getBeatIndex(25, {10, 40, 20, 30, 50}), 2);
    EXPECT_EQ(getBeatIndex(35, {10, 40, 20, 30, 50}), 3);
    EXPECT_EQ(getBeatIndex(35, {10, 40, 50, 20, 30}), 0);
}

TEST_F(EnvelopeGridTest, MidpointsOfExtremeEntriesDoNotOverflow) {
    constexpr int kMost = std::numeric_limits<int>::max();
    EXPECT_EQ(getNearBeatIndex(kMost, {kMost, kMost}), 1);
    EXPECT_EQ(getNearBeatIndex(0, {kMost - 1, kMost}), 0);
}

}  // namespace
}  // namespace beatatlas::test
