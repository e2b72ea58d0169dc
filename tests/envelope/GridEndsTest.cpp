// SPDX-License-Identifier: MIT
#include "envelope/GridEnds.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "envelope/kickTrack.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using GridEndsTest = RoundTowardZero;
using Positions = std::vector<std::int32_t>;

constexpr int kRate = 48000;
constexpr int kMost = std::numeric_limits<std::int32_t>::max();

peakss::BeatList withTail(const std::vector<std::int64_t>& frames, int length,
                          float interval = 500.0F) {
    peakss::BeatList beats = beatsAt(frames, interval);
    fitTail(beats, kRate, length);
    return beats;
}

peakss::BeatList withHead(const std::vector<std::int64_t>& frames, float interval = 500.0F) {
    peakss::BeatList beats = beatsAt(frames, interval);
    fitHead(beats, kRate);
    return beats;
}

TEST_F(GridEndsTest, TheLastBeatIsExtendedOnlyBelowTheLength) {
    EXPECT_EQ(positionsOf(withTail({0, 24000}, 48001)), (Positions{0, 24000, 48000}));
    EXPECT_EQ(positionsOf(withTail({0, 24000}, 48000)), (Positions{0, 24000}));
}

TEST_F(GridEndsTest, ExtendsByOneBeatOnly) {
    EXPECT_EQ(withTail({0, 24000}, 480000).size(), 3U);
}

TEST_F(GridEndsTest, TheNewLastBeatContinuesTheCycleAndCopiesTheRest) {
    peakss::BeatList beats = beatsAt({0, 1, 2, 3}, 500.0F);
    beats.back().band = -1;
    beats.back().segHead = true;
    fitTail(beats, kRate, kMost);
    EXPECT_EQ(numbersOf(beats), (Positions{1, 2, 3, 4, 1}));
    EXPECT_EQ(beats.back().band, -1);
    EXPECT_TRUE(beats.back().segHead);
    EXPECT_EQ(beats.back().interval, 500.0F);
}

TEST_F(GridEndsTest, ALastBeatAtOrBeyondTheLengthIsRemoved) {
    EXPECT_EQ(positionsOf(withTail({0, 24000}, 24000)), Positions{0});
    EXPECT_EQ(positionsOf(withTail({0, 24000, 25000}, 23000)), (Positions{0, 24000}));
}

// 48000 × 333.34 / 1000 = 16000.3, + 0.5 is cut to 16000.
TEST_F(GridEndsTest, TheStepIsRounded) {
    EXPECT_EQ(withTail({0}, kMost, 333.34F).back().pos, 16000);
    EXPECT_EQ(withTail({0}, kMost, 333.35F).back().pos, 16001);
}

TEST_F(GridEndsTest, AFirstBeatAtLeastOneIntervalFromTheStartGainsAPredecessor) {
    EXPECT_EQ(positionsOf(withHead({24000, 48000})), (Positions{0, 24000, 48000}));
    EXPECT_EQ(positionsOf(withHead({23999, 47999})), (Positions{23999, 47999}));
}

TEST_F(GridEndsTest, ThePredecessorIsNumberedOneLowerInTheCycle) {
    for (int number = 1; number <= 4; ++number) {
        peakss::BeatList beats = beatsAt({24000}, 500.0F);
        beats.front().group = number;
        fitHead(beats, kRate);
        EXPECT_EQ(beats.front().group, number == 1 ? 4 : number - 1);
    }
}

TEST_F(GridEndsTest, ANegativeFirstBeatIsRemovedAndOnlyThat) {
    EXPECT_EQ(positionsOf(withHead({-2, -1, 24000})), (Positions{-1, 24000}));
    EXPECT_TRUE(withHead({-1}).empty());
}

TEST_F(GridEndsTest, AnIntervalOfZeroRepeatsTheEnds) {
    EXPECT_EQ(positionsOf(withTail({5}, 10, 0.0F)), (Positions{5, 5}));
    EXPECT_EQ(positionsOf(withHead({5}, 0.0F)), (Positions{5, 5}));
}

TEST_F(GridEndsTest, WithoutAUsableIntervalNothingIsAdded) {
    constexpr float kInf = std::numeric_limits<float>::infinity();
    for (const float interval : {std::numeric_limits<float>::quiet_NaN(), kInf, -kInf, 1e38F}) {
        EXPECT_EQ(withTail({5}, 10, interval).size(), 1U);
        EXPECT_EQ(withHead({5}, interval).size(), 1U);
    }
}

TEST_F(GridEndsTest, PositionsNearTheLargestDoNotOverflow) {
    EXPECT_EQ(withTail({kMost - 10}, kMost).size(), 1U);
    EXPECT_EQ(withTail({kMost}, kMost).size(), 0U);
    EXPECT_EQ(withHead({kMost}).front().pos, kMost - 24000);
    // −24000 + 0.5 is cut to −23999; the sum beyond 2^31 − 1 wraps.
    EXPECT_EQ(withHead({kMost}, -500.0F).front().pos,
              std::numeric_limits<std::int32_t>::min() + 23998);
}

TEST_F(GridEndsTest, AnEmptyListStaysEmpty) {
    peakss::BeatList none;
    fitHead(none, kRate);
    EXPECT_TRUE(none.empty());
}

}  // namespace
}  // namespace beatatlas::test
