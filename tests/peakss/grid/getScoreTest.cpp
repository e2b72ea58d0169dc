// SPDX-License-Identifier: MIT
#include "peakss/grid/SnapWalkScorer.h"

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatsAt;
using peakss::BeatList;
using peakss::getScore;
using peakss::SnapWalkScorer;

class GetScoreTest : public beatatlas::test::RoundTowardZero {};

TEST_F(GetScoreTest, EachBeatMetGivesTheToleranceLessItsDistance) {
    double first = 0.0;
    // From 0: 30 at distance 30, snaps; from 1030: 1000 at 30, snaps; from 2000: nothing within
    // 100.
    EXPECT_EQ(getScore(beatsAt({30, 1000}), 0.0, 2500.0, 1000.0, 100, &first), 70.0 + 70.0);
    EXPECT_EQ(first, 30.0);
}

// Without snapping the third step, 2000, would miss 2180.
TEST_F(GetScoreTest, WalkSnapsToTheBeatsItMeets) {
    EXPECT_EQ(getScore(beatsAt({0, 1090, 2180}), 0.0, 2100.0, 1000.0, 100, nullptr),
              100.0 + 10.0 + 10.0);
}

TEST_F(GetScoreTest, WalkGoesOnAcrossMissingBeats) {
    EXPECT_EQ(getScore(beatsAt({0, 3000}), 0.0, 3001.0, 1000.0, 100, nullptr), 200.0);
    EXPECT_EQ(getScore(beatsAt({0, 3000}), 0.0, 3000.0, 1000.0, 100, nullptr), 100.0);
}

TEST_F(GetScoreTest, NothingMetGivesNoFirstHit) {
    double first = 5.0;
    EXPECT_EQ(getScore(beatsAt({5000}), 0.0, 3000.0, 1000.0, 100, &first), 0.0);
    EXPECT_EQ(first, -1.0);
    EXPECT_EQ(getScore({}, 0.0, 3000.0, 1000.0, 100, &first), 0.0);
    EXPECT_EQ(first, -1.0);
}

// The tolerance is the whole of the score: a beat met exactly at its edge gives none, but is met.
TEST_F(GetScoreTest, BeatAtTheEdgeOfTheToleranceIsMetForNothing) {
    double first = 0.0;
    EXPECT_EQ(getScore(beatsAt({100}), 0.0, 500.0, 1000.0, 100, &first), 0.0);
    EXPECT_EQ(first, 100.0);
}

TEST_F(GetScoreTest, StepsThatNeverArriveEnd) {
    const BeatList list = beatsAt({5000});
    constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
    for (const double step : {0.0, -100.0, 1e-9, kNoNumber})
        EXPECT_EQ(getScore(list, 0.0, 10000.0, step, 2400, nullptr), 0.0);
    // Snapped back to 5000 again and again: 3000 → 5000 gives 400, then 5100 → 5000 gives 2300.
    EXPECT_EQ(getScore(list, 3000.0, 10000.0, 100.0, 2400, nullptr), 400.0 + 2300.0);
}

// Oracle: the plain walk. Random pulses over random lists, crowded and sparse.
TEST_F(GetScoreTest, ScoringByBeatGivesTheBitsOfThePlainWalk) {
    std::mt19937 random(5);
    for (int round = 0; round < 60; ++round) {
        const int beats = 1 + static_cast<int>(random() % 80);
        const int length = 200000 + static_cast<int>(random() % 400000);
        std::vector<int> positions;
        for (int i = 0; i < beats; ++i)
            positions.push_back(static_cast<int>(random() % static_cast<unsigned>(length)));
        std::sort(positions.begin(), positions.end());
        const BeatList list = beatsAt(positions);
        SnapWalkScorer scorer(list);
        const double beatSamples = 7000.0 + static_cast<double>(random() % 2000000) / 97.0;
        const int tolerance = std::max(2400, static_cast<int>(beatSamples * 0.125));
        scorer.setPulse(length, beatSamples, tolerance);
        for (int x = 0; x < 30000; x += 960) {
            double plainFirst = 0.0;
            double first = 0.0;
            const double plain = getScore(list, x, length, beatSamples, tolerance, &plainFirst);
            ASSERT_EQ(scorer.score(x, first), plain);
            ASSERT_EQ(first, plainFirst);
        }
    }
}

TEST_F(GetScoreTest, ANewPulseForgetsTheScoresOfTheOld) {
    const BeatList list = beatsAt({0, 10000, 20000, 30000});
    SnapWalkScorer scorer(list);
    double first = 0.0;
    scorer.setPulse(40000.0, 10000.0, 2400);
    EXPECT_EQ(scorer.score(0.0, first), 4 * 2400.0);
    scorer.setPulse(40000.0, 20000.0, 2400);
    EXPECT_EQ(scorer.score(0.0, first), 2 * 2400.0);
}

TEST_F(GetScoreTest, ABeatAheadOfTheTrackDoesNotPassForAFirstHit) {
    const BeatList list = beatsAt({-100, 9900});
    SnapWalkScorer scorer(list);
    scorer.setPulse(15000.0, 10000.0, 2400);
    double first = 0.0;
    double plainFirst = 0.0;
    EXPECT_EQ(scorer.score(0.0, first), getScore(list, 0.0, 15000.0, 10000.0, 2400, &plainFirst));
    EXPECT_EQ(first, 9900.0);
    EXPECT_EQ(plainFirst, 9900.0);
}

}  // namespace
