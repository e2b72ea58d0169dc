// SPDX-License-Identifier: MIT
#include "envelope/BeatPhaseSearch.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "envelope/kickTrack.h"
#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using BeatPhaseSearchTest = RoundTowardZero;

// At 48 kHz the envelope has 375 values per second, the lead is 375 × 0.1 + 0.5 = 38, and the one
// beat at frame 64000 lies at envelope index 500. At 90 BPM a beat is 250 values, half of one 125:
// further than the slide reaches.
constexpr double kRate = 375.0;
constexpr int kLead = 38;
constexpr int kBeat = 500;
constexpr double kLength90 = 250.0;

const std::vector<std::int64_t> kOneBeat{64000};

BeatPhase phaseOf(const std::vector<std::int16_t>& envelope, float bpm,
                  const std::vector<std::int64_t>& frames = kOneBeat) {
    return findBeatPhase(envelope, kRate, kLength90, bpm, beatsAt(frames, 500.0F));
}

std::vector<std::int16_t> envelopeWith(int index, std::int16_t level) {
    std::vector<std::int16_t> envelope(2000);
    envelope[static_cast<std::size_t>(index)] = level;
    return envelope;
}

// Slow tempos slide from lead − 81 to lead + 79: 161 trials.
TEST_F(BeatPhaseSearchTest, SlowTempoTriesOneHundredAndSixtyOneShifts) {
    for (const int reached : {-81, 0, 79}) {
        const BeatPhase phase = phaseOf(envelopeWith(kBeat + kLead + reached, 100), 99.9F);
        EXPECT_TRUE(phase.isOnPulse) << reached;
        EXPECT_EQ(phase.start, kBeat + kLead + reached);
    }
    // One further and only the half-beat points reach it, or none at all.
    EXPECT_FALSE(phaseOf(envelopeWith(kBeat + kLead + 80, 100), 99.9F).isOnPulse);
    EXPECT_EQ(phaseOf(envelopeWith(kBeat + kLead - 82, 100), 99.9F).start, kBeat + kLead - 81);
}

// Fast tempos slide from lead − 41 to lead + 39: 81 trials.
TEST_F(BeatPhaseSearchTest, FastTempoTriesEightyOneShifts) {
    for (const int reached : {-41, 0, 39}) {
        const BeatPhase phase = phaseOf(envelopeWith(kBeat + kLead + reached, 100), 100.0F);
        EXPECT_TRUE(phase.isOnPulse) << reached;
        EXPECT_EQ(phase.start, kBeat + kLead + reached);
    }
    EXPECT_EQ(phaseOf(envelopeWith(kBeat + kLead + 40, 100), 100.0F).start, kBeat + kLead - 41);
    EXPECT_EQ(phaseOf(envelopeWith(kBeat + kLead - 42, 100), 100.0F).start, kBeat + kLead - 41);
}

TEST_F(BeatPhaseSearchTest, ExactlyOnePointTwoTimesStaysOnThePulse) {
    std::vector<std::int16_t> envelope = envelopeWith(kBeat + kLead, 10);
    envelope[kBeat + kLead + 125] = 12;
    EXPECT_TRUE(phaseOf(envelope, 90.0F).isOnPulse);
    envelope[kBeat + kLead + 125] = 13;
    const BeatPhase phase = phaseOf(envelope, 90.0F);
    EXPECT_FALSE(phase.isOnPulse);
    EXPECT_EQ(phase.start, kBeat + kLead + 125);
}

TEST_F(BeatPhaseSearchTest, OfEqualSumsTheEarliestShiftStands) {
    std::vector<std::int16_t> envelope = envelopeWith(kBeat + kLead - 5, 100);
    envelope[kBeat + kLead + 5] = 100;
    EXPECT_EQ(phaseOf(envelope, 90.0F).start, kBeat + kLead - 5);
}

// At 90 BPM the first trial lies at lead − 81. A lower pulse further on does not take its place,
// and it does not take that of a higher one right behind it.
TEST_F(BeatPhaseSearchTest, FirstTrialCountsAtItsOwnPlace) {
    constexpr int kFirst = kBeat + kLead - 81;
    std::vector<std::int16_t> envelope = envelopeWith(kFirst, 100);
    envelope[kFirst + 5] = 70;
    EXPECT_EQ(phaseOf(envelope, 90.0F).start, kFirst);
    envelope[kFirst + 1] = 101;
    EXPECT_EQ(phaseOf(envelope, 90.0F).start, kFirst + 1);
}

// Levels that wrapped below 0 everywhere: the first trial is the best so far, not a sum of 0.
TEST_F(BeatPhaseSearchTest, FirstTrialIsTheFirstBestEvenBelowZero) {
    std::vector<std::int16_t> envelope(2000, -100);
    envelope[kBeat + kLead + 7] = -50;
    const BeatPhase phase = phaseOf(envelope, 90.0F);
    // off = on = −50 or −100: −100 × 5 = −500 is not above −50 × 6 = −300.
    EXPECT_TRUE(phase.isOnPulse);
    EXPECT_EQ(phase.start, kBeat + kLead + 7);
}

// At 90 BPM the first 90 beats take part; the pulse at the 91st beat is not heard.
TEST_F(BeatPhaseSearchTest, OnlyAMinuteOfBeatsTakesPart) {
    std::vector<std::int64_t> frames(91, 64000);
    frames[90] = 128000;  // index 1000
    EXPECT_EQ(phaseOf(envelopeWith(1000 + kLead, 100), 90.0F, frames).start, kBeat + kLead - 81);
    EXPECT_EQ(phaseOf(envelopeWith(1000 + kLead, 100), 91.0F, frames).start, kBeat + kLead);
}

// The second beat's pulse is beyond the envelope, so the third one's, back inside, is not heard.
TEST_F(BeatPhaseSearchTest, APointBeyondTheEndStopsTheSumsOfItsTrial) {
    const std::vector<std::int64_t> frames{64000, 1280000, 128000};
    EXPECT_EQ(phaseOf(envelopeWith(1000 + kLead, 100), 90.0F, frames).start, kBeat + kLead - 81);
}

// The second beat's half-beat point is beyond the end, its own point is not: that one still counts.
TEST_F(BeatPhaseSearchTest, AHalfBeatPointBeyondTheEndStopsAfterItsBeatIsCounted) {
    const std::vector<std::int64_t> frames{64000, 1900 * 128, 128000};
    std::vector<std::int16_t> envelope = envelopeWith(1900 + kLead + 3, 100);
    envelope[1000 + kLead] = 1000;
    EXPECT_EQ(phaseOf(envelope, 90.0F, frames).start, kBeat + kLead + 3);
}

TEST_F(BeatPhaseSearchTest, PointsBeforeTheStartAreSkipped) {
    const std::vector<std::int64_t> frames{-128 * 300, 64000};
    EXPECT_EQ(phaseOf(envelopeWith(kBeat + kLead + 3, 100), 90.0F, frames).start,
              -300 + 1 + kLead + 3);  // −300 + 0.5 is cut toward zero: −299
}

TEST_F(BeatPhaseSearchTest, SurvivesAbsurdInput) {
    const std::vector<std::int64_t> extremes{std::numeric_limits<std::int32_t>::min(),
                                             std::numeric_limits<std::int32_t>::max()};
    const std::vector<std::int16_t> envelope(100, 1);
    for (const float bpm : {1e-38F, 0.5F, 1e38F, std::numeric_limits<float>::infinity()}) {
        for (const double length : {0.0, 1e300, -5.0}) {
            findBeatPhase(envelope, kRate, length, bpm, beatsAt(extremes, 0.0F));
            findBeatPhase({}, kRate, length, bpm, beatsAt(extremes, 0.0F));
        }
    }
}

}  // namespace
}  // namespace beatatlas::test
