// SPDX-License-Identifier: MIT
#include "envelope/UnitBeatAdjust.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "envelope/kickTrack.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using UnitBeatAdjustTrialsTest = RoundTowardZero;

constexpr int kRate = 48000;
constexpr double kBeat = 24000.0;  // 120 BPM

/** Two minutes of kicks at exactly 120 BPM, refined from a tempo `offset` above it. */
struct Trials {
    explicit Trials(double offset, int frames = 120 * kRate) : length(frames) {
        adjust.create(kRate, frames);
        feed(adjust, kickTrack(frames, kRate, regularFrames(12000.0, kBeat, frames)), 640);
        bpm = static_cast<float>(120.0 + offset);
        beats = beatsAt(regularFrames(12000.0, kBeat, frames), 500.0F);
        adjust.analyze(bpm, beats);
    }
    int length;
    UnitBeatAdjust adjust;
    float bpm;
    peakss::BeatList beats;
};

// Trial k of the first stage is bpm − 0.016 + 0.002 k: offset 0.016 − 0.002 k makes trial k the
// true one. The two fine trials come last.
double offsetOfTrial(int k) {
    return 0.016 - 0.002 * k;
}

TEST_F(UnitBeatAdjustTrialsTest, ABestTrialInTheMiddleEndsTheSearch) {
    for (const int k : {3, 8, 14}) {
        const Trials trials(offsetOfTrial(k));
        EXPECT_EQ(trials.adjust.trialCount(), 17 + 2) << "trial " << k;
        EXPECT_NEAR(trials.bpm, 120.0F, 0.0015F) << "trial " << k;
    }
}

TEST_F(UnitBeatAdjustTrialsTest, ABestAmongTheThreeLowestWidensDownward) {
    for (const int k : {0, 1, 2}) {
        const Trials trials(offsetOfTrial(k));
        EXPECT_EQ(trials.adjust.trialCount(), 17 + 9 + 2) << "trial " << k;
        EXPECT_NEAR(trials.bpm, 120.0F, 0.0015F) << "trial " << k;
    }
}

// The upper edge is narrower: 14, the third from the top, is not at it.
TEST_F(UnitBeatAdjustTrialsTest, ABestAmongTheTwoHighestWidensUpward) {
    for (const int k : {15, 16}) {
        const Trials trials(offsetOfTrial(k));
        EXPECT_EQ(trials.adjust.trialCount(), 17 + 9 + 2) << "trial " << k;
        EXPECT_NEAR(trials.bpm, 120.0F, 0.0015F) << "trial " << k;
    }
}

// Trials 17..25 reach from bpm − 0.034 up; 17, 18 and 19 widen once more.
TEST_F(UnitBeatAdjustTrialsTest, ABestAtTheLowerEdgeOfTheWiderSearchWidensAgain) {
    for (const int k : {17, 18, 19, 20}) {
        const Trials trials(0.034 - 0.002 * (k - 17));
        EXPECT_EQ(trials.adjust.trialCount(), k <= 19 ? 36 : 28) << "trial " << k;
        EXPECT_NEAR(trials.bpm, 120.0F, 0.0015F) << "trial " << k;
    }
}

// Trials 17..25 reach from bpm + 0.018 up; only 24 and 25 widen once more.
TEST_F(UnitBeatAdjustTrialsTest, ABestAtTheUpperEdgeOfTheWiderSearchWidensAgain) {
    for (const int k : {23, 24, 25}) {
        const Trials trials(-0.018 - 0.002 * (k - 17));
        EXPECT_EQ(trials.adjust.trialCount(), k >= 24 ? 36 : 28) << "trial " << k;
        EXPECT_NEAR(trials.bpm, 120.0F, 0.0015F) << "trial " << k;
    }
}

// bpm − 0.05 is 120.00000 for a given 120.05: 120000 is not above 120050 − 50, so nothing below it
// is tried.
TEST_F(UnitBeatAdjustTrialsTest, NoFineTrialLeavesTheFiftyThousandths) {
    const Trials trials(0.05);
    EXPECT_EQ(trials.adjust.trialCount(), 17 + 9 + 8 + 1);
    EXPECT_NEAR(trials.bpm, 120.0F, 0.0015F);
}

/** Distance of two late neighbours in a trial grid, as a tempo. */
double tempoOf(const std::vector<int>& grid) {
    const double span = grid[200] - grid[0];
    return 60.0 * 12000.0 * 200.0 / span;
}

// Both fine trials are placed from the coarse best, also when the first of them beats it.
TEST_F(UnitBeatAdjustTrialsTest, FineTrialsLieOnBothSidesOfTheCoarseBest) {
    const Trials trials(0.001);  // 120 lies between two coarse trials
    const auto& grids = trials.adjust.grids();
    ASSERT_EQ(grids.size(), 19U);
    EXPECT_NEAR(tempoOf(grids[18]) - tempoOf(grids[17]), 0.002, 0.0008);
    EXPECT_NEAR(trials.bpm, 120.0F, 0.0006F);
}

TEST_F(UnitBeatAdjustTrialsTest, CoarseTrialsLieTwoThousandthsApart) {
    const Trials trials(0.0);
    const auto& grids = trials.adjust.grids();
    EXPECT_NEAR(tempoOf(grids[0]), 119.984, 0.0008);
    EXPECT_NEAR(tempoOf(grids[16]), 120.016, 0.0008);
}

// A beat of the trial grid lies at i × step + first, rounded: 12000 × (60 / bpm) level samples on.
TEST_F(UnitBeatAdjustTrialsTest, ATrialGridRunsFromTheFirstBeatToTheEndOfTheTrack) {
    const Trials trials(0.0);
    const double step = 12000.0 * (60.0 / (120.0 - 0.016));
    const std::vector<int>& grid = trials.adjust.grids()[0];
    EXPECT_EQ(grid.front(), 3000);
    EXPECT_EQ(grid[100], static_cast<int>(100 * step + 3000 + 0.5));
    EXPECT_LT(grid.back(), trials.length / 4);
    EXPECT_GE(grid.back() + step, trials.length / 4);
}

// Trial 8 of a given 120 is 120 BPM itself, 6000 level samples a beat: beat 240 would lie at 3000 +
// 240 × 6000 = 1443000, where the track ends.
TEST_F(UnitBeatAdjustTrialsTest, ATrialGridHasNoBeatAtTheEndOfTheTrack) {
    const Trials trials(0.0, 120 * kRate + 12000);
    const std::vector<int>& grid = trials.adjust.grids()[8];
    EXPECT_EQ(grid.size(), 240U);
    EXPECT_EQ(grid.back(), 3000 + 239 * 6000);
}

/** A minute of kicks at 120 BPM; `given` beats at `bpm`. */
struct Adopted {
    Adopted(float givenBpm, int given) : bpm(givenBpm) {
        constexpr int kFrames = 60 * kRate;
        UnitBeatAdjust adjust;
        adjust.create(kRate, kFrames);
        feed(adjust, kickTrack(kFrames, kRate, regularFrames(12000.0, kBeat, kFrames)), 640);
        const double step = 60.0 * kRate / static_cast<double>(bpm);
        beats = beatsAt(regularFrames(12000.0, step, 12000.0 + step * (given - 0.5)), 777.0F);
        beats.back().segHead = true;
        adjust.analyze(bpm, beats);
    }
    float bpm;
    peakss::BeatList beats;
};

TEST_F(UnitBeatAdjustTrialsTest, AShortListGrowsToTheAdoptedGrid) {
    const Adopted adopted(120.01F, 10);
    ASSERT_EQ(adopted.beats.size(), 120U);
    for (std::size_t i = 0; i < 120; ++i) {
        EXPECT_EQ(adopted.beats[i].group, static_cast<int>(i % 4) + 1);
        EXPECT_EQ(adopted.beats[i].segHead, i == 9);
        EXPECT_NEAR(adopted.beats[i].interval, 500.0F, 0.01F);
    }
}

TEST_F(UnitBeatAdjustTrialsTest, ALongListShrinksToTheAdoptedGrid) {
    EXPECT_EQ(Adopted(120.01F, 150).beats.size(), 120U);
}

// The kicks have the given tempo, and the trial there is the best: its last bits differ, but not
// the thousandth, so even the wrong interval of the list stays.
TEST_F(UnitBeatAdjustTrialsTest, AChangeBelowAThousandthChangesNeitherTempoNorGrid) {
    constexpr int kFrames = 240 * kRate;
    float bpm = 120.0005F;
    const double step = 60.0 * kRate / static_cast<double>(bpm);
    const auto kicks = regularFrames(12000.0, step, kFrames);
    UnitBeatAdjust adjust;
    adjust.create(kRate, kFrames);
    feed(adjust, kickTrack(kFrames, kRate, kicks), 640);
    peakss::BeatList beats = beatsAt(kicks, 777.0F);
    adjust.analyze(bpm, beats);
    EXPECT_EQ(bpm, 120.0005F);
    const std::int64_t moved = beats.front().pos - kicks.front();
    for (std::size_t i = 0; i + 1 < beats.size(); ++i) {
        ASSERT_EQ(beats[i].interval, 777.0F);
        ASSERT_EQ(beats[i].pos, kicks[i] + moved);
    }
}

/** Three beats at 100 BPM and noise, whatever the tempo given. */
float refinedFrom(float bpm) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, 20 * kRate);
    feed(adjust, stereoNoise(20 * kRate), 640);
    peakss::BeatList beats = beatsAt({0, 28800, 57600}, 600.0F);
    adjust.analyze(bpm, beats);
    return bpm;
}

TEST_F(UnitBeatAdjustTrialsTest, TrialTemposAreHeldBetweenSeventyAndOneHundredAndEighty) {
    EXPECT_EQ(refinedFrom(69.0F), 70.0F);
    EXPECT_EQ(refinedFrom(1.0F), 70.0F);
    EXPECT_EQ(refinedFrom(181.0F), 180.0F);
    EXPECT_EQ(refinedFrom(1e30F), 180.0F);
}

TEST_F(UnitBeatAdjustTrialsTest, ATempoOfAtMostATwentiethIsNotTried) {
    EXPECT_EQ(refinedFrom(0.05F), 0.05F);
    EXPECT_EQ(refinedFrom(0.01F), 0.01F);
}

// No trial scores, so the best stays at index 0 and the search widens downward once; the fine trial
// above a best of 0 BPM is held at 70 and scores nothing either.
TEST_F(UnitBeatAdjustTrialsTest, SilenceKeepsTheTempo) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, 20 * kRate);
    feed(adjust, Stereo(2 * 20 * kRate), 640);
    peakss::BeatList beats = beatsAt({0, 24000, 48000}, 500.0F);
    float bpm = 120.0F;
    adjust.analyze(bpm, beats);
    EXPECT_EQ(adjust.trialCount(), 17 + 9 + 1);
    EXPECT_EQ(bpm, 120.0F);
}

TEST_F(UnitBeatAdjustTrialsTest, AFirstBeatOutsideTheLevelIsNotTried) {
    for (const std::int64_t first : {std::int64_t{-4}, std::int64_t{20 * kRate}}) {
        UnitBeatAdjust adjust;
        adjust.create(kRate, 20 * kRate);
        feed(adjust, stereoNoise(20 * kRate), 640);
        peakss::BeatList beats = beatsAt({first, first + 24000, first + 48000}, 500.0F);
        float bpm = 120.0F;
        adjust.analyze(bpm, beats);
        EXPECT_EQ(adjust.trialCount(), 0);
        EXPECT_EQ(bpm, 120.0F);
    }
}

// −3 / 4 is cut to 0: the first three frames before the start still count as the start.
TEST_F(UnitBeatAdjustTrialsTest, AFirstBeatLessThanFourFramesBeforeTheStartIsTried) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, 20 * kRate);
    feed(adjust, stereoNoise(20 * kRate), 640);
    peakss::BeatList beats = beatsAt({-3, 24000, 48000}, 500.0F);
    float bpm = 120.0F;
    adjust.analyze(bpm, beats);
    EXPECT_EQ(adjust.grids().front().front(), 0);
}

// Past 900 s nothing is stored. At 120 BPM 1800 beats fit from the start; a first beat at 899 s
// leaves 2 × 1 of them and one beyond 900 s none, so no trial is made.
TEST_F(UnitBeatAdjustTrialsTest, BeatsBeyondTheStoredLevelAreNotTried) {
    UnitBeatAdjust adjust;
    adjust.create(kRate, 1000 * kRate);
    const Stereo second(2 * kRate, 100);
    for (int i = 0; i < 900; ++i) adjust.putSample(second.data(), kRate);
    ASSERT_EQ(adjust.level().size(), 10800000U);
    peakss::BeatList beats = beatsAt({900 * kRate, 901 * kRate}, 500.0F);
    float bpm = 120.0F;
    adjust.analyze(bpm, beats);
    EXPECT_EQ(adjust.trialCount(), 0);
    beats = beatsAt({899 * kRate, 900 * kRate}, 500.0F);
    adjust.analyze(bpm, beats);
    EXPECT_GT(adjust.trialCount(), 0);
}

}  // namespace
}  // namespace beatatlas::test
